#include "rendering/Texture.h"

#include <gtest/gtest.h>

#include <vector>

#include "Pictures.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/TextureManager.h"
#include "support/FailureOf.h"
#include "support/LogCapture.h"
#include "support/gl/GlWindow.h"
#include "util/FileSystem.h"

namespace {

using rendering::ImageFloat;
using rendering::ImageRGBA32;
using rendering::ImageRGBA32Ptr;
using rendering::RGBA32;
using rendering::Texture;
using rendering::TextureManager;
using rendering::TextureMentorPtr;
using rendering::TexturePtr;
using ImageType = Texture::ImageType;

ImageRGBA32Ptr MakeGradient(uint32_t side) {
    const ImageRGBA32Ptr image = new ImageRGBA32(side, side);
    for (uint32_t y = 0; y < side; ++y) {
        for (uint32_t x = 0; x < side; ++x) {
            (*image)(x, y) = {static_cast<unsigned char>(x * 7), static_cast<unsigned char>(y * 5), 3, 200};
        }
    }
    return image;
}

GLint GetParameter(const Texture& texture, GLenum name) {
    GLint value = 0;
    texture.Bind();
    glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
    texture.Unbind();
    return value;
}

class TextureTest : public test::GlTest {};

TEST_F(TextureTest, MinifyingFilterFollowsTheFlags) {
    // mipmaps, linearMin, linearMip
    const struct {
        uint32_t mipmaps, linearMin, linearMip;
        GLint filter;
    } cases[] = {
        {1, 1, 1, GL_LINEAR_MIPMAP_LINEAR},
        {1, 0, 1, GL_NEAREST_MIPMAP_LINEAR},
        {1, 1, 0, GL_LINEAR_MIPMAP_NEAREST},
        {1, 0, 0, GL_NEAREST_MIPMAP_NEAREST},
        {0, 1, 1, GL_LINEAR},
        {0, 0, 1, GL_NEAREST},
    };
    for (const auto& c : cases) {
        const TexturePtr texture =
            new Texture(MakeGradient(8), {GL_RGBA, c.mipmaps, 0, 0, c.linearMin, 1, c.linearMip});
        EXPECT_EQ(GetParameter(*texture, GL_TEXTURE_MIN_FILTER), c.filter);
    }
}

TEST_F(TextureTest, WrappingAndMagnificationFollowTheFlags) {
    for (uint32_t clampS = 0; clampS < 2; ++clampS) {
        const uint32_t clampT = 1 - clampS;
        const TexturePtr texture = new Texture(MakeGradient(8), {GL_RGBA, 0, clampS, clampT, 0, clampS, 0});
        const GLint clamped = rendering::HasBorderClamp() ? GL_CLAMP_TO_BORDER : GL_CLAMP_TO_EDGE;
        EXPECT_EQ(GetParameter(*texture, GL_TEXTURE_WRAP_S), clampS ? clamped : GL_REPEAT);
        EXPECT_EQ(GetParameter(*texture, GL_TEXTURE_WRAP_T), clampT ? clamped : GL_REPEAT);
        EXPECT_EQ(GetParameter(*texture, GL_TEXTURE_MAG_FILTER), clampS ? GL_LINEAR : GL_NEAREST);
    }
}

TEST_F(TextureTest, MemoryUsageCountsBytesAndMipmaps) {
    const struct {
        GLint format;
        uint32_t mipmaps;
        unsigned int bytes;  // of 256 by 256
    } cases[] = {
        {GL_RGBA, 1, 349525},
        {GL_RGBA, 0, 262144},
        {GL_ALPHA, 0, 65536},
        {GL_RGB, 0, 196608},
        {GL_LUMINANCE8_ALPHA8, 0, 131072},
        {GL_RGB32F_ARB, 0, 524288},
        {GL_RGBA32F_ARB, 0, 1048576},
    };
    for (const auto& c : cases) {
        const TexturePtr texture = new Texture(MakeGradient(256), {c.format, c.mipmaps, 0, 0, 1, 1, 1});
        EXPECT_EQ(texture->MemoryUsage(), c.bytes) << c.format;
    }
    const TexturePtr unknown = new Texture(MakeGradient(8), {GL_R3_G3_B2, 0, 0, 0, 1, 1, 1});
    const String failure = test::FailureOf<BadDataException>([&] { unknown->MemoryUsage(); });
    EXPECT_NE(failure.find("!\"Bad image format\""), String::npos);
}

TEST_F(TextureTest, PixelsComeBackAsTheyWent) {
    const ImageRGBA32Ptr image = MakeGradient(32);
    const TexturePtr texture = new Texture(image, ImageType::Icon());
    EXPECT_EQ(GreatestDifference(*texture->Read(), *image), 0);
}

TEST_F(TextureTest, FloatsArriveAsAlphaWithAnOpaqueBorder) {
    const rendering::ImageFloatPtr image = new ImageFloat(4, 4, 0.0f);
    (*image)(2, 1) = 1.0f;
    const TexturePtr texture = new Texture(image, ImageType::Distance());
    EXPECT_EQ((*texture->Read())(2, 1).w, 255);
    EXPECT_EQ((*texture->Read())(1, 2).w, 0);
    GLfloat border[4];
    texture->Bind();
    glGetTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, border);
    texture->Unbind();
    EXPECT_EQ(border[3], 1.0f);
}

