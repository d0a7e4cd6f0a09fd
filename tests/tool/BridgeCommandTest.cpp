// The editor's variables and actions as the command shows them: sequences of lines and their answers.
#include "CommandRun.h"

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::StartsWith;

#if defined(_WIN32)
constexpr const char* kSystem = "\"windows\"";
#else
constexpr const char* kSystem = "\"linux\"";
#endif

class BridgeCommandTest : public CommandRun::CommandTest {
protected:
    std::vector<std::string> answers(const std::string& input, const std::string& preferences = {}) const {
        const auto result =
            run(preferences.empty() ? std::vector<std::string>{"bridge"}
                                    : std::vector<std::string>{"bridge", "--preferences", preferences},
                input);
        EXPECT_EQ(result.status, 0) << result.errors;
        std::vector<std::string> lines;
        std::istringstream stream(result.output);
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    // A line of each pair is asked, the other is its whole answer, lines of the host's in front.
    void expectDialogue(const std::vector<std::pair<std::string, std::string>>& dialogue,
                        const std::string& preferences = {}) const {
        std::string input;
        std::vector<std::string> expected;
        for (const auto& [line, answer] : dialogue) {
            input += line + "\n";
            std::istringstream stream(answer);
            for (std::string part; std::getline(stream, part);) {
                expected.push_back(part);
            }
        }
        EXPECT_THAT(answers(input, preferences), ElementsAreArray(expected));
    }
};

TEST_F(BridgeCommandTest, ParametersReadAndWriteBothWays) {
    expectDialogue({
        {"get params.pitch", "\"0.5\""},
        {"get params.pitch.human", "\"0.00 sm\""},
        {"set params.pitch 0.75", "host: automate 0 0.75\nok"},
        {"get params.pitch.human", "\"18.00 sm\""},
        {"set params.pitch 7", "host: automate 0 1\nok"},
        {"set params.pitch \"-1\"", "host: automate 0 0\nok"},
        {"set params.pitch high", "error: Invalid number: high"},
        {"set params.sampleRate.human \"44 -> 48 kHz\"", "host: automate 7 1\nok"},
        {"set params.sync.human On", "host: automate 5 1\nok"},
        {"set params.frameRate.human 1/8T", "host: automate 4 0.6875\nok"},
        {"get params.frameRate.human", "\"1/8T\""},
        {"set params.mix.human loud", "error: Invalid value: loud"},
        {"get params.loudness", "error: Unknown variable: params.loudness"},
        {"set params.loudness 1", "error: Unknown variable: params.loudness"},
        {"get params", "error: Unknown variable: params"},
    });
}

TEST_F(BridgeCommandTest, ChangeParam) {
    expectDialogue({
        {"do changeParam { param: pitch, toggle: true }", "host: automate 0 0\nok"},
        {"set params.pitch 0.49", "host: automate 0 0.49\nok"},
        {"do changeParam { param: pitch, toggle: true }", "host: automate 0 1\nok"},
        {"checked changeParam { param: pitch, toggle: true }", "true"},
        {"do changeParam { param: pitch, by: 0.25 }", "ok"},
        {"enabled changeParam { param: pitch, by: 0.25, whenEqual: disabled }", "false"}, // nowhere to go
        {"enabled changeParam { param: pitch, by: -0.25, whenEqual: disabled }", "true"},
        {"do changeParam { param: pitch, by: -0.25 }", "host: automate 0 0.75\nok"},
        {"do changeParam { param: pitch, to: 0.25 }", "host: automate 0 0.25\nok"},
        {"checked changeParam { param: pitch, to: 0.25 }", "true"},
        {"checked changeParam { param: pitch, to: 0.5 }", "false"},
        {"enabled changeParam { param: pitch, to: 0.25 }", "true"},
        {"enabled changeParam { param: pitch, to: 0.25, whenEqual: disabled }", "false"},
        {"checked changeParam { param: pitch, to: 0.25, whenEqual: disabled }", "false"},
        {"checked changeParam { param: pitch, to: 0.25, whenEqual: \"\" }", "false"},
        {"set params.sampleRate 0.3", "host: automate 7 0.3\nok"},
        {"checked changeParam { param: sampleRate, to: 0.3333333 }", "true"},
        {"checked changeParam { param: sampleRate, to: 0 }", "false"},
        {"set instance.aim 0.125", "ok"},
        {"do changeParam { param: pitch, toVariable: instance.aim }", "host: automate 0 0.125\nok"},
        {"do changeParam { param: pitch, byVariable: instance.aim }", "host: automate 0 0.25\nok"},
        {"do changeParam", "error: Missing param for changeParam"},
        {"do changeParam { to: 1 }", "error: Missing param for changeParam"},
        {"do changeParam { param: loudness, to: 1 }", "error: Unknown param for changeParam: loudness"},
        {"do changeParam { param: pitch }", "error: Invalid action params for changeParam: { param: pitch }"},
        {"do changeParam { param: pitch, to: 1, by: 1 }",
         "error: Invalid action params for changeParam: { param: pitch, to: 1, by: 1 }"},
        {"do changeParam { param: pitch, to: much }",
         "error: Invalid action params for changeParam: { param: pitch, to: much }"},
        {"do changeParam { param: pitch, toVariable: nobody }", "error: Unknown variable: nobody"},
        {"get params.pitch", "\"0.25\""},
    });
}

TEST_F(BridgeCommandTest, UndoGoesAcrossPrograms) {
    expectDialogue({
        {"enabled undo", "false"},
        {"set params.mix 0.5", "host: automate 8 0.5\nok"},
        {"set params.mix 0.4", "host: automate 8 0.4\nok"},
        {"set params.detune 0.5", "host: automate 2 0.5\nok"},
        {"get undo.description", "\"Change Detune\""},
        {"do switchProgram { step: 1 }", "host: updateDisplay\nok"},
        {"get programNumber", "\"2\""},
        {"set patch.name \"A \\\"name\\\"\"", "host: updateDisplay\nok"},
        {"get patch.name", "\"A \\\"name\\\"\""},
        {"get patch.modified", "\"true\""},
        {"get undo.description", "\"Change Patch Name\""},
        {"do undo", "host: updateDisplay\nok"},
        {"get patch.name", "\"(C) 1978\""},
        {"do undo", "host: updateDisplay\nok"},
        {"get programNumber", "\"1\""},
        {"get params.detune", "\"0\""},
        {"do undo", "host: updateDisplay\nok"},
        {"get params.mix", "\"1\""},
        {"enabled undo", "false"},
        {"get redo.description", "\"Change Mix\""},
        {"do redo", "host: updateDisplay\nok"},
        {"get params.mix", "\"0.4\""},
    });
}

TEST_F(BridgeCommandTest, ProgramsStopOrWrapAtTheEnds) {
    expectDialogue({
        {"do switchProgram { step: -1 }", "ok"},
        {"do switchProgram { step: -1, wrap: true }", "host: updateDisplay\nok"},
        {"get programNumber", "\"16\""},
        {"do switchProgram { step: 1 }", "ok"},
        {"do switchProgram { step: 2 }", "error: Invalid action params for switchProgram: { step: 2 }"},
        {"set instance.menuAnswer \"3. (C) 2014\"", "ok"},
        {"do chooseProgram", "host: updateDisplay\nok"},
        {"get programNumber", "\"3\""},
    });
}

TEST_F(BridgeCommandTest, PatchesGoThroughClipboardAndFiles) {
    expectDialogue({
        {"do pastePatch", "error: No content on clipboard"},
        {"set patch.name Mine", "host: updateDisplay\nok"},
        {"set params.tracking 0.25", "host: automate 1 0.25\nok"},
        {"do copyPatch", "ok"},
        {"set instance.dialogAnswer b.kvmp", "ok"},
        {"do savePatch", "host: updateDisplay\nok"},
        {"get patch.modified", "\"false\""},
        {"do initPatch", "host: updateDisplay\nok"},
        {"get patch.name", "\"Init Patch\""},
        {"get params.tracking", "\"0.5\""},
        {"do initPatch { name: \"[uppercase]new[/uppercase]\" }", "host: updateDisplay\nok"},
        {"get patch.name", "\"NEW\""},
        {"do exchangePatch", "host: updateDisplay\nok"},
        {"get patch.name", "\"Mine\""},
        {"do pastePatch", "host: updateDisplay\nok"},
        {"get patch.name", "\"NEW\""},
        {"do openPatch", "host: updateDisplay\nok"},
        {"get patch.name", "\"Mine\""},
        {"get params.tracking", "\"0.25\""},
        {"set instance.dialogAnswer broken.kvmp", "ok"},
        {"do openPatch", "error: Could not read broken.kvmp: No such file or directory"},
        {"get undo.description", "\"Open Patch\""},
        {"set instance.dialogAnswer \"\"", "ok"},
        {"do openPatch", "ok"},
        {"clipboard \"no patch\"", "ok"},
        {"do pastePatch", "error: Invalid data format"},
        {"get patch.name", "\"Mine\""},
    });
    EXPECT_THAT(read("b.kvmp"), HasSubstr("\r\n\tname: \"Mine\"\r\n"));
}

TEST_F(BridgeCommandTest, StepsThroughTheFilesOfAFolder) {
    const std::string text = "MurmelonPatch: { format: 1, parameters: { } }";
    for (const char* name : {"a.kvmp", "B.kvmp", "c.kvmp"}) {
        write(name, text);
    }
    const std::string folder = folder_.string() + "/";
    expectDialogue({
        {"set instance.dialogAnswer " + folder + "B.kvmp", "ok"},
        {"do openPatch", "host: updateDisplay\nok"},
        {"do switchPatch { step: 1 }", "host: updateDisplay\nok"},
        {"get patch.name", "\"c\""},
        {"do switchPatch { step: 1, wrap: false }", "ok"},
        {"get patch.name", "\"c\""},
        {"do switchPatch { step: 1, wrap: true }", "host: updateDisplay\nok"},
        {"get patch.name", "\"a\""},
        {"set instance.menuAnswer B", "ok"},
        {"do choosePatch", "host: updateDisplay\nok"},
        {"get patch.name", "\"B\""},
        {"do switchPatch", "error: Invalid action params for switchPatch: "},
    });
}

#if !defined(_WIN32) // where programs know no other folder than the user's own
TEST_F(BridgeCommandTest, FactoryPatchesAreThereWhenAskedFor) {
    expectDialogue({
        {"set instance.menuAnswer \"Go to Factory Patches\"", "ok"},
        {"do choosePatch", "ok"},
        {"set instance.menuAnswer \"16 MIDI In\"", "ok"},
        {"do choosePatch", "host: updateDisplay\nok"},
        {"get patch.name", "\"MIDI In\""},
        {"get patch.modified", "\"false\""},
        {"get params.midi.human", "\"On\""},
        {"do switchPatch { step: -1 }", "host: updateDisplay\nok"},
        {"get patch.name", "\"Blown Alias\""},
    });
    const auto factory = folder_ / "Korvanta" / "Murmelon Patches";
    EXPECT_THAT(CommandRun::contentsOf(factory / "16 MIDI In.kvmp"), HasSubstr("modified: false"));
    // What the user has thrown away stays away.
    std::filesystem::remove(factory / "16 MIDI In.kvmp");
    expectDialogue({{"set instance.menuAnswer \"Go to Factory Patches\"", "ok"}, {"do choosePatch", "ok"}});
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(factory), {}), 15);
}
#endif

