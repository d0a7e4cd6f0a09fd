#include "TestEditor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace TestEditor;
using testing::ElementsAre;

std::string errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "(none)";
}

TEST(Variables, AreTheProvidersBeforeTheFrameworks) {
    Provider provider;
    provider.values = {{"a", "1"}, {"locked", "2"}};
    Quilt::Variables variables(&provider);
    variables.set("a", "10");
    variables.set("own", "3");
    EXPECT_EQ(provider.values["a"], "10");
    EXPECT_EQ(provider.values.count("own"), 0U);
    EXPECT_EQ(variables.get("own"), "3");
    EXPECT_EQ(errorOf([&] { variables.set("locked", "x"); }), "Variable is read-only: locked");
    EXPECT_EQ(errorOf([&] { variables.get("unknown"); }), "Unknown variable: unknown");
    provider.values["own"] = "the provider's now";
    EXPECT_EQ(variables.get("own"), "the provider's now");
}

TEST(Variables, AreReadOnceInAnUpdate) {
    Provider provider;
    provider.values = {{"level", "1"}};
    Quilt::Variables variables(&provider);
    variables.set("own", "1");
    variables.beginUpdate();
    EXPECT_EQ(variables.get("level"), "1");
    provider.values["level"] = "2"; // the audio thread goes on
    EXPECT_EQ(variables.get("level"), "1");
    EXPECT_EQ(provider.reads, 1);
    variables.set("own", "2");
    EXPECT_EQ(variables.get("own"), "1");
    EXPECT_EQ(errorOf([&] { variables.get("unknown"); }), "Inconsistent variable access");
    variables.endUpdate([](const std::exception&) {});
    EXPECT_EQ(variables.get("level"), "2");
    EXPECT_EQ(variables.get("own"), "2");
}

TEST(Variables, WrittenWhileHeldAreWrittenLaterInOrder) {
    Provider provider;
    provider.values = {{"a", "0"}, {"locked", ""}};
    Quilt::Variables variables(&provider);
    Strings written;
    Strings failed;
    variables.onWritten([&written](std::string_view name) { written.emplace_back(name); });
    const auto note = [&failed](const std::exception& error) { failed.emplace_back(error.what()); };
    variables.hold();
    variables.hold();
    variables.set("a", "1");
    variables.set("locked", "1");
    variables.set("b", "1");
    variables.set("a", "2");
    variables.release(note);
    EXPECT_EQ(variables.get("a"), "0");
    variables.release(note);
    EXPECT_EQ(variables.get("a"), "2");
    EXPECT_THAT(written, ElementsAre("a", "b", "a"));
    EXPECT_THAT(failed, ElementsAre("Variable is read-only: locked"));
}

TEST(Variables, UiScaleLoadsAnewEvenWhenItStays) {
    Rig rig;
    rig.provider.values["uiScale"] = "1/1";
    rig.open("bounds: { 0, 0, 470, 320 }, autoexecs: { { action: note } }");
    EXPECT_EQ(rig.host.width, 470);
    for (const auto& [scale, width] :
         {std::pair("1/1", 470), {"5/4", 587}, {"5/4", 587}, {"nonsense", 470}, {"9/1", 470}}) {
        rig.actions.take();
        rig.perform("set", std::string("{ variable: uiScale, value: \"") + scale + "\" }");
        EXPECT_THAT(rig.actions.performed, ElementsAre("note"));
        EXPECT_EQ(rig.host.width, width) << scale;
    }
}

// A text that fails is not reported with every update.
TEST(Variables, MissingInATextAreReportedOnce) {
    Rig rig;
    rig.open("views: { { type: group, hint: \"[var]late[/var]\" } }");
    ASSERT_THAT(rig.desktop.messages, ElementsAre("Error processing meta text:\n\nUnknown variable: late."));
    for (int i = 0; i < 3; ++i) {
        ++rig.provider.changes;
        rig.editor.tick();
    }
    EXPECT_EQ(rig.desktop.messages.size(), 1U);
    rig.perform("set", "{ variable: late, value: here }");
    EXPECT_EQ(rig.editor.root()->children()[0]->hint(), "here");
}

} // namespace
