#include "rendering/Image.h"
#include "support/SourceDir.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Pictures.h"
#include "rendering/ImageFile.h"
#include "rendering/PngFile.h"
#include "support/FailureOf.h"
#include "support/LogCapture.h"
#include "util/Exception.h"
#include "util/FileSystem.h"
#include "util/Random.h"

namespace {

using rendering::ImageRGBA32;
using rendering::ImageRGBA32Ptr;
using rendering::RGBA32;
using test::FileBytes;
using test::WriteFile;

// What loading says; empty when it succeeds.
String LoadFailure(const String& path) {
    return test::FailureOf<FileReadException>([&] { ImageRGBA32::LoadFile(path); });
}

// ---- halves -------------------------------------------------------------------------------------------

float Mean(const rendering::ImageFloat& image) {
    float sum = 0;
    for (const float value : image.GetData()) sum += value;
    return sum / static_cast<float>(image.GetData().size());
}

// Whatever the sides are, no texel counts more than another, and a picture does not get brighter or darker.
TEST(HalfImageTest, KeepsTheMeanDownToASingleTexel) {
    util::Random random;
    for (const math::Vec2i size : {math::Vec2i(8, 4), {7, 5}, {96, 96}, {1, 9}, {13, 2}}) {
        const util::SharedPtr<rendering::ImageFloat> whole = new rendering::ImageFloat(size.x, size.y);
        for (float& value : whole->GetData()) value = random.GetUniform(0, 1);
        rendering::AbstractImagePtr half = whole->MakeHalf();
        EXPECT_EQ(half->GetWidth(), std::max(whole->GetWidth() / 2, 1u));
        EXPECT_EQ(half->GetHeight(), std::max(whole->GetHeight() / 2, 1u));
        for (; half; half = half->MakeHalf()) {
            EXPECT_NEAR(Mean(dynamic_cast<const rendering::ImageFloat&>(*half)), Mean(*whole), 1e-5f);
            const bool isTexel = half->GetWidth() * half->GetHeight() == 1;
            EXPECT_EQ(!half->MakeHalf(), isTexel);
        }
    }
}

TEST(HalfImageTest, EachTexelIsTheRoundedMeanOfWhatItCovers) {
    const ImageRGBA32Ptr whole = new ImageRGBA32(4, 2);
    whole->GetData() = {{0, 10, 0, 255}, {0, 20, 0, 255}, {4, 0, 0, 0}, {4, 0, 9, 0},
                        {0, 30, 0, 255}, {2, 40, 0, 255}, {4, 0, 0, 0}, {4, 0, 9, 1}};
    const rendering::AbstractImagePtr half = whole->MakeHalf();
    const auto& texels = dynamic_cast<const ImageRGBA32&>(*half);
    EXPECT_EQ(texels(0, 0), RGBA32(1, 25, 0, 255));
    EXPECT_EQ(texels(1, 0), RGBA32(4, 0, 5, 0));
}

// ---- bare pixels --------------------------------------------------------------------------------------

TEST(RawImageTest, FormatsFillTheirChannelsAndTurnTheRowsOver) {
    // Two by two, upper row first; read back from the lower left corner.
    const struct {
        ImageRGBA32::RAWFormat format;
        FileBytes bytes;
        RGBA32 lowerLeft, upperRight;
        bool hasAlpha;
    } cases[] = {
        {ImageRGBA32::RAW_ALPHA, {1, 2, 3, 4}, {255, 255, 255, 3}, {255, 255, 255, 2}, true},
        {ImageRGBA32::RAW_RGB,
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12},
         {7, 8, 9, 255},
         {4, 5, 6, 255},
         false},
        {ImageRGBA32::RAW_RGBA,
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16},
         {9, 10, 11, 12},
         {5, 6, 7, 8},
         true},
    };
    for (const auto& c : cases) {
        const String path = WriteFile("picture.raw", c.bytes);
        const ImageRGBA32Ptr image = ImageRGBA32::LoadRAW(path, c.format);
        ASSERT_EQ(image->GetWidth(), 2u);
        EXPECT_EQ((*image)(0, 0), c.lowerLeft) << c.format;
        EXPECT_EQ((*image)(1, 1), c.upperRight) << c.format;
        EXPECT_EQ(image->HasAlpha(), c.hasAlpha);
    }
}