TEST_F(TextureTest, BindingAnotherUnitReturnsToTheFirst) {
    const TexturePtr texture = new Texture(MakeGradient(8), ImageType::Icon());
    texture->Bind(1);
    GLint unit = 0, first = -1;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &first);
    EXPECT_EQ(unit, GL_TEXTURE0);
    EXPECT_EQ(first, 0);
    texture->Unbind(1);
}

TEST_F(TextureTest, LoadingInTheMiddleOfDrawingKeepsTheBinding) {
    const TexturePtr bound = new Texture(MakeGradient(8), ImageType::Icon());
    const rendering::ScopedTexture scope(bound);
    const TexturePtr other = new Texture(MakeGradient(8), ImageType::Icon());
    other->Read();
    GLint id = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &id);
    EXPECT_EQ(static_cast<unsigned int>(id), bound->GetId());
}

TEST_F(TextureTest, CopyTakesTheFrameAtMostAsFarAsItGoes) {
    glClearColor(0.2f, 0.4f, 0.6f, 0.8f);
    glClear(GL_COLOR_BUFFER_BIT);
    const TexturePtr texture = new Texture(MakeGradient(2 * SIZE), ImageType::Frame());
    texture->Copy(2048, 2048);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    const ImageRGBA32Ptr pixels = texture->Read();
    EXPECT_EQ((*pixels)(SIZE - 1, SIZE - 1), RGBA32(51, 102, 153, 204));
    EXPECT_EQ((*pixels)(SIZE, 0), RGBA32(static_cast<unsigned char>(SIZE * 7), 0, 3, 200));
}

TEST_F(TextureTest, NoGlNamesLeak) {
    const auto countNames = [](unsigned int last) {
        int count = 0;
        for (unsigned int id = 1; id <= last; ++id) count += glIsTexture(id);
        return count;
    };
    TexturePtr texture = new Texture(MakeGradient(8), ImageType::Icon());
    const int names = countNames(texture->GetId());
    const unsigned int total = rendering::GraphicsResource::GetTotalMemoryUsage();
    for (int i = 0; i < 1000; ++i) {
        texture = nullptr;
        texture = new Texture(MakeGradient(8), ImageType::Icon());
    }
    EXPECT_EQ(countNames(texture->GetId()), names);
    EXPECT_EQ(rendering::GraphicsResource::GetTotalMemoryUsage(), total);
}

TEST_F(TextureTest, ATextureOfALostContextLeavesTheNewOneAlone) {
    TexturePtr old = new Texture(MakeGradient(8), ImageType::Icon());
    Recreate();
    const TexturePtr fresh = new Texture(MakeGradient(8), ImageType::Icon());
    old = nullptr;
    EXPECT_TRUE(glIsTexture(fresh->GetId()));
}

// ---- the manager --------------------------------------------------------------------------------------

class TextureManagerTest : public test::GlTest {};

