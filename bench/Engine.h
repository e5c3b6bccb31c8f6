#pragma once

#include <memory>
#include <string>

#include "bench/Scenes.h"

namespace bench {

// A scene in one of the engines.
class Engine {
  public:
    virtual ~Engine() = default;
    virtual void Step() = 0;
    virtual int CountContacts() const = 0;  // contact points of the last step
};

std::unique_ptr<Engine> MakeVexa(const Scene& scene);
std::unique_ptr<Engine> MakeBox2D(const Scene& scene);
std::unique_ptr<Engine> MakeChipmunk(const Scene& scene);
std::unique_ptr<Engine> MakeEngine(const std::string& name, const Scene& scene);

}  // namespace bench
