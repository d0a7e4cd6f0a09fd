#include "parameters/ParameterTable.h"

#include <algorithm>

namespace Parameters {

namespace {

// Where 80 v^3 is 1e-7: slower frames are shown as standing still.
constexpr double kSlowestShownFrameRate = 0.001077217345015942;

// Beyond these ends the twice applied smoothstep is within 1e-7 of 0 and of 1.
constexpr double kDetuneStart = 0.007821815399392196;
constexpr double kDetuneEnd = 0.9921781846016998;

constexpr double smoothstep(double v) {
    return (3.0 - 2.0 * v) * v * v;
}

int stepOf(float value, int steps) {
    const auto step = static_cast<int>(clampNormalised(value) * static_cast<float>(steps));
    return std::min(step, steps - 1);
}

} // namespace

std::optional<int> find(std::string_view name) {
    const auto record = std::ranges::find(kTable, name, &Record::name);
    if (record == kTable.end()) {
        return std::nullopt;
    }
    return static_cast<int>(record - kTable.begin());
}

int hostIndex(int id) {
    return static_cast<int>(std::ranges::find(kHostOrder, id) - kHostOrder.begin());
}

int sampleRateStep(float value) {
    return stepOf(value, static_cast<int>(kSampleRateLabels.size()));
}

int syncDivision(float value) {
    return stepOf(value, static_cast<int>(kSyncDivisionLabels.size()));
}

double freeFrameRateHz(float value) {
    const auto v = static_cast<double>(clampNormalised(value));
    return v < kSlowestShownFrameRate ? 0.0 : 80.0 * v * v * v;
}

double detuneCurve(float value) {
    const auto v = static_cast<double>(clampNormalised(value));
    if (v < kDetuneStart) {
        return 0.0;
    }
    if (v > kDetuneEnd) {
        return 1.0;
    }
    return smoothstep(smoothstep(v));
}

} // namespace Parameters
