#include "drawing/Colour.h"
#include "drawing/Compose.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace Drawing;

std::string errorOf(const std::string& text) {
    try {
        parseColour(text);
    } catch (const ColourError& error) {
        return error.what();
    }
    return "no error";
}

TEST(Colour, IsReadFromEachOfItsForms) {
    const struct {
        const char* text;
        Colour expected;
    } rows[] = {
        {"#ff0000", 0xFFFF0000},
        {"#FF8001", 0xFFFF8001},
        {"#ff000000", 0xFF000000},
        {"#80800040", 0x80800040},
        {"#00000000", 0},
        {"rgb(1,0,0)", 0xFFFF0000},
        {"RGB( 0.5 , 1 , .25 )", 0xFF80FF40},
        {"rgb(1,0,0,0.5)", 0x80800000},
        {"rgb(1,1,1,0)", 0},
        {"rgb(1e-400,0,0)", 0xFF000000},
        {"hsv(0,1,1)", 0xFFFF0000},
        {"hsv(1,1,1)", 0xFFFF0000},
        {"hsv(0.333333333,1,1)", 0xFF00FF00},
        {"hsv(0.5,1,1)", 0xFF00FFFF},
        {"hsv(0.666666667,1,0.5)", 0xFF000080},
        {"hsv(0.1,0,0.2)", 0xFF333333},
        {"hsv(0.0833333333,1,1,0.5)", 0x80804000},
        {"aqua", 0xFF00FFFF},
        {"black", 0xFF000000},
        {"blue", 0xFF0000FF},
        {"fuchsia", 0xFFFF00FF},
        {"gray", 0xFF808080},
        {"green", 0xFF008000},
        {"lime", 0xFF00FF00},
        {"maroon", 0xFF800000},
        {"navy", 0xFF000080},
        {"olive", 0xFF808000},
        {"purple", 0xFF800080},
        {"red", 0xFFFF0000},
        {"silver", 0xFFC0C0C0},
        {"teal", 0xFF008080},
        {"white", 0xFFFFFFFF},
        {"YELLOW", 0xFFFFFF00},
        {"None", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        Colour colour = 1;
        ASSERT_NO_THROW(colour = parseColour(row.text)) << errorOf(row.text);
        EXPECT_EQ(colour, row.expected) << std::hex << colour;
    }
}

TEST(Colour, SaysWhatIsWrong) {
    const struct {
        const char* text;
        const char* error;
    } rows[] = {
        {"#80ff0000", "Invalid pre-multiplied alpha color: 80ff0000"},
        {"#00000001", "Invalid pre-multiplied alpha color: 00000001"},
        {"#fff", "Invalid color: #fff"},
        {"#", "Invalid color: #"},
        {"#ff00000", "Invalid color: #ff00000"},
        {"#ff0000000", "Invalid color: #ff0000000"},
        {"#gg0000", "Invalid color: #gg0000"},
        {"#-10000", "Invalid color: #-10000"},
        {"#0xff00", "Invalid color: #0xff00"},
        {"rgb(1,1)", "Too few list elements (got 2, expected at least 3)"},
        {"rgb(0,0,0,1,1)", "Too many list elements (got 5, expected at most 4)"},
        {"hsv(0,0,x)", "Invalid number: x"},
        {"rgb(,0,0)", "Invalid number: "},
        {"rgb(0,0,1e999)", "Number overflow"},
        {"rgb(0,0,+-1)", "Invalid number: +-1"},
        {"rgb(nan,0,0)", "Invalid number: nan"},
        {"rgb(1,0,1.5)", "rgb value number 3 out of range [0..1]: 1.5"},
        {"hsv(-0.1,0,0)", "hsv value number 1 out of range [0..1]: -0.1"},
        {"hsv(0,0,0,2)", "hsv value number 4 out of range [0..1]: 2"},
        {"rgb(0,0,0", "Invalid color name: rgb(0,0,0"},
        {"rgb)", "Invalid color name: rgb)"},
        {"cmyk(0,0,0,0)", "Invalid color name: cmyk(0,0,0,0)"},
        {"orange", "Invalid color name: orange"},
        {"Redd", "Invalid color name: Redd"},
        {"", "Invalid color name: "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(errorOf(row.text), row.error) << row.text;
    }
}

// The arithmetic on two channels at once against the plain one.
TEST(Colour, ScalesEachChannelWithRounding) {
    for (unsigned value = 0; value < 256; ++value) {
        for (unsigned factor = 0; factor < 256; ++factor) {
            const unsigned expected = (2 * value * factor + 255) / 510;
            ASSERT_EQ(multiply255(value, factor), expected) << value << " * " << factor;
            const Pixel pixel = pixelOf(255, value, 255 - value, value);
            const unsigned other = multiply255(255 - value, factor);
            ASSERT_EQ(scaled(pixel, factor), pixelOf(factor, expected, other, expected));
        }
    }
}

TEST(Colour, StraightPixelsComeBackAsTheyWere) {
    Surface surface(4, 1);
    const Pixel pixels[] = {0xFF102030, 0x80402010, 0x00000000, 0x01010001};
    for (int x = 0; x < 4; ++x) {
        surface.view().at(x, 0) = pixels[x];
    }
    const auto rgba = straightRGBA(static_cast<const Surface&>(surface).view());
    EXPECT_EQ(rgba[4], 128); // 0x40 of 0x80
    EXPECT_EQ(rgba[7], 0x80);
    Surface back = surfaceFromRGBA(rgba.data(), 4, 1);
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(back.view().at(x, 0), pixels[x]) << x;
    }
}

TEST(Surface, IsBoundedBeforeItIsAllocated) {
    EXPECT_NO_THROW(Surface(32767, 1));
    EXPECT_NO_THROW(Surface(8192, 8192));
    EXPECT_TRUE(Surface(0, 10).isEmpty());
    const struct {
        int width, height;
        const char* error;
    } rows[] = {
        {8193, 8192, "Image too large: 8193 x 8192 pixels"},
        {32767, 32767, "Image too large: 32767 x 32767 pixels"},
        {1 << 18, 1, "Image too large: 262144 x 1 pixels"},
        {-1, 1, "Image too large: -1 x 1 pixels"},
    };
    for (const auto& row : rows) {
        try {
            Surface surface(row.width, row.height);
            ADD_FAILURE() << row.error;
        } catch (const SurfaceError& error) {
            EXPECT_STREQ(error.what(), row.error);
        }
    }
}

TEST(Surface, ViewsAreCutToWhatIsThere) {
    Surface surface(10, 8);
    const SurfaceView part = surface.view().part({-5, 6, 100, 100});
    EXPECT_EQ(part.width, 10);
    EXPECT_EQ(part.height, 2);
    EXPECT_EQ(&part.at(0, 0), &surface.view().at(0, 6));
    EXPECT_TRUE(surface.view().part({10, 0, 2147483647, 5}).isEmpty());
    compose(surface.view(), ConstSurfaceView(part), -2147483647, 7); // all of it outside
}

} // namespace
