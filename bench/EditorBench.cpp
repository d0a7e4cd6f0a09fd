// The plug-in's own layouts: what it takes to open the editor with nothing kept from before, to go to another scale,
// to draw all of it, and a frame of the living graph.
#include "bridge/MidiAssignView.h"
#include "images/ImageLibrary.h"
#include "quilt/Desktop.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/View.h"
#include "resources/Resources.h"
#include "tool/WindowlessEffect.h"

#include <benchmark/benchmark.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Documents final : Quilt::DocumentSource {
    std::string obtain(const std::string& name) const override {
        return std::string(Resources::find(Resources::Type::quilt, name).value());
    }
};

// A window without a screen: what is out of date is drawn.
struct Surroundings final : Quilt::Desktop, Quilt::EditorHost, Quilt::Clock {
    Drawing::Surface surface;
    std::vector<Quilt::Rectangle> dirty;
    std::chrono::milliseconds time{1};

    void showMessage(const Quilt::Message& message, std::function<void(Quilt::MessageButton)>) override {
        throw std::runtime_error(message.text);
    }
    void popUpMenu(const std::vector<Quilt::MenuItem>&, std::optional<Quilt::Rectangle>,
                   std::function<void(std::optional<int>)>) override {}
    void launch(const std::string&) override {}
    std::optional<std::string> clipboardText() override { return std::nullopt; }
    void setClipboardText(const std::string&) override {}
    void log(const std::string&) override {}
    void resized(std::int32_t width, std::int32_t height) override { surface = Drawing::Surface(width, height); }
    void invalidate(const Quilt::Rectangle& part) override { dirty.push_back(part); }
    std::chrono::milliseconds now() const override { return time; }
};

struct Effect {
    Tool::WindowlessEffect effect{{}, [](const std::string&) {}};
    float level = 0;

    // A block of a tone, so that all that the graph shows changes.
    void play() {
        constexpr int kBlock = 1024;
        std::array<float, kBlock> wave{};
        for (int i = 0; i < kBlock; ++i) {
            wave[static_cast<std::size_t>(i)] = level * static_cast<float>(i % 200 - 100) / 100;
        }
        level = level > 0.4f ? 0.1f : level + 0.05f;
        const std::array<const float*, 2> in = {wave.data(), wave.data()};
        std::array<std::array<float, kBlock>, 2> output;
        const std::array<float*, 2> out = {output[0].data(), output[1].data()};
        Shell::AudioBuffers buffers;
        buffers.in = in.data();
        buffers.out = out.data();
        buffers.samples = kBlock;
        effect.effect().process(buffers);
    }
};

struct Opened {
    Documents documents;
    Quilt::ViewFactory views = Quilt::standardViews();
    Images::ImageLibrary images;
    Surroundings around;
    Quilt::Editor editor;

    explicit Opened(Effect& effect)
        : editor({documents, views, images, around, around, around, &effect.effect.bridge(), &effect.effect.bridge()}) {
        views.add(Bridge::midiAssignType(effect.effect.bridge().midiLearn()));
        editor.open("MURMELON_MAIN", {0, 0, 470, 320});
        paint();
    }
    void paint() {
        for (const auto& part : std::exchange(around.dirty, {})) {
            editor.draw(around.surface.view(), part);
        }
    }
    void tick() {
        around.time += std::chrono::milliseconds(34);
        editor.tick();
        paint();
    }
};

void openEditor(benchmark::State& state) {
    Effect effect;
    for (auto _ : state) {
        Opened opened(effect);
    }
}
BENCHMARK(openEditor)->Unit(benchmark::kMillisecond);

void changeScale(benchmark::State& state) {
    Effect effect;
    Opened opened(effect);
    bool large = false;
    for (auto _ : state) {
        opened.editor.variables().set("uiScale", (large = !large) ? "2/1" : "1/1");
        opened.tick();
    }
    opened.editor.variables().set("uiScale", "1/1");
}
BENCHMARK(changeScale)->Unit(benchmark::kMillisecond);

void drawAll(benchmark::State& state) {
    Effect effect;
    Opened opened(effect);
    for (auto _ : state) {
        opened.editor.draw(opened.around.surface.view(), {0, 0, 470, 320});
    }
}
BENCHMARK(drawAll)->Unit(benchmark::kMicrosecond);

// 30 of these a second.
void livingFrame(benchmark::State& state) {
    Effect effect;
    Opened opened(effect);
    for (auto _ : state) {
        state.PauseTiming();
        effect.play();
        state.ResumeTiming();
        opened.tick();
    }
}
BENCHMARK(livingFrame)->Unit(benchmark::kMicrosecond);

void restingTick(benchmark::State& state) {
    Effect effect;
    Opened opened(effect);
    for (auto _ : state) {
        opened.tick();
    }
}
BENCHMARK(restingTick)->Unit(benchmark::kMicrosecond);

void dragKnob(benchmark::State& state) {
    Effect effect;
    Opened opened(effect);
    Quilt::MouseEvent mouse;
    mouse.at = {45, 220};
    opened.editor.mousePressed(mouse);
    int step = 0;
    for (auto _ : state) {
        mouse.at.y = 180 + ++step % 60;
        opened.editor.mouseMoved(mouse);
        opened.tick();
    }
    opened.editor.mouseReleased(mouse);
}
BENCHMARK(dragKnob)->Unit(benchmark::kMicrosecond);

} // namespace
