// What a hand does to views: values, gestures, actions.
#include "TestSurface.h"

#include "quilt/TextField.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace TestEditor;
using Quilt::Key;
using Quilt::MouseButton;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kKnob = "{ type: knob, variable: v, default: 0.25, dragLength: 100, textVariable: v.text }";

TEST(Input, MovesValues) {
    struct Case {
        const char* name;
        std::string views;
        void (*act)(SurfaceRig&);
        const char* value;
    };
    const std::string stepped = "{ type: knob, variable: v, range: { 0, 10 }, steps: 11, dragLength: 100 }";
    const std::string slider = "{ type: slider, bounds: { 0, 0, 10, 40 }, variable: v, size: 8, jump: true }";
    const Case cases[] = {
        {"up", kKnob,
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(20, 10);
             r.release(20, 10);
         },
         "0.6"},
        {"down and out of the view", kKnob,
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(20, 60);
             r.release(20, 60);
         },
         "0.1"},
        {"to the side", kKnob,
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(35, 20);
             r.release(35, 20);
         },
         "0.5"},
        {"beyond the end and back", kKnob,
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(20, -300);
             r.move(20, -290);
             r.release(20, -290);
         },
         "0.9"},
        {"fine", kKnob,
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(20, 10, kShift);
             r.release(20, 10);
         },
         "0.51"},
        {"to the default", kKnob,
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.press(20, 20, 2);
             r.move(20, 0);
             r.release(20, 0);
         },
         "0.25"},
        {"escape", kKnob,
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(20, 0);
             EXPECT_TRUE(r.key(Key::escape));
             r.move(20, 40);
             r.release(20, 40);
         },
         "0.5"},
        {"lost", kKnob,
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(20, 0);
             r.editor.captureLost();
             r.move(20, 40);
         },
         "0.5"},
        {"wheel", kKnob, [](SurfaceRig& r) { EXPECT_TRUE(r.wheel(20, 20, 2)); }, "0.54"},
        {"fine wheel", kKnob, [](SurfaceRig& r) { r.wheel(20, 20, -1, kShift); }, "0.498"},
        {"keys", kKnob,
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.key(Key::up);
             r.key(Key::right);
             r.key(Key::down);
             r.key(Key::pageUp);
         },
         "0.72"},
        {"first", kKnob,
         [](SurfaceRig& r) {
             r.key(Key::tab);
             r.key(Key::home);
         },
         "0"},
        {"last", kKnob,
         [](SurfaceRig& r) {
             r.key(Key::tab);
             r.key(Key::end);
         },
         "1"},
        {"default by key", kKnob,
         [](SurfaceRig& r) {
             r.key(Key::tab);
             r.key(Key::del);
         },
         "0.25"},
        {"key for nobody", kKnob,
         [](SurfaceRig& r) {
             EXPECT_FALSE(r.key(Key::up));
             EXPECT_FALSE(r.type(" "));
         },
         "0.5"},
        {"in steps", stepped,
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(20, 16);
             r.move(20, 12);
             r.release(20, 12);
         },
         "1"},
        {"a step of the wheel", stepped,
         [](SurfaceRig& r) {
             r.wheel(20, 20, 1);
             r.wheel(20, 20, 1);
         },
         "3"},
        {"slider follows", slider,
         [](SurfaceRig& r) {
             r.press(5, 20);
             r.move(5, 4);
             r.release(5, 4);
         },
         "1"},
        {"slider jumps", slider,
         [](SurfaceRig& r) {
             r.press(5, 36);
             r.release(5, 36);
         },
         "0"},
        {"reversed range", "{ type: knob, variable: v, range: { 1, 0 }, dragLength: 100 }",
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(20, 10);
             r.release(20, 10);
         },
         "0.4"},
        {"hidden", "{ type: knob, visible: false, variable: v }",
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(20, 0);
             r.release(20, 0);
         },
         "0.5"},
        {"below", kKnob + "{ type: click, action: note }",
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(20, 0);
             r.release(20, 0);
         },
         "0.5"},
        {"below a picture", kKnob + "{ type: rectangle, color: red }",
         [](SurfaceRig& r) {
             r.press(20, 20);
             r.move(20, 10);
             r.release(20, 10);
         },
         "0.6"},
    };
    for (const auto& [name, views, act, value] : cases) {
        SCOPED_TRACE(name);
        SurfaceRig rig(views);
        act(rig);
        EXPECT_EQ(rig.variable("v"), value);
        rig.pass(0);
        EXPECT_THAT(rig.desktop.messages, IsEmpty());
        EXPECT_EQ(rig.provider.gestures.size() % 2, 0U);
    }
}

