#include "TestEditor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace TestEditor;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Loading, BuildsTreesWithBoundsInPixels) {
    const struct {
        const char* scale;
        const char* views;
        const char* tree;
    } cases[] = {
        {"1/1", "{ type: group }", "group [0 0 470 320]"},
        {"1/1", "{ type: group, bounds: { w-35, 1, 34, 16 } }", "group [435 1 34 16]"},
        {"1/1", "{ type: group, bounds: { , 5 } }", "group [0 5 470 320]"},
        {"1/1", "{ type: group, bounds: { (w-100)/2, h/2, $/2, $-b+r } }", "group [185 160 235 470]"},
        {"5/4", "{ type: group, bounds: { 3, 3, 470, 3 } }", "group [3 3 587 3]"},
        {"1/2",
         "{ type: group, bounds: { 10, 10, 101, 51 }, views: { { type: raster, image: a, bounds: { w-9, h-9, "
         "9, 9 } } } }",
         "group [5 5 50 25] { raster [46 21 4 4] }"},
        {"1/1",
         "{ type: cluster, bounds: { 0, 0, 100, 50 }, columns: 2, gap: 4, views: { { type: group }, { type: "
         "group }, { type: group } } }",
         "cluster [0 0 100 50] { cell [0 0 48 23] { group [0 0 48 23] }, cell [52 0 48 23] { group [0 0 48 "
         "23] }, "
         "cell [0 27 48 23] { group [0 0 48 23] } }"},
        {"1/1",
         "{ type: paged, variable: page, bounds: { 1, 2, 30, 40 }, pages: { b: {}, a: { { type: group, "
         "bounds: { w-1 } } } } }",
         "paged [1 2 30 40] { page [0 0 30 40] { group [29 0 30 40] }, page [0 0 30 40] }"},
    };
    for (const auto& c : cases) {
        Rig rig;
        rig.editor.variables().set("uiScale", c.scale);
        rig.open("bounds: { 0, 0, 470, 320 }, views: { " + std::string(c.views) + " }");
        EXPECT_EQ(treeText(*rig.editor.root()), c.tree);
        EXPECT_THAT(rig.desktop.messages, IsEmpty());
    }
}

TEST(Loading, TellsTheHostTheSizeInPixels) {
    Rig rig;
    rig.editor.variables().set("uiScale", "5/4");
    rig.open("bounds: { 5, 5, 470, 320 }");
    EXPECT_EQ(rig.host.width, 587);
    EXPECT_EQ(rig.host.height, 400);
    rig.open("bounds: { 0, 0, $, $ - 20 }");
    EXPECT_EQ(rig.editor.document()->bounds(), (Rectangle{0, 0, 470, 300}));
}

