#include "tool/plot/FramePlot.h"

#include "tool/FrameList.h"
#include "tool/Progress.h"
#include "tool/Sound.h"
#include "tool/plot/Canvas.h"
#include "tool/plot/PlotText.h"
#include "tool/plot/PngFile.h"
#include "tool/plot/Spectrogram.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace Tool {

namespace {

constexpr int kWidth = 1600;
constexpr int kHeight = 900;

constexpr Colour kBackground = {0.055f, 0.05f, 0.085f};
constexpr Colour kInk = {0.82f, 0.83f, 0.88f};
constexpr Colour kFaintInk = {0.5f, 0.5f, 0.58f};
constexpr Colour kVoiced = {1.0f, 0.86f, 0.35f};
constexpr Colour kUnvoiced = {0.3f, 0.85f, 1.0f};
constexpr Colour kLevel = {1.0f, 1.0f, 1.0f};

// From silence to the loudest.
constexpr std::array<Colour, 6> kHeat = {{{0.03f, 0.025f, 0.07f},
                                          {0.14f, 0.07f, 0.29f},
                                          {0.36f, 0.1f, 0.43f},
                                          {0.66f, 0.19f, 0.42f},
                                          {0.92f, 0.4f, 0.31f},
                                          {0.99f, 0.78f, 0.5f}}};
constexpr float kHeatRange = 75; // dB

constexpr double kLowestHertz = 50;
constexpr double kHighestHertz = 20000;
constexpr double kMiddleC = 261.6255653; // Hz: pitch 0
constexpr float kLowestLevel = -80;      // dB, the foot of the level's axis
constexpr float kThinnestLevel = 1e-6f;

// A panel: its pixels, and what they stand for.
struct Panel {
    int left;
    int top;
    int right;
    int bottom;

    int width() const { return right - left; }
    float y(float part) const { // 0 the foot, 1 the top
        return static_cast<float>(bottom) - std::clamp(part, 0.0f, 1.0f) * static_cast<float>(bottom - top);
    }
};

constexpr Panel kSpectrum = {92, 64, kWidth - 92, 704};
constexpr Panel kVoicing = {92, 736, kWidth - 92, 836};

Colour heat(float part) {
    const float position = std::clamp(part, 0.0f, 1.0f) * static_cast<float>(kHeat.size() - 1);
    const auto below = std::min(static_cast<std::size_t>(position), kHeat.size() - 2);
    return blend(kHeat[below], kHeat[below + 1], position - static_cast<float>(below));
}

class Plot {
public:
    Plot(const Sound& sound, const FrameList& list)
        : sound_(sound), list_(list), highest_(std::min(kHighestHertz, std::max(sound.rate / 2.0, 400.0))) {}

    Canvas draw() {
        drawSpectrogram();
        drawTimes();
        drawFrequencies();
        drawLevel();
        drawPitch();
        drawVoicing();
        drawLegend();
        return std::move(canvas_);
    }

private:
    float x(double second) const {
        const double part = second / sound_.seconds();
        return static_cast<float>(kSpectrum.left + part * kSpectrum.width());
    }

    float frequencyPart(double hertz) const {
        return static_cast<float>(std::log(hertz / kLowestHertz) / std::log(highest_ / kLowestHertz));
    }

    // A run of frames that sound.
    template <typename Draw>
    void eachRun(Draw draw) const {
        const auto& frames = list_.frames;
        for (auto begin = frames.begin(); begin != frames.end();) {
            begin = std::ranges::find(begin, frames.end(), false, &AnalysedFrame::silent);
            const auto end = std::ranges::find(begin, frames.end(), true, &AnalysedFrame::silent);
            if (begin != end) {
                draw(std::span(begin, end));
            }
            begin = end;
        }
    }

    void drawSpectrogram() {
        const int height = kSpectrum.bottom - kSpectrum.top;
        std::vector<double> hertz;
        for (int row = 0; row < height; ++row) {
            hertz.push_back(kLowestHertz * std::pow(highest_ / kLowestHertz, (row + 0.5) / height));
        }
        Spectrogram spectrogram(sound_);
        std::vector<std::vector<float>> columns;
        float loudest = -100;
        Progress progress("Drawing", static_cast<std::size_t>(kSpectrum.width()));
        for (int column = 0; column < kSpectrum.width(); ++column) {
            const double second = (column + 0.5) / kSpectrum.width() * sound_.seconds();
            columns.push_back(spectrogram.levels(second, hertz));
            loudest = std::max(loudest, std::ranges::max(columns.back()));
            progress.at(columns.size());
        }
        for (int column = 0; column < kSpectrum.width(); ++column) {
            const auto& levels = columns[static_cast<std::size_t>(column)];
            for (int row = 0; row < height; ++row) {
                const float level = levels[static_cast<std::size_t>(row)];
                canvas_.set(kSpectrum.left + column, kSpectrum.bottom - 1 - row,
                            heat(1 - (loudest - level) / kHeatRange));
            }
        }
    }

