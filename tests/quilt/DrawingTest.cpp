// What views look like: pixels of surfaces.
#include "TestSurface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace TestEditor;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

struct Dot {
    int x;
    int y;
    std::uint32_t colour;
};

struct Case {
    const char* name;
    std::string views;
    std::vector<Dot> dots;
    const char* scale = "1/1";
};

TEST(Drawing, ShowsEachTypeWhereAndHowItsPropertiesSay) {
    const Case cases[] = {
        {"rectangle",
         "{ type: rectangle, bounds: { 10, 10, 20, 20 }, color: '#ff0000', frame: '#0000ff', frameWidth: 2 }",
         {{9, 20, kNothing},
          {10, 20, kBlue},
          {11, 20, kBlue},
          {12, 20, kRed},
          {29, 29, kBlue},
          {30, 20, kNothing}}},
        {"at double scale",
         "{ type: rectangle, bounds: { 10, 10, 20, 20 }, color: '#ff0000', frame: '#0000ff', frameWidth: 2 }",
         {{19, 40, kNothing}, {20, 40, kBlue}, {23, 40, kBlue}, {24, 40, kRed}, {59, 59, kBlue}},
         "2/1"},
        {"rounded",
         "{ type: rectangle, color: '#ff0000', rounded: 20 }",
         {{0, 0, kNothing}, {20, 20, kRed}, {39, 39, kNothing}}},
        {"gradient",
         "{ type: gradient, colors: { '#ff0000', '#ff0000', '#0000ff', '#0000ff' }, stops: { 0, 0.4, 0.6, 1 "
         "} }",
         {{0, 0, kRed}, {39, 15, kRed}, {0, 25, kBlue}, {39, 39, kBlue}}},
        {"gradient across",
         "{ type: gradient, orientation: horizontal, colors: { '#ff0000', '#ff0000', '#0000ff', '#0000ff' } "
         "}",
         {{5, 39, kRed}, {35, 0, kBlue}}},
        {"raster",
         "{ type: raster, image: " + kRedImage + ", align: 'right bottom' }",
         {{31, 39, kNothing}, {32, 32, kRed}, {39, 39, kRed}, {39, 31, kNothing}}},
        {"tiled raster",
         "{ type: raster, bounds: { 4, 4, 20, 20 }, tile: true, align: 'center middle', image: " + kRedImage +
             " }",
         {{3, 10, kNothing}, {4, 4, kRed}, {23, 23, kRed}, {24, 23, kNothing}}},
        {"raster is cut at its bounds",
         "{ type: raster, bounds: { 0, 0, 3, 3 }, image: " + kRedImage + " }",
         {{2, 2, kRed}, {3, 2, kNothing}}},
        {"vector",
         "{ type: vector, bounds: { 5, 5, 8, 8 }, image: " + kRedImage + " }",
         {{5, 5, kRed}, {12, 12, kRed}, {13, 12, kNothing}}},
        {"hidden group",
         "{ type: group, visible: false, views: { { type: rectangle, color: '#ff0000' } } }",
         {{20, 20, kNothing}}},
        {"later on top",
         "{ type: rectangle, color: '#ff0000' } { type: rectangle, bounds: { 0, 0, 20, 40 }, color: "
         "'#0000ff' }",
         {{19, 20, kBlue}, {20, 20, kRed}}},
        {"cluster",
         "{ type: cluster, columns: 2, gap: 4, views: { { type: rectangle, color: '#ff0000' } { type: "
         "rectangle, color: '#0000ff' } { type: rectangle, color: '#00ff00' } } }",
         {{17, 17, kRed}, {18, 0, kNothing}, {22, 0, kBlue}, {0, 22, kLime}, {22, 22, kNothing}}},
        {"page",
         "{ type: paged, variable: page, pages: { a: { { type: rectangle, color: '#ff0000' } } b: { { type: "
         "rectangle, color: '#0000ff' } } } }",
         {{20, 20, kRed}}},
        {"slider",
         "{ type: slider, bounds: { 0, 0, 10, 40 }, variable: v, size: 8, color: '#0000ff', handleColor: "
         "'#ff0000', background: '#00ff00' }",
         {{5, 15, kLime}, {5, 16, kRed}, {5, 23, kRed}, {5, 24, kBlue}, {5, 39, kBlue}}},
        {"slider across",
         "{ type: slider, orientation: horizontal, bounds: { 0, 0, 40, 10 }, variable: w, size: 8, "
         "handleColor: '#ff0000' }",
         {{0, 5, kRed}, {7, 5, kRed}, {8, 5, kNothing}}},
        {"slider of frames",
         "{ type: slider, bounds: { 0, 0, 8, 8 }, variable: flag, film: " + kFilm + " }",
         {{4, 4, kBlue}}},
        {"knob's arc",
         "{ type: knob, variable: v, color: '#ff0000', trackColor: '#0000ff', thickness: 6 }",
         {{3, 20, kRed}, {36, 20, kBlue}, {20, 20, kNothing}, {20, 37, kNothing}}},
        {"knob's arc from its middle",
         "{ type: knob, variable: flag, color: '#ff0000', trackColor: '#0000ff', thickness: 6, origin: 0.5 }",
         {{3, 20, kBlue}, {36, 20, kRed}}},
        {"knob's film alone",
         "{ type: knob, bounds: { 0, 0, 8, 8 }, variable: flag, film: " + kFilm + " }",
         {{0, 0, kBlue}, {7, 7, kBlue}}},
        {"knob's film between two frames",
         "{ type: knob, bounds: { 0, 0, 8, 8 }, variable: v, film: " + kFilm.substr(0, kFilm.size() - 1) +
             ", interpolate: true } }",
         {{4, 4, 0xFF7F0080}}},
        {"marker",
         "{ type: marker, variable: v, range: { 0, 2 }, size: 4, color: '#ff0000' }",
         {{20, 26, kNothing}, {20, 27, kRed}, {0, 30, kRed}, {20, 31, kNothing}}},
        {"marker across",
         "{ type: marker, orientation: horizontal, variable: flag, image: " + kRedImage + " }",
         {{31, 20, kNothing}, {32, 20, kRed}, {39, 20, kRed}, {35, 10, kNothing}}},
        {"animation",
         "{ type: animation, film: " + kFilm + ", variable: flag, align: 'right top' }",
         {{39, 0, kBlue}, {31, 0, kNothing}}},
        {"drag area",
         "{ type: dragArea, xVariable: v, yVariable: w, image: " + kRedImage + " }",
         {{15, 39, kNothing}, {16, 39, kRed}, {23, 32, kRed}, {24, 39, kNothing}, {20, 31, kNothing}}},
        {"button",
         "{ type: button, background: '#0000ff', image: " + kRedImage + " }",
         {{0, 0, kBlue}, {16, 16, kRed}, {23, 23, kRed}, {24, 23, kBlue}}},
        {"smaller",
         "{ type: transformed, scale: 50, views: { { type: rectangle, color: '#ff0000' } } }",
         {{9, 20, kNothing}, {11, 11, kRed}, {28, 28, kRed}, {30, 20, kNothing}}},
        {"fainter",
         "{ type: rectangle, color: '#0000ff' } { type: transformed, opacity: 0.5, views: { { type: "
         "rectangle, color: '#ff0000' } } }",
         {{20, 20, 0xFF80007F}}},
        {"not there",
         "{ type: transformed, opacity: 0, views: { { type: rectangle, color: '#ff0000' } } }",
         {{20, 20, kNothing}}},
    };
    for (const auto& [name, views, dots, scale] : cases) {
        SCOPED_TRACE(name);
        SurfaceRig rig(views, {}, scale);
        const auto view = rig.draw().view();
        rig.pass(0);
        EXPECT_THAT(rig.desktop.messages, IsEmpty());
        for (const auto& [x, y, colour] : dots) {
            // Blends may round either way.
            const auto near = [](std::uint32_t a, std::uint32_t b) {
                for (int shift = 0; shift < 32; shift += 8) {
                    if (std::abs(static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF)) >
                        1) {
                        return false;
                    }
                }
                return true;
            };
            EXPECT_TRUE(near(view.at(x, y), colour)) << x << "," << y << ": " << std::hex << view.at(x, y);
        }
    }
}

