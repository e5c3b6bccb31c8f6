#include "app/files/SceneLoader.h"

#include "app/entities/PolyEntity.h"
#include "app/files/SceneFiles.h"
#include "app/files/SceneReader.h"
#include "app/files/Serializer.h"
#include "app/history/Undoer.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "logging/Log.h"
#include "physics/Simulation.h"
#include "script/Expressions.h"
#include "util/Exception.h"
#include "util/FileSystem.h"

namespace app {

constexpr size_t LONG_TEXT = 500000;  // bytes that take some time

// Of the shapes that are about to be drawn.
static void BuildMapsAhead(const Scene& scene) {
    for (const EntityPtr& entity : scene.GetEntities()) {
        const auto* const shape = dynamic_cast<const PolyEntity*>(entity.Get());
        if (shape != nullptr) shape->GetPolygon()->BuildMapAhead();
    }
}

SceneLoader::SceneLoader(Scene& scene, View& view, const String& filename, bool import)
    : SceneExchange(import ? "UndoImportScene" : "UndoLoadScene", scene, view),
      m_import(import),
      m_filename(filename) {}

bool SceneLoader::Load(Scene& scene, View& view, const String& filename, bool import) {
    const util::SharedPtr<SceneLoader> loader = new SceneLoader(scene, view, filename, import);
    if (!loader->Read()) return false;
    Undoer::Instance().Do(loader);
    return true;
}

bool SceneLoader::LoadAtStart(Scene& scene, View& view, const String& filename) {
    if (!Load(scene, view, filename)) return false;
    Undoer::Instance().Clear();
    return true;
}

bool SceneLoader::LoadLast(Scene& scene, View& view, const String& filename) {
    if (LoadAtStart(scene, view, filename)) return true;
    const String path = GetScenePath(filename);
    const util::FileSystem& files = util::FileSystem::Instance();
    if (files.Exists(path)) files.KeepBadCopy(path);
    return false;
}

// Everything that can fail comes before the present scene is touched.
bool SceneLoader::Read() {
    const String path = GetScenePath(m_filename);
    const util::FileSystem& files = util::FileSystem::Instance();
    if (!files.Exists(path)) {
        Log(logging::Warning, "Tried to load non-existing file: " + path);
        return false;
    }
    try {
        const String text = files.ReadFile(path);
        if (text.size() > LONG_TEXT) m_scene.SetLoadedPart(0);  // before its words are understood
        m_code = Serializer::Parse(text, [this](double part) {
            const int percent = static_cast<int>(part * SceneReader::PARSING_SHARE);
            if (m_scene.GetLoadedPart() < percent) m_scene.SetLoadedPart(percent);
        });
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Warning, "Could not read " + path + ": " + e.what());
    }
    if (!m_code && m_scene.GetLoadedPart() < 100) m_scene.SetLoadedPart(100);
    return static_cast<bool>(m_code);
}

void SceneLoader::Redo() {
    SceneExchange::Redo();
    if (!m_import) physics::Simulation::Instance().m_running->SetValue(script::ValueToObject(false));
}

void SceneLoader::Exchange() {
    if (!m_import) {
        m_scene.Clear();
        physics::Simulation::Instance().m_running->SetValue(script::ValueToObject(false));
    }
    Serializer::Deserialize(m_scene, m_code, m_import);
    m_code = nullptr;
    if (!m_import) m_scene.SetName(GetSceneName(GetScenePath(m_filename)));
    m_view.ZoomToScene(m_scene);
    BuildMapsAhead(m_scene);
    Log(logging::Info, (m_import ? "Imported scene " : "Loaded scene ") + m_filename);
}

}  // namespace app
