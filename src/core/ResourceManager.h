#pragma once

#include <typeinfo>

#include "script/Attributes.h"
#include "script/Reflected.h"
#include "util/Singleton.h"

namespace core {

// Walks all mentors (util/Mentor.h) to release and rebuild what lives in the GL context, which dies with
// every change of window. In scripts "Resources".
//
// The window's owner calls DestroyAll while the old context is still there, and LoadAll(false) once the new
// one is. No exception leaves: mentors catch those of their factories.
class ResourceManager : public script::Reflected, public util::Singleton<ResourceManager> {
  public:
    ResourceManager();

    void DestroyAll();
    // All mentors of one class, which are unloaded before when `reload`.
    void LoadClass(const std::type_info& type, bool reload);
    // Textures first: fonts and shader handles can depend on them.
    void LoadAll(bool reload);

    // A view on rendering::Context's switch. Default false. Switched on, shaders are compiled anew; switched
    // off, nothing is unloaded, since those who draw ask the switch.
    const script::AttribGetSetPtr<bool> m_shaders;

  private:
    void OnShadersChange();
};

}  // namespace core