TEST(Drawing, TouchesNothingOutsideOfThePart) {
    SurfaceRig rig(
        "{ type: rectangle, color: '#ff0000' } { type: caption, text: 'long enough to go on', color: white }"
        "{ type: knob, variable: v } { type: raster, tile: true, image: " +
        kRedImage + " }");
    const auto whole = rig.draw().view();
    Drawing::Surface other(40, 40);
    const auto view = other.view();
    std::fill_n(view.pixels, 40 * 40, 0xFF123456U);
    rig.editor.draw(view, {7, 9, 11, 13});
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool inside = Rectangle{7, 9, 11, 13}.contains({x, y});
            ASSERT_EQ(view.at(x, y), inside ? whole.at(x, y) : 0xFF123456U) << x << "," << y;
        }
    }
    rig.editor.draw(view, {-100, -100, 90, 90}); // nothing of the surface
    rig.editor.draw({}, {0, 0, 40, 40});
}

TEST(Drawing, WritesTextWhereItIsAligned) {
    const auto inkOf = [](const std::string& properties) {
        return SurfaceRig("{ type: caption, color: white, " + properties + " }").ink();
    };
    const auto left = inkOf("text: H, align: 'left top'");
    const auto right = inkOf("text: H, align: 'right bottom'");
    EXPECT_LE(left.left, 2);
    EXPECT_LE(left.bottom(), 16);
    EXPECT_GE(right.right(), 38);
    EXPECT_GE(right.top, 24);
    EXPECT_EQ(inkOf("text: H, align: 'left top', offset: { 5, 3 }").left, left.left + 5);

    const auto cut = inkOf("text: 'HHHHHHHHHHHH HHHHHHHHH', align: 'left top'");
    EXPECT_NEAR(cut.bottom(), left.bottom(), 1); // on one line
    EXPECT_GE(cut.right(), 30);
    EXPECT_LE(cut.right(), 40);
    const auto wrapped = inkOf("text: 'HH HH HH', align: 'left top', wrap: true");
    EXPECT_GE(wrapped.height, left.height + 10);
    EXPECT_LE(inkOf("text: 'HH HH HH HH HH HH HH HH HH', align: 'left top', wrap: true").bottom(), 40);

    // The letters of one that is twice as large are, with sharp edges.
    const auto large =
        SurfaceRig("{ type: caption, color: white, text: H, align: 'left top' }", {}, "2/1").ink();
    EXPECT_NEAR(large.height, 2 * left.height, 1);
}

