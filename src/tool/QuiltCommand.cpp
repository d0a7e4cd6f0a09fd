#include "tool/Commands.h"

#include "bridge/MidiAssignView.h"
#include "images/ImageLibrary.h"
#include "platform/PathText.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/View.h"
#include "quilt/ViewFactory.h"
#include "resources/Lookup.h"
#include "tool/LayoutFiles.h"
#include "tool/NumberArgument.h"
#include "tool/SilentDesktop.h"
#include "tool/SurfaceFile.h"
#include "tool/WindowlessEffect.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>
#include <nlohmann/json.hpp>

#include <array>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tool {

namespace {

using Json = nlohmann::ordered_json;

struct LoadOptions {
    std::string file;
    std::string scale = "1/1";
    std::vector<std::string> area = {"470", "320"};
    std::vector<std::string> variables;
    bool reload = false;
};

Json json(const Quilt::Rectangle& rectangle) {
    return {rectangle.left, rectangle.top, rectangle.width, rectangle.height};
}

Json json(const Quilt::View& view) {
    Json children = Json::array();
    for (const auto& child : view.children()) {
        children.push_back(json(*child));
    }
    return {{"type", view.type()}, {"bounds", json(view.bounds())}, {"children", std::move(children)}};
}

Json json(const std::optional<std::chrono::milliseconds>& time) {
    return time ? Json(time->count()) : Json();
}

Json json(const Quilt::Autoexec& autoexec) {
    return {{"action", autoexec.action},       {"params", autoexec.params},
            {"delay", json(autoexec.delay)},   {"repeat", json(autoexec.repeat)},
            {"onChanged", autoexec.onChanged}, {"onReload", autoexec.onReload},
            {"onClose", autoexec.onClose}};
}

Json json(const Quilt::Transitions& transitions) {
    return {{"default", transitions.defaultRaw},
            {"open", transitions.open.raw},
            {"close", transitions.close.raw},
            {"swapIn", transitions.swapIn.raw},
            {"swapOut", transitions.swapOut.raw}};
}

Json json(const Quilt::Editor& editor, const std::vector<std::string>& errors) {
    const Quilt::Document& document = *editor.document();
    Json autoexecs = Json::array();
    for (const auto& autoexec : document.autoexecs()) {
        autoexecs.push_back(json(autoexec));
    }
    Json translations = Json::object();
    for (const auto& [source, target] : document.translations()) {
        translations[source] = target;
    }
    return {{"bounds", json(document.bounds())},       {"views", json(*editor.root())["children"]},
            {"autoexecs", std::move(autoexecs)},       {"transitions", json(document.transitions())},
            {"translations", std::move(translations)}, {"errors", errors}};
}

void setVariables(Quilt::Variables& variables, const std::vector<std::string>& assignments) {
    for (const std::string& assignment : assignments) {
        const std::size_t equals = assignment.find('=');
        if (equals == std::string::npos || equals == 0) {
            throw CLI::ValidationError("--set", "expected NAME=VALUE, not " + assignment);
        }
        variables.set(assignment.substr(0, equals), assignment.substr(equals + 1));
    }
}

Quilt::Rectangle areaOf(const LoadOptions& options) {
    return {0, 0, std::stoi(options.area[0]), std::stoi(options.area[1])};
}

void failWithErrors(std::size_t count) {
    if (count > 0) {
        throw std::runtime_error(
            fmt::format("{} in the document", count == 1 ? "1 error" : fmt::format("{} errors", count)));
    }
}

Quilt::ViewFactory allViews(WindowlessEffect& effect) {
    Quilt::ViewFactory views = Quilt::standardViews();
    views.add(Bridge::midiAssignType(effect.bridge().midiLearn()));
    return views;
}

void load(const LoadOptions& options) {
    const LayoutFiles documents(options.file);
    WindowlessEffect effect({}, [](const std::string&) {});
    const auto views = allViews(effect);
    const Quilt::SteadyClock clock;
    SilentDesktop desktop;
    // Pictures, too, may stand beside the document.
    const auto folder = Platform::pathFromUtf8(options.file).parent_path();
    Images::ImageLibrary images(Resources::Lookup(folder.empty() ? "." : folder),
                                [](std::string_view line) { std::cerr << line << '\n'; });
    Quilt::Editor editor(
        {documents, views, images, desktop, desktop, clock, &effect.bridge(), &effect.bridge()});
    editor.variables().set("uiScale", Quilt::Scale::fromText(options.scale).text());
    setVariables(editor.variables(), options.variables);
    editor.open(documents.name(), areaOf(options), options.reload);
    editor.prepare();

    const auto& errors = desktop.errors();
    fmt::print("{}\n", json(editor, errors).dump(2, ' ', false, Json::error_handler_t::replace));
    failWithErrors(errors.size());
}

// Time that goes as far as it is told to.
class LeapingClock final : public Quilt::Clock {
public:
    std::chrono::milliseconds now() const override { return now_; }
    void leap(std::chrono::milliseconds by) { now_ += by; }

private:
    std::chrono::milliseconds now_{1};
};

struct SnapshotOptions {
    std::string document;
    std::string output;
    std::string scale = "1/1";
    std::vector<std::string> variables;
    std::string resources;
    double tone = 0;
};

// A second of a tone with all harmonics, for what shows the sound that goes through.
void sound(WindowlessEffect& effect, double frequency) {
    constexpr int kBlock = 512;
    constexpr float kLevel = 0.25f;
    const double rate = effect.effect().audio().sampleRate();
    double phase = 0;
    for (double left = rate; left > 0; left -= kBlock) {
        std::array<float, kBlock> wave{};
        for (float& sample : wave) {
            sample = kLevel * static_cast<float>(2 * phase - 1);
            phase = std::fmod(phase + frequency / rate, 1.0);
        }
        effect.hear(wave);
    }
    effect.effect().idle();
}

// With an effect of its own behind it, as it comes out of the box.
void snapshot(const SnapshotOptions& options) {
    const Resources::Lookup resources =
        options.resources.empty() ? Resources::Lookup() : Resources::Lookup(Platform::pathFromUtf8(options.resources));
    const LayoutFiles documents(options.document, resources);
    WindowlessEffect effect({}, [](const std::string&) {});
    if (options.tone > 0) {
        sound(effect, options.tone);
    }

    Images::ImageLibrary images(resources, [](std::string_view line) { std::cerr << line << '\n'; });
    const auto views = allViews(effect);
    LeapingClock clock;
    SilentDesktop desktop;
    Quilt::Editor editor(
        {documents, views, images, desktop, desktop, clock, &effect.bridge(), &effect.bridge()});
    editor.variables().set("uiScale", Quilt::Scale::fromText(options.scale).text());
    // Before, for what loading depends on; and after, for what the document sets to begin with.
    setVariables(editor.variables(), options.variables);
    editor.open(documents.name(), {0, 0, 470, 320});
    setVariables(editor.variables(), options.variables);
    editor.settle();

    // When all that moves has come to rest.
    constexpr int kTicks = 3;
    Drawing::Surface surface(editor.root()->bounds().width, editor.root()->bounds().height);
    for (int i = 0; i < kTicks; ++i) {
        clock.leap(std::chrono::seconds(60));
        editor.tick();
        editor.draw(surface.view(), editor.root()->area());
    }
    editor.tick();
    writeSurface(options.output, surface.view());
    for (const auto& error : desktop.errors()) {
        std::cerr << error << '\n';
    }
    failWithErrors(desktop.errors().size());
}

} // namespace

