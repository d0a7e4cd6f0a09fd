#include "model/MidiConfig.h"
#include "model/MidiConfigController.h"
#include "model/MidiConfigText.h"
#include "model/MidiRouter.h"
#include "model/PathText.h"
#include "platform/MemoryRecord.h"

#include "FilesInMemory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <functional>
#include <string>
#include <thread>

using namespace Model;

TEST(ControllerAssignments, staysTheSameFromBothSides) {
    ControllerAssignments assignments;
    for (int id = 0; id < Parameters::kCount; ++id) {
        EXPECT_EQ(assignments.controllerOf(id), 255);
    }
    for (int controller = 0; controller < 128; ++controller) {
        EXPECT_EQ(assignments.parameterOf(controller), -1);
    }
    assignments.assign(3, 20);
    assignments.assign(4, 21);
    assignments.assign(3, 21); // takes it from 4, and leaves 20
    EXPECT_EQ(assignments.controllerOf(3), 21);
    EXPECT_EQ(assignments.controllerOf(4), 255);
    EXPECT_EQ(assignments.parameterOf(20), -1);
    EXPECT_EQ(assignments.parameterOf(21), 3);
    EXPECT_EQ(assignments.count(), 1);
    assignments.assign(3, 21);
    EXPECT_EQ(assignments.parameterOf(21), 3);
    assignments.unassign(3);
    EXPECT_EQ(assignments, ControllerAssignments());
}

namespace {

const std::string kText = "MurmelonMidiConfig: {\n"
                          "\tprogramChanges: true\n"
                          "\tinputChannel: 16\n"
                          "\tccAssignments: {\n"
                          "\t\tframeRate: 1\n"
                          "\t\tmix: 100\n"
                          "\t}\n"
                          "\tsourcePath: \"/home/j\\xc3\\xb6rg/a.kvmc\"\n"
                          "\tpitchBendRange: 2\n"
                          "\tpitchBendHeldOnly: true\n"
                          "\tmasterTuning: 442.5\n"
                          "\tprogramKeysEnabled: true\n"
                          "\tprogramKeysBaseNote: 36\n"
                          "}\n";

// kText with the value of one key replaced.
std::string with(const std::string& key, const std::string& value) {
    std::string text = kText;
    const auto begin = text.find(key + ": ") + key.size() + 2;
    return text.replace(begin, text.find('\n', begin) - begin, value);
}

std::string without(const std::string& key) {
    std::string text = kText;
    const auto begin = text.find("\t" + key);
    const auto end = key == "ccAssignments" ? text.find("\t}\n") + 3 : text.find('\n', begin) + 1;
    return text.erase(begin, end - begin);
}

} // namespace

TEST(MidiConfigText, readsAndWrites) {
    MidiConfig config;
    ASSERT_TRUE(readMidiConfig(kText, config));
    EXPECT_TRUE(config.programChanges);
    EXPECT_EQ(config.inputChannel, 15);
    EXPECT_EQ(config.assignments.controllerOf(Parameters::frameRate), 1);
    EXPECT_EQ(config.assignments.parameterOf(100), Parameters::mix);
    EXPECT_EQ(config.sourcePath, pathFromUtf8("/home/jörg/a.kvmc"));
    EXPECT_EQ(config.masterTuning, 442.5f);
    EXPECT_EQ(writeMidiConfig(config), kText);

    MidiConfig reset;
    EXPECT_EQ(writeMidiConfig(reset), "MurmelonMidiConfig: {\n"
                                      "\tprogramChanges: false\n"
                                      "\tinputChannel: any\n"
                                      "\tccAssignments: { }\n"
                                      "\tsourcePath: \"\"\n"
                                      "\tpitchBendRange: 12\n"
                                      "\tpitchBendHeldOnly: false\n"
                                      "\tmasterTuning: 440\n"
                                      "\tprogramKeysEnabled: false\n"
                                      "\tprogramKeysBaseNote: 60\n"
                                      "}\n");
    ASSERT_TRUE(readMidiConfig(writeMidiConfig(reset), config));
    EXPECT_TRUE(config.assignments == ControllerAssignments());
    EXPECT_EQ(config.inputChannel, -1);
}

