#include "tool/Commands.h"

#include "platform/AtomicFileWrite.h"
#include "platform/PathText.h"
#include "tool/EffectOptions.h"
#include "tool/FrameList.h"
#include "tool/Sound.h"
#include "tool/plot/FramePlot.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <memory>

namespace Tool {

namespace {

struct Options {
    std::string input;
    std::string table;
    std::string picture;
    EffectOptions effect;
};

void analyze(const Options& options) {
    const Model::AtomicPatch settings = settingsOf(options.effect);
    const Sound sound = readSound(options.input);
    const FrameList frames = analyseFrames(sound, settings);
    if (options.table == "-" || (options.table.empty() && options.picture.empty())) {
        fmt::print("{}", framesAsTable(frames));
    } else if (!options.table.empty()) {
        Platform::atomicFileWrite(Platform::pathFromUtf8(options.table), framesAsTable(frames));
    }
    if (!options.picture.empty()) {
        drawFrames(Platform::pathFromUtf8(options.picture), sound, frames);
    }
}

} // namespace

void addAnalyzeCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    auto* const command = program.add_subcommand(
        "analyze", "Lists or draws what the effect hears in a sound file, frame by frame");
    command->add_option("IN", options->input, "A sound file, mono or stereo, or - for standard input")
        ->required();
    command
        ->add_option("--csv", options->table,
                     "Writes the frames to this file (default, or -: to standard output)")
        ->type_name("FILE");
    command->add_option("--plot", options->picture, "Draws pitch, voicing and level over the spectrogram")
        ->type_name("FILE.png");
    addEffectOptions(*command, options->effect);
    command->callback([options] { analyze(*options); });
}

} // namespace Tool