TEST(RawImageTest, TheSideComesFromTheSizeOfTheFile) {
    EXPECT_EQ(ImageRGBA32::LoadFile(WriteFile("ten.raw", FileBytes(100, 7)))->GetHeight(), 10u);
    const String odd = WriteFile("odd.raw", FileBytes(99, 7));
    EXPECT_EQ(LoadFailure(odd), "The RAW-file \"" + odd + "\" contained a non quadratic picture.");
    const String empty = WriteFile("empty.raw", {});
    EXPECT_EQ(LoadFailure(empty), "The RAW-file \"" + empty + "\" contained a non quadratic picture.");
    EXPECT_THROW(ImageRGBA32::LoadRAW(WriteFile("13.raw", FileBytes(13, 7)), ImageRGBA32::RAW_RGB),
                 FileReadException);
}

TEST(RawImageTest, AShortFileIsCorruptAndALongOneIsReadAsFarAsNeeded) {
    const String path = WriteFile("sized.raw", FileBytes(20, 9));
    EXPECT_EQ(ImageRGBA32::LoadRAW(path, ImageRGBA32::RAW_RGBA, 5, 1)->GetWidth(), 5u);
    EXPECT_EQ(ImageRGBA32::LoadRAW(path, ImageRGBA32::RAW_RGB, 3, 2)->GetHeight(), 2u);
    EXPECT_EQ(
        test::FailureOf<FileReadException>([&] { ImageRGBA32::LoadRAW(path, ImageRGBA32::RAW_RGBA, 3, 2); }),
        "File \"" + path + "\" is corrupt.");
    EXPECT_THROW(ImageRGBA32::LoadRAW("nowhere.raw", ImageRGBA32::RAW_RGB, 1, 1), std::runtime_error);
}

// ---- picture files ------------------------------------------------------------------------------------

TEST(ImageFileTest, AllFormatsGiveTheSamePictureLowestRowFirst) {
    const struct {
        const char* name;
        FileBytes bytes;
        bool keepsAlpha;
    } cases[] = {
        {"picture.png", test::MakePng(5, 3), true},
        {"disguised.jpg", test::MakePng(5, 3), true},  // known by its magic, not by its name
        {"picture24.tga", test::MakeTga(5, 3, 24, false), false},
        {"picture32.tga", test::MakeTga(5, 3, 32, false), true},
        {"packed24.tga", test::MakeTga(5, 3, 24, true), false},
        {"packed32.tga", test::MakeTga(5, 3, 32, true), true},
        {"picture.bmp", test::MakeBmp(5, 3), false},
    };
    for (const auto& c : cases) {
        const ImageRGBA32Ptr image = ImageRGBA32::LoadFile(WriteFile(c.name, c.bytes));
        ASSERT_EQ(image->GetWidth(), 5u);
        ASSERT_EQ(image->GetHeight(), 3u);
        const unsigned char alpha = c.keepsAlpha ? 251 : 255;
        EXPECT_EQ((*image)(4, 0), RGBA32(40, 20, 200, alpha)) << c.name;
        EXPECT_EQ((*image)(0, 2), RGBA32(0, 0, 200, 255)) << c.name;
        EXPECT_EQ(image->HasAlpha(), c.keepsAlpha) << c.name;
    }
}

TEST(ImageFileTest, APngIsKnownByItsSides) {
    const String path = WriteFile("sides.png", test::MakePng(5, 3));
    EXPECT_TRUE(rendering::IsPngOfSize(path, 5, 3));
    EXPECT_FALSE(rendering::IsPngOfSize(path, 3, 5));
    EXPECT_FALSE(rendering::IsPngOfSize(WriteFile("sides.bmp", test::MakeBmp(5, 3)), 5, 3));
    EXPECT_FALSE(rendering::IsPngOfSize(WriteFile("none.png", {}), 5, 3));
    EXPECT_FALSE(rendering::IsPngOfSize("nowhere.png", 5, 3));
}