TEST(MidiConfigText, aLoadedFileKeepsItsPath) {
    MidiConfig config;
    config.sourcePath = "/new/b.kvmc";
    ASSERT_TRUE(readMidiConfig(kText, config));
    EXPECT_EQ(config.sourcePath, "/new/b.kvmc");
}

TEST(MidiConfigText, readsNumbersOnBothSidesOfTheirLimits) {
    const std::string channelError = "input midi channel in midi configuration is out of range";
    const std::string tuningError = "master tuning midi configuration is out of range";
    const std::string noteError = "program change base note in midi configuration is out of range";
    const auto channel = [](const MidiConfig& config) { return static_cast<double>(config.inputChannel); };
    const auto tuning = [](const MidiConfig& config) { return static_cast<double>(config.masterTuning); };
    const auto note = [](const MidiConfig& config) {
        return static_cast<double>(config.programKeysBaseNote);
    };
    const auto range = [](const MidiConfig& config) { return static_cast<double>(config.pitchBendRange); };
    const auto controller = [](const MidiConfig& config) {
        return static_cast<double>(config.assignments.controllerOf(Parameters::frameRate));
    };
    struct Row {
        std::string key;
        std::string value;
        std::function<double(const MidiConfig&)> field;
        double expected;
        std::string error = {};
    };
    const Row rows[] = {
        {"inputChannel", "any", channel, -1},
        {"inputChannel", "\"any\"", channel, -1},
        {"inputChannel", "1", channel, 0},
        {"inputChannel", "0", channel, 0, channelError},
        {"inputChannel", "17", channel, 0, channelError},
        {"inputChannel", "-1", channel, 0, channelError},
        {"inputChannel", "Any", channel, 0, "Invalid number: Any"},
        {"masterTuning", "1.0", tuning, 1},
        {"masterTuning", "9999.5", tuning, 9999.5},
        {"masterTuning", "10000.0", tuning, 0, tuningError},
        {"masterTuning", "0.5", tuning, 0, tuningError},
        {"masterTuning", "nan", tuning, 0, tuningError},
        {"programKeysBaseNote", "127", note, 127},
        {"programKeysBaseNote", "1", note, 1},
        {"programKeysBaseNote", "0", note, 0, noteError},
        {"programKeysBaseNote", "128", note, 0, noteError},
        {"pitchBendRange", "-48", range, -48},
        {"frameRate", "0", controller, 0},
        {"frameRate", "-5", controller, 0},
        {"frameRate", "200", controller, 127},
        {"frameRate", "0x10", controller, 16},
        {"frameRate", "x", controller, 0, "Invalid number: x"},
        {"programChanges", "yes", channel, 0, "Invalid Stackbrace in f at line 2 column 18 (offset 39)"},
    };
    for (const Row& row : rows) {
        MidiConfig config;
        try {
            ASSERT_TRUE(readMidiConfig(with(row.key, row.value), config, "f"));
            EXPECT_EQ(row.field(config), row.expected) << row.key << " " << row.value;
            EXPECT_EQ(row.error, "") << row.key << " " << row.value;
        } catch (const std::exception& error) {
            EXPECT_EQ(error.what(), row.error) << row.key << " " << row.value;
            EXPECT_EQ(config, MidiConfig()); // as it was
        }
    }
}

TEST(MidiConfigText, missesWhatIsMissing) {
    const std::string nothing = "Invalid Stackbrace in f at line 1 column 1 (offset 0)";
    for (const std::string key : {"programChanges", "inputChannel", "pitchBendRange", "pitchBendHeldOnly",
                                  "masterTuning", "programKeysEnabled", "programKeysBaseNote"}) {
        MidiConfig config;
        try {
            readMidiConfig(without(key), config, "f");
            ADD_FAILURE() << key;
        } catch (const std::exception& error) {
            EXPECT_EQ(error.what(), nothing) << key;
        }
    }
    MidiConfig config;
    EXPECT_TRUE(readMidiConfig(without("ccAssignments"), config)); // no assignments
    EXPECT_EQ(config.assignments.count(), 0);
    EXPECT_TRUE(readMidiConfig(without("sourcePath"), config));
    MidiConfig untouched;
    EXPECT_FALSE(readMidiConfig("Other: { }", untouched));
    EXPECT_FALSE(readMidiConfig("", untouched));
    EXPECT_EQ(untouched, MidiConfig());
}

