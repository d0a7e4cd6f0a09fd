// The ten automatable parameters and the eight analysis feedbacks, as one constant table that every other
// room reads: what a parameter is called, what its normalised value 0..1 spans, and where the host sees it.
// A library of its own without dependencies. How a value reads as text stands in ParameterText.h.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>

namespace Parameters {

// The internal id of a parameter is its position in the table. Hosts see another order: kHostOrder.
enum Id : int {
    sampleRate,
    sync,
    frameRate,
    midi,
    pitch,
    tracking,
    detune,
    noiseAdjust,
    mix,
    legacyMode,
};

inline constexpr int kCount = 10;

enum class Kind : int {
    continuous = 0,
    onOff = 2,
    stepped = 3,
};

struct Record {
    std::string_view name;        // key in patch files and in the variable "params.<name>"
    std::string_view displayName; // for the host and for hints
    std::string_view unit;        // may be empty
    Kind kind;
    float defaultValue;                            // normalised
    float minimum;                                 // what 0 shows; for a stepped list 0
    float maximum;                                 // what 1 shows; for a stepped list the last step's index
    std::span<const std::string_view> labels = {}; // of a stepped list, in step order
};

inline constexpr std::array<std::string_view, 4> kSampleRateLabels = {"8", "11", "22", "44 -> 48"};

// Divisions of the synced frame clock. The label and the frames per whole note of 4/4 are one row.
inline constexpr std::array<std::string_view, 17> kSyncDivisionLabels = {
    "Stop", "1/1", "3/4 (1/2.)", "1/1T", "1/2",   "3/8 (1/4.)", "1/2T",  "1/4", "3/16 (1/8.)",
    "1/4T", "1/8", "1/8T",       "1/16", "1/16T", "1/32",       "1/32T", "1/64"};
inline constexpr std::array<float, kSyncDivisionLabels.size()> kFramesPerWholeNote = {
    0.0f, 1.0f, 1.3333334f, 1.5f,  2.0f,  2.6666667f, 3.0f,  4.0f, 5.3333335f,
    6.0f, 8.0f, 12.0f,      16.0f, 24.0f, 32.0f,      48.0f, 64.0f};

inline constexpr std::array<Record, kCount> kTable = {{
    {"sampleRate", "Sample Rate", "kHz", Kind::stepped, 0.6666667f, 0, 3, kSampleRateLabels},
    {"sync", "Sync", "", Kind::onOff, 0, 0, 1},
    {"frameRate", "Frame Rate", "", Kind::continuous, 0.9085603f, 0, 80}, // cube root of 0.75: 60 Hz
    {"midi", "Midi", "", Kind::onOff, 0, 0, 1},
    {"pitch", "Pitch", "sm", Kind::continuous, 0.5f, -36, 36},
    {"tracking", "Tracking", "%", Kind::continuous, 0.5f, 0, 200},
    {"detune", "Detune", "ct", Kind::continuous, 0, 0, 1200},
    {"noiseAdjust", "Noise Adjust", "%", Kind::continuous, 0.5f, -100, 100},
    {"mix", "Mix", "%", Kind::continuous, 1.0f, 0, 100},
    {"legacyMode", "Legacy Mode", "", Kind::onOff, 0, 0, 1},
}};

// How `frameRate` shows while `sync` is on. For display only: the value that is stored stays the same.
inline constexpr Record kSyncedFrameRate = {"frameRate", "Frame Rate",       "", Kind::stepped, 0.5f, 0,
                                            16,          kSyncDivisionLabels};

// Host index to internal id.
inline constexpr std::array<int, kCount> kHostOrder = {pitch, tracking, detune,     noiseAdjust, frameRate,
                                                       sync,  midi,     sampleRate, mix,         legacyMode};

inline constexpr std::array<std::string_view, 8> kFeedbackNames = {
    "sampleRate", "pitch", "frequency", "amplitude", "volume", "unvoiced", "pan", "width"};

// The id of the parameter with this name, exactly.
std::optional<int> find(std::string_view name);

// The position of `id` among the host's parameters.
int hostIndex(int id);

// Normalised values pass through here on their way in: anything outside 0..1 is brought to the nearer end,
// and what is not a number to 0.
constexpr float clampNormalised(float value) {
    return value >= 0 ? (value <= 1 ? value : 1.0f) : 0.0f;
}

constexpr bool isOn(float value) {
    return value >= 0.5f;
}

// Step 0..3 of `sampleRate`; 0, 1/3, 2/3 and 1 are the steps' own values.
int sampleRateStep(float value);

// Index 0..16 into the sync divisions.
int syncDivision(float value);

// Frames per second of a free running `frameRate`: 80 times the cube.
double freeFrameRateHz(float value);

// The detune curve, 0..1: a twice applied smoothstep with clamped ends, flat near both and steep between.
// 1200 times this is cents.
double detuneCurve(float value);

} // namespace Parameters
