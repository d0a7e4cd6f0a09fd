#include "TestEditor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace TestEditor;
using testing::ElementsAre;
using testing::IsEmpty;

std::string note(const char* what, const char* more = "") {
    return std::string("{ action: note, params: ") + what + more + " }";
}

std::string autoexecs(const Strings& list) {
    std::string text = "autoexecs: {";
    for (const auto& item : list) {
        text += "\n" + item;
    }
    return text + "\n}";
}

TEST(Autoexecs, RunAtLoadInOrderAndAgainAtReload) {
    Rig rig;
    rig.open(autoexecs({note("1"), note("2", ", onReload: false"), note("3", ", onClose: true"), note("4")}));
    EXPECT_THAT(rig.actions.take(), ElementsAre("note 1", "note 2", "note 4"));
    rig.perform("reload", "");
    EXPECT_THAT(rig.actions.take(), ElementsAre("note 1", "note 4"));
    rig.editor.close();
    EXPECT_THAT(rig.actions.take(), ElementsAre("note 3"));
    rig.editor.close();
    EXPECT_THAT(rig.actions.take(), IsEmpty());
}

// Its answer is there before the views are.
TEST(Autoexecs, AskAtTheFirstLoad) {
    Rig rig;
    rig.open("views: { { type: caption, text: \"[var]answer[/var]\" } }\n" +
             autoexecs(
                 {"{ action: alert, params: { text: sure, variable: answer } }", note("[var]answer[/var]")}));
    EXPECT_THAT(rig.desktop.messages, ElementsAre("sure"));
    EXPECT_THAT(rig.actions.take(), ElementsAre("note ok"));
}

TEST(Autoexecs, RunByTime) {
    Rig rig;
    rig.open(autoexecs({note("late", ", delay: 0.1"), note("often", ", repeat: 0.25"),
                        note("both", ", delay: 0.25, repeat: 0.1"), note("soon", ", delay: 0.0004")}));
    EXPECT_THAT(rig.actions.take(), IsEmpty());
    const struct {
        int milliseconds;
        Strings performed;
    } steps[] = {
        {0, {"note often", "note soon"}},
        {99, {}},
        {1, {"note late"}},
        {149, {}},
        {1, {"note often", "note both"}},
        {100, {"note both"}},
        {100, {"note both"}},
        {50, {"note often"}},
        {1000, {"note often", "note both"}}, // what was missed is not made up for
        {100, {"note both"}},
    };
    for (const auto& step : steps) {
        rig.pass(step.milliseconds);
        EXPECT_EQ(rig.actions.take(), step.performed) << "at " << rig.clock.time.count();
    }
    rig.perform("reload", "");
    rig.actions.take();
    rig.pass(1);
    EXPECT_THAT(rig.actions.take(), ElementsAre())
        << "timers have been started anew by the reload's own tick";
}

TEST(Autoexecs, ConvertTimesToWholeMilliseconds) {
    const struct {
        double seconds;
        long long milliseconds;
    } cases[] = {{0.0004, 0}, {0.0005, 1}, {0.25, 250}, {0.2995, 300}, {1e300, 1000000000000}, {-1, 0}};
    for (const auto& c : cases) {
        EXPECT_EQ(Quilt::toMilliseconds(c.seconds).count(), c.milliseconds) << c.seconds;
    }
}

TEST(Autoexecs, RunWhenAVariableChanges) {
    Rig rig;
    rig.provider.values["params.pitch"] = "0.5";
    rig.open(
        autoexecs({note("changed", ", onChanged: { params.pitch, other }"),
                   "{ action: set, params: { variable: own, value: 1 } }", note("own", ", onChanged: own")}));
    EXPECT_THAT(rig.actions.take(), ElementsAre("note own")) << "own was written after it was watched";
    rig.editor.tick();
    EXPECT_THAT(rig.actions.take(), IsEmpty());
    rig.provider.values["params.pitch"] = "0.6"; // by the host
    rig.editor.tick();
    EXPECT_THAT(rig.actions.take(), IsEmpty()) << "nobody said that anything had changed";
    ++rig.provider.changes;
    rig.editor.tick();
    EXPECT_THAT(rig.actions.take(), ElementsAre("note changed"));
    rig.perform("batch", "{ { action: set, params: { variable: other, value: 1 } }, "
                         "{ action: set, params: { variable: other, value: 2 } } }");
    EXPECT_THAT(rig.actions.take(), ElementsAre("note changed"));
    rig.perform("set", "{ variable: other, value: 2 }");
    EXPECT_THAT(rig.actions.take(), IsEmpty());
}

