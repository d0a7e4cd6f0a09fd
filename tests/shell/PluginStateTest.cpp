// Programs and chunks through the plug-in's binary, and what new instances start with.
#include "PluginHost.h"

#include "model/MidiConfig.h"
#include "model/MidiConfigText.h"
#include "model/PatchText.h"
#include "model/Preferences.h"
#include "model/Product.h"
#include "model/Programs.h"
#include "platform/UserRecord.h"
#include "state/Chunks.h"
#include "state/StartupBank.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Vst2;

namespace {

constexpr VstInt32 kPitch = 0; // host indices

std::string nameOf(PluginHost& host, VstInt32 program) {
    return host.text(effGetProgramNameIndexed, program, 24);
}

} // namespace

TEST(Programs, areSwitchedNamedAndKeptApart) {
    PluginHost host;
    host.set(kPitch, 0.25f);
    host.call(effSetProgram, 0, 3);
    EXPECT_EQ(host.call(effGetProgram), 3);
    EXPECT_EQ(host.text(effGetProgramName), "Suboctaver");
    host.set(kPitch, 0.75f);
    char name[] = "exactly twenty-four byte";
    host.call(effSetProgramName, 0, 0, name);
    EXPECT_EQ(nameOf(host, 3), name);
    for (const VstIntPtr beyond : {-1, 16, 1 << 30}) {
        host.call(effSetProgram, 0, beyond);
        EXPECT_EQ(host.call(effGetProgram), 3);
    }
    host.call(effSetProgram, 0, 0);
    EXPECT_EQ(host.get(kPitch), 0.25f);
    EXPECT_EQ(host.text(effGetProgramName), "Default");
}

TEST(Programs, longNamesAreCutBetweenCharactersAndSurviveTheHost) {
    PluginHost host;
    char name[] = "twenty-three bytes and \xC3\xA4 tail"; // the umlaut would begin as the 24th byte
    host.call(effSetProgramName, 0, 0, name);
    std::string told = host.text(effGetProgramName, 0, 24);
    EXPECT_EQ(told, "twenty-three bytes and ");
    host.call(effSetProgramName, 0, 0, told.data());
    PluginHost other;
    ASSERT_TRUE(other.setChunk(host.chunk(true), true));
    Model::Programs programs;
    Bnk::readProgramChunk(other.chunk(true), programs);
    EXPECT_EQ(programs[0].name(), name);
}

TEST(Chunks, carryEverythingToAnotherInstance) {
    PluginHost first;
    for (VstInt32 program = 0; program < 16; ++program) {
        first.call(effSetProgram, 0, program);
        for (VstInt32 index = 0; index < 10; ++index) {
            first.set(index, static_cast<float>((program * 37 + index * 11) % 101) / 101);
        }
        std::string name = "Program " + std::to_string(program);
        first.call(effSetProgramName, 0, 0, name.data());
    }
    const std::string bank = first.chunk();
    first.call(effSetProgram, 0, 7);
    const std::string program = first.chunk(true);

    PluginHost second;
    second.call(effSetProgram, 0, 2);
    ASSERT_TRUE(second.setChunk(bank));
    EXPECT_EQ(second.call(effGetProgram), 2);
    PluginHost third;
    third.call(effSetProgram, 0, 15);
    ASSERT_TRUE(third.setChunk(program, true));
    EXPECT_EQ(nameOf(third, 15), "Program 7");
    EXPECT_EQ(nameOf(third, 7), "C2 Schneider");
    for (VstInt32 i = 0; i < 16; ++i) {
        first.call(effSetProgram, 0, i);
        second.call(effSetProgram, 0, i);
        EXPECT_EQ(nameOf(second, i), "Program " + std::to_string(i));
        for (VstInt32 index = 0; index < 10; ++index) {
            EXPECT_EQ(second.text(effGetParamDisplay, index), first.text(effGetParamDisplay, index));
            if (index < 2 || index == 3 || index == 8) { // scales without flat stretches or steps
                EXPECT_EQ(second.get(index), first.get(index)) << "program " << i << ", parameter " << index;
            }
        }
    }
}

TEST(Chunks, stayValidUntilTheNextOfTheirKind) {
    PluginHost host;
    void* bank = nullptr;
    const VstIntPtr size = host.call(effGetChunk, 0, 0, &bank);
    const std::string before(static_cast<char*>(bank), static_cast<std::size_t>(size));
    host.set(kPitch, 0.1f);
    host.chunk(true);
    host.setChunk(before);
    EXPECT_EQ(before, std::string(static_cast<char*>(bank), static_cast<std::size_t>(size)));
}

namespace {

void store(std::string_view entry, const std::string& content) {
    Model::Preferences(*Platform::openUserRecord("preferences")).set(entry, content);
}

Model::MidiConfig configOf(PluginHost& host) {
    Model::Programs programs;
    Model::MidiConfig config;
    Bnk::readBankChunk(host.chunk(), programs, config);
    return config;
}

} // namespace

TEST(StartUp, takesTheStoredBankAndMidiConfiguration) {
    settings.clear();
    Model::Programs programs;
    programs[0].setName("Mine");
    programs[4].setValue(Parameters::pitch, 0.125f);
    programs.select(4);
    store(Bnk::kStartupBankEntry, Bnk::writeStartupBank(programs));
    Model::MidiConfig config;
    config.inputChannel = 9;
    config.assignments.assign(Parameters::mix, 7);
    store("MidiConfig", Model::writeMidiConfig(config));

    PluginHost host;
    EXPECT_EQ(nameOf(host, 0), "Mine");
    EXPECT_EQ(host.call(effGetProgram), 4);
    EXPECT_EQ(host.get(kPitch), 0.125f);
    EXPECT_EQ(configOf(host), config);
    settings.clear();
    PluginHost later;
    EXPECT_EQ(nameOf(later, 0), "Default");
    EXPECT_EQ(configOf(later), Model::MidiConfig());
}

TEST(StartUp, whatIsDamagedIsLeftOut) {
    Model::Programs programs;
    programs[0].setName("Mine");
    const std::string bank = Bnk::writeStartupBank(programs);
    struct Row {
        const char* name;
        std::string bank;
        std::string midiConfig;
        const char* error;
        const char* firstProgram;
    };
    for (const Row& row : {
             Row{"bank", bank.substr(0, bank.size() / 2), "", "End of file error", "Default"},
             {"MIDI configuration", bank, "MurmelonMidiConfig: { programChanges: maybe }", "Invalid Stackbrace at line 1", "Mine"},
         }) {
        settings.clear();
        store(Bnk::kStartupBankEntry, row.bank);
        store("MidiConfig", row.midiConfig);
        PluginHost host;
        ASSERT_TRUE(host) << row.name;
        EXPECT_EQ(nameOf(host, 0), row.firstProgram) << row.name;
        EXPECT_EQ(configOf(host), Model::MidiConfig()) << row.name;
        const std::string error = host.text(effGetErrorText, 0, 255);
        EXPECT_THAT(error, testing::StartsWith(row.error)) << row.name;
    }
    settings.clear();
    Platform::openUserRecord("preferences")->update([](const std::string&) {
        return Platform::SharedRecord::Replacement{"not { a structure"};
    });
    PluginHost host;
    EXPECT_EQ(nameOf(host, 0), "Default");
    EXPECT_NE(host.text(effGetErrorText, 0, 255), "");
    settings.clear();
}
