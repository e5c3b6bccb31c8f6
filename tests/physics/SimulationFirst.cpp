#include <gtest/gtest.h>

#include "physics/Simulation.h"

namespace test {
namespace {

// The world body and the world geom are the first of their kind in every process.
class SimulationFirst : public testing::Environment {
  public:
    void SetUp() override { physics::Simulation::Instance(); }
};

testing::Environment* const s_simulationFirst = testing::AddGlobalTestEnvironment(new SimulationFirst);

}  // namespace
}  // namespace test
