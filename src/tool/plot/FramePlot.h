// The picture of a frame analysis: pitch, coloured by voicing, and level over the sound's spectrogram.
#pragma once

#include <filesystem>

namespace Tool {

struct FrameList;
struct Sound;

void drawFrames(const std::filesystem::path& png, const Sound& sound, const FrameList& frames);

} // namespace Tool
