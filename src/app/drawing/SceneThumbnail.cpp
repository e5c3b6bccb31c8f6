#include "app/drawing/SceneThumbnail.h"

#include <algorithm>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Image.h"
#include "rendering/PngFile.h"
#include "util/FileSystem.h"
#include "util/Guarded.h"

namespace app {
namespace {

using rendering::ImageRGBA32;
using rendering::ImageRGBA32Ptr;

constexpr size_t CHANNELS = 3;

// The mean of the pixels of a box.
rendering::RGBA32 Average(const ImageRGBA32& frame, math::Vec2i min, math::Vec2i max) {
    unsigned int sum[CHANNELS] = {}, count = 0;
    for (int y = min.y; y < max.y; ++y) {
        for (int x = min.x; x < max.x; ++x, ++count) {
            const rendering::RGBA32& pixel = frame(x, y);
            sum[0] += pixel.x;
            sum[1] += pixel.y;
            sum[2] += pixel.z;
        }
    }
    const auto mean = [&](size_t i) { return static_cast<unsigned char>(sum[i] / std::max(count, 1u)); };
    return {mean(0), mean(1), mean(2), 255};
}

// The largest part in the middle that has the picture's proportions, made small.
ImageRGBA32Ptr Shrink(const ImageRGBA32& frame) {
    constexpr int W = SceneThumbnail::WIDTH, H = SceneThumbnail::HEIGHT;
    const int frameW = static_cast<int>(frame.GetWidth()), frameH = static_cast<int>(frame.GetHeight());
    const int partW = std::min(frameW, frameH * W / H), partH = std::min(frameH, frameW * H / W);
    const math::Vec2i corner((frameW - partW) / 2, (frameH - partH) / 2);
    const ImageRGBA32Ptr small = new ImageRGBA32(W, H);
    for (int y = 0; y < H; ++y) {
        for (int x = 0; x < W; ++x) {
            const math::Vec2i min(corner.x + x * partW / W, corner.y + y * partH / H);
            const math::Vec2i max(corner.x + (x + 1) * partW / W, corner.y + (y + 1) * partH / H);
            (*small)(x, y) = Average(frame, min, max);
        }
    }
    return small;
}

}  // namespace

String SceneThumbnail::GetPath(const String& scenePath) {
    const size_t dot = scenePath.find_last_of("./\\");
    const bool hasEnding = dot != String::npos && scenePath[dot] == '.';
    return (hasEnding ? scenePath.substr(0, dot) : scenePath) + ".png";
}

bool SceneThumbnail::IsThumbnail(const String& path) {
    return rendering::IsPngOfSize(path, WIDTH, HEIGHT);
}

void SceneThumbnail::Take() {
    if (m_wanted.empty() || !rendering::Context::Exists()) return;
    const String path = m_wanted;
    m_wanted.clear();
    if (util::FileSystem::Instance().Exists(path) && !IsThumbnail(path)) {
        return Log(logging::Info, "No picture of the scene: \"" + path + "\" is the user's own");
    }
    util::Guarded(
        [&] {
            const math::Vec2i size = rendering::Context::GetSize();
            const ImageRGBA32Ptr frame = new ImageRGBA32(size.x, size.y);
            rendering::Context::ReadPixels(size.x, size.y, GL_RGBA, frame->GetData().data());
            rendering::WritePng(*Shrink(*frame), path);
        },
        "No picture of the scene: ");
}

}  // namespace app
