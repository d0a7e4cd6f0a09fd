#include "TestEditor.h"

#include "quilt/View.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace TestEditor;
using testing::ElementsAre;
using testing::IsEmpty;

// What an action leaves: `variable` as it is then, or the error's message.
TEST(BuiltInActions, WriteVariablesOrSayWhatIsWrong) {
    const struct {
        const char* action;
        const char* params;
        const char* value; // of `v`, which is "old" before, while `w` is " Gruss 5 "
        const char* error = nullptr;
    } cases[] = {
        {"set", "{ variable: v, value: new }", "new"},
        {"set", "{ variable: v, value: \"\" }", ""},
        {"set", "{ variable: v, value: \"[var]w[/var]\" }", " Gruss 5 "},
        {"set", "{ variable: \"[trim] v [/trim]\", value: { 1, 2 } }", "{ 1, 2 }"},
        {"set", "{ variable: v }", "old", "Invalid set params"},
        {"set", "{ value: v }", "old", "Invalid set params"},
        {"set", "{ variable: v, value: \"[var]no[/var]\" }", "old", "Unknown variable: no"},
        {"assign", "{ variable: v, sourceVariable: w, transforms: { trimmed, uppercase } }", "GRUSS 5"},
        {"assign", "{ variable: v, sourceVariable: w, transforms: lowercase }", " gruss 5 "},
        {"assign", "{ variable: v, value: Gruss, transforms: translated }", "greeting"},
        {"assign", "{ variable: v, value: \"2*(n+1)/4\", transforms: calculated }", "4"},
        {"assign", "{ variable: v, value: \"1/3\", transforms: calculated }", "0.3333333333333333"},
        {"assign", "{ variable: v, value: \"w\", transforms: calculated }", "old", "Undefined symbol: w"},
        {"assign", "{ variable: v, value: \"a\\tb\\nc\", transforms: modifiable }", "a b c"},
        {"assign", "{ variable: v, sourceVariable: meta, transforms: { metatext, trimmed } }", "Gruss 5"},
        {"assign", "{ variable: v, value: a, transforms: { backwards } }", "old", "Invalid assign params"},
        {"assign", "{ variable: v, value: a, sourceVariable: w }", "old", "Invalid assign params"},
        {"assign", "{ variable: v }", "old", "Invalid assign params"},
        {"assign", "{ variable: v, sourceVariable: no }", "old", "Unknown variable: no"},
        {"batch",
         "{ { action: set, params: { variable: v, value: 1 } }, { action: set, params: { variable: v, value: "
         "\"[var]v[/var][var]v[/var]\" } } }",
         "11"},
        {"batch",
         "{ { action: set, params: { variable: v, value: 1 } }, { action: fail }, { action: set, params: { "
         "variable: v, value: 2 } } }",
         "1", "Failed as told"},
        {"batch", "{ action: set }", "old", "Invalid batch element"},
        {"batch", "{ { params: 1 } }", "old", "Invalid batch element"},
        {"batch", "", "old"},
        {"switch",
         "{ variable: n, cases: { { sameAs: 6, value: six }, { sameAs: 7, action: set, params: { variable: "
         "v, "
         "value: seven } } } }",
         "seven"},
        {"switch",
         "{ variable: n, cases: { { differsFrom: 6, action: set, params: { variable: v, value: other } } } }",
         "other"},
        {"switch",
         "{ variable: n, cases: { { differsFrom: 7, action: fail } }, default: { action: set, params: { "
         "variable: v, value: none } } }",
         "none"},
        {"switch",
         "{ variable: n, cases: { 6: { action: fail }, 7: { action: set, params: { variable: v, value: 77 } "
         "} } }",
         "77"},
        {"switch", "{ variable: v, cases: { on: { value: off } }, default: { value: on } }", "on"},
        {"switch",
         "{ variable: n, cases: { { sameAs: \"[var]n[/var]\", action: set, params: { variable: v, value: "
         "same } } } }",
         "same"},
        {"switch", "{ variable: n }", "old"},
        {"switch", "{ cases: {} }", "old", "Invalid switch params"},
        {"switch", "{ variable: n, cases: { { action: fail } } }", "old", "Invalid switch params"},
        {"execute", "{ action: set, params: { variable: v, value: 1 } }", "1"},
        {"execute", "{ actionVariable: act, paramsVariable: par }", "stored"},
        {"execute", "{ actionVariable: unknown }", "old"},
        {"execute", "{ params: {} }", "old", "Invalid execute params"},
        {"execute", "set", "old", "Invalid execute params"},
        {"execute", "{ actionVariable: loop, paramsVariable: self }", "old",
         "Action recursion limit exceeded"},
        {"assert", "{ action: on, checked: true, enabled: true }", "old"},
        {"assert", "{ action: set, params: { variable: v, value: old }, checked: true }", "old"},
        {"assert", "{ action: off, params: { a: 1 }, enabled: true }", "old",
         "Quilt assertion failed: action off with params { a: 1 } is enabled"},
        {"assert", "{ action: note, enabled: false }", "old",
         "Quilt assertion failed: action note is not enabled"},
        {"assert", "{ action: note, checked: true }", "old",
         "Quilt assertion failed: action note is checked"},
        {"assert", "{ action: on, checked: false }", "old",
         "Quilt assertion failed: action on is not checked"},
        {"assert", "{ action: on }", "old", "Invalid assert params"},
        {"assert", "", "old", "Invalid assert params"},
        {"alert", "{ type: oops, text: a }", "old", "Invalid alert type"},
        {"alert", "{ buttons: \"yes cancel\", text: a }", "old", "Invalid alert buttons"},
        {"alert", "{ buttons: \"yes no\", default: ok, text: a }", "old", "Invalid default button"},
        {"popup", "{ items: { text } }", "old", "Invalid popup items"},
        {"popup", "{ items: { { action: note } } }", "old", "Invalid popup items"},
        {"edit", "{ text: a }", "old", "Invalid edit params"},
        {"nobody", "", "old", "Unrecognized action: nobody"},
    };
    for (const auto& c : cases) {
        Rig rig;
        rig.open("");
        auto& variables = rig.editor.variables();
        for (const auto& [name, value] : {std::pair("v", "old"),
                                          {"w", " Gruss 5 "},
                                          {"n", "7"},
                                          {"act", "set"},
                                          {"par", "{ variable: v, value: stored }"},
                                          {"loop", "execute"},
                                          {"self", "{ actionVariable: loop, paramsVariable: self }"},
                                          {"meta", "[var]w[/var]"}}) {
            variables.set(name, value);
        }
        rig.perform(c.action, c.params);
        EXPECT_EQ(rig.variable("v"), c.value) << c.action << " " << c.params;
        if (c.error == nullptr) {
            EXPECT_THAT(rig.desktop.messages, IsEmpty()) << c.action << " " << c.params;
        } else {
            EXPECT_THAT(rig.desktop.messages, ElementsAre(std::string("Error performing action ") + c.action +
                                                          ":\n\n" + c.error + "."));
        }
    }
}