TEST_F(TextureManagerTest, ExtensionsAreTriedInOrderUnlessOneIsGiven) {
    test::WriteFile("Data/Textures/Foo.jpg", test::MakePng(2, 2));
    test::WriteFile("Data/Textures/Foo.bmp", test::MakeBmp(3, 3));
    test::WriteFile("Data/Textures/Foo.tga", test::MakeTga(4, 4, 32, false));
    const auto widthOf = [](const String& name) {
        const TexturePtr texture = rendering::TextureFromPath(name, ImageType::Icon());
        return texture ? static_cast<int>(texture->GetWidth()) : -1;
    };
    EXPECT_EQ(widthOf("Foo"), 4);
    EXPECT_EQ(widthOf("Foo.bmp"), 3);
    test::WriteFile("Data/Textures/Foo.png", test::MakePng(5, 5));
    EXPECT_EQ(widthOf("Foo"), 5);
    EXPECT_EQ(widthOf(util::FileSystem::Instance().GetTexturesDir() + "Foo"), 5);
    const test::LogCapture log;
    EXPECT_EQ(widthOf("Foo.gif"), -1);
    EXPECT_TRUE(log.Contains("Failed to load image Foo.gif"));
}

TEST_F(TextureManagerTest, TheSameNameAndTypeGiveTheSameMentor) {
    TextureManager& manager = TextureManager::Instance();
    EXPECT_EQ(manager.Get("Same", ImageType::Icon()), manager.Get("Same", ImageType::Icon()));
    EXPECT_NE(manager.Get("Same", ImageType::Icon()), manager.Get("Same", ImageType::Tile()));
    EXPECT_NE(manager.Get("Same", ImageType::Icon()), manager.Get("Other", ImageType::Icon()));
}

TEST_F(TextureManagerTest, AMissingPictureShowsTheDefaultAndTriesOnce) {
    test::WriteFile("Data/Textures/blank.png", test::MakePng(6, 6));
    const TextureMentorPtr blank = TextureManager::Instance().Get("blank");
    blank->Load();
    const TextureMentorPtr missing = TextureManager::Instance().Get("Missing");
    const test::LogCapture log;
    for (int i = 0; i < 3; ++i) EXPECT_EQ(missing->Get(), blank->Get());
    EXPECT_EQ(missing->Get()->GetWidth(), 6u);
    EXPECT_EQ(log.Count("Failed to load image Missing"), 1);
}

TEST_F(TextureManagerTest, ReloadingReadsTheFileAgain) {
    test::WriteFile("Data/Textures/Edited.png", test::MakePng(3, 3));
    const TextureMentorPtr mentor = TextureManager::Instance().Get("Edited");
    EXPECT_EQ(mentor->Get()->GetWidth(), 3u);
    test::WriteFile("Data/Textures/Edited.png", test::MakePng(7, 7));
    mentor->Unload();
    EXPECT_EQ(mentor->Get()->GetWidth(), 7u);
}

TEST_F(TextureManagerTest, ReadingAheadChangesNoPictureAndNoFailure) {
    TextureManager& manager = TextureManager::Instance();
    test::WriteFile("Data/Textures/Ahead.png", test::MakePng(12, 5));
    const TextureMentorPtr there = manager.Get("Ahead", ImageType::Icon());
    const TextureMentorPtr missing = manager.Get("NotAhead", ImageType::Icon());
    const auto levels = [&there] {
        std::vector<std::vector<RGBA32>> result;
        for (rendering::AbstractImagePtr level = there->Get()->GetImage(); level; level = level->MakeHalf()) {
            const auto* const pixels = static_cast<const RGBA32*>(level->GetPixels());
            result.emplace_back(pixels, pixels + level->GetWidth() * level->GetHeight());
        }
        return result;
    };
    const auto plain = levels();
    EXPECT_EQ(plain.size(), 4u);
    there->Unload();
    manager.ReadAhead();
    const test::LogCapture log;
    EXPECT_EQ(levels(), plain);
    missing->Get();
    EXPECT_EQ(log.Count("Failed to load image NotAhead"), 1);
    EXPECT_TRUE(log.Contains("NotAhead\". SDL_image error: \"Couldn't read"));
}

}  // namespace