TEST(MidiConfigText, twoParametersOfOneControllerLeaveTheLater) {
    MidiConfig config;
    readMidiConfig(with("mix", "1"), config);
    EXPECT_EQ(config.assignments.parameterOf(1), Parameters::mix);
    EXPECT_EQ(config.assignments.controllerOf(Parameters::frameRate), 255);
}

TEST(MidiConfigController, loadsSavesAndRemembers) {
    MidiMapping mapping;
    FilesInMemory disk("/configs");
    Platform::MemoryRecord record;
    Preferences preferences(record);
    MidiConfigController controller(mapping, disk, preferences);
    controller.loadDefault(); // there is none
    EXPECT_EQ(controller.config(), MidiConfig());

    disk.files["/configs/a.kvmc"] = kText;
    disk.files["/configs/bad.kvmc"] = with("inputChannel", "17");
    disk.files["/configs/other.kvmc"] = "Other: 1";
    controller.load("/configs/a.kvmc");
    EXPECT_EQ(controller.config().sourcePath, "/configs/a.kvmc");
    EXPECT_EQ(mapping.masterTuning(), 442.5f);
    const MidiConfig loaded = controller.config();
    EXPECT_THROW(controller.load("/configs/bad.kvmc"), MidiConfigRangeError);
    EXPECT_THROW(controller.save("/elsewhere/a.kvmc"), std::runtime_error);
    controller.load("/configs/other.kvmc");
    EXPECT_EQ(controller.config(), loaded);

    controller.save("/configs/b.kvmc");
    EXPECT_EQ(controller.config().sourcePath, "/configs/b.kvmc");
    EXPECT_NE(disk.files["/configs/b.kvmc"].find("\tinputChannel: 16\r\n"), std::string::npos);
    controller.makeDefault();
    controller.reset();
    EXPECT_EQ(controller.config(), MidiConfig());
    EXPECT_EQ(mapping.masterTuning(), 440);
    MidiMapping newMapping;
    MidiConfigController newInstance(newMapping, disk, preferences);
    newInstance.loadDefault();
    EXPECT_EQ(newInstance.config().masterTuning, 442.5f);
    EXPECT_TRUE(newMapping.hearsChannel(15));
    EXPECT_FALSE(newMapping.hearsChannel(0));
}

// --- routing -----------------------------------------------------------------------------------------------

namespace {

std::string shown(const MidiRoute& route) {
    std::string text = route.toEngine ? "engine" : "";
    if (route.parameter >= 0) {
        text += " p" + std::to_string(route.parameter) + "=" + std::to_string(std::lround(route.value * 127));
    }
    if (route.program >= 0) {
        text += " program" + std::to_string(route.program);
    }
    return text;
}

struct Step {
    MidiMessage message;
    std::string expected;
};

void play(MidiRouter& router, const MidiConfig& config, const std::vector<Step>& steps) {
    MidiMapping mapping;
    mapping.publish(config);
    for (const auto& [message, expected] : steps) {
        EXPECT_EQ(shown(router.route(mapping, message)), expected)
            << std::hex << int{message.status} << " " << int{message.data1} << " " << int{message.data2};
    }
}

} // namespace

TEST(MidiRouter, withTheResetConfigurationTheEngineHearsNotesAndControllers) {
    MidiRouter router;
    play(router, {},
         {{{0x90, 60, 1}, "engine"},
          {{0x9F, 61, 127}, "engine"},
          {{0x80, 60, 0}, "engine"},
          {{0x80, 60, 0}, ""}, // nothing to end
          {{0x9F, 61, 0}, "engine"},
          {{0xB0, 64, 127}, "engine"},
          {{0xB0, 7, 100}, "engine"},
          {{0xB0, 123, 0}, "engine"},
          {{0xE3, 0, 0}, "engine"},
          {{0xC0, 3, 0}, ""},
          {{0xA0, 60, 3}, ""},
          {{0xD0, 60, 0}, ""},
          {{0xF8, 0, 0}, ""},
          {{0x40, 60, 1}, ""}});
}