TEST(ImageFileTest, ImplausibleFilesAreRefusedBeforeTheLibrarySeesThem) {
    FileBytes badChecksum = test::MakePng(4, 4);
    badChecksum[50] ^= 1;
    FileBytes cut = test::MakePng(4, 4);
    cut.resize(60);
    FileBytes huge = test::MakeBmp(4, 4);
    huge[19] = 0x40;  // 16388 wide
    FileBytes shortTga = test::MakeTga(9, 9, 32, false);
    shortTga.pop_back();
    FileBytes overfull = test::MakeTga(2, 1, 24, true);
    overfull[18] = 0x85;  // a run of 6 in a picture of 2
    const struct {
        const char* name;
        FileBytes bytes;
        const char* reason;
    } cases[] = {
        {"empty.png", {}, "Not a PNG, BMP, JPEG or TGA picture"},
        {"text.png", {'h', 'e', 'l', 'l', 'o'}, "Not a PNG, BMP, JPEG or TGA picture"},
        {"checksum.png", badChecksum, "PNG with a damaged chunk"},
        {"cut.png", cut, "PNG ends within a chunk"},
        {"huge.bmp", huge, "Sides of 16388 by 4 pixels, not from 1 to 8192"},
        {"zero.tga", test::MakeTga(0, 3, 24, false), "Sides of 0 by 3 pixels, not from 1 to 8192"},
        {"short.tga", shortTga, "TGA ends within its pixels"},
        {"overfull.tga", overfull, "TGA with more pixels than its size"},
        {"disguised.tga", test::MakePng(4, 4), "Not a TGA of true colours or greys"},
        {"picture.jpg", {0xff, 0xd8, 0xff, 0xe0, 0, 4, 1, 2}, "JPEG without a picture"},
    };
    for (const auto& c : cases) {
        const String path = WriteFile(c.name, c.bytes);
        EXPECT_EQ(LoadFailure(path),
                  "Could not load image file \"" + path + "\". SDL_image error: \"" + c.reason + "\"");
    }
    EXPECT_NE(LoadFailure("nowhere.png"), "");
}

TEST(ImageFileTest, DamagedFilesNeverEndTheProgram) {
    const std::pair<const char*, FileBytes> originals[] = {{"damaged.png", test::MakePng(9, 9)},
                                                           {"damaged.bmp", test::MakeBmp(9, 9)},
                                                           {"damaged.tga", test::MakeTga(9, 9, 24, true)}};
    const test::LogCapture quiet;
    uint32_t state = 12345;
    const auto next = [&state](size_t limit) {
        state = state * 1664525u + 1013904223u;
        return (state >> 8) % limit;
    };
    for (int round = 0; round < 300; ++round) {
        for (const auto& original : originals) {
            FileBytes bytes = original.second;
            for (size_t i = 0; i < 1 + next(4); ++i)
                bytes[next(bytes.size())] = static_cast<unsigned char>(next(256));
            if (next(8) == 0) bytes.resize(next(bytes.size()));
            LoadFailure(WriteFile(original.first, bytes));
        }
    }
}

TEST(ImageFileTest, EveryShippedPictureLoads) {
    const util::FileSystem& files = util::FileSystem::Instance();
    const String root = test::GetSourceDir() + "/Data/Textures/";
    int count = 0;
    for (const char* const folder : {"", "background/", "file/", "gui/", "gui/vexa/", "gui/vexa/button/",
                                     "gui/vexa/window/", "popup/", "tools/"}) {
        for (const String& name : files.ListFiles(root + folder, "*")) {
            EXPECT_EQ(LoadFailure(root + folder + name), "");
            ++count;
        }
    }
    EXPECT_GT(count, 40);
}

}  // namespace