TEST(Drawing, FollowsItsVariablesAndAsksForWhatHasChangedAlone) {
    SurfaceRig rig("{ type: marker, bounds: { 0, 0, 10, 40 }, variable: v, size: 4, color: '#ff0000' }"
                   "{ type: paged, bounds: { 20, 0, 20, 40 }, variable: page, pages: { a: { { type: "
                   "rectangle, color: '#ff0000' } } b: { { type: rectangle, color: '#0000ff' } } } }");
    rig.draw();
    rig.host.dirty.clear();
    rig.pass(30);
    EXPECT_THAT(rig.host.dirty, IsEmpty());

    rig.provider.set("v", "1");
    rig.pass(30);
    EXPECT_THAT(rig.host.dirty, ElementsAre(Rectangle{0, 18, 10, 4}, Rectangle{0, 0, 10, 4}));
    EXPECT_EQ(rig.pixel(5, 0), kRed);

    rig.provider.set("page", "b");
    rig.pass(30);
    EXPECT_EQ(rig.pixel(30, 20), kBlue);
    EXPECT_EQ(rig.host.dirty.back(), (Rectangle{20, 0, 20, 40}));
}

TEST(Drawing, RunsLiveScriptsWhenWhatTheyReadIsAnother) {
    // The variables' names come whole, and put together.
    SurfaceRig rig("{ type: vector, live: true, interval: 0.1, image: { ovsCode: 'FORMAT OVS-2 "
                   "requires:ZEKT-1; part=text; FILL #ff0000; "
                   "RECT 0,0,{40 * $v},10; IF [{def(w) && !def(nobody)}] [ FILL #0000ff; RECT 0,20,{40 * "
                   "$v.$part},10 ]' } }");
    EXPECT_EQ(rig.pixel(19, 5), kRed);
    EXPECT_EQ(rig.pixel(20, 5), kNothing);
    EXPECT_EQ(rig.pixel(19, 25), kBlue);
    rig.pass(0);
    EXPECT_THAT(rig.desktop.messages, IsEmpty());
    rig.host.dirty.clear();

    rig.provider.set("page", "b"); // not read
    rig.pass(200);
    rig.pass(200);
    EXPECT_THAT(rig.host.dirty, IsEmpty());

    rig.provider.set("v", "0.75");
    rig.pass(200);
    EXPECT_THAT(rig.host.dirty, ElementsAre(Rectangle{0, 0, 40, 40}));
    rig.provider.set("v", "1");
    rig.pass(50); // too soon
    EXPECT_EQ(rig.pixel(29, 5), kRed);
    EXPECT_EQ(rig.pixel(30, 5), kNothing);
    rig.pass(50);
    EXPECT_EQ(rig.pixel(39, 5), kRed);
}

TEST(Drawing, ShowsFramesByTime) {
    const std::string film = "{ type: animation, interval: 0.1, film: " + kFilm;
    SurfaceRig looping(film + " }");
    SurfaceRig once(film + ", loop: false }");
    SurfaceRig still(film + ", running: '[var]w[/var]' }");
    struct {
        SurfaceRig* rig;
        std::vector<std::uint32_t> colours;
    } const cases[] = {{&looping, {kRed, kBlue, kRed, kBlue}},
                       {&once, {kRed, kBlue, kBlue, kBlue}},
                       {&still, {kRed, kRed, kRed, kRed}}};
    for (const auto& [rig, colours] : cases) {
        rig->draw();
        rig->pass(0);
        for (const auto colour : colours) {
            EXPECT_EQ(rig->pixel(4, 4), colour);
            rig->pass(100);
        }
    }
}

