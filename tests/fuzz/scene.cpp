#include <cmath>

#include "Fuzz.h"
#include "app/App.h"
#include "app/files/Serializer.h"
#include "physics/Body.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "script/Expressions.h"

namespace {

constexpr int STEPS = 200;
constexpr size_t MAX_BODIES = 100;  // more are loaded and not run: time is for other texts

app::App& MakeApp() {
    fuzz::MakeQuietParser();
    script::Reflected::AddToRoot(&physics::Simulation::Instance());
    script::Reflected::AddToRoot(&physics::SPH::Instance());
    script::Reflected::AddToRoot(&app::App::Instance());
    return app::App::Instance();
}

}  // namespace

// Any text is a scene, or refused; the world that it makes runs, stays finite, and saves to a text that
// reads.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static app::App& s_app = MakeApp();
    app::Scene& scene = s_app.GetScene();
    physics::Simulation& simulation = physics::Simulation::Instance();
    s_app.Clear();
    simulation.m_running->Set(false);
    app::Serializer::Deserialize(scene, String(data, data + size));
    fuzz::Require(!simulation.m_running->Get(), "a scene does not start the world");
    if (simulation.GetBodies().size() <= MAX_BODIES) {
        simulation.m_running->Set(true);
        for (int i = 0; i < STEPS; ++i) simulation.Step(true);
        simulation.m_running->Set(false);
    }
    for (const physics::BodyPtr& body : simulation.GetBodies()) {
        fuzz::Require(std::isfinite(body->m_vel.x) && std::isfinite(body->m_vel.y), "finite velocities");
    }
    const String saved = app::Serializer::Serialize(scene)->ToCode();
    fuzz::Require(static_cast<bool>(app::Serializer::Parse(saved)), "what is saved can be parsed", saved);
    fuzz::Tidy();
    return 0;
}
