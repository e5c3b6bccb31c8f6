#pragma once

#include <benchmark/benchmark.h>

#include "util/String.h"

// The window that the rows of drawing share.
namespace bench {

constexpr int WIDTH = 1024, HEIGHT = 768;  // pixels
constexpr int FRAMES = 50;                 // measured of each row

// Whether there is a window; the row is skipped with the reason where there is none.
bool NeedWindow(benchmark::State& state);

void Clear();  // the frame
// An empty world at rest, one metre high and wide for every so many pixels.
void ClearWorld(float pixelsPerMetre);

// The pictures, shaders and scenes are found in the source tree for a scope.
class ScopedFolder {
  public:
    ScopedFolder();
    ~ScopedFolder();
    ScopedFolder(const ScopedFolder&) = delete;
    ScopedFolder& operator=(const ScopedFolder&) = delete;

  private:
    String m_kept;
};

}  // namespace bench
