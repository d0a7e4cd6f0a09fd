// `murmelon editor`: the editor in a window of its own. A sound, if one is given, loops through the effect so that
// the display lives; nothing is heard.
#include "tool/Commands.h"

#include "editor/PluginEditor.h"
#include "instance/EffectInstance.h"
#include "model/TextFiles.h"
#include "quilt/Scale.h"
#include "resources/Resources.h"
#include "tool/Sound.h"
#include "tool/WindowlessEffect.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace Tool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kIdleInterval{16};
constexpr std::size_t kLongestBlock = 4096;

struct Options {
    std::string sound;
    std::string scale;
    std::string preferences;
    double seconds = 0; // 0: until the window is closed
};

// Plays a sound in a loop, as fast as the clock goes.
class Loop {
public:
    Loop(Shell::EffectInstance& effect, Sound sound) : effect_(effect), sound_(std::move(sound)) {
        effect_.setSampleRate(sound_.rate);
        effect_.resume();
    }

    void catchUp() {
        const double elapsed = std::chrono::duration<double>(Clock::now() - start_).count();
        const auto due = static_cast<std::size_t>(elapsed * sound_.rate);
        if (due - played_ > 8 * kLongestBlock) {
            played_ = due - kLongestBlock; // the program was stopped for a while
        }
        while (played_ < due) {
            const std::size_t position = played_ % sound_.length();
            const std::size_t samples = std::min({due - played_, sound_.length() - position, kLongestBlock});
            const std::array<const float*, 2> in = {sound_.channels[0].data() + position,
                                                    sound_.channels[1].data() + position};
            const std::array<float*, 2> out = {output_[0].data(), output_[1].data()};
            Shell::AudioBuffers buffers;
            buffers.in = in.data();
            buffers.out = out.data();
            buffers.samples = static_cast<int>(samples);
            effect_.process(buffers);
            played_ += samples;
        }
    }

private:
    Shell::EffectInstance& effect_;
    Sound sound_;
    std::array<std::array<float, kLongestBlock>, 2> output_{};
    Clock::time_point start_ = Clock::now();
    std::size_t played_ = 0;
};

void showEditor(const Options& options) {
    const PreferencesFolder folder(options.preferences);
    Platform::SharedFile record(folder.file());
    Model::DiskFiles files;
    SayingHost host([](const std::string&) {});
    Shell::EffectInstance effect(
        host, {record, files, Resources::find(Resources::Type::fxb, "factorybank").value()});
    if (!options.scale.empty()) {
        effect.preferences().set("uiScale_Murmelon", Quilt::Scale::fromText(options.scale).text());
    }
    std::optional<Loop> loop;
    if (!options.sound.empty()) {
        loop.emplace(effect, readSound(options.sound));
    }
    Shell::PluginEditor editor(effect);
    editor.openTopLevel();
    const auto start = Clock::now();
    while (!editor.closed() &&
           (options.seconds <= 0 || std::chrono::duration<double>(Clock::now() - start).count() < options.seconds)) {
        if (loop) {
            loop->catchUp();
        }
        editor.idle();
        std::this_thread::sleep_for(kIdleInterval);
    }
}

} // namespace

void addEditorCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = program.add_subcommand("editor", "Shows the editor in a window of its own");
    command->add_option("IN", options->sound, "A sound file that loops through the effect");
    command->add_option("--scale", options->scale, "The editor's scale")->type_name("N/D");
    command->add_option("--seconds", options->seconds, "Closes the window after this time");
    command->add_option("--preferences", options->preferences,
                        "The folder for preferences (default: an empty one that is removed afterwards)");
    command->callback([options] { showEditor(*options); });
}

} // namespace Tool