TEST(MidiRouter, carriesOutTheConfiguration) {
    MidiConfig config;
    config.inputChannel = 2;
    config.programChanges = true;
    config.programKeysEnabled = true;
    config.programKeysBaseNote = 120;
    config.assignments.assign(Parameters::mix, 7);
    config.assignments.assign(Parameters::pitch, 123);
    config.assignments.assign(Parameters::sync, 64);
    MidiRouter router;
    play(router, config,
         {{{0xB2, 7, 127}, " p8=127"},
          {{0xB2, 7, 0}, " p8=0"},
          {{0xB1, 7, 1}, ""},
          {{0xB2, 64, 127}, " p1=127"},
          {{0xB2, 123, 0}, "engine p4=0"},
          {{0xB2, 8, 1}, "engine"},
          {{0xC2, 0, 0}, " program0"},
          {{0xC2, 15, 0}, " program15"},
          {{0xC2, 16, 0}, ""},
          {{0xC1, 0, 0}, ""},
          {{0x92, 119, 1}, "engine"},
          {{0x92, 120, 1}, " program0"},
          {{0x82, 120, 1}, ""},
          {{0x92, 127, 1}, " program7"},
          {{0x91, 120, 1}, ""},
          {{0x91, 60, 1}, ""},
          {{0xE1, 0, 0}, ""},
          {{0xE2, 0, 0}, "engine"}});
}

TEST(MidiRouter, endsWhatHasBegunWhateverTheConfigurationSaysThen) {
    MidiConfig first;
    first.inputChannel = 0;
    MidiConfig other;
    other.inputChannel = 1;
    other.programKeysEnabled = true;
    other.assignments.assign(Parameters::sync, 64);
    MidiRouter router;
    play(router, first, {{{0x90, 60, 9}, "engine"}, {{0xB0, 64, 127}, "engine"}, {{0xE0, 0, 0}, "engine"}});
    play(router, other,
         {{{0xE0, 1, 0}, ""},
          {{0xE0, 0, 64}, "engine"},
          {{0xE0, 0, 64}, ""},
          {{0xB0, 64, 100}, ""},
          {{0xB0, 64, 0}, "engine"},
          {{0xB0, 64, 0}, ""},
          {{0x90, 60, 0}, "engine"},
          {{0x80, 60, 0}, ""}});
    play(router, first, {{{0x90, 62, 9}, "engine"}});
    router.reset();
    play(router, other, {{{0x80, 62, 0}, ""}});
}

TEST(MidiMapping, carriesTheSettingsOfTheEngine) {
    MidiConfig config;
    config.pitchBendRange = 2;
    config.pitchBendHeldOnly = true;
    config.masterTuning = 432;
    MidiMapping mapping;
    EXPECT_EQ(mapping.pitchBendRange(), 12);
    mapping.publish(config);
    EXPECT_EQ(mapping.pitchBendRange(), 2);
    EXPECT_TRUE(mapping.pitchBendHeldOnly());
    EXPECT_EQ(mapping.masterTuning(), 432);
    config.pitchBendRange = 2'000'000'000;
    mapping.publish(config);
    EXPECT_EQ(mapping.pitchBendRange(), 128);
}

TEST(MidiMapping, isPublishedWhileMessagesAreRouted) {
    MidiMapping mapping;
    std::atomic<bool> stop{false};
    std::thread audio([&] {
        MidiRouter router;
        for (unsigned i = 0; !stop; ++i) {
            router.route(mapping, {static_cast<std::uint8_t>(0x80 + i % 128),
                                   static_cast<std::uint8_t>(i / 7), static_cast<std::uint8_t>(i)});
        }
    });
    MidiConfig config;
    for (int i = 0; i < 2000; ++i) {
        config.inputChannel = i % 17 - 1;
        config.assignments.assign(i % Parameters::kCount, i % 128);
        mapping.publish(config);
    }
    stop = true;
    audio.join();
}
