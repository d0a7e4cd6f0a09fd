// Loading a layout of a thousand views, as the editor's opening and each change of its scale does; and an
// update in which nothing has changed for any of them.
#include "images/ImageLibrary.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/View.h"
#include "quilt/ViewFactory.h"

#include <benchmark/benchmark.h>

#include <stdexcept>
#include <string>

namespace {

constexpr int kViews = 1000;

struct Surroundings : Quilt::DocumentSource, Quilt::Desktop, Quilt::EditorHost, Quilt::Clock {
    std::string text;

    std::string obtain(const std::string&) const override { return text; }
    void showMessage(const Quilt::Message& message, std::function<void(Quilt::MessageButton)>) override {
        throw std::runtime_error(message.text);
    }
    void popUpMenu(const std::vector<Quilt::MenuItem>&, std::optional<Quilt::Rectangle>,
                   std::function<void(std::optional<int>)>) override {}
    void launch(const std::string&) override {}
    std::optional<std::string> clipboardText() override { return std::nullopt; }
    void setClipboardText(const std::string&) override {}
    void log(const std::string& line) override { throw std::runtime_error(line); }
    std::chrono::milliseconds now() const override { return std::chrono::milliseconds(0); }
};

// Knobs with captions in groups, written with a macro as people do.
std::string layout() {
    std::string text =
        "@define small = { ovsfont: \"sans-serif\", size: 10 }\n"
        "@begin control(name, x, y)\n"
        "{ type: group, bounds: { @x, @y, 40, 50 }, views: {\n"
        "\t{ type: knob, variable: \"@name\", bounds: { 0, 0, w, h-10 }, hint: \"@name: [var]@name[/var]\" "
        "}\n"
        "\t{ type: caption, text: \"[var]@name[/var]\", font: @small, bounds: { 0, h-10, w, 10 } }\n"
        "} }\n@end\nviews: {\n";
    for (int i = 0; i * 3 < kViews; ++i) {
        text += "@control(v" + std::to_string(i % 50) + ", " + std::to_string(i % 20 * 40) + ", " +
                std::to_string(i / 20 * 50) + ")\n";
    }
    return text + "}\n";
}

class Loaded {
public:
    Loaded() {
        surroundings_.text = layout();
        for (int i = 0; i < 50; ++i) {
            editor.variables().set("v" + std::to_string(i), "0.5");
        }
    }

private:
    Surroundings surroundings_;
    Quilt::ViewFactory views_ = Quilt::standardViews();
    Images::ImageLibrary images_;

public:
    Quilt::Editor editor{{surroundings_, views_, images_, surroundings_, surroundings_, surroundings_}};
};

void load(benchmark::State& state) {
    Loaded loaded;
    for (auto _ : state) {
        loaded.editor.open("main", {0, 0, 800, 850});
    }
    state.SetItemsProcessed(state.iterations() * kViews);
}
BENCHMARK(load)->Unit(benchmark::kMillisecond);

void update(benchmark::State& state) {
    Loaded loaded;
    loaded.editor.open("main", {0, 0, 800, 850});
    for (auto _ : state) {
        loaded.editor.requestUpdate();
        loaded.editor.tick();
    }
    state.SetItemsProcessed(state.iterations() * kViews);
}
BENCHMARK(update)->Unit(benchmark::kMicrosecond);

void rest(benchmark::State& state) {
    Loaded loaded;
    loaded.editor.open("main", {0, 0, 800, 850});
    for (auto _ : state) {
        loaded.editor.tick();
    }
}
BENCHMARK(rest)->Unit(benchmark::kMicrosecond);

} // namespace
