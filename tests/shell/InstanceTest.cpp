// What the editor is served by the instance, and how hosts are known.
#include "instance/EffectInstance.h"
#include "vst2/HostCallback.h"
#include "vst2/Texts.h"

#include "model/MidiConfigText.h"
#include "platform/MemoryRecord.h"
#include "state/Chunks.h"
#include "state/StartupBank.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

using namespace Shell;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Notes what it is told, a line each.
struct NotingHost final : Host {
    const HostIdentity& identity() const override { return identity_; }
    void automate(int id, float value) override {
        told.push_back("automate " + std::to_string(id) + " " + std::to_string(value).substr(0, 4));
    }
    void beginEdit(int id) override { told.push_back("begin " + std::to_string(id)); }
    void endEdit(int id) override { told.push_back("end " + std::to_string(id)); }
    void updateDisplay() override { told.push_back("update"); }
    bool sizeWindow(int, int) override { return false; }
    HostTransport transport() noexcept override { return {}; }

    HostIdentity identity_;
    std::vector<std::string> told;
};

struct Instance : testing::Test {
    NotingHost host;
    Platform::MemoryRecord preferences;
    Model::DiskFiles files;

    std::unique_ptr<EffectInstance> make(std::string_view factoryBank = {}) {
        return std::make_unique<EffectInstance>(host, Surroundings{preferences, files, factoryBank});
    }
    std::vector<std::string> toldSince() { return std::exchange(host.told, {}); }
};

} // namespace

TEST_F(Instance, editsAreAutomationAndOneUndoStep) {
    const auto instance = make();
    const float before = instance->parameter(Parameters::pitch);
    instance->beginEdit(Parameters::pitch);
    instance->editParameter(Parameters::pitch, 0.25f);
    instance->editParameter(Parameters::pitch, 0.75f);
    instance->editParameter(Parameters::pitch, 0.75f);
    instance->endEdit(Parameters::pitch);
    EXPECT_THAT(toldSince(), ElementsAre("begin 4", "automate 4 0.25", "automate 4 0.75", "end 4"));
    instance->editParameter(Parameters::mix, -3);
    EXPECT_THAT(toldSince(), ElementsAre("begin 8", "automate 8 0.00", "end 8"));
    EXPECT_EQ(instance->patches().history().undoDescription(), "Change Mix");
    instance->patches().undo();
    instance->patches().undo();
    EXPECT_EQ(instance->parameter(Parameters::pitch), before);
    EXPECT_THAT(toldSince(), ElementsAre("update", "update"));
}

TEST_F(Instance, theEditorSeesWhenThePatchIsAnother) {
    const auto instance = make();
    const std::string bank = instance->bankChunk();
    struct Row {
        const char* name;
        std::function<void()> act;
        bool hostIsTold;
    };
    for (const Row& row : {Row{"switched", [&] { instance->switchProgram(3); }, true},
                           {"initialised", [&] { instance->patches().initialise(); }, true},
                           {"renamed by the host", [&] { instance->renameProgram("New"); }, false},
                           {"chunk", [&] { instance->readBankChunk(bank); }, false}}) {
        const unsigned before = instance->patchReplacements();
        row.act();
        EXPECT_NE(instance->patchReplacements(), before) << row.name;
        EXPECT_EQ(toldSince().empty(), !row.hostIsTold) << row.name;
    }
    const unsigned before = instance->patchReplacements();
    instance->switchProgram(3);
    EXPECT_EQ(instance->patchReplacements(), before);
}

TEST_F(Instance, learnsControllersAndKeys) {
    const auto instance = make();
    Model::MidiConfig config;
    config.inputChannel = 2;
    instance->midiConfigs().replace(config);
    std::array<float, 16> samples{};
    float* const both[] = {samples.data(), samples.data()};
    const auto play = [&](std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
        instance->audio().inject({status, data1, data2});
        instance->process({.in = both, .out = both, .samples = 16});
    };
    using Kind = LearnedMidi::Kind;
    play(0xB2, 7, 1);
    EXPECT_EQ(instance->audio().takeLearned(), std::nullopt); // not learning yet
    instance->audio().setLearning(true);
    play(0xB0, 7, 1);   // another channel
    play(0xB2, 123, 0); // all notes off
    play(0x92, 60, 0);  // the end of a note
    play(0x82, 60, 64);
    EXPECT_EQ(instance->audio().takeLearned(), std::nullopt);
    play(0xB2, 7, 0);
    play(0xB2, 8, 0);
    EXPECT_EQ(instance->audio().takeLearned(), (LearnedMidi{Kind::controller, 7}));
    EXPECT_EQ(instance->audio().takeLearned(), std::nullopt);
    play(0x92, 0, 1);
    EXPECT_EQ(instance->audio().takeLearned(), (LearnedMidi{Kind::key, 0}));
    play(0x92, 1, 1);
    instance->audio().setLearning(false);
    EXPECT_EQ(instance->audio().takeLearned(), std::nullopt);
}