// The whole texts of the boxes that come up.
TEST(Loading, SaysWhatIsWrong) {
    const struct {
        const char* text;
        const char* shown;
    } cases[] = {
        {"@nothing", "Tombola error: \"nothing\" is undefined (main line 1, column 9)"},
        {"bounds: { 0, 0, -1, 5 }", "View bounds has negative width and/or height"},
        {"bounds: { 0, 0, x, 5 }", "Undefined symbol: x"},
        {"bounds: { 0, 0, 5 5, 5 }", "Unexpected text: 5"},
        {"bounds: { 0, 0, 5/0, 5 }", "Division by zero"},
        {"bounds: { 1, 2, 3, 4, 5 }", "Bounds have more than four components (main line 1, column 23)"},
        {"title: x", "Unknown property of document: title (main line 1, column 8)"},
        {"views: { { bounds: {} } }", "Missing view type (main line 1, column 10)"},
        {"views: {\n  { type: knobb } }", "Unknown view type: knobb (main line 2, column 11)"},
        {"views: { { type: group, colour: red } }",
         "Unknown property of group: colour (main line 1, column 33)"},
        {"views: { { type: group, bounds: { 0, 0, -1 } } }", "View bounds has negative width and/or height"},
        {"views: { { type: knob, variable: a, steps: many } }",
         "Invalid steps of knob: many (expected a whole number) (main line 1, column 44)"},
        {"views: { { type: knob, variable: a, fine: 2 } }",
         "Invalid fine of knob: 2 (expected from 0.000 to 1) (main line 1, column 43)"},
        {"views: { { type: knob, variable: a, range: { 1, 1 } } }",
         "Invalid range of knob: { 1, 1 } (expected two different numbers) (main line 1, column 44)"},
        {"views: { { type: raster, image: a, align: top left } }", nullptr},
        {"views: { { type: raster, image: a, align: top bottom } }",
         "Invalid align of raster: top bottom (expected left, center or right, top, middle or bottom) (main "
         "line 1, "
         "column 43)"},
        {"views: { { type: slider, variable: a, orientation: sideways } }",
         "Invalid orientation of slider: sideways (expected vertical or horizontal) (main line 1, column "
         "52)"},
        {"views: { { type: group, visible: perhaps } }",
         "Invalid visible of group: perhaps (expected true or false) (main line 1, column 34)"},
        {"views: { { type: group, visible: \"[var]shown[/var]\" } }",
         "Error processing meta text:\n\nUnknown variable: shown."},
        {"views: { { type: button, colors: { pushed: red } } }",
         "Invalid colors of button: { pushed: red } (expected normal, hovered, pressed, checked or disabled) "
         "(main "
         "line 1, column 34)"},
        {"autoexecs: { { params: {} } }", "Missing property of autoexec: action (main line 1, column 14)"},
        {"autoexecs: { { action: note, delay: -1 } }",
         "Invalid delay of autoexec: -1 (expected seconds) (main line 1, column 37)"},
        {"autoexecs: { { action: note, when: now } }",
         "Unknown property of autoexec: when (main line 1, column 36)"},
        {"transitions: { default: { speed: 3 } }",
         "Unknown property of transition: speed (main line 1, column 34)"},
        {"transitions: { fade: {} }", "Unknown transition: fade (main line 1, column 22)"},
        {"transitions: { open: { opacity: 2 } }",
         "Invalid opacity of transition: 2 (main line 1, column 33)"},
        {"views: { { type: group }", "Invalid Stackbrace in main at line 1 column 25 (offset 24)"},
        {"autoexecs: { { action: jump } }", "Error performing action jump:\n\nUnrecognized action: jump."},
        {"autoexecs: { { action: set, params: { variable: locked, value: 1 } } }",
         "Error performing action set:\n\nVariable is read-only: locked."},
    };
    for (const auto& c : cases) {
        Rig rig;
        rig.provider.values["locked"] = "";
        rig.open(c.text);
        if (c.shown == nullptr) {
            EXPECT_THAT(rig.desktop.messages, IsEmpty()) << c.text;
            continue;
        }
        const std::string shown = c.shown;
        EXPECT_THAT(
            rig.desktop.messages,
            ElementsAre(shown.starts_with("Error ") ? shown : "Error parsing quilt:\n\n" + shown + "."))
            << c.text;
    }
}

TEST(Loading, LeavesOutBrokenViewsAndKeepsTheRest) {
    Rig rig;
    rig.open("views: { { type: group, views: { { type: nothing }, { type: knob, variable: v } } }, { type: "
             "oops } }, "
             "autoexecs: { { action: note } }");
    EXPECT_EQ(treeText(*rig.editor.root()), "group [0 0 470 320] { knob [0 0 470 320] }");
    EXPECT_EQ(rig.desktop.messages.size(), 2U);
    EXPECT_THAT(rig.actions.performed, ElementsAre("note"));
}

TEST(Loading, SurvivesDocumentsThatCannotBeHad) {
    Rig rig;
    rig.editor.open("missing", {0, 0, 470, 320});
    EXPECT_THAT(rig.desktop.messages, ElementsAre("Error obtaining quilt:\n\nNo such document: missing."));
    EXPECT_EQ(rig.host.width, 470);
    rig.editor.open("", {0, 0, 10, 20});
    EXPECT_EQ(rig.desktop.messages.size(), 1U);
    EXPECT_EQ(treeText(*rig.editor.root()), "");
}

