// What views draw all the time: knobs in each format, film frames, lines of text.
#include "images/Film.h"
#include "images/ImageLibrary.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

// A plain disc with a soft edge and a pointer on nothing, 128 pixels a side.
Drawing::Surface knob(int frames) {
    Drawing::Surface surface(128, 128 * frames);
    for (int y = 0; y < 128 * frames; ++y) {
        for (int x = 0; x < 128; ++x) {
            const double inside = 50.0 - std::hypot(x - 63.5, y % 128 - 63.5);
            const auto alpha = static_cast<unsigned>(255.0 * std::clamp(inside, 0.0, 1.0));
            const bool pointer = std::abs(x - 40 - y / 128) < 4 && y % 128 < 60;
            surface.view().at(x, y) =
                Drawing::pixelOf(alpha, pointer ? alpha : alpha / 3, alpha / 3, alpha / 4);
        }
    }
    return surface;
}

void drawKnob(benchmark::State& state, Images::Format format) {
    const Images::Image image(knob(1), format);
    Drawing::Surface target(200, 200);
    for (auto _ : state) {
        image.draw(target.view(), target.view().bounds(), 20, 20);
        benchmark::ClobberMemory();
    }
    state.counters["bytes"] = static_cast<double>(image.bytes());
}
BENCHMARK_CAPTURE(drawKnob, colour, Images::Format::colour);
BENCHMARK_CAPTURE(drawKnob, rle, Images::Format::rle);
BENCHMARK_CAPTURE(drawKnob, mask, Images::Format::mask);
BENCHMARK_CAPTURE(drawKnob, rlemask, Images::Format::rlemask);

void drawBetweenFrames(benchmark::State& state) {
    const Images::Film film(std::make_shared<const Images::Image>(knob(5), Images::Format::colour, 5), true);
    Drawing::Surface target(200, 200);
    for (auto _ : state) {
        film.draw(target.view(), target.view().bounds(), 20, 20, 2.4);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(drawBetweenFrames);

void drawText(benchmark::State& state) {
    Images::ImageLibrary library;
    Images::OutlineFontSpecification specification;
    specification.name = "JostBook";
    const auto font = library.font(specification, 1.5);
    Drawing::Surface target(500, 40);
    for (auto _ : state) {
        font->draw(target.view(), target.view().bounds(), 4.3, 28.0,
                   u"The quick brown fox jumps over the lazy dog");
        benchmark::ClobberMemory();
    }
}
BENCHMARK(drawText);

void readFont(benchmark::State& state) {
    for (auto _ : state) {
        OVS::FontLibrary fonts;
        benchmark::DoNotOptimize(fonts.document("JostBook"));
    }
}
BENCHMARK(readFont)->Unit(benchmark::kMicrosecond);

} // namespace
