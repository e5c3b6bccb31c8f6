#include "app/files/Autosave.h"

#include "app/entities/Entity.h"
#include "app/files/SceneWriter.h"
#include "app/history/Undoer.h"
#include "app/scene/Scene.h"
#include "physics/Simulation.h"
#include "script/Parser.h"
#include "util/Clock.h"
#include "util/FileSystem.h"
#include "util/Guarded.h"
#include "util/RunSlot.h"

namespace app {

Autosave::Autosave(Scene& scene) : m_scene(scene), m_last(util::Clock::Now()) {}

Autosave::~Autosave() = default;

void Autosave::Update(float interval) {
    if (m_writer) return Continue();
    const double now = util::Clock::Now();
    if (now - m_last <= interval) return;
    m_last = now;
    Guard([this] { WriteConfig(); });
    Begin();
}

void Autosave::Begin() {
    const String name = util::RunSlot::Instance().GetAutosaveScene();
    const util::FileSystem& files = util::FileSystem::Instance();
    const State state = GetState();
    if (state == m_written && files.Exists(files.GetScenesDir() + name)) return;
    m_writing = state;
    if (Guard([&] { m_writer = std::make_unique<SceneWriter>(m_scene, name); })) Continue();
}

void Autosave::Continue() {
    constexpr double SLICE = 0.008;  // s of a frame
    bool isWritten = false;
    const bool isWell = Guard([&] { isWritten = m_writer->Continue(SLICE); });
    if (!isWritten && isWell) return;
    m_writer = nullptr;
    if (!isWritten) return;
    m_written = m_writing;
    m_fails = false;
}

void Autosave::WriteConfig() {
    const SceneSettings::UsersTurn usersOwn(m_scene.GetSettings());
    const String code = script::Parser::Instance().GetRootCode();
    const util::FileSystem& files = util::FileSystem::Instance();
    files.WriteFileAtomically(files.GetWorkDir() + util::RunSlot::Instance().GetAutosaveConfig(), code);
}

template <class Operation>
bool Autosave::Guard(const Operation& operation) {
    const bool isWell = util::Guarded(operation, "Error: ", m_fails ? logging::Trace : logging::Error);
    if (!isWell) m_fails = true;
    return isWell;
}

Autosave::State Autosave::GetState() const {
    return {true, Undoer::Instance().GetChangeCount(), physics::Simulation::Instance().HashState(),
            m_scene.GetTrackedEntity(), m_scene.GetSettings().ToCode()};
}

bool Autosave::State::operator==(const State& other) const {
    return m_isKnown == other.m_isKnown && m_changes == other.m_changes && m_hash == other.m_hash &&
           m_tracked == other.m_tracked && m_settings == other.m_settings;
}

}  // namespace app