// A view that lacks what it shows shows nothing.
TEST(Loading, BuildsViewsOfNothingButTheirType) {
    Rig rig;
    rig.documents.texts["main"] = "views: {";
    for (const char* const type : {"raster", "rectangle", "gradient", "vector", "caption", "button", "slider",
                                   "cluster", "animation", "bubble", "marker", "transformed", "console",
                                   "dragArea", "group", "paged", "knob", "click", "quilt"}) {
        rig.documents.texts["main"] += std::string("{ type: ") + type + " }";
    }
    rig.documents.texts["main"] += "}";
    rig.editor.open("main", {0, 0, 50, 40});
    rig.editor.prepare();
    Drawing::Surface surface(50, 40);
    rig.editor.draw(surface.view(), {0, 0, 50, 40});
    rig.editor.tick();
    EXPECT_EQ(rig.editor.root()->children().size(), 19U);
    EXPECT_THAT(rig.desktop.messages, IsEmpty());
}

TEST(Loading, PutsMacrosAndIncludesBeforeAll) {
    Rig rig;
    rig.documents.texts["parts"] = "@begin dot(x)\n{ type: group, bounds: { @x, 0, 1, 1 } }\n@end\n";
    rig.open("@include parts\nviews: {\n @dot(7)\n @dot(9)\n { }\n}");
    EXPECT_EQ(treeText(*rig.editor.root()), "group [7 0 1 1], group [9 0 1 1]");
    EXPECT_THAT(rig.desktop.messages,
                ElementsAre("Error parsing quilt:\n\nMissing view type (main line 5, column 2)."));
    rig.documents.texts["main"] = "views: { @include none";
    rig.editor.requestReload();
    rig.editor.tick();
    EXPECT_EQ(
        rig.desktop.messages.back(),
        "Error parsing quilt:\n\nTombola error: Could not load include file: none (main line 1, column 23).");
    EXPECT_EQ(treeText(*rig.editor.root()), "group [7 0 1 1], group [9 0 1 1]")
        << "a failed reload changes nothing";
}

TEST(Loading, ResolvesTransitions) {
    const struct {
        const char* text;
        Strings raw; // default, open, close, swapIn, swapOut
    } cases[] = {
        {"", {"", "", "", "", ""}},
        {"transitions: { default: { time: 1 } }",
         {"{ time: 1 }", "{ time: 1 }", "{ time: 1 }", "{ time: 1 }", "{ time: 1 }"}},
        {"transitions: { default: { time: 1 }, open: { time: 2 }, swapOut: { time: 3 } }",
         {"{ time: 1 }", "{ time: 2 }", "{ time: 1 }", "{ time: 2 }", "{ time: 3 }"}},
        {"transitions: { close: { scale: 50 } }", {"", "", "{ scale: 50 }", "", "{ scale: 50 }"}},
    };
    for (const auto& c : cases) {
        Rig rig;
        rig.open(c.text);
        const auto& t = rig.editor.document()->transitions();
        EXPECT_EQ((Strings{t.defaultRaw, t.open.raw, t.close.raw, t.swapIn.raw, t.swapOut.raw}), c.raw);
        EXPECT_EQ(t.swapIn.direction, Quilt::Transition::Direction::incoming);
        EXPECT_EQ(t.swapOut.direction, Quilt::Transition::Direction::outgoing);
    }
}

TEST(Loading, MovesBetweenTheEndsOfATransition) {
    using std::chrono::milliseconds;
    Rig rig;
    rig.open(
        "transitions: { default: { restart: true, time: 0.3, scale: 75, scaleCurve: 0.9, opacity: 0 } }");
    const auto& in = rig.editor.document()->transitions().open;
    const auto& out = rig.editor.document()->transitions().close;
    for (const auto& [far, near, middle] :
         {std::tuple(in.look(milliseconds(0)), in.look(milliseconds(300)), in.look(milliseconds(150))),
          std::tuple(out.look(milliseconds(400)), out.look(milliseconds(0)), out.look(milliseconds(150)))}) {
        EXPECT_DOUBLE_EQ(far.scale, 0.75);
        EXPECT_DOUBLE_EQ(far.opacity, 0);
        EXPECT_DOUBLE_EQ(near.scale, 1);
        EXPECT_DOUBLE_EQ(near.opacity, 1);
        EXPECT_DOUBLE_EQ(middle.opacity, 0.5);
        EXPECT_GT(middle.scale, 0.9) << "a curve near 1 stays near the full size for long";
    }
}

