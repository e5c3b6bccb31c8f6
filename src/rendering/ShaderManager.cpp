#include "rendering/ShaderManager.h"

#include "rendering/Context.h"
#include "util/FileSystem.h"

namespace rendering {

ShaderMentorPtr ShaderManager::Get(const String& name) {
    ShaderMentorPtr& mentor = m_shaders[name];
    if (!mentor) mentor = new ShaderMentor([name] { return LoadFromFiles(name); });
    return mentor;
}

Shader* ShaderManager::LoadFromFiles(const String& name) {
    if (!Context::UseShaders()) return nullptr;
    const util::FileSystem& files = util::FileSystem::Instance();
    const String path = files.GetShadersDir() + "default/" + name;
    return new Shader(files.ReadFile(path + ".vert"), files.ReadFile(path + ".frag"), name);
}

}  // namespace rendering
