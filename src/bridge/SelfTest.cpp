#include "bridge/SelfTest.h"

#include "bridge/NumberText.h"
#include "engine/VoiceEngine.h"
#include "model/MidiConfigText.h"
#include "model/PatchRandomiser.h"
#include "model/PatchText.h"
#include "model/UndoHistory.h"
#include "parameters/ParameterText.h"

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>

namespace Bridge {

namespace {

constexpr int kBlock = 32;
constexpr int kRoundsAPatch = 64; // texts are slow beside a block
constexpr float kLoudest = 1000;  // far beyond what a full-scale input makes of itself

class SelfTest {
public:
    SelfTest() : engine_(feedbacks_) { engine_.setSampleRate(48000); }

    void round(int number) {
        round_ = number;
        block();
        parameterTexts();
        if (number % kRoundsAPatch == 0) {
            patch();
            midiConfig();
        }
        history();
    }

private:
    void require(bool holds, const char* invariant) const {
        if (!holds) {
            throw std::runtime_error(std::string("Self test failed in round ") + std::to_string(round_) + ": " +
                                     invariant);
        }
    }

    float uniform() { return std::uniform_real_distribution<float>(0, 1)(random_); }
    bool one(int in) { return std::uniform_int_distribution<int>(1, in)(random_) == 1; }

    // Mostly noise, sometimes what no sound is.
    float sample() {
        if (one(2000)) {
            constexpr std::array kOdd = {std::numeric_limits<float>::infinity(),
                                         std::numeric_limits<float>::quiet_NaN(),
                                         std::numeric_limits<float>::denorm_min()};
            return kOdd[std::uniform_int_distribution<std::size_t>(0, kOdd.size() - 1)(random_)];
        }
        return 2 * uniform() - 1;
    }

    void block() {
        Engine::Block block;
        if (one(16)) {
            parameters_ = {uniform(), std::round(uniform()), uniform(), std::round(uniform()), uniform(),
                           uniform(), uniform(),             uniform(), uniform(),             std::round(uniform())};
        }
        block.parameters = parameters_;
        block.transport.tempo = 20 + 300 * static_cast<double>(uniform());
        const std::array<Engine::MidiEvent, 1> note = {Engine::MidiEvent{
            0, static_cast<std::uint8_t>(0x80 + (random_() & 0x7F)), static_cast<std::uint8_t>(random_() & 0x7F),
            static_cast<std::uint8_t>(random_() & 0x7F)}};
        block.midiEvents = note;
        std::array<std::array<float, kBlock>, 2> sound;
        for (auto& channel : sound) {
            for (float& value : channel) {
                value = sample();
            }
        }
        const std::array<float*, 2> buffers = {sound[0].data(), sound[1].data()};
        engine_.process(buffers.data(), buffers.data(), kBlock, block);
        for (const auto& channel : sound) {
            for (const float value : channel) {
                require(std::isfinite(value) && std::fabs(value) < kLoudest, "output is finite and bounded");
            }
        }
        const float unvoiced = feedbacks_.unvoiced.load();
        const float pan = feedbacks_.pan.load();
        require(unvoiced >= 0 && unvoiced <= 1, "unvoiced lies in 0..1");
        require(pan >= -1 && pan <= 1, "pan lies in -1..1");
    }

    void parameterTexts() {
        const int id = std::uniform_int_distribution<int>(0, Parameters::kCount - 1)(random_);
        const bool sync = one(2);
        const float value = uniform();
        const auto back = Parameters::textToValue(
            id, Parameters::valueToText(id, value, sync, Parameters::TextForm::exact), sync);
        require(back && *back >= 0 && *back <= 1, "a parameter's text reads back");
        require(Parameters::valueToText(id, *back, sync, Parameters::TextForm::exact) ==
                    Parameters::valueToText(id, value, sync, Parameters::TextForm::exact),
                "a parameter's text reads back to the same text");
        require(numberOf(numberText(value)) == value, "a number's text reads back to the same number");
    }

    void patch() {
        Model::AtomicPatch patch;
        Model::PatchRandomiser().randomise(patch);
        const Model::AtomicPatch back = Model::readPatch(Model::writePatch(patch));
        require(back.name() == patch.name() && back.isModified() == patch.isModified(),
                "a patch's text keeps its name and mark");
        for (int id = 0; id < Parameters::kCount; ++id) {
            require(patch.value(id) >= 0 && patch.value(id) <= 1, "a patch's values lie in 0..1");
        }
        require(Model::writePatch(back) == Model::writePatch(patch), "a patch's text reads back to the same text");
    }

    void midiConfig() {
        Model::MidiConfig config;
        config.assignments.assign(std::uniform_int_distribution<int>(0, Parameters::kCount - 1)(random_),
                                  std::uniform_int_distribution<int>(0, 127)(random_));
        config.masterTuning = 400 + 80 * uniform();
        Model::MidiConfig back;
        require(Model::readMidiConfig(Model::writeMidiConfig(config), back) && back == config,
                "a MIDI configuration's text reads back to the same configuration");
    }

    void history() {
        if (one(3)) {
            history_.undo(present_, 0);
        } else if (one(3)) {
            history_.redo();
        } else {
            history_.record("Change", one(2), present_, 0);
        }
        require(history_.size() <= Model::UndoHistory::kCapacity + 1, "the history holds 101 entries at most");
        require(history_.position() <= history_.size(), "the history's position lies within it");
    }

    int round_ = 0;
    std::mt19937 random_{std::random_device{}()};
    Engine::Feedbacks feedbacks_;
    Engine::VoiceEngine engine_;
    Engine::ParameterValues parameters_;
    Model::AtomicPatch present_;
    Model::UndoHistory history_;
};

} // namespace

void selfTest(int rounds) {
    SelfTest test;
    for (int i = 1; i <= rounds; ++i) {
        test.round(i);
    }
}

} // namespace Bridge
