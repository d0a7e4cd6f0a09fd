// What instances share and what each keeps for itself; what goes into the host's project.
#include "Effects.h"

#include "model/MidiConfigText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <exception>
#include <future>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

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

// Some hosts save from a thread of their own, at any time.
TEST(Project, IsSavedWhileTheUserWorks) {
    Platform::MemoryRecord preferences;
    Effect effect(preferences);
    effect.files.files["folder/" + std::string(200, 'a')] = Model::writeMidiConfig({});
    constexpr int kLeastSaves = 600;
    std::atomic<bool> stop = false;
    std::atomic<int> saved = 0;
    std::string failure;
    std::thread host([&] {
        Platform::MemoryRecord elsewhere;
        Effect loaded(elsewhere);
        while (loaded.instance.takeReport()) { // there is no factory bank here
        }
        try {
            while (!stop) {
                loaded.instance.readBankChunk(effect.instance.bankChunk());
                loaded.instance.readProgramChunk(effect.instance.programChunk());
                ++saved;
            }
        } catch (const std::exception& error) {
            failure = error.what();
            saved = kLeastSaves;
        }
        if (const auto report = loaded.instance.takeReport(); report && failure.empty()) {
            failure = *report;
        }
    });
    for (int i = 0; saved < kLeastSaves; ++i) {
        const std::string number = std::to_string(i % 50);
        effect.write("project.x" + number, i % 2 ? std::string(100, 'x') : "");
        effect.write("program.x" + number, i % 3 ? std::string(100, 'x') : "");
        effect.act("changeMidiConfig", "sourcePath: " + std::string(static_cast<std::size_t>(i % 7 * 50), 'p') + "x");
        effect.act("midiAssign", "variable: params.mix, cc: " + number);
        effect.act("midiAssign", "variable: params.mix, unassign: true");
        effect.dialogAnswer = "folder/" + std::string(200, i % 2 ? 'a' : 'b');
        effect.act("loadMidiConfig");
        effect.act("saveMidiConfig");
        effect.act("resetMidiConfig");
    }
    stop = true;
    host.join();
    EXPECT_EQ(failure, "");
}

// A host may wait for its own thread that saves when it is told that programs have changed.
TEST(Project, MayBeSavedWhileTheHostIsTold) {
    Platform::MemoryRecord preferences;
    Effect effect(preferences);
    int told = 0;
    bool saves = true;
    std::future<std::string> saving;
    effect.host.onUpdateDisplay = [&] {
        ++told;
        saving = std::async(std::launch::async, [&] { return effect.instance.bankChunk(); });
        saves = saves && saving.wait_for(std::chrono::seconds(2)) == std::future_status::ready;
    };
    int expected = 0;
    for (const auto& [action, params] :
         {std::pair("copyPatch", ""), {"pastePatch", ""}, {"exchangePatch", ""}, {"initPatch", ""},
          {"randomizePatch", ""}, {"undo", ""}, {"redo", ""}, {"switchProgram", "{ step: 1 }"}}) {
        EXPECT_EQ(effect.act(action, params), "") << action;
        expected += std::string_view(action) == "copyPatch" ? 0 : 1;
        EXPECT_EQ(told, expected) << action;
        ASSERT_TRUE(saves) << action;
    }
    EXPECT_EQ(effect.write("patch.name", "Another"), "");
    EXPECT_EQ(told, expected + 1);
    EXPECT_TRUE(saves);
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
