#include "tool/FrameList.h"

#include "engine/RateConfiguration.h"
#include "engine/VoiceEngine.h"
#include "model/Patch.h"
#include "parameters/ParameterTable.h"
#include "tool/Progress.h"
#include "tool/Sound.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace Tool {

namespace {

// Only the last frame of a block can be seen, and frames follow each other at several hundred a second at
// most: a host this slow has a sample or two between them, and then blocks are as short.
constexpr int kBlock = 16;
constexpr int kSlowHost = 16000; // Hz

Engine::ParameterValues valuesOf(const Model::Patch& patch) {
    using namespace Parameters;
    return {.sampleRate = patch.value(sampleRate),
            .sync = patch.value(Parameters::sync),
            .frameRate = patch.value(frameRate),
            .midi = patch.value(midi),
            .pitch = patch.value(pitch),
            .tracking = patch.value(tracking),
            .detune = patch.value(detune),
            .noiseAdjust = patch.value(noiseAdjust),
            .mix = patch.value(mix),
            .legacyMode = patch.value(legacyMode)};
}

AnalysedFrame analysedFrame(const Engine::FrameRecord& record, int rate, int coefficients) {
    AnalysedFrame frame{.time = static_cast<double>(record.hostSample) / rate,
                        .silent = record.silent,
                        .lag = record.lag,
                        .pitch = record.pitch,
                        .unvoiced = record.unvoiced,
                        .amplitude = record.amplitude,
                        .pan = record.pan,
                        .width = record.width,
                        .coefficients = {}};
    if (!record.coefficients.empty()) {
        frame.coefficients.assign(record.coefficients.begin() + 1, record.coefficients.end());
    }
    frame.coefficients.resize(static_cast<std::size_t>(coefficients));
    return frame;
}

} // namespace

FrameList analyseFrames(const Sound& sound, const Model::Patch& settings) {
    const int step = Parameters::sampleRateStep(settings.value(Parameters::sampleRate));
    const auto rate = Engine::makeRateConfigurations(sound.rate)[static_cast<std::size_t>(step)];
    FrameList list{.internalRate = rate.rate, .frames = {}, .coefficients = rate.order - 1};

    Engine::Feedbacks feedbacks;
    Engine::VoiceEngine engine(feedbacks);
    engine.setSampleRate(sound.rate);
    Engine::Block block;
    block.parameters = valuesOf(settings);
    const int blockSize = sound.rate < kSlowHost ? 1 : kBlock;
    std::array<std::array<float, kBlock>, 2> ignored{};
    float* const out[2] = {ignored[0].data(), ignored[1].data()};
    std::uint64_t seen = 0;
    Progress progress("Analysing", sound.length());
    for (std::size_t done = 0; done < sound.length();) {
        const auto count = std::min(static_cast<std::size_t>(blockSize), sound.length() - done);
        const float* const in[2] = {sound.channels[0].data() + done, sound.channels[1].data() + done};
        engine.process(in, out, static_cast<int>(count), block);
        const Engine::FrameRecord record = engine.lastFrame();
        if (record.number != seen) {
            seen = record.number;
            list.frames.push_back(analysedFrame(record, sound.rate, list.coefficients));
        }
        done += count;
        progress.at(done);
    }
    return list;
}

std::string framesAsTable(const FrameList& list) {
    std::string table = "time,silent,lag,pitch,unvoiced,amplitude,pan,width";
    const auto out = std::back_inserter(table);
    for (int k = 1; k <= list.coefficients; ++k) {
        fmt::format_to(out, ",c{}", k);
    }
    table += '\n';
    for (const AnalysedFrame& frame : list.frames) {
        fmt::format_to(out, "{},{:d},{},{},{},{},{},{}", frame.time, frame.silent, frame.lag, frame.pitch,
                       frame.unvoiced, frame.amplitude, frame.pan, frame.width);
        for (const float c : frame.coefficients) {
            fmt::format_to(out, ",{}", c);
        }
        table += '\n';
    }
    return table;
}

} // namespace Tool
