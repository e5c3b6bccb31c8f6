#pragma once

#include <cstdint>

#include "math/Vector.h"

namespace rendering {

// What everybody in the unit must know of the one OpenGL context, and the settings that its code obeys.
//
// Life: InitExtensions after each SDL_SetVideoMode, then SetViewport, which marks that a context exists. Once
// marked it stays so: on a change of window the old context is replaced, and all GL objects have been
// released before. Until then no constructor of this unit touches GL.
class Context {
  public:
    static bool Exists() { return s_exists; }

    // Raised by InitExtensions: a GL name made in another generation died with its context.
    static uint32_t GetGeneration() { return s_generation; }

    // Loads the extensions of the context that has just been made current. Throws std::runtime_error with
    // "GLEW Error: " and the reason.
    static void InitExtensions();

    // Covers the whole window, `width` by `height` pixels, and brings GL to the state that drawing expects.
    static void SetViewport(int width, int height);
    static math::Vec2i GetSize() { return s_size; }  // pixels

    // Whether the frame buffer has alpha bits; without them the water's field cannot be summed up in it.
    static bool HasAlpha() { return s_hasAlpha; }
    static void SetHasAlpha(bool hasAlpha) { s_hasAlpha = hasAlpha; }

    // Whether textures may be drawn into where the driver can do it. Default true.
    static bool UseTargets() { return s_useTargets; }
    static void SetUseTargets(bool useTargets) { s_useTargets = useTargets; }

    // The switch for all shaders. Default false.
    static bool UseShaders() { return s_useShaders; }
    static void SetUseShaders(bool useShaders) { s_useShaders = useShaders; }

    // Units of the fixed-function pipeline; 1 without multitexturing.
    static int GetTextureUnits() { return s_textureUnits; }

    // Both read the present frame. The library may draw into a frame buffer of its own, which only the
    // functions that it hands out itself know of; the linked ones would give the picture of the last swap.
    // Of the frame into the same place of the bound texture, from the lower left.
    static void CopyTexSubImage(math::Vec2i min, math::Vec2i size);
    static void ReadPixels(int width, int height, unsigned int format,
                           void* pixels);  // bytes, packed tightly

  private:
    static void FetchReadFunctions();

    static bool s_exists;
    static uint32_t s_generation;
    static math::Vec2i s_size;
    static bool s_hasAlpha;
    static int s_textureUnits;
    static bool s_useTargets;
    static bool s_useShaders;
};

// Without a context none of these is there.
bool HasMultiTexturing();
bool HasBorderClamp();
bool HasFreeTextureSizes();  // other ones than powers of two, with mipmaps that GL makes
bool HasShaderPrograms();    // ARB vertex and fragment programs
bool HasTargets();           // textures that can be drawn into; false as well when they are switched off

}  // namespace rendering
