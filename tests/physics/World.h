#pragma once

#include <gtest/gtest.h>

#include "physics/Body.h"
#include "physics/Contact.h"
#include "physics/Geom.h"
#include "physics/Hinge.h"
#include "physics/Joints.h"
#include "physics/Particle.h"
#include "physics/Polygon.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "physics/StepSettings.h"

namespace test {

// The one simulation of the process, empty and with all settings at their defaults at the start of each case.
class World : public testing::Test {
  protected:
    World();
    ~World() override;

    // Bodies of the default surface.
    physics::BodyPtr Add(physics::Geom* geom);
    physics::BodyPtr AddCircle(math::Vec2 pos, float radius);
    physics::BodyPtr AddBox(math::Vec2 pos, float width, float height);
    physics::BodyPtr AddGround(math::Vec2 normal = {0, 1}, float offset = 0);
    physics::ParticlePtr AddParticle(math::Vec2 pos, math::Vec2 vel = {});
    physics::HingePtr AddHinge(const physics::BodyPtr& body0, const physics::BodyPtr& body1,
                               math::Vec2 point);
    // Boxes of 0.4 m piled up with their lowest on y = 0, a little apart sideways in pyramids.
    std::vector<physics::BodyPtr> AddStack(int boxes);
    std::vector<physics::BodyPtr> AddPyramid(int rows);

    physics::SolveConstants Constants() const { return physics::SolveConstants(sim.GetStepSettings()); }
    void Run(float seconds);
    void ClearAir();                                     // no drag, no buoyancy
    void SetSurface(float friction, float restitution);  // of geoms added from now on
    float GetDeepestContact() const;
    float GetFastestBody() const;
    float GetKineticEnergy() const;

    physics::Simulation& sim;
    physics::SPH& sph;
};

inline physics::GeomPtr GeomOf(const physics::BodyPtr& body) {
    return body->GetParts().front().geom;
}

}  // namespace test