TEST(BuiltInActions, HandTheHandlerExpandedParams) {
    Rig rig;
    rig.open("");
    rig.editor.variables().set("name", "say \"hi\"");
    rig.editor.variables().set("number", "144");
    rig.perform("note", "{ message: { [var]number[/var], 60 }, name: \"[var]name[/var]\" }");
    EXPECT_THAT(rig.actions.performed,
                ElementsAre("note { message: { 144, 60 }, name: \"say \\\"hi\\\"\" }"));
}

TEST(BuiltInActions, TellTheirStates) {
    const struct {
        const char* action;
        const char* params;
        bool enabled;
        bool checked;
    } cases[] = {
        {"note", "", true, false},
        {"set", "{ variable: v, value: 1 }", true, true},
        {"set", "{ variable: v, value: 2 }", true, false},
        {"set", "{ variable: unknown, value: \"\" }", true, false},
        {"batch", "{ { action: on }, { action: set, params: { variable: v, value: 1 } } }", true, true},
        {"batch", "{ { action: on }, { action: note } }", true, false},
        {"batch", "{ { action: on }, { action: note, ignoreChecked: true } }", true, true},
        {"batch", "{ { action: on, ignoreChecked: true } }", true, false},
        {"batch", "{ { action: off }, { action: on } }", false, false},
        {"batch", "{ { action: on }, { action: off, ignoreEnabled: true, ignoreChecked: true } }", true,
         true},
        {"switch", "{ variable: v, cases: { 1: { action: off } }, default: { action: on } }", false, false},
        {"switch", "{ variable: v, cases: { 2: { action: off } }, default: { action: on } }", true, true},
        {"switch", "{ variable: v, cases: { 2: { action: off } } }", true, false},
        {"execute", "{ action: off }", false, false},
        {"execute", "{ actionVariable: unknown }", false, false},
        {"reload", "", true, false},
    };
    Rig rig;
    rig.open("");
    rig.editor.variables().set("v", "1");
    for (const auto& c : cases) {
        const auto state = rig.editor.document()->state(c.action, c.params);
        EXPECT_EQ(state.enabled, c.enabled) << c.action << " " << c.params;
        EXPECT_EQ(state.checked, c.checked) << c.action << " " << c.params;
    }
}

