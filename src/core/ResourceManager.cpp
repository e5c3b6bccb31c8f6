#include "core/ResourceManager.h"

#include <boost/lexical_cast.hpp>

#include "logging/Log.h"
#include "rendering/Context.h"
#include "rendering/Shader.h"
#include "rendering/Texture.h"

namespace core {

using rendering::Context;
using util::AbstractMentor;

ResourceManager::ResourceManager()
    : Reflected("Resources"),
      m_shaders(script::DeclareAttribGetSet<bool>(*this, "shaders", false, &Context::UseShaders,
                                                  &Context::SetUseShaders)) {
    m_shaders->AddOnChange(new util::Callback([this] { OnShadersChange(); }, this));
    AddCmd("unloadAll", this, &ResourceManager::DestroyAll);
    AddCmd("loadAll", [this] { LoadAll(false); });
    AddCmd("reloadAll", [this] { LoadAll(true); });
    AddCmd("reloadTextures", [this] { LoadClass(typeid(rendering::Texture), true); });
    AddCmd("reloadShaders", [this] { LoadClass(typeid(rendering::Shader), true); });
    AddCmd("vramUsage", &rendering::GraphicsResource::GetTotalMemoryUsage);
    AllowGuests({"vramUsage"});
}

void ResourceManager::DestroyAll() {
    Log(logging::Trace, "Destroying GL resources");
    AbstractMentor::ForEach([](AbstractMentor& mentor) { mentor.Unload(); });
}

void ResourceManager::LoadClass(const std::type_info& type, bool reload) {
    Log(logging::Trace, String("Reloading ") + type.name());
    AbstractMentor::ForEach([&type, reload](AbstractMentor& mentor) {
        if (mentor.GetType() != type) return;
        if (reload) mentor.Unload();
        mentor.Load();
    });
}

void ResourceManager::LoadAll(bool reload) {
    if (reload) {
        Log(logging::Trace, "Unloading the old");
        AbstractMentor::ForEach([](AbstractMentor& mentor) { mentor.Unload(); });
    }
    LoadClass(typeid(rendering::Texture), reload);
    if (m_shaders->Get()) LoadClass(typeid(rendering::Shader), reload);
    Log(logging::Trace, "Loading the rest...");
    AbstractMentor::ForEach([](AbstractMentor& mentor) { mentor.Load(); });
    const String count = boost::lexical_cast<String>(AbstractMentor::GetInstances().size());
    Log(logging::Info, count + " resources loaded");
}

void ResourceManager::OnShadersChange() {
    if (!Context::Exists()) return;
    const bool use = m_shaders->Get();
    Log(logging::Trace, String("Resources.shaders changed value to ") + (use ? "true" : "false"));
    if (!use) return;
    Log(logging::Trace, "LoadClass<Shader>");
    LoadClass(typeid(rendering::Shader), true);
}

}  // namespace core