TEST_F(BridgeCommandTest, MidiConfigurationAndLearning) {
    expectDialogue({
        {"get midiConfig.assignedCount", "\"0\""},
        {"do changeMidiConfig { ccAssignments: { pitch: 20 }, inputChannel: 2, masterTuning: 442 }", "ok"},
        {"get midiConfig.cc.20", "\"pitch\""},
        {"get midiConfig.cc.pitch", "\"20\""},
        {"get midiConfig.cc.21", "\"\""},
        {"get midiConfig.inputChannel", "\"2\""},
        {"do changeMidiConfig { inputChannel: 17 }",
         "error: input midi channel in midi configuration is out of range"},
        {"do changeMidiConfig { programKeysBaseNote: 0 }",
         "error: program change base note in midi configuration is out of range"},
        {"do changeMidiConfig { colour: red }",
         "error: Invalid action params for changeMidiConfig: { colour: red }"},
        {"get midiConfig.masterTuning", "\"442\""},
        {"midi 177 20 127", "ok"}, // channel 2
        {"process 512", "host: automate 0 1\nok"},
        {"midi 176 20 0", "ok"}, // channel 1: not heard
        {"process 512", "ok"},
        {"get params.pitch", "\"1\""},
        {"do midiAssign { variable: params.mix, learn: true }", "ok"},
        {"do sendMidi { message: { 177, 33, 64 } }", "ok"},
        {"process 512", "ok"},
        {"get midiConfig.cc.mix", "\"33\""},
        {"get midiLearnCC", "\"33\""},
        {"do midiAssign { variable: params.mix, unassign: true }", "ok"},
        {"get midiConfig.assignedCount", "\"1\""},
        {"do sendMidi { message: { 0xB1, 20, 0x7f } }", "ok"},
        {"set params.pitch 0", "host: automate 0 0\nok"},
        {"process 512", "host: automate 0 1\nok"},
        {"do sendMidi { message: { 0x100 } }", "error: Invalid sendMidi byte array: { 0x100 }"},
        {"do sendMidi { message: { 300 } }", "error: Invalid sendMidi byte array: { 300 }"},
        {"do sendMidi { message: loud }", "error: Invalid sendMidi byte array: loud"},
        {"set instance.dialogAnswer my.kvmc", "ok"},
        {"do saveMidiConfig", "ok"},
        {"do resetMidiConfig", "ok"},
        {"get midiConfig.inputChannel", "\"any\""},
        {"do loadMidiConfig", "ok"},
        {"get midiConfig.inputChannel", "\"2\""},
        {"get midiConfig.programKeys.baseNoteName", "\"C3\""},
        {"get programKeys.baseNoteNumber", "\"60\""},
    });
}

