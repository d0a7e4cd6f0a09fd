// What the instructions do, seen in the pixels.
#include "Drawn.h"

#include <gtest/gtest.h>

namespace {

using Drawing::Pixel;
using OVSTest::drawn;
using OVSTest::Drawn;

constexpr Pixel kRed = 0xFFFF0000;
constexpr Pixel kBlue = 0xFF0000FF;
constexpr Pixel kBlack = 0xFF000000;

struct Row {
    const char* body; // in bounds 0,0,20,20
    int x, y;
    Pixel expected;
};

template <std::size_t count>
void expectPixels(const Row (&rows)[count]) {
    for (const Row& row : rows) {
        Drawn picture = drawn(std::string("format ovs-1 requires:ZEKT-1\nbounds 0,0,20,20\n") + row.body);
        ASSERT_EQ(picture.error, "") << row.body;
        EXPECT_EQ(picture.at(row.x, row.y), row.expected)
            << row.body << " at " << row.x << ',' << row.y << ": " << std::hex << picture.at(row.x, row.y);
    }
}

TEST(Document, DrawsShapesWithFillAndPen) {
    expectPixels({
        {"rect 2,2,4,4", 5, 5, kBlack}, // black is the first fill, and there is no pen
        {"rect 2,2,4,4", 6, 6, 0},
        {"RECT 2,2,4,4", 5, 5, kBlack},
        {"fill red; rect 2,2,{2+2},4", 2, 2, kRed},
        {"fill none; pen blue width:2; rect 5,5,10,10", 10, 5, kBlue},
        {"fill none; pen blue width:2; rect 5,5,10,10", 10, 10, 0},
        {"rect 0,0,20,20 rounded:10", 0, 0, 0},
        {"rect 0,0,20,20 rounded:10,0", 0, 0, kBlack},
        {"ellipse 10,10,8,2", 3, 10, kBlack},
        {"ellipse 10,10,8,2", 10, 7, 0},
        {"ellipse 10,10,8", 10, 3, kBlack},
        {"star 10,10,2,9,4", 10, 5, kBlack}, // the first point is up
        {"star 10,10,2,9,4", 16, 10, 0},
        {"star 10,10,2,9,4 rotation:90", 14, 10, kBlack},
        {"star 10,10,10000,9", 10, 2, kBlack},
        {"path svg:[M0 0H20V20H0ZM5 5H15V15H5Z]", 10, 10, kBlack},
        {"fill red rule:EVEN-ODD; path svg:[M0 0H20V20H0ZM5 5H15V15H5Z]", 10, 10, 0},
        {"p=M; for i from:0 to:1 [p=$p {$i*20} 0]; path svg:[$p 20 20 0 20]", 19, 19, kBlack},
        {"wipe red; wipe #80000080", 3, 3, 0x80000080}, // in its place, not over it
        {"wipe red; wipe none", 3, 3, 0},
        {"fill red opacity:0.5; rect 0,0,9,9", 3, 3, 0x80800000},
        {"fill [red opacity:0.5]; rect 0,0,9,9", 3, 3, 0x80800000},
        {"fill pattern:[bounds 0,0,2,1; rect 0,0,1,1] transform:[scale 10]; rect 0,0,20,20", 9, 9, kBlack}, // sharp
        {"fill pattern:[bounds 0,0,2,1; rect 0,0,1,1] transform:[scale 10]; rect 0,0,20,20", 10, 9, 0},
        {"r=1; fill [ RGB($r, {1 - $r}, 0) ]; rect 0,0,9,9", 3, 3, kRed},
        {"fill blue; wipe gradient:[linear 0,0,0,0 from:blue to:RED]", 3, 3, kRed},
        {"fill gradient:[radial 10,10,5 stops:0,red,1,blue]; rect 0,0,20,20", 0, 0, kBlue},
        {"fill [gradient:[linear 0,0,1,0 stops:0,red,0.5,red,0.5,blue] relative:yes]; rect 10,0,10,9", 14, 4, kRed},
        {"fill gradient:[linear 0,0,1,0 stops:0,red,0.5,red,0.5,blue] transform:[scale 20]; rect 0,0,20,20", 11, 4,
         kBlue},
        {"fill pattern:[bounds 0,0,4,4; fill blue; rect 0,0,2,4]; rect 0,0,20,20", 9, 9, kBlue},
        {"fill pattern:[bounds 0,0,4,4; fill blue; rect 0,0,2,4]; rect 0,0,20,20", 10, 9, 0},
        {"fill pattern:[bounds 0,0,2,1; fill blue; rect 0,0,1,1] relative:yes transform:[scale 0.5,1]; rect 4,4,8,8", 5,
         6, kBlue},
    });
}

TEST(Document, KeepsAndRestoresTheState) {
    expectPixels({
        {"offset 5,5; scale 2; rect 0,0,5,5", 14, 14, kBlack}, // the scale is within the offset
        {"scale 2; offset 5,5; rect 0,0,5,5", 9, 9, 0},
        {"scale 1,2; rect 0,0,4,4", 3, 7, kBlack},
        {"rotate 90 anchor:10,10; rect 10,0,2,10", 19, 11, kBlack}, // clockwise
        {"rotate 90; rect 0,-10,5,10", 9, 4, kBlack},
        {"shear 1,0; rect 0,0,3,10", 10, 8, kBlack},
        {"matrix 1,0,0,1,10,0; rect 0,0,1,1", 10, 0, kBlack},
        {"matrix 0,2,-2,0,20,0; rect 0,0,5,2", 17, 8, kBlack},
        {"scale 2 anchor:10,10; rect 10,10,1,1", 11, 11, kBlack},
        {"offset 10,0; reset; rect 0,0,1,1", 0, 0, kBlack},
        {"offset 10,0; context [offset 5,5; reset; rect 0,0,1,1]", 10, 0, kBlack},
        {"fill red; context [fill blue; offset 5,5; pen blue width:9]; rect 0,0,9,9", 0, 0, kRed},
        {"fill red; context [fill blue; rect 0,0,9,9]", 0, 0, kBlue},
        {"pen blue width:8; pen red; fill none; path svg:[M0 10H20]", 3, 7, 0}, // a pen is set as a whole
        {"options aa-gamma:0.0001; rect 0,0,0.5,1", 0, 0, kBlack},
        {"options aa-gamma:99.9999; rect 0,0,0.5,1", 0, 0, 0},
        {"options curve-quality:0.0001; ellipse 0,0,20", 13, 13, 0}, // hardly a curve
        {"options pattern-resolution:0.25; fill pattern:[bounds 0,0,4,4; fill blue; rect 0,0,4,2]; rect 0,0,8,8", 3, 1,
         0x80000080}, // of a single pixel
    });
}

TEST(Document, MasksLimitTheirContext) {
    expectPixels({
        {"mask [rect 0,0,10,20]; fill red; rect 0,0,20,20", 5, 5, kRed},
        {"mask [rect 0,0,10,20]; fill red; rect 0,0,20,20", 15, 5, 0},
        {"mask [rect 0,0,10,20] inverted:yes; fill red; rect 0,0,20,20", 15, 5, kRed},
        {"mask [rect 0,0,10,20] inverted:yes; fill red; rect 0,0,20,20", 5, 5, 0},
        {"context [mask [rect 0,0,10,20]]; rect 0,0,20,20", 15, 5, kBlack},
        {"mask [rect 0,0,10,20]; mask [rect 0,0,20,10]; rect 0,0,20,20", 5, 15, 0}, // both
        {"mask [rect 0,0,10,20]; mask; rect 0,0,20,20", 15, 5, kBlack},
        {"mask [rect 0,0,10,20]; context [mask; rect 0,0,20,20]", 15, 5, 0}, // what the context began with
        {"mask inverted:yes; rect 0,0,20,20", 5, 5, 0},
        {"mask []; rect 0,0,20,20", 5, 5, 0},
        {"mask [fill rgb(1,1,1,0.5); rect 0,0,20,20]; wipe red", 5, 5, 0x80800000},
        {"offset 10,0; mask [rect 0,0,5,5]; rect -10,0,20,20", 12, 2, kBlack},
    });
}

TEST(Document, WritesTextAlongItsPosition) {
    // A letter is a square of half the size, standing on the line.
    expectPixels({
        {"font Block size:10; text [ab] at:0,10", 4, 6, kBlack},
        {"font Block size:10; text [ab] at:0,10", 6, 6, 0},
        {"font Block size:10; text [ab] at:0,10", 12, 6, kBlack},
        {"font Block size:10; text [a] at:0,10; text [b]", 12, 6, kBlack},
        {"font Block size:10; text [ab] at:10,10 anchor:center", 1, 6, kBlack},
        {"font Block size:10; text [a] at:20,10 anchor:right; text [a] anchor:right", 1, 6, kBlack},
        {"font Block size:10 tracking:3; text [ab] at:0,10", 14, 6, kBlack},
        {"font Block size:10 color:red; fill blue; text [a] at:0,10", 2, 7, kRed},
        {"font Block size:10 color:[gradient:[linear 0,0,1,0 stops:0,red,0.5,red,0.5,blue] relative:yes]; text [ab] "
         "at:0,10",
         12, 7, kBlue}, // over all of the text
        {"font Block size:10 outline:[blue width:4]; text [a] at:4,14", 3, 12, kBlue},
        {"font Block size:10 outline:[blue width:4]; text [a] at:4,14", 5, 12, kBlack}, // the fill is on top
        {"font Block size:5 transform:[scale 2,1]; text [ab] at:0,10", 13, 8, kBlack},
        {"context [font Block size:10; text [a] at:9,9]; font Block size:10; text [b] at:0,10", 2, 7, kBlack},
        {"define font Own []; font Own size:10; text [a] at:0,10", 2, 7, kBlack},
    });
    const struct {
        const char* body;
        const char* caret;
    } carets[] = {
        {"text [abc] at:1,0 caret:x", "31"},
        {"text [abc] at:1,0 anchor:center caret:x", "16"},
        {"text [abc] at:41,0 anchor:right caret:x", "11"},
        {"text [a]; text [b] caret:x", "20"},
        {"text [\xC3\xA9] caret:x", "10"}, // one character of two bytes
    };
    for (const auto& row : carets) {
        const Drawn picture = drawn(std::string("bounds 0,0,9,9; font Block size:10; ") + row.body + "; trace $x");
        EXPECT_EQ(picture.trace, std::vector<std::string>{row.caret}) << row.body << picture.error;
    }
    EXPECT_EQ(drawn("bounds 0,0,9,9; font Block; text [a?b?]").trace, std::vector<std::string>{"Missing glyph"});
}

TEST(Document, PlacesDefinedImages) {
    const std::string define = "define image i [bounds -2,-2,4,8; fill red; rect -2,-2,4,4; fill blue; "
                               "rect -2,2,4,4]; offset 10,10; ";
    const struct {
        const char* image;
        int x, y;
        Pixel expected;
    } rows[] = {
        {"image i", 8, 8, kRed}, // in its own coordinates
        {"image i", 7, 8, 0},
        {"image i", 11, 15, kBlue},
        {"image i align:left,top", 10, 10, kRed},
        {"image i align:left,top", 9, 10, 0},
        {"image i align:Bottom,RIGHT", 9, 9, kBlue},
        {"image i align:center,middle", 8, 6, kRed},
        {"image i align:left,top width:8", 16, 15, kRed}, // twice as tall, too
        {"image i align:left,top width:8 height:4", 17, 13, kBlue},
        {"image i align:left,top clip:-2,2,4,4", 10, 10, kBlue},
        {"image i clip:0,0,2,2", 8, 10, 0},
        {"image i opacity:0.5", 9, 9, 0x80800000},
        {"image i transform:[offset 5,0; scale 2]", 18, 8, kRed},
    };
    for (const auto& row : rows) {
        Drawn picture = drawn("bounds 0,0,20,20; " + define + row.image);
        ASSERT_EQ(picture.error, "") << row.image;
        EXPECT_EQ(picture.at(row.x, row.y), row.expected) << row.image;
    }
    // Of a drawing of its own: neither state nor transform comes in.
    Drawn fresh = drawn("bounds 0,0,9,9; fill red; scale 9; define image i [bounds 0,0,2,2; rect 0,0,1,1]; reset; image i");
    EXPECT_EQ(fresh.at(0, 0), kBlack);
    EXPECT_EQ(fresh.at(1, 1), 0U);
}

TEST(Document, IsAsLargeAsBoundsTimesScale) {
    const struct {
        double scale;
        int width, height;
    } rows[] = {{1, 31, 7}, {2, 62, 14}, {1.5, 47, 11}, {0.01, 1, 1}};
    for (const auto& row : rows) {
        const Drawn picture = drawn("bounds 0,0,31,7; wipe red", row.scale);
        EXPECT_EQ(picture.pixels.width(), row.width);
        EXPECT_EQ(picture.pixels.height(), row.height);
    }
    Drawn picture = drawn("bounds 0,0,10,10; define image i [bounds 0,0,4,4; rect 0,0,4,4] resolution:3; image i", 2);
    EXPECT_EQ(picture.at(7, 7), kBlack);
    EXPECT_EQ(picture.at(8, 8), 0U);
}

TEST(Document, ReadsTheVariablesItIsGiven) {
    EXPECT_EQ(drawn("bounds 0,0,1,1; if [{$feedbacks.sampleRate > 0}] [trace $feedbacks.sampleRate]").trace,
              std::vector<std::string>{"44100"});
}

TEST(Document, DrawsOverAViewAllOrNothing) {
    Drawing::Surface view(10, 10);
    OVS::Document document("if [{def(\"bad\")}] [wipe red; nonsense]; if [{def(\"sized\")}] [bounds 0,0,5,5]\nrect 1,1,2,2");
    document.draw(view.view(), {.scale = 2.0});
    EXPECT_EQ(view.view().at(5, 5), kBlack);
    EXPECT_EQ(view.view().at(6, 6), 0U);
    document.draw(view.view(), {.scale = 4.0, .variables = {{"sized", "1"}}}); // once more, and elsewhere
    EXPECT_EQ(view.view().at(9, 9), kBlack);
    EXPECT_THROW(document.draw(view.view(), {.variables = {{"bad", "1"}}}), ZEKT::SyntaxException);
    EXPECT_EQ(view.view().at(0, 0), 0U);
    document.draw({}, {}); // a view without pixels
}

TEST(Document, CanBeStopped) {
    int left = 1000;
    OVS::Environment environment;
    environment.progress = [&left] { return --left > 0; };
    OVS::Document document("bounds 0,0,9,9\nrepeat 1000000 [context [fill pattern:[bounds 0,0,1,1; rect 0,0,1,1]]]");
    try {
        document.renderImage(environment);
        ADD_FAILURE();
    } catch (const ZEKT::AbortedException& error) {
        EXPECT_STREQ(error.what(), "Aborted");
    }
    EXPECT_EQ(left, 0);
    EXPECT_EQ(drawn("bounds 0,0,9,9; b=[context \\$b]; context [context [stop]]").error,
              "ZEKT::AbortedException: Encountered STOP instruction in: stop");
}

} // namespace