TEST(Autoexecs, ThatWakeEachOtherLeaveTheEditorAlive) {
    Rig rig;
    rig.open(autoexecs({"{ action: assign, onChanged: n, params: { variable: n, value: \"[var]n[/var]+1\", "
                        "transforms: calculated } }"}));
    rig.perform("set", "{ variable: n, value: 0 }");
    const int first = std::stoi(rig.variable("n"));
    EXPECT_GT(first, 0);
    rig.editor.tick();
    EXPECT_GT(std::stoi(rig.variable("n")), first);
}

TEST(Autoexecs, OfNestedDocuments) {
    Rig rig;
    rig.documents.texts["inner"] =
        autoexecs({note("opened"), note("once", ", onReload: false"), note("closed", ", onClose: true"),
                   "{ action: set, onClose: true, params: { variable: goodbye, value: yes } }"});
    rig.open("views: { { type: quilt, layoutVariable: layout } }, " +
             autoexecs({"{ action: set, onReload: false, params: { variable: layout, value: inner } }"}));
    EXPECT_THAT(rig.actions.take(), ElementsAre("note opened", "note once"));
    rig.perform("reload", "");
    EXPECT_THAT(rig.actions.take(), ElementsAre("note opened")) << "what was open stays open";
    rig.perform("set", "{ variable: layout, value: \"\" }");
    EXPECT_THAT(rig.actions.take(), ElementsAre("note closed"));
    EXPECT_EQ(rig.variable("goodbye"), "yes");
}

TEST(Errors, WaitInAQueueOfFour) {
    Rig rig;
    rig.desktop.wait = true;
    rig.open(
        autoexecs({"{ action: a }", "{ action: b }", "{ action: c }", "{ action: d }", "{ action: e }"}));
    EXPECT_THAT(rig.desktop.messages, ElementsAre("Error performing action a:\n\nUnrecognized action: a."));
    EXPECT_THAT(rig.host.logged,
                ElementsAre("Error queue overflow: Error performing action e Unrecognized action: e",
                            "Error: Error performing action a Unrecognized action: a."));
    for (int i = 0; i < 6; ++i) {
        if (!rig.desktop.waiting.empty()) {
            std::exchange(rig.desktop.waiting, {})[0](Quilt::MessageButton::ok);
        }
        rig.editor.tick();
    }
    ASSERT_EQ(rig.desktop.messages.size(), 4U);
    EXPECT_EQ(rig.desktop.messages[3], "Error performing action d:\n\nUnrecognized action: d.");
}

TEST(Errors, AreTranslatedAndTakenByTheHost) {
    struct TakingHost : Host {
        Strings taken;
        bool takeError(const std::string& title, const std::string& message) override {
            taken.push_back(title + "|" + message);
            return message.starts_with("mine");
        }
    } host;
    Rig rig;
    Quilt::Editor editor(
        {rig.documents, rig.views, rig.images, rig.desktop, host, rig.clock, &rig.provider, &rig.actions});
    rig.documents.texts["t"] = "translations: { Quatsch: nonsense }";
    editor.open("t", {0, 0, 9, 9});
    const struct {
        const char* message;
        const char* detail;
        const char* verbose;
        const char* shown; // nullptr: the host took it
    } cases[] = {
        {"Quatsch", "", "false", "Title:\n\nnonsense."},
        {"Gruss", "there", "false", "Title:\n\ngreeting."},
        {"Gruss", "there", "true", "Title:\n\ngreeting.\n\nthere"},
        {"", "", "perhaps", "Title:\n\nUnexpected error."},
        {"mine", "", "false", nullptr},
    };
    for (const auto& c : cases) {
        rig.desktop.messages.clear();
        editor.variables().set("verboseErrors", c.verbose);
        editor.document()->reportError("Title", c.message, c.detail);
        editor.tick();
        EXPECT_EQ(host.taken.back(), std::string("Title|") + c.message);
        if (c.shown == nullptr) {
            EXPECT_THAT(rig.desktop.messages, IsEmpty());
        } else {
            EXPECT_THAT(rig.desktop.messages, ElementsAre(c.shown));
        }
    }
}

TEST(Errors, ThatCannotBeShownAreLogged) {
    struct BrokenDesktop : Desktop {
        void showMessage(const Quilt::Message&, std::function<void(Quilt::MessageButton)>) override {
            throw std::runtime_error("no display");
        }
    } desktop;
    Rig rig;
    Quilt::Editor editor({rig.documents, rig.views, rig.images, desktop, rig.host, rig.clock});
    rig.documents.texts["t"] = "autoexecs: { { action: a }, { action: b } }";
    editor.open("t", {0, 0, 9, 9});
    EXPECT_THAT(rig.host.logged, ElementsAre("Error: Error performing action a Unrecognized action: a.",
                                             "Exception while handling error",
                                             "Error: Error performing action b Unrecognized action: b.",
                                             "Exception while handling error"));
}

} // namespace