TEST_F(BridgeCommandTest, WhatTeachesDoesNothingElse) {
    expectDialogue({
        {"do midiAssign { variable: params.mix, cc: 20 }", "ok"},
        {"do midiAssign { variable: params.pitch, learn: true }", "ok"},
        {"midi 176 20 0", "ok"},
        {"process 512", "ok"}, // the mix stays
        {"get midiConfig.cc.20", "\"pitch\""},
        {"midi 176 20 127", "ok"},
        {"process 512", "host: automate 0 1\nok"},
        {"do changeMidiConfig { programKeysEnabled: true }", "ok"},
        {"do midiAssign { variable: midiConfig.programKeys.baseNoteNumber, learn: true }", "ok"},
        {"midi 144 62 100", "ok"},
        {"process 512", "ok"},
        {"get programNumber", "\"1\""},
        {"midi 144 63 100", "ok"},
        {"process 512", "host: updateDisplay\nok"},
        {"get programNumber", "\"2\""},
    });
}

TEST_F(BridgeCommandTest, MidiConfigurationShowsInMenus) {
    expectDialogue({
        {"checked changeMidiConfig { inputChannel: any }", "true"},
        {"checked changeMidiConfig { inputChannel: 3 }", "false"},
        {"do changeMidiConfig { inputChannel: 3, masterTuning: 442 }", "ok"},
        {"checked changeMidiConfig { inputChannel: 3 }", "true"},
        {"checked changeMidiConfig { masterTuning: 442.0 }", "true"},
        {"checked changeMidiConfig { inputChannel: 3, masterTuning: 440 }", "false"},
        {"checked changeMidiConfig { toggle: programChanges }", "false"},
        {"do changeMidiConfig { toggle: programChanges }", "ok"},
        {"checked changeMidiConfig { toggle: programChanges }", "true"},
        {"get midiConfig.programChanges", "\"true\""},
        {"get midiConfig.inputChannel", "\"3\""},
        {"do changeMidiConfig { toggle: pitchBendHeldOnly }", "ok"},
        {"do changeMidiConfig { toggle: programKeysEnabled }", "ok"},
        {"do changeMidiConfig { toggle: programChanges }", "ok"},
        {"get midiConfig.pitchBendHeldOnly", "\"true\""},
        {"get midiConfig.programKeys.enabled", "\"true\""},
        {"get midiConfig.programChanges", "\"false\""},
        {"do changeMidiConfig { toggle: inputChannel }",
         "error: Invalid action params for changeMidiConfig: { toggle: inputChannel }"},
        {"do changeMidiConfig { toggle: programChanges, inputChannel: 1 }",
         "error: Invalid action params for changeMidiConfig: { toggle: programChanges, inputChannel: 1 }"},
        {"checked changeMidiConfig { inputChannel: 0 }",
         "error: input midi channel in midi configuration is out of range"},

        {"enabled midiAssign { variable: params.mix, unassign: true }", "false"},
        {"enabled midiAssign { variable: params.mix, cancel: true }", "false"},
        {"checked midiAssign { variable: params.mix, learn: true }", "false"},
        {"do midiAssign { variable: params.mix, learn: true }", "ok"},
        {"checked midiAssign { variable: params.mix, learn: true }", "true"},
        {"checked midiAssign { variable: params.pitch, learn: true }", "false"},
        {"enabled midiAssign { variable: params.mix, cancel: true }", "true"},
        {"do midiAssign { variable: params.mix, cc: 7 }", "ok"},
        {"checked midiAssign { variable: params.mix, cc: 7 }", "true"},
        {"checked midiAssign { variable: params.mix, cc: 8 }", "false"},
        {"enabled midiAssign { variable: params.mix, unassign: true }", "true"},
        {"enabled midiAssign { variable: params.mix }",
         "error: Invalid action params for midiAssign: { variable: params.mix }"},
    });
}

