#include "gui/Border.h"

#include <gtest/gtest.h>

#include "Fixtures.h"
#include "gui/LookAndFeel.h"
#include "support/FailureOf.h"
#include "util/Exception.h"

namespace {

using gui::Border;

TEST(Border, IsAsThickAsItsTiles) {
    const Border border("window");
    EXPECT_EQ(border.GetTop(), 26);
    EXPECT_EQ(border.GetLeft(), 6);
    EXPECT_EQ(border.GetRight(), 6);
    EXPECT_EQ(border.GetBottom(), 6);

    const Border empty;
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_EQ(empty.GetTop() + empty.GetLeft() + empty.GetRight() + empty.GetBottom(), 0);
}

TEST(Border, RefusesTilesThatDoNotFit) {
    const struct {
        const char* tile;
        int width, height;
    } cases[] = {{"l", 7, 8},   {"l", 6, 9},   {"r", 5, 8},   {"t", 8, 25}, {"t", 9, 26}, {"b", 8, 7},
                 {"lt", 7, 26}, {"lt", 6, 25}, {"rt", 5, 26}, {"lb", 6, 5}, {"rb", 7, 6}, {"body", 8, 9}};
    int number = 0;
    for (const auto& c : cases) {
        const String skin = "bad" + std::to_string(number++);
        test::WriteSkin(skin, 6, 26);
        test::WritePicture(test::TexturePath("gui/vexa/" + skin + "/" + c.tile + ".tga"),
                           c.width * test::DENSITY, c.height * test::DENSITY);
        EXPECT_EQ(test::FailureOf<BadDataException>([&] { Border{skin}; }), "Bad sizes on border") << c.tile;
    }
    EXPECT_EQ(Border("no such skin").GetTop(), 0);  // tiles of no size fit each other
}

}  // namespace
