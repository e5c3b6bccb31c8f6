#include "app/files/SceneWriter.h"

#include "app/files/SceneFiles.h"
#include "app/files/Serializer.h"
#include "script/Expressions.h"
#include "script/Objects.h"
#include "util/Clock.h"
#include "util/FileSystem.h"

namespace app {

SceneWriter::SceneWriter(const Scene& scene, const String& name)
    : m_moment(Serializer::TakeMoment(scene)),
      m_path(GetPathToWrite(name)),
      m_text(Serializer::MakeFirstStatement()->ToCode()) {}

SceneWriter::~SceneWriter() = default;

bool SceneWriter::Continue(double seconds) {
    const double end = util::Clock::Now() + seconds;
    while (m_next < m_moment.size()) {
        m_text += ";\n" + Serializer::MakeStatement(m_moment[m_next++])->ToCode();
        if (util::Clock::Now() >= end && m_next < m_moment.size()) return false;
    }
    const util::FileSystem& files = util::FileSystem::Instance();
    files.MakeDir(files.GetScenesDir());
    files.WriteFileAtomically(m_path, m_text);
    return true;
}

}  // namespace app