TEST_F(BridgeCommandTest, AnswersAsThePageSays) {
    std::ifstream page(MURMELON_DOCS "/effect.md");
    std::string fence;
    std::string asked;
    std::string said;
    int examples = 0;
    for (std::string line; std::getline(page, line);) {
        if (line == "```" && fence == "```output") {
            const auto result = run({"bridge"}, asked);
            EXPECT_EQ(result.output, said) << asked;
            asked.clear();
            said.clear();
            ++examples;
        }
        if (line.starts_with("```")) {
            fence = line;
        } else if (fence == "```bridge") {
            asked += line + "\n";
        } else if (fence == "```output") {
            said += line + "\n";
        }
    }
    EXPECT_EQ(examples, 3);
}

TEST_F(BridgeCommandTest, ReadOnlyAndUnknownNames) {
    for (const char* name : {"feedbacks.pitch", "patch.modified", "patch.identity", "undo.description", "isEnabled",
                             "programNumber", "midiConfig.assignedCount", "midiLearnCC", "MODEL.NAME",
                             "feedbacks.iirPower.1"}) {
        expectDialogue({{"set " + std::string(name) + " 1", "error: Variable cannot be changed: " + std::string(name)}});
    }
    expectDialogue({
        {"get MODEL.NAME", "\"Murmelon\""},
        {"get MODEL.VERSION", "\"1.6.2\""},
        {"get PLATFORM.OS", kSystem},
        {"get isEnabled", "\"true\""},
        {"get modalLayout", "error: Unknown variable: modalLayout"},
        {"get preferences.", "error: Unknown variable: preferences."},
        {"get feedbacks.loudness", "error: Unknown variable: feedbacks.loudness"},
        {"get feedbacks.iirPower.x", "error: Invalid number: x"},
        {"do dance", "error: Unrecognized action: dance"},
        {"enabled dance", "error: Unrecognized action: dance"},
        {"dance", "error: Unknown command: dance"},
        {"get instance.anything", "\"\""},
    });
}

