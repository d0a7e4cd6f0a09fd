// The frame analysis run over a whole sound.
#pragma once

#include <string>
#include <vector>

namespace Model {
class Patch;
}

namespace Tool {

struct Sound;

// Fields as in Engine::FrameRecord.
struct AnalysedFrame {
    double time = 0; // seconds, at the end of the frame's input
    bool silent = false;
    float lag = 0;
    float pitch = 0;
    float unvoiced = 0;
    float amplitude = 0;
    float pan = 0;
    float width = 0;
    std::vector<float> coefficients; // without the first, which is 1; all 0 before there was a filter
};

struct FrameList {
    int internalRate = 0; // Hz
    std::vector<AnalysedFrame> frames;
    int coefficients = 0; // a frame
};

// At the sound's own rate, with the parameters of `settings`.
FrameList analyseFrames(const Sound& sound, const Model::Patch& settings);

// Comma-separated, the names of the columns first, then a line a frame.
std::string framesAsTable(const FrameList& list);

} // namespace Tool