    void drawTimes() {
        double step = 1e-3;
        for (int i = 0; sound_.seconds() / step > 12; ++i) {
            step *= i % 3 == 1 ? 2.5 : 2; // 1, 2, 5, 10...
        }
        for (int i = 0; i * step <= sound_.seconds(); ++i) {
            const float at = x(i * step);
            const auto base = static_cast<float>(kVoicing.bottom);
            canvas_.draw(std::array{Stroke{{at, base}, {at, base + 6}}}, 1, kFaintInk);
            drawText(canvas_, {at, base + 26}, Align::centre, fmt::format("{:.6g} s", i * step), kInk);
        }
    }

    void drawFrequencies() {
        constexpr std::array kTicks = {50, 100, 200, 500, 1000, 2000, 5000, 10000, 20000};
        for (const int hertz : kTicks) {
            if (hertz > highest_) {
                break;
            }
            const float at = kSpectrum.y(frequencyPart(hertz));
            const auto left = static_cast<float>(kSpectrum.left);
            canvas_.draw(std::array{Stroke{{left, at}, {static_cast<float>(kSpectrum.right), at}}}, 1, kInk,
                         0.1f);
            drawText(canvas_, {left - 10, at + kCapHeight / 2}, Align::right,
                     hertz < 1000 ? fmt::format("{} Hz", hertz) : fmt::format("{} kHz", hertz / 1000), kInk);
        }
    }

    void drawLevel() {
        eachRun([this](std::span<const AnalysedFrame> run) {
            Stroke line;
            for (const AnalysedFrame& frame : run) {
                const float decibels = 20 * std::log10(std::max(frame.amplitude, kThinnestLevel));
                line.push_back({x(frame.time), kSpectrum.y(1 - decibels / kLowestLevel)});
            }
            const std::array strokes = {line};
            canvas_.draw(strokes, 3.5f, kBackground, 0.35f);
            canvas_.draw(strokes, 1.3f, kLevel, 0.8f);
        });
        for (int decibels = 0; decibels >= static_cast<int>(kLowestLevel); decibels -= 20) {
            const float at = kSpectrum.y(1 - static_cast<float>(decibels) / kLowestLevel);
            drawText(canvas_, {static_cast<float>(kSpectrum.right) + 10, at + kCapHeight / 2}, Align::left,
                     fmt::format("{} dB", decibels), kInk);
        }
    }

    void drawPitch() {
        eachRun([this](std::span<const AnalysedFrame> run) {
            Stroke line;
            for (const AnalysedFrame& frame : run) {
                const double hertz = kMiddleC * std::exp2(static_cast<double>(frame.pitch));
                line.push_back({x(frame.time), kSpectrum.y(frequencyPart(hertz))});
            }
            canvas_.draw(std::array{line}, 6, kBackground, 0.6f);
            for (std::size_t i = 0; i < run.size(); ++i) {
                const Stroke piece = {line[i], line[std::min(i + 1, line.size() - 1)]};
                canvas_.draw(std::array{piece}, 3, voicingColour(run[i]));
            }
        });
    }

    void drawVoicing() {
        canvas_.fillRectangle(kVoicing.left, kVoicing.top, kVoicing.right, kVoicing.bottom, heat(0));
        const auto& frames = list_.frames;
        for (std::size_t i = 0; i < frames.size(); ++i) {
            if (frames[i].silent) {
                continue;
            }
            const double end = i + 1 < frames.size() ? frames[i + 1].time : sound_.seconds();
            const auto left = static_cast<int>(x(frames[i].time));
            const int right = std::min(static_cast<int>(x(end)), kVoicing.right);
            canvas_.fillRectangle(left, static_cast<int>(kVoicing.y(1 - frames[i].unvoiced)), right,
                                  kVoicing.bottom, voicingColour(frames[i]), 0.9f);
        }
        const float labels = static_cast<float>(kVoicing.left) - 10;
        drawText(canvas_, {labels, static_cast<float>(kVoicing.top) + kCapHeight}, Align::right, "voiced",
                 kInk);
        drawText(canvas_, {labels, static_cast<float>(kVoicing.bottom)}, Align::right, "noise", kInk);
    }

    void drawLegend() {
        float at = static_cast<float>(kSpectrum.left);
        constexpr float kBase = 40;
        const auto entry = [&](std::string_view text, Colour colour, float lineWidth) {
            const float y = kBase - kCapHeight / 3;
            canvas_.draw(std::array{Stroke{{at, y}, {at + 28, y}}}, lineWidth, colour);
            drawText(canvas_, {at + 40, kBase}, Align::left, text, kInk);
            at += 40 + textWidth(text) + 36;
        };
        entry("pitch, voiced", kVoiced, 3);
        entry("pitch, unvoiced", kUnvoiced, 3);
        entry("level of the residual", kLevel, 1.3f);
        const auto rate = fmt::format("{:.6g} kHz inside", list_.internalRate / 1000.0);
        drawText(canvas_, {static_cast<float>(kSpectrum.right), kBase}, Align::right, rate, kFaintInk);
    }

    static Colour voicingColour(const AnalysedFrame& frame) {
        return blend(kVoiced, kUnvoiced, frame.unvoiced);
    }

    const Sound& sound_;
    const FrameList& list_;
    double highest_; // Hz
    Canvas canvas_{kWidth, kHeight, kBackground};
};

} // namespace

void drawFrames(const std::filesystem::path& png, const Sound& sound, const FrameList& frames) {
    writePng(png, Plot(sound, frames).draw());
}

} // namespace Tool