TEST_F(Instance, isEnabledWhenNeitherSuspendedNorBypassed) {
    const auto instance = make();
    EXPECT_FALSE(instance->enabled());
    instance->resume();
    EXPECT_TRUE(instance->enabled());
    instance->audio().setBypassed(true);
    EXPECT_FALSE(instance->enabled());
    instance->audio().setBypassed(false);
    instance->suspend();
    EXPECT_FALSE(instance->enabled());
}

TEST_F(Instance, theStartupBankIsStoredAndForgotten) {
    const auto first = make();
    first->renameProgram("Mine");
    first->switchProgram(5);
    first->storeStartupBank();
    const auto second = make();
    EXPECT_EQ(second->programs()[0].name(), "Mine");
    EXPECT_EQ(second->programs().current(), 5);
    second->forgetStartupBank();
    EXPECT_EQ(make()->programs()[0].name(), "");
}

TEST_F(Instance, reportsWhatItLeftOut) {
    preferences.update([](const std::string&) { return Platform::SharedRecord::Replacement{"{ damaged"}; });
    const auto instance = make("no bank");
    EXPECT_EQ(instance->takeReport(), "Invalid format of FXB data");
    const auto later = instance->takeReport();
    EXPECT_TRUE(later && later->find("preferences") != std::string::npos) << later.value_or("");
    while (instance->takeReport()) {
    }
    for (int i = 1; i < 10; ++i) {
        instance->report("error " + std::to_string(i));
    }
    int count = 0;
    for (; const auto report = instance->takeReport(); ++count) {
        EXPECT_EQ(*report, "error " + std::to_string(count + 1));
    }
    EXPECT_EQ(count, 4);
    EXPECT_EQ(instance->lastReport(), "error 9");
}

TEST_F(Instance, numbersAndSeedsDiffer) {
    const auto first = make();
    const auto second = make();
    EXPECT_EQ(second->identity().number, first->identity().number + 1);
    EXPECT_NE(second->identity().seed, first->identity().seed);
}

TEST_F(Instance, theTailLastsUntilAFrameFindsNothing) {
    const auto instance = make();
    instance->setSampleRate(48000);
    instance->setParameter(Parameters::frameRate, 0.5f); // 10 frames a second
    std::vector<float> loud(48000);
    for (std::size_t i = 0; i < loud.size(); ++i) {
        loud[i] = i % 400 < 10 ? 0.5f : 0.0f;
    }
    std::vector<float> out(48000);
    const float* const in[] = {loud.data(), loud.data()};
    float* const outs[] = {out.data(), out.data()};
    instance->process({.in = in, .out = outs, .samples = 48000});
    const std::vector<float> nothing(48000);
    const float* const silence[] = {nothing.data(), nothing.data()};
    const int tail = instance->tailSamples();
    ASSERT_LT(tail, 20000);
    instance->process({.in = silence, .out = outs, .samples = 48000});
    int last = 47999;
    for (; last >= 0 && std::abs(out[static_cast<std::size_t>(last)]) < 1e-4f; --last) {
    }
    EXPECT_LT(last, tail + 4800); // the filter rings a little
    instance->setParameter(Parameters::frameRate, 0);
    EXPECT_EQ(instance->tailSamples(), 480000);
}

namespace {

struct KnownHost {
    Vst2::VstIntPtr sizeWindow;
    const char* vendor;
    const char* product;
    bool sizes;
};
const KnownHost* asked = nullptr;

Vst2::VstIntPtr answer(Vst2::AEffect*, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr, void* ptr, float) {
    switch (opcode) {
    case Vst2::audioMasterVersion: return 2400;
    case Vst2::audioMasterCanDo: return asked->sizeWindow;
    case Vst2::audioMasterGetVendorString: std::strcpy(static_cast<char*>(ptr), asked->vendor); return 1;
    case Vst2::audioMasterGetProductString: std::strcpy(static_cast<char*>(ptr), asked->product); return 1;
    case Vst2::audioMasterGetVendorVersion: return 7;
    default: return 0;
    }
}

} // namespace

TEST(HostIdentity, tellsWhetherTheWindowCanGrow) {
    const std::string longName(200, 'n');
    for (const KnownHost& host : {KnownHost{1, "Any", "Host", true}, {0, "Any", "Host", false},
                                  {-1, "Any", "Host", false}, {0, "Ableton", "Live", true},
                                  {0, "Ableton", "Live 10", false}, {0, "ableton", "Live", false},
                                  {0, "", "Live", false}, {1, longName.c_str(), "", true}}) {
        asked = &host;
        Vst2::AEffect effect{};
        const HostCallback callback(answer, effect);
        EXPECT_EQ(callback.identity().sizesWindow, host.sizes) << host.vendor << ", " << host.product;
        EXPECT_EQ(callback.identity().vendor, host.vendor);
        EXPECT_EQ(callback.identity().product, host.product);
        EXPECT_EQ(callback.identity().version, 7);
    }
}
