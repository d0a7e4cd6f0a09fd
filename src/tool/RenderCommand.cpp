#include "tool/Commands.h"

#include "parameters/ParameterTable.h"
#include "platform/PathText.h"
#include "platform/ThisProgram.h"
#include "state/Chunks.h"
#include "tool/Automation.h"
#include "tool/EffectOptions.h"
#include "tool/MidiFile.h"
#include "tool/NumberArgument.h"
#include "tool/PluginHost.h"
#include "tool/Progress.h"
#include "tool/Sound.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>

namespace Tool {

namespace {

struct Options {
    std::string input;
    std::string output;
    std::string plugin;
    EffectOptions effect;
    std::string midi;
    std::vector<std::string> automations;
    std::optional<double> tempo;
    double tailSeconds = 0;
    int blockSize = 512;
    bool compensate = false;
};

constexpr int kLargestBlock = 1 << 20;
constexpr double kLongestTail = 86400; // a day
constexpr double kSlowestTempo = 1;
constexpr double kFastestTempo = 10000;

std::filesystem::path pluginBesideCommand() {
    return Platform::pathOfThisProgram()
        .replace_filename("murmelon")
        .concat(Platform::LoadedLibrary::kExtension);
}

void refuse(const char* what, const std::string& file) {
    throw std::runtime_error(fmt::format("The plug-in does not take the {} {}", what, file));
}

void setEffect(PluginHost& host, const EffectOptions& options) {
    if (!options.bank.empty() && !host.loadBank(readBank(options.bank))) {
        refuse("bank", options.bank);
    }
    if (options.program > 0) {
        host.selectProgram(options.program - 1);
    }
    if (!options.patch.empty() && !host.loadProgram(Bnk::writeProgramChunk(readPatchFile(options.patch)))) {
        refuse("patch", options.patch);
    }
    for (const ParameterAssignment& assignment : options.assignments()) {
        const int index = Parameters::hostIndex(assignment.id);
        if (assignment.normalised) {
            host.setParameter(index, *assignment.normalised);
        } else if (!host.setParameterText(index, assignment.text)) {
            refuseValue(assignment);
        }
    }
}

// What is played into the plug-in while the sound runs, block by block.
class Performance {
public:
    Performance(const Options& options, int rate) : rate_(rate) {
        for (const std::string& text : options.automations) {
            automations_.emplace_back(text);
        }
        if (!options.midi.empty()) {
            messages_ = readMidiFile(options.midi);
        }
    }

    // Parameters as they are at the sample `position`.
    void moveParameters(PluginHost& host, std::int64_t position) const {
        const double seconds = static_cast<double>(position) / rate_;
        for (const Automation& automation : automations_) {
            host.setParameter(Parameters::hostIndex(automation.parameter()), automation.valueAt(seconds));
        }
    }