TEST_F(BridgeCommandTest, FeedbacksFollowTheSound) {
    const auto lines = answers("get feedbacks.iirPower.0\nprocess 44100 220\nget feedbacks.sampleRate\n"
                               "get feedbacks.pitch\nget feedbacks.unvoiced\nget feedbacks.iirPower.0\n");
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0], "\"0.0\"");
    EXPECT_EQ(lines[2], "\"22050\"");
    EXPECT_NEAR(std::stod(lines[3].substr(1)), std::log2(220 / 261.6256), 0.02);
    EXPECT_LT(std::stod(lines[4].substr(1)), 0.5);
    EXPECT_GT(std::stod(lines[5].substr(1)), 0);
}

TEST_F(BridgeCommandTest, PreferencesAreSharedAndStay) {
    expectDialogue({{"set preferences.colour \"dark \\x01\"", "ok"},
                    {"set uiScale 5/4", "host: sizeWindow 587 400\nok"},
                    {"set uiScale 5/4", "host: sizeWindow 587 400\nok"},
                    {"set uiScale 0/1", "error: Invalid scale: 0/1"},
                    {"do toggleVersionCheck", "ok"},
                    {"do changeMidiConfig { pitchBendRange: 2 }", "ok"},
                    {"do makeMidiConfigDefault", "ok"},
                    {"set patch.name Startup", "host: updateDisplay\nok"},
                    {"do makeBankDefault", "ok"}},
                   "prefs");
    expectDialogue({{"get preferences.colour", "\"dark \\x01\""},
                    {"get uiScale", "\"5/4\""},
                    {"checked toggleVersionCheck", "true"},
                    {"get midiConfig.pitchBendRange", "\"2\""},
                    {"get patch.name", "\"Startup\""},
                    {"do resetBankDefault", "ok"}},
                   "prefs");
    expectDialogue({{"get patch.name", "\"Default\""}, {"get instance.colour", "\"\""}}, "prefs");
}

TEST_F(BridgeCommandTest, IdentityChangesWithProgramAndContentsOnly) {
    const auto lines = answers("get patch.identity\nset instance.dialogAnswer x.kvmp\ndo savePatch\n"
                               "get patch.identity\nset params.mix 0.5\nget patch.identity\n"
                               "set params.mix 1\nget patch.identity\ndo switchProgram { step: 1 }\n"
                               "get patch.identity\n");
    ASSERT_EQ(lines.size(), 14u);
    const std::string& first = lines[0];
    EXPECT_EQ(lines[4], first);
    EXPECT_NE(lines[7], first);
    EXPECT_EQ(lines[10], first);
    EXPECT_NE(lines[13], first);
}

TEST_F(BridgeCommandTest, TestsItself) {
    expectDialogue({{"do unitTest 2000", "ok"},
                    {"do unitTest { 10 }", "ok"},
                    {"do unitTest { 10, 20 }", "error: Invalid action params for unitTest: { 10, 20 }"},
                    {"do unitTest many", "error: Invalid action params for unitTest: many"}});
}

} // namespace