void addQuiltCommand(CLI::App& program) {
    auto* const quilt = program.add_subcommand("quilt", "Loads layout documents, and draws them");
    quilt->require_subcommand(1);

    const auto options = std::make_shared<LoadOptions>();
    auto* const loading = quilt->add_subcommand("load", "Builds a layout document and prints it as JSON");
    loading->add_option("FILE", options->file, "A layout document, or - for standard input")->required();
    loading->add_option("--scale", options->scale, "Pixels a unit, as N/D")->capture_default_str();
    loading->add_option("--area", options->area, "Width and height of what encloses the document, in units")
        ->expected(2)
        ->check(CLI::Range(0, 100000));
    loading->add_option("--set", options->variables, "NAME=VALUE: a variable's value before loading")
        ->expected(1)
        ->take_all();
    loading->add_flag("--reload", options->reload, "As when the document is loaded again");
    loading->callback([options] { load(*options); });

    const auto picture = std::make_shared<SnapshotOptions>();
    auto* const drawing =
        quilt->add_subcommand("snapshot", "Draws a layout document, with an effect behind it, as PNG");
    drawing->add_option("DOCUMENT", picture->document, "The name of a resource, or a file")->required();
    drawing->add_option("OUT", picture->output, "The picture")->required();
    drawing->add_option("--scale", picture->scale, "Pixels a unit, as N/D")->capture_default_str();
    drawing->add_option("--set", picture->variables, "NAME=VALUE: a variable's value")
        ->expected(1)
        ->take_all();
    drawing->add_option("--resources", picture->resources, "A folder with more layouts, images and fonts")
        ->check(CLI::ExistingDirectory);
    drawing->add_option("--tone", picture->tone, "A second of a tone of so many Hz goes through the effect first")
        ->check(numberWithin(20, 10000));
    drawing->callback([picture] { snapshot(*picture); });

    quilt->add_subcommand("types", "Prints the reference of view types and their properties")->callback([] {
        WindowlessEffect effect({}, [](const std::string&) {});
        fmt::print("{}", Quilt::viewReference(allViews(effect)));
    });
}

} // namespace Tool
