#pragma once

#include "math/Vector.h"

namespace core {

// What a window is made of.
struct WindowParams {
    bool m_resizable = true;  // by the user
    bool m_frame = true;      // of the window manager
    bool m_fullscreen = false;
    math::Vec2i m_resolution{1024, 768};  // pixels, of the content
    int m_depth = 32;                     // bits of the colour buffer
    // Bits; nothing tests depths, and without either buffer a driver that draws in software fills a plain
    // rectangle in a third of the time.
    int m_zDepth = 0;
    int m_stencilDepth = 0;
    bool m_vSync = false;  // swaps wait for the display
    int m_antiAlias = 1;   // samples per pixel; 1 means none
};

// Pixels; a resolution is held between the two.
constexpr int MIN_WINDOW_SIZE = 1;
constexpr int MAX_WINDOW_SIZE = 4096;

}  // namespace core