TEST(BuiltInActions, AskAndReact) {
    using enum Quilt::MessageButton;
    Rig rig;
    rig.open("translations: { sure: \"Wirklich?\" }");
    rig.desktop.button = no;
    rig.perform(
        "alert",
        "{ type: question, text: \"[xlate]sure[/xlate]\", buttons: \"yes no cancel\", default: cancel, "
        "variable: answer, reactions: { no: { action: note, params: refused }, yes: { action: fail } } }");
    ASSERT_EQ(rig.desktop.boxes.size(), 1U);
    const auto& box = rig.desktop.boxes[0];
    EXPECT_EQ(box.text, "Wirklich?");
    EXPECT_EQ(box.kind, Quilt::MessageKind::question);
    EXPECT_THAT(box.buttons, ElementsAre(yes, no, cancel));
    EXPECT_EQ(box.defaultButton, 2U);
    EXPECT_EQ(rig.variable("answer"), "no");
    EXPECT_THAT(rig.actions.performed, ElementsAre("note refused"));
    rig.perform("alert", "Done!");
    EXPECT_EQ(rig.desktop.boxes[1].text, "Done!");
    EXPECT_THAT(rig.desktop.boxes[1].buttons, ElementsAre(ok));
}

TEST(BuiltInActions, PopUpMenus) {
    Rig rig;
    rig.open("");
    rig.editor.variables().set("v", "b");
    const char* const params =
        "{ items: { { caption: First, action: set, params: { variable: v, value: a } }, -, "
        "{ caption: More, items: { { caption: \"is [var]v[/var]\", action: set, params: { variable: v, "
        "value: b } }, "
        "{ caption: Never, action: off } } } }, storeAction: act, storeParams: par, storeCaption: cap }";
    rig.perform("popup", params);
    ASSERT_EQ(rig.desktop.menu.size(), 3U);
    EXPECT_TRUE(rig.desktop.menu[1].caption.empty());
    const auto& more = rig.desktop.menu[2].items;
    ASSERT_EQ(more.size(), 2U);
    EXPECT_EQ(more[0].caption, "is b");
    EXPECT_TRUE(more[0].checked);
    EXPECT_FALSE(more[1].enabled);
    EXPECT_EQ(rig.variable("v"), "b") << "nothing was chosen";
    rig.desktop.choice = rig.desktop.menu[0].id;
    rig.perform("popup", params);
    EXPECT_EQ(rig.variable("v"), "a");
    EXPECT_EQ(rig.variable("act"), "set");
    EXPECT_EQ(rig.variable("par"), "{ variable: v, value: a }");
    EXPECT_EQ(rig.variable("cap"), "First");
}

TEST(BuiltInActions, EditVariables) {
    Rig rig;
    rig.open("");
    const char* const params = "{ variable: name, default: Init, reaction: { action: note, params: typed } }";
    rig.perform("edit", params);
    ASSERT_NE(rig.editor.textEdit(), nullptr);
    EXPECT_EQ(rig.editor.textEdit()->text, "Init");
    rig.editor.endTextEdit(std::nullopt);
    EXPECT_EQ(rig.variable("name"), "(none)");
    EXPECT_THAT(rig.actions.take(), IsEmpty());
    rig.perform("edit", params);
    rig.editor.endTextEdit("Bass");
    EXPECT_EQ(rig.variable("name"), "Bass");
    EXPECT_THAT(rig.actions.take(), ElementsAre("note typed"));
    rig.perform("edit", params);
    EXPECT_EQ(rig.editor.textEdit()->text, "Bass");
    rig.editor.endTextEdit("");
    EXPECT_EQ(rig.variable("name"), "Init");
}

TEST(BuiltInActions, LaunchOnlyAddresses) {
    Rig rig;
    rig.open("");
    for (const char* const good : {"http://a.b/c?d=e&f#g", "https://a", "telnet://a:23",
                                   "\"file:///tmp/a%20b\"", "{ address: \"https://x\" }"}) {
        rig.perform("launch", good);
    }
    EXPECT_THAT(rig.desktop.launched, ElementsAre("http://a.b/c?d=e&f#g", "https://a", "telnet://a:23",
                                                  "file:///tmp/a%20b", "https://x"));
    EXPECT_THAT(rig.desktop.messages, IsEmpty());
    rig.desktop.launched.clear();
    for (const char* const bad : {"", "ftp://a", "HTTP://a", "javascript:alert(1)", "/bin/sh",
                                  "\" http://a\"", "\"http://a\\nb\"", "\"http://a b\"", "-http://a"}) {
        rig.desktop.messages.clear();
        rig.perform("launch", bad);
        ASSERT_EQ(rig.desktop.messages.size(), 1U) << bad;
        EXPECT_THAT(rig.desktop.messages[0],
                    testing::StartsWith("Error performing action launch:\n\nInvalid launch address: "));
    }
    EXPECT_THAT(rig.desktop.launched, IsEmpty());
}

// Whoever answers late finds no document, or another.
TEST(BuiltInActions, AnswersMayComeWhenTheDocumentIsGone) {
    Rig rig;
    rig.open("");
    rig.desktop.wait = true;
    rig.perform("alert", "{ text: a, variable: answer, reactions: { ok: { action: note } } }");
    rig.editor.close();
    rig.desktop.waiting.at(0)(Quilt::MessageButton::ok);
    EXPECT_EQ(rig.variable("answer"), "(none)");
    EXPECT_THAT(rig.actions.performed, IsEmpty());
}

} // namespace