TEST(Input, IsOneGestureWithOneWriteAChange) {
    SurfaceRig rig("{ type: knob, variable: v, range: { 0, 4 }, steps: 5, dragLength: 40 }");
    rig.provider.set("v", "2");
    rig.pass(0);
    const auto before = rig.provider.changes;
    rig.press(20, 20);
    EXPECT_THAT(rig.provider.gestures, ElementsAre("begin v"));
    for (int y = 19; y >= 10; --y) {
        rig.move(20, y);
    }
    rig.move(20, 10);
    EXPECT_EQ(rig.provider.changes - before, 1U);
    rig.release(20, 10);
    EXPECT_THAT(rig.provider.gestures, ElementsAre("begin v", "end v"));
    EXPECT_EQ(rig.variable("v"), "3");
}

TEST(Input, EndsAGestureThatALoadInterrupts) {
    SurfaceRig rig(kKnob);
    rig.press(20, 20);
    rig.move(20, 10);
    rig.provider.values["uiScale"] = "2/1";
    rig.editor.requestReload();
    rig.pass(30);
    EXPECT_EQ(rig.host.width, 80);
    EXPECT_THAT(rig.provider.gestures, ElementsAre("begin v", "end v"));
    EXPECT_EQ(rig.variable("v"), "0.5");
    rig.move(20, 0);
    rig.release(20, 0);
    EXPECT_EQ(rig.variable("v"), "0.5");
}

TEST(Input, ReportsValuesThatAreRefused) {
    SurfaceRig rig("{ type: knob, variable: locked }");
    rig.wheel(20, 20, 1);
    rig.pass(0);
    EXPECT_THAT(rig.desktop.messages,
                ElementsAre("Error writing a variable:\n\nVariable is read-only: locked."));
    EXPECT_THAT(rig.provider.gestures, ElementsAre("begin locked", "end locked"));
}

TEST(Input, DragsTwoVariablesAtOnce) {
    SurfaceRig rig("{ type: dragArea, xVariable: v, yVariable: w, xDefault: 0.5, yDefault: 1, menuAction: "
                   "note, menuParams: menu }");
    rig.press(10, 30);
    rig.move(20, 20);
    rig.release(20, 20);
    EXPECT_EQ(rig.variable("v"), "0.75");
    EXPECT_EQ(rig.variable("w"), "0.25");
    EXPECT_THAT(rig.provider.gestures, ElementsAre("begin v", "begin w", "end v", "end w"));
    rig.press(10, 10, 2);
    rig.release(10, 10);
    EXPECT_EQ(rig.variable("v") + " " + rig.variable("w"), "0.5 1");
    rig.press(10, 10, 1, MouseButton::right);
    EXPECT_THAT(rig.actions.take(), ElementsAre("note menu"));
}