TEST(Drawing, MovesBetweenDocumentsByTheirTransitions) {
    SurfaceRig rig("{ type: group }");
    const std::string ends = "transitions: { default: { time: 0.1, opacity: 0 } }";
    rig.documents.texts["a"] = "views: { { type: rectangle, color: '#ff0000' } } " + ends;
    rig.documents.texts["b"] = "views: { { type: rectangle, color: '#0000ff' } } " + ends;
    rig.open("bounds: { 0, 0, 40, 40 } views: { { type: quilt, layoutVariable: page } }");
    EXPECT_EQ(rig.pixel(20, 20), kNothing);
    rig.pass(50);
    EXPECT_NEAR(rig.pixel(20, 20) >> 16 & 0xFF, 128, 2);
    rig.pass(50);
    EXPECT_EQ(rig.pixel(20, 20), kRed);
    rig.host.dirty.clear();
    rig.pass(50);
    EXPECT_THAT(rig.host.dirty, IsEmpty()); // at rest

    rig.provider.set("page", "b");
    rig.pass(0);
    EXPECT_EQ(rig.pixel(20, 20), kRed);
    rig.pass(50);
    const auto both = rig.pixel(20, 20);
    EXPECT_GT(both & 0xFF, 100U);
    EXPECT_GT(both >> 16 & 0xFF, 50U);
    rig.pass(50);
    EXPECT_EQ(rig.pixel(20, 20), kBlue);

    // Turned round on the way, the new movement begins where the old one was.
    rig.provider.set("page", "");
    rig.pass(0);
    rig.pass(20);
    EXPECT_NEAR(rig.pixel(20, 20) & 0xFF, 204, 2);
    rig.provider.set("page", "b");
    rig.pass(0);
    rig.pass(20);
    EXPECT_EQ(rig.pixel(20, 20), kBlue);
    EXPECT_THAT(rig.desktop.messages, IsEmpty());
}

TEST(Drawing, ShowsTheLastLinesOfAConsoleAndScrolls) {
    std::string lines;
    for (int i = 0; i < 20; ++i) {
        lines += std::string(i == 0 ? "HHHH" : i == 19 ? "" : "-") + (i < 19 ? "\\n" : "");
    }
    SurfaceRig rig("{ type: console, color: white, text: \"" + lines + "\" }");
    const auto end = rig.ink();
    for (int i = 0; i < 10; ++i) {
        EXPECT_TRUE(rig.wheel(20, 20, 1));
    }
    const auto beginning = rig.ink();
    EXPECT_GT(beginning.width, end.width);
    EXPECT_LT(beginning.top, 12);
}

TEST(Drawing, ReportsWhatItCannotLoadAndGoesOn) {
    SurfaceRig rig(
        "{ type: raster, image: nobody } { type: rectangle, bounds: { 0, 0, 9, 9 }, color: purplish }"
        "{ type: caption, font: { ovsfont: Nobodys }, text: a } { type: rectangle, bounds: { 20, 20, 9, 9 }, "
        "color: '#ff0000' }"
        "{ type: vector, live: true, image: { ovsCode: 'FORMAT OVS-2 requires:ZEKT-1; RECT $nobody' } }");
    EXPECT_EQ(rig.pixel(22, 22), kRed);
    rig.draw();
    rig.pass(0);
    EXPECT_THAT(rig.desktop.messages,
                ElementsAre("Error loading image:\n\nMissing image: nobody.",
                            "Error reading color:\n\nInvalid color name: purplish.",
                            "Error loading font:\n\nCould not obtain OVS font: Nobodys.",
                            "Error drawing image:\n\nVariable nobody does not exist."));
}

TEST(Drawing, TellsAtWhichStatementAScriptFailed) {
    const std::string script = "FORMAT OVS-2 requires:ZEKT-1; BOUNDS 0,0,9,9; IF yes [ RECT 0,0,$nobody,1 ]";
    const std::string statement = "in: RECT 0,0,$nobody,1";
    const struct {
        std::string view, title;
    } cases[] = {
        {"{ type: raster, image: { ovsCode: '" + script + "' } }", "Error loading image"},
        {"{ type: vector, live: true, image: { ovsCode: '" + script + "' } }", "Error drawing image"},
    };
    for (const auto& [view, title] : cases) {
        SurfaceRig rig(view);
        rig.editor.variables().set("verboseErrors", "true");
        rig.draw();
        rig.pass(0);
        EXPECT_THAT(rig.host.logged, Contains(title + ": Variable nobody does not exist, " + statement));
        EXPECT_THAT(rig.desktop.messages,
                    ElementsAre(StartsWith(title + ":\n\nVariable nobody does not exist.\n\n" + statement + "\n\n")));
    }
}

} // namespace