    // The messages of the block at `position`, which follows the one asked for before.
    const std::vector<HostMessage>& messages(std::int64_t position, int samples) {
        block_.clear();
        for (; next_ < messages_.size(); ++next_) {
            const std::int64_t at = std::llround(messages_[next_].seconds * rate_);
            if (at >= position + samples) {
                break;
            }
            block_.push_back({static_cast<int>(at - position), messages_[next_].bytes});
        }
        return block_;
    }

private:
    int rate_;
    std::vector<Automation> automations_;
    std::vector<TimedMessage> messages_;
    std::size_t next_ = 0;
    std::vector<HostMessage> block_;
};

// Plays the sound, followed by silence, until `length` samples have come out behind the first `dropped`.
Sound play(PluginHost& host, const Sound& in, Performance& performance, std::size_t length,
           std::size_t dropped, int blockSize) {
    Sound out{.rate = in.rate, .channels = {}};
    std::array<std::vector<float>, 2> from;
    std::array<std::vector<float>, 2> to;
    for (std::size_t channel = 0; channel < 2; ++channel) {
        from[channel].resize(static_cast<std::size_t>(blockSize));
        to[channel].resize(static_cast<std::size_t>(blockSize));
        out.channels[channel].reserve(length + dropped);
    }
    const float* const inputs[2] = {from[0].data(), from[1].data()};
    float* const outputs[2] = {to[0].data(), to[1].data()};

    Progress progress("Rendering", length + dropped);
    for (std::size_t done = 0; done < length + dropped;) {
        const auto count = std::min(static_cast<std::size_t>(blockSize), length + dropped - done);
        const auto begin = std::min(done, in.length());
        const auto end = std::min(done + count, in.length());
        for (std::size_t channel = 0; channel < 2; ++channel) {
            const float* const source = in.channels[channel].data();
            const auto rest = std::copy(source + begin, source + end, from[channel].begin());
            std::fill(rest, from[channel].end(), 0.0f);
        }
        const auto position = static_cast<std::int64_t>(done);
        const int samples = static_cast<int>(count);
        performance.moveParameters(host, position);
        host.process(inputs, outputs, samples, performance.messages(position, samples));
        for (std::size_t channel = 0; channel < 2; ++channel) {
            out.channels[channel].insert(out.channels[channel].end(), outputs[channel],
                                         outputs[channel] + samples);
        }
        done += count;
        progress.at(done);
    }
    for (auto& samples : out.channels) {
        samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(dropped));
    }
    return out;
}

void render(const Options& options) {
    soundFormatOf(options.output); // before any work is done
    const Sound in = readSound(options.input);
    Performance performance(options, in.rate);
    PluginHost host(options.plugin.empty() ? pluginBesideCommand() : Platform::pathFromUtf8(options.plugin),
                    in.rate, options.blockSize);
    host.setTempo(options.tempo);
    setEffect(host, options.effect);
    performance.moveParameters(host, 0); // the delay is the one of the setting that sounds first
    host.resume();
    const auto tail = static_cast<std::size_t>(std::llround(options.tailSeconds * in.rate));
    const int latency = options.compensate ? host.latencySamples() : 0;
    const Sound out = play(host, in, performance, in.length() + tail,
                           static_cast<std::size_t>(std::max(latency, 0)), options.blockSize);
    host.suspend();
    writeSound(Platform::pathFromUtf8(options.output), out);
}

} // namespace

void addRenderCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    auto* const command = program.add_subcommand("render", "Plays a sound file through the plug-in");
    command->add_option("IN", options->input, "A sound file, mono or stereo, or - for standard input")
        ->required();
    command->add_option("OUT", options->output, "The file to write: .wav (32-bit float) or .flac (24-bit)")
        ->required();
    command
        ->add_option("--plugin", options->plugin,
                     "The plug-in's binary (default: the one beside this command)")
        ->type_name("PATH");
    addEffectOptions(*command, options->effect);
    command->add_option("--midi", options->midi, "Plays a MIDI file into the plug-in")->type_name("FILE.mid");
    command->add_option("--tempo", options->tempo, "Has the song run from its start at this tempo")
        ->check(numberWithin(kSlowestTempo, kFastestTempo))
        ->type_name("BPM");
    command->add_option("--block", options->blockSize, "Samples a block")
        ->check(CLI::Range(1, kLargestBlock))
        ->capture_default_str()
        ->type_name("N");
    command
        ->add_option("--automate", options->automations,
                     "Moves a parameter along break points, in seconds and 0..1")
        ->allow_extra_args(false)
        ->type_name("NAME=T0:V0,T1:V1,...");
    command->add_option("--tail", options->tailSeconds, "Goes on with silence behind the sound")
        ->check(numberWithin(0, kLongestTail))
        ->type_name("SECONDS");
    command->add_flag("--compensate", options->compensate,
                      "Drops the delay that the plug-in reports from the front");
    command->callback([options] { render(*options); });
}

} // namespace Tool