TEST(Input, CallsActions) {
    struct Case {
        const char* name;
        std::string views;
        void (*act)(SurfaceRig&);
        Strings performed;
    };
    const std::string button = "{ type: button, bounds: { 0, 0, 20, 20 }, action: note, params: "
                               "'[var]v[/var]', menuAction: note, menuParams: menu";
    const Case cases[] = {
        {"click",
         button + " }",
         [](SurfaceRig& r) {
             r.press(5, 5);
             EXPECT_THAT(r.actions.performed, IsEmpty());
             r.release(5, 5);
         },
         {"note '0.5'"}},
        {"let go elsewhere",
         button + " }",
         [](SurfaceRig& r) {
             r.press(5, 5);
             r.move(30, 5);
             r.release(30, 5);
         },
         {}},
        {"there and back",
         button + " }",
         [](SurfaceRig& r) {
             r.press(5, 5);
             r.move(30, 5);
             r.move(6, 5);
             r.release(6, 5);
         },
         {"note '0.5'"}},
        {"pressed elsewhere",
         button + " }",
         [](SurfaceRig& r) {
             r.press(30, 5);
             r.release(5, 5);
         },
         {}},
        {"escape",
         button + " }",
         [](SurfaceRig& r) {
             r.press(5, 5);
             r.key(Key::escape);
             r.release(5, 5);
         },
         {}},
        {"right button",
         button + " }",
         [](SurfaceRig& r) {
             r.press(5, 5, 1, MouseButton::right);
             r.release(5, 5);
         },
         {"note menu"}},
        {"on press",
         button + ", trigger: press }",
         [](SurfaceRig& r) {
             r.press(5, 5);
             EXPECT_EQ(r.actions.performed.size(), 1U);
             r.release(5, 5);
         },
         {"note '0.5'"}},
        {"again while held",
         button + ", repeat: 0.1 }",
         [](SurfaceRig& r) {
             r.press(5, 5);
             r.pass(0);
             r.pass(99);
             r.pass(1);
             r.pass(100);
             r.move(30, 5);
             r.pass(500);
             r.release(30, 5);
         },
         {"note '0.5'", "note '0.5'"}},
        {"enter",
         button + " }",
         [](SurfaceRig& r) {
             r.key(Key::tab);
             EXPECT_TRUE(r.key(Key::enter));
             EXPECT_FALSE(r.type(" "));
         },
         {"note '0.5'"}},
        {"disabled",
         "{ type: button, action: off }",
         [](SurfaceRig& r) {
             r.click(5, 5);
             EXPECT_FALSE(r.key(Key::tab));
         },
         {}},
        {"two clicks",
         "{ type: click, action: note, doubleAction: note, doubleParams: 2 }",
         [](SurfaceRig& r) {
             r.click(5, 5);
             r.press(5, 5, 2);
             r.release(5, 5);
         },
         {"note", "note 2"}},
        {"from the one before by shift",
         "{ type: button, action: note, params: 1 } { type: button, action: note, params: 2 } { type: "
         "button, action: note, params: 3, focusable: false }",
         [](SurfaceRig& r) {
             r.key(Key::tab, kShift);
             r.key(Key::enter);
             r.key(Key::tab);
             r.key(Key::enter);
         },
         {"note 2", "note 1"}},
    };
    for (const auto& [name, views, act, performed] : cases) {
        SCOPED_TRACE(name);
        SurfaceRig rig(views);
        rig.draw();
        act(rig);
        EXPECT_EQ(rig.actions.performed, performed);
    }
}

TEST(Input, ShowsTheStatesOfButtons) {
    const std::string looks = ", rounded: 0, backgrounds: { normal: '#101010', hovered: '#202020', pressed: "
                              "'#303030', checked: '#404040', disabled: '#505050' } }";
    SurfaceRig rig("{ type: button, bounds: { 0, 0, 20, 20 }, action: note" + looks +
                   "{ type: button, bounds: { 20, 0, 20, 20 }, action: on" + looks +
                   "{ type: button, bounds: { 0, 20, 20, 20 }, action: off" + looks);
    const auto shades = [&rig] {
        const auto view = rig.draw().view();
        return std::vector<unsigned>{view.at(9, 9) & 0xFF, view.at(29, 9) & 0xFF, view.at(9, 29) & 0xFF};
    };
    EXPECT_THAT(shades(), ElementsAre(0x10, 0x40, 0x50));
    rig.move(9, 9);
    EXPECT_THAT(shades(), ElementsAre(0x20, 0x40, 0x50));
    rig.press(9, 9);
    EXPECT_THAT(shades(), ElementsAre(0x30, 0x40, 0x50));
    rig.move(29, 9);
    EXPECT_THAT(shades(), ElementsAre(0x20, 0x40, 0x50)); // still the one that has the mouse
    rig.release(29, 9);
    EXPECT_THAT(shades(), ElementsAre(0x10, 0x40, 0x50));
    rig.editor.mouseLeft();
    EXPECT_THAT(shades(), ElementsAre(0x10, 0x40, 0x50));
}