TEST(Loading, TranslatesByTheDocumentBeforeTheProvider) {
    Rig rig;
    rig.open("translations: { \"zoom:1/1\": \"100%\", Gruss: hello }");
    EXPECT_EQ(rig.editor.document()->translate("Gruss"), "hello");
    rig.editor.variables().set("z", "1/1");
    EXPECT_EQ(rig.editor.document()->expandMetaText("[xlate]zoom:[var]z[/var][/xlate]"), "100%");
    rig.open("");
    EXPECT_EQ(rig.editor.document()->translate("Gruss"), "greeting");
    EXPECT_EQ(rig.editor.document()->translate("other"), "other");
}

TEST(Loading, KeepsMacrosForLater) {
    Rig rig;
    rig.open("@define name = Melon\n@begin twice(x)\n@x@x\n@end\nviews: {}");
    EXPECT_EQ(rig.editor.document()->expandMacros("@twice(@name)"), "MelonMelon\n");
    EXPECT_EQ(rig.editor.document()->expandMacros("@nobody"), "");
    rig.editor.tick();
    ASSERT_EQ(rig.desktop.messages.size(), 1U);
    EXPECT_THAT(rig.desktop.messages[0],
                testing::StartsWith("Error processing Tombola macros in var expansion:\n\n"));
}

// A document that shows itself is nested as deeply as levels go.
TEST(Loading, NestsUpToTheLimit) {
    Rig rig;
    rig.editor.variables().set("layout", "main");
    rig.open("views: { { type: quilt, layoutVariable: layout } }");
    int levels = 0;
    for (const Quilt::View* view = rig.editor.root(); !view->children().empty();
         view = view->children()[0].get()) {
        levels += view->type() == "quilt" ? 1 : 0;
    }
    EXPECT_EQ(levels, 20);
    EXPECT_THAT(rig.desktop.messages,
                ElementsAre("Error obtaining quilt:\n\nQuilt recursion limit exceeded."));
}

TEST(Loading, BoundsDocumentsThatDouble) {
    Rig rig;
    rig.editor.variables().set("layout", "main");
    rig.open("views: { { type: quilt, layoutVariable: layout }, { type: quilt, layoutVariable: layout } }");
    EXPECT_EQ(rig.editor.documentCount(), Quilt::Document::kMostDocuments);
    ASSERT_FALSE(rig.desktop.messages.empty());
    EXPECT_EQ(rig.desktop.messages[0], "Error obtaining quilt:\n\nQuilt recursion limit exceeded.");
}

TEST(Loading, NestsViewsUpToTheLimit) {
    const auto nested = [](int depth) {
        std::string text = "{ type: group }";
        for (int i = 1; i < depth; ++i) {
            text = "{ type: group, views: { " + text + " } }";
        }
        return "views: { " + text + " }";
    };
    Rig rig;
    rig.open(nested(100));
    EXPECT_THAT(rig.desktop.messages, IsEmpty());
    rig.open(nested(101));
    ASSERT_EQ(rig.desktop.messages.size(), 1U);
    EXPECT_THAT(rig.desktop.messages[0],
                testing::StartsWith("Error parsing quilt:\n\nView nesting limit exceeded (main line 1"));
}

TEST(Loading, ScalesNestedDocumentsUnlessTheyWantNone) {
    Rig rig;
    rig.documents.texts["zoom"] = "bounds: { 5, 5, w/2, 60 }";
    rig.editor.variables().set("uiScale", "2/1");
    rig.editor.variables().set("a", "zoom");
    rig.open("views: { { type: quilt, layoutVariable: a, bounds: { 10, 10, 100, 100 } }, "
             "{ type: quilt, layoutVariable: a, bounds: { 10, 10, 100, 100 }, uiScaling: false } }");
    EXPECT_EQ(treeText(*rig.editor.root()), "quilt [20 20 200 200] { document [10 10 100 120] }, "
                                            "quilt [20 20 200 200] { document [5 5 100 60] }");
    rig.editor.variables().set("a", "");
    rig.editor.tick();
    EXPECT_EQ(treeText(*rig.editor.root()), "quilt [20 20 200 200], quilt [20 20 200 200]");
}

} // namespace
