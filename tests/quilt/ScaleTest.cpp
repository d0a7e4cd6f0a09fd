#include "quilt/Scale.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace {

using Quilt::Scale;

TEST(Scale, RoundsDownToPixelsAndUpToUnits) {
    constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
    const struct {
        Scale scale;
        std::int32_t units;
        std::int32_t pixels;
        std::int32_t back;
    } cases[] = {
        {{1, 1}, 470, 470, 470},
        {{5, 4}, 470, 587, 470},
        {{3, 4}, 470, 352, 470},
        {{1, 2}, 7, 3, 6},
        {{7, 4}, -3, -6, -3},
        {{5, 4}, -1, -2, -1},
        {{1, 2}, -7, -4, -8},
        {{4, 2}, 320, 640, 320},
        {{3, 1}, kMost, kMost, 715827883},
        {{kMost, kMost}, 12, 12, 12},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.scale.toPixels(c.units), c.pixels) << c.scale.text() << " of " << c.units;
        EXPECT_EQ(c.scale.toUnits(c.pixels), c.back) << c.scale.text() << " of " << c.pixels;
    }
}

TEST(Scale, IsReadFromFractionsAlone) {
    EXPECT_EQ(Scale::fromText("6/4"), Scale(3, 2));
    EXPECT_EQ(Scale::fromText("2").text(), "2/1");
    for (const char* const text :
         {"", "0/1", "1/0", "-1/2", "1/-2", "5/4x", " 1/1", "1.5", "1/", "/2", "99999999999"}) {
        try {
            const Scale scale = Scale::fromText(text);
            FAIL() << text << " was read as " << scale.text();
        } catch (const std::invalid_argument& error) {
            EXPECT_EQ(std::string(error.what()), "Invalid scale: " + std::string(text));
        }
    }
}

} // namespace
