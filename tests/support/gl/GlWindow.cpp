#include "support/gl/GlWindow.h"

#include <SDL.h>

#include <algorithm>
#include <cstdlib>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"

namespace test {

namespace {

bool OpenWindow() {
    SDL_GL_SetAttribute(SDL_GL_RED_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_ALPHA_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 0);  // as in the program's window
    SDL_GL_SetAttribute(SDL_GL_STENCIL_SIZE, 0);
    if (SDL_SetVideoMode(GlTest::SIZE, GlTest::SIZE, 0, SDL_OPENGL) == nullptr) return false;
    rendering::Context::InitExtensions();
    rendering::Context::SetViewport(GlTest::SIZE, GlTest::SIZE);
    return true;
}

bool HasDisplay() {
    static const bool s_opened = SDL_Init(SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE) == 0 && OpenWindow();
    return s_opened;
}

int Difference(const rendering::RGBA32& a, const rendering::RGBA32& b) {
    return std::max({std::abs(a.x - b.x), std::abs(a.y - b.y), std::abs(a.z - b.z), std::abs(a.w - b.w)});
}

void ResetState() {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_BLEND);
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, 0);
    glLineWidth(1);
    glPointSize(1);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    rendering::Renderer::Instance().SetColor({1, 1, 1, 1});
}

}  // namespace

void GlTest::SetUp() {
    if (!HasDisplay()) GTEST_SKIP() << "No display with OpenGL: pixel tests are left out";
    ResetState();
}

void GlTest::Recreate() {
    ASSERT_TRUE(OpenWindow());
    ResetState();
}

void GlTest::UsePixelUnits() {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, SIZE, 0, SIZE, -1, 1);
    glMatrixMode(GL_MODELVIEW);
}

rendering::ImageRGBA32Ptr GlTest::ReadFrame() {
    const rendering::ImageRGBA32Ptr frame = new rendering::ImageRGBA32(SIZE, SIZE);
    rendering::Context::ReadPixels(SIZE, SIZE, GL_RGBA, frame->GetData().data());
    return frame;
}

int GlTest::GreatestDifference(const rendering::ImageRGBA32& a, const rendering::ImageRGBA32& b) {
    int greatest = 0;
    for (size_t i = 0; i < a.GetData().size(); ++i) {
        greatest = std::max(greatest, Difference(a.GetData()[i], b.GetData()[i]));
    }
    return greatest;
}

int GlTest::CountDifferences(const rendering::ImageRGBA32& a, const rendering::ImageRGBA32& b,
                             int tolerance) {
    int count = 0;
    for (size_t i = 0; i < a.GetData().size(); ++i) {
        if (Difference(a.GetData()[i], b.GetData()[i]) > tolerance) ++count;
    }
    return count;
}

}  // namespace test