TEST(Input, ShowsWhereTheKeysGoOnceTheTabKeyHasMovedThem) {
    SurfaceRig rig("{ type: button, bounds: { 0, 0, 20, 20 } } { type: slider, bounds: { 20, 20, 20, 20 }, "
                   "variable: v }");
    EXPECT_EQ(rig.ink(), Rectangle());
    EXPECT_TRUE(rig.key(Key::tab));
    EXPECT_EQ(rig.ink(), (Rectangle{0, 0, 20, 20}));
    EXPECT_TRUE(rig.key(Key::tab));
    EXPECT_EQ(rig.ink(), (Rectangle{20, 20, 20, 20}));
    rig.click(30, 30);
    EXPECT_EQ(rig.ink(), Rectangle());
}

TEST(Input, TypesValues) {
    struct Case {
        const char* name;
        void (*act)(SurfaceRig&);
        const char* value;
    };
    const Case cases[] = {
        {"a digit begins",
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.type("42");
             r.key(Key::enter);
         },
         "42"},
        {"enter begins",
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.key(Key::enter);
             r.key(Key::end);
             r.type("1");
             r.key(Key::enter);
         },
         "0.501"},
        {"escape",
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.type("42");
             r.key(Key::escape);
         },
         "0.50"},
        {"a click elsewhere takes it",
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.type("42");
             r.click(20, 38);
         },
         "42"},
        {"erasing",
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.type("421");
             r.key(Key::backspace);
             r.key(Key::home);
             r.key(Key::del);
             r.key(Key::enter);
         },
         "2"},
        {"selecting",
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.type("1234");
             r.key(Key::left, kShift);
             r.key(Key::left, kShift);
             r.type("9");
             r.key(Key::enter);
         },
         "129"},
        {"words",
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.type("1 two");
             r.key(Key::left, kControl);
             r.type("x");
             r.key(Key::backspace, kControl);
             r.key(Key::backspace, kControl);
             r.key(Key::enter);
         },
         "two"},
        {"a double click takes the word",
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.type("1 two");
             r.press(35, 20);
             r.release(35, 20);
             r.press(35, 20, 2);
             r.move(2, 20); // the hand shakes
             r.release(2, 20);
             r.type("3");
             r.key(Key::enter);
         },
         "1 3"},
        {"copying",
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.type("12");
             r.type("a", kControl);
             r.type("x", kControl);
             r.type("v", kControl);
             r.type("v", kControl);
             r.key(Key::enter);
         },
         "1212"},
        {"one line from two",
         [](SurfaceRig& r) {
             r.desktop.clipboard = "a\nb";
             r.click(20, 20);
             r.key(Key::enter);
             r.type("v", kControl);
             r.key(Key::enter);
         },
         "a b"},
        {"more than ASCII",
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.key(Key::enter);
             r.editor.key({Key::character, U'\u00e9', {}});
             r.key(Key::enter);
         },
         "\xc3\xa9"},
        {"all of the keys are its",
         [](SurfaceRig& r) {
             r.click(20, 20);
             r.key(Key::enter);
             EXPECT_TRUE(r.type(" "));
             EXPECT_TRUE(r.key(Key::tab));
             EXPECT_TRUE(r.key(Key::pageUp));
             r.key(Key::enter);
         },
         " "},
    };
    for (const auto& [name, act, value] : cases) {
        SCOPED_TRACE(name);
        SurfaceRig rig(kKnob);
        act(rig);
        EXPECT_EQ(rig.variable("v.text"), value);
        EXPECT_EQ(rig.editor.textField(), nullptr);
        EXPECT_EQ(rig.variable("v"), "0.5");
    }
}

