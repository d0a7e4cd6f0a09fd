// What instances share and what each keeps for itself; what goes into the host's project.
#include "Effects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using BridgeTest::Effect;
using testing::ElementsAre;

namespace {

TEST(TwoInstances, SharePreferencesAndNothingElse) {
    Platform::MemoryRecord preferences;
    Effect first(preferences);
    Effect second(preferences);
    EXPECT_EQ(first.write("preferences.theme", "dark"), "");
    EXPECT_EQ(second.value("preferences.theme"), "dark");
    EXPECT_EQ(second.write("preferences.hints", "off"), "");
    EXPECT_EQ(first.write("instance.page", "2"), "");
    EXPECT_EQ(first.write("params.mix", "0.5"), "");
    EXPECT_EQ(first.value("preferences.hints"), "off");
    EXPECT_EQ(second.value("instance.page"), "");
    EXPECT_EQ(second.value("params.mix"), "1");
}

TEST(Project, KeepsVariablesOfProjectAndPrograms) {
    Platform::MemoryRecord preferences;
    Effect saved(preferences);
    const std::string plain = saved.instance.bankChunk();
    saved.write("project.page", "3");
    saved.write("program.colour", "red");
    saved.act("switchProgram", "{ step: 1 }");
    EXPECT_EQ(saved.value("program.colour"), "");
    saved.write("program.colour", "blue");
    const std::string bank = saved.instance.bankChunk();
    const std::string program = saved.instance.programChunk();

    Effect loaded(preferences);
    loaded.instance.readBankChunk(bank);
    EXPECT_EQ(loaded.value("project.page"), "3");
    EXPECT_EQ(loaded.value("program.colour"), "red");
    loaded.instance.readProgramChunk(program);
    EXPECT_EQ(loaded.value("program.colour"), "blue");
    loaded.instance.readBankChunk(plain);
    EXPECT_EQ(loaded.value("project.page"), "");
    EXPECT_EQ(loaded.value("program.colour"), "");
}

TEST(Gestures, AreOneUndoStepAndOneEditEach) {
    Platform::MemoryRecord preferences;
    Effect effect(preferences);
    for (int drag = 0; drag < 2; ++drag) {
        effect.bridge.beginGesture("params.pitch");
        for (const char* value : {"0.1", "0.2", "0.3"}) {
            effect.write("params.pitch", drag == 0 ? value : "0.9");
        }
        effect.bridge.endGesture("params.pitch");
    }
    EXPECT_EQ(effect.host.begun, 2);
    EXPECT_EQ(effect.host.ended, 2);
    EXPECT_EQ(effect.act("undo"), "");
    EXPECT_EQ(effect.value("params.pitch"), "0.3");
    EXPECT_EQ(effect.act("undo"), "");
    EXPECT_EQ(effect.value("params.pitch"), "0.5");
}

TEST(Scale, WaitsForTheNextEditorWhenTheHostCannotResize) {
    Platform::MemoryRecord preferences;
    Effect effect(preferences);
    EXPECT_EQ(effect.write("uiScale", "3/2"), "");
    EXPECT_THAT(effect.told, ElementsAre("You need to close and reopen the window to resize."));
    EXPECT_EQ(effect.reloads, 1);
    EXPECT_EQ(effect.value("uiScale"), "1/1");
    EXPECT_EQ(Effect(preferences).value("uiScale"), "3/2");

    effect.host.identity_.sizesWindow = true;
    EXPECT_EQ(effect.write("uiScale", "2/1"), "");
    EXPECT_EQ(effect.value("uiScale"), "2/1");
    EXPECT_EQ(effect.reloads, 2);
}

TEST(Changes, AreCountedFromInsideAndOutside) {
    Platform::MemoryRecord preferences;
    Effect effect(preferences);
    const auto idle = effect.bridge.changeCount();
    EXPECT_EQ(effect.bridge.changeCount(), idle);
    effect.instance.setParameter(Parameters::mix, 0.25f);
    const auto automated = effect.bridge.changeCount();
    EXPECT_GT(automated, idle);
    effect.write("instance.page", "1");
    EXPECT_GT(effect.bridge.changeCount(), automated);
}

} // namespace
