#pragma once

#include <map>

#include "rendering/Shader.h"
#include "util/Singleton.h"

namespace rendering {

// Finds shaders by name: name.vert and name.frag below Data/Shaders/default/. While Context::UseShaders()
// is false every mentor is empty.
class ShaderManager : public util::Pointee, public util::Singleton<ShaderManager> {
  public:
    // The same name gives the same mentor. Loads nothing yet.
    ShaderMentorPtr Get(const String& name);

  private:
    static Shader* LoadFromFiles(const String& name);

    std::map<String, ShaderMentorPtr> m_shaders;
};

}  // namespace rendering