TEST(Input, ShowsTheFieldOverItsControl) {
    SurfaceRig rig(kKnob);
    rig.draw();
    rig.host.dirty.clear();
    rig.click(20, 20);
    rig.type("7");
    ASSERT_NE(rig.editor.textField(), nullptr);
    const Rectangle field = rig.editor.textField()->bounds();
    EXPECT_EQ(field, (Rectangle{0, 10, 40, 20}));
    EXPECT_EQ(rig.pixel(30, 14), 0xFFF4F1EA);
    EXPECT_THAT(rig.host.dirty, ::testing::Contains(field));
    rig.press(30, 20); // in it: moves the caret
    rig.release(30, 20);
    rig.type("5");
    rig.key(Key::home);
    rig.type("1");
    EXPECT_EQ(rig.editor.textField()->text(), "175");

    // What has been typed survives another scale.
    rig.provider.values["uiScale"] = "2/1";
    rig.editor.requestReload();
    rig.pass(0);
    EXPECT_EQ(rig.editor.textField()->text(), "175");
    EXPECT_EQ(rig.pixel(60, 30), 0xFFF4F1EA);
}

TEST(Input, SaysHintsAndCursors) {
    SurfaceRig rig(
        "{ type: knob, bounds: { 0, 0, 20, 20 }, variable: v, hint: 'Value [var]v[/var]', dragLength: 100 }"
        "{ type: group, bounds: { 20, 0, 20, 20 }, hint: Outer, views: { { type: click, bounds: { 0, 0, 10, "
        "20 }, hint: Inner, cursor: hand } { type: click, bounds: { 10, 0, 10, 20 } } } }"
        "{ type: rectangle, bounds: { 0, 20, 20, 20 }, hint: Seen }");
    struct {
        int x;
        int y;
        const char* hint;
        Quilt::Cursor cursor;
    } const cases[] = {{5, 5, "Value 0.5", Quilt::Cursor::vertical},
                       {25, 5, "Inner", Quilt::Cursor::hand},
                       {35, 5, "Outer", Quilt::Cursor::arrow},
                       {5, 25, "Seen", Quilt::Cursor::arrow},
                       {30, 30, "", Quilt::Cursor::arrow}};
    for (const auto& [x, y, hint, cursor] : cases) {
        rig.move(x, y);
        EXPECT_EQ(rig.variable("hint"), hint) << x << "," << y;
        EXPECT_EQ(rig.host.cursor, cursor) << x << "," << y;
    }
    // While it is dragged, wherever the mouse is.
    rig.press(5, 15);
    rig.move(30, 5);
    EXPECT_EQ(rig.variable("hint"), "Value 0.6");
    rig.release(30, 5);
    EXPECT_EQ(rig.variable("hint"), "Outer");
    rig.editor.mouseLeft();
    EXPECT_EQ(rig.variable("hint"), "");
}

TEST(Input, BringsABubbleToTheMouseThatRests) {
    SurfaceRig rig("{ type: click, bounds: { 0, 0, 40, 10 }, hint: H } { type: bubble, background: "
                   "'#0000ff', delay: 0.5, font: { ovsfont: 'sans-serif', size: 8 } }");
    rig.draw();
    rig.move(20, 5);
    rig.pass(400);
    EXPECT_EQ(rig.ink(), Rectangle());
    rig.pass(100);
    const auto bubble = rig.ink();
    EXPECT_GE(bubble.top, 10);
    EXPECT_GT(bubble.width, 10);
    EXPECT_NEAR(bubble.left + bubble.width / 2, 20, 1);
    rig.move(20, 30);
    rig.pass(0);
    EXPECT_EQ(rig.ink(), Rectangle());
}

// Else it would stand behind the menu or above the field that the click has opened.
TEST(Input, TakesTheBubbleAwayWithAClickAndBringsItBackForAValue) {
    SurfaceRig rig("{ type: dragArea, xVariable: v, yVariable: v, bounds: { 0, 0, 40, 10 }, hint: H } { type: bubble, "
                   "background: '#0000ff', delay: 0.5, font: { ovsfont: 'sans-serif', size: 8 } }");
    rig.draw();
    const auto shown = [&rig] {
        rig.pass(600);
        return rig.ink() != Rectangle();
    };
    rig.move(20, 5);
    EXPECT_TRUE(shown());
    rig.press(20, 5);
    EXPECT_FALSE(shown());
    rig.move(22, 5);
    EXPECT_TRUE(shown());
    rig.release(22, 5);
    EXPECT_FALSE(shown());
    rig.press(22, 5, 1, Quilt::MouseButton::right);
    rig.move(23, 5);
    EXPECT_FALSE(shown());
    rig.move(20, 30);
    EXPECT_FALSE(shown());
    rig.move(20, 5);
    EXPECT_TRUE(shown());
}

TEST(Input, GoesToTheModalDocumentAlone) {
    SurfaceRig rig("{ type: knob, variable: v } { type: quilt, bounds: { 10, 10, 20, 20 }, layoutVariable: "
                   "page, modal: true }");
    rig.documents.texts["a"] =
        "views: { { type: button, bounds: { 0, 0, 10, 10 }, action: note, params: inside } }";
    rig.editor.open("main", {0, 0, 40, 40});
    rig.pass(0);
    rig.press(2, 2); // beside it
    rig.move(2, 0);
    rig.release(2, 0);
    EXPECT_FALSE(rig.wheel(2, 2, 1));
    EXPECT_FALSE(rig.wheel(25, 25, 1));
    EXPECT_EQ(rig.variable("v"), "0.5");
    rig.click(12, 12);
    rig.key(Key::tab);
    rig.key(Key::tab); // there is nothing else to come to
    rig.key(Key::enter);
    EXPECT_THAT(rig.actions.take(), ElementsAre("note inside", "note inside"));

    EXPECT_TRUE(rig.key(Key::escape));
    EXPECT_EQ(rig.variable("page"), "");
    EXPECT_FALSE(rig.key(Key::escape));
    EXPECT_TRUE(rig.wheel(2, 2, 1));
    EXPECT_EQ(rig.variable("v"), "0.52");
}

TEST(Input, SurvivesActionsThatTakeTheirViewsAway) {
    const std::string press = "{ type: button, bounds: { 0, 0, 20, 40 }, trigger: press, action: ";
    for (const std::string& views :
         {press + "reload }", press + "set, params: { variable: uiScale, value: '2/1' } }",
          press + "popup, params: { items: { { caption: a, action: reload } } } }"}) {
        SCOPED_TRACE(views);
        SurfaceRig rig(views + " { type: knob, bounds: { 20, 0, 20, 40 }, variable: v }");
        rig.desktop.choice = 1;
        rig.move(5, 5);
        rig.press(5, 5);
        rig.move(6, 6);
        rig.release(6, 6);
        rig.pass(30);
        EXPECT_THAT(rig.desktop.messages, IsEmpty());
        EXPECT_TRUE(rig.wheel(rig.host.width - 5, 5, 1));
        EXPECT_EQ(rig.variable("v"), "0.52");
    }
    // A gesture in a document that goes is given back.
    SurfaceRig rig("{ type: quilt, layoutVariable: page }");
    rig.documents.texts["a"] = "views: { " + kKnob + " }";
    rig.editor.open("main", {0, 0, 40, 40});
    rig.press(20, 20);
    rig.move(20, 10);
    rig.provider.set("page", "");
    rig.pass(0);
    EXPECT_THAT(rig.provider.gestures, ElementsAre("begin v", "end v"));
    EXPECT_EQ(rig.variable("v"), "0.5");
    rig.move(20, 0);
    rig.release(20, 0);
}

} // namespace
