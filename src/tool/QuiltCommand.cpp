#include "tool/Commands.h"

#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/View.h"
#include "quilt/ViewFactory.h"
#include "tool/LayoutFiles.h"
#include "tool/SilentDesktop.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>
#include <nlohmann/json.hpp>

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
    return {{"action", autoexec.action},         {"params", autoexec.params},
            {"delay", json(autoexec.delay)},     {"repeat", json(autoexec.repeat)},
            {"onChanged", autoexec.onChanged},   {"onReload", autoexec.onReload},
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
    return {{"bounds", json(document.bounds())},
            {"views", json(*editor.root())["children"]},
            {"autoexecs", std::move(autoexecs)},
            {"transitions", json(document.transitions())},
            {"translations", std::move(translations)},
            {"errors", errors}};
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

void load(const LoadOptions& options) {
    const LayoutFiles documents(options.file);
    const auto views = Quilt::standardViews();
    const Quilt::SteadyClock clock;
    SilentDesktop desktop;
    Quilt::Editor editor({documents, views, desktop, desktop, clock});
    editor.variables().set("uiScale", Quilt::Scale::fromText(options.scale).text());
    setVariables(editor.variables(), options.variables);
    editor.open(documents.name(), areaOf(options), options.reload);

    const auto& errors = desktop.errors();
    fmt::print("{}\n", json(editor, errors).dump(2, ' ', false, Json::error_handler_t::replace));
    if (!errors.empty()) {
        throw std::runtime_error(fmt::format("{} in the document", errors.size() == 1 ? "1 error"
                                                                  : fmt::format("{} errors", errors.size())));
    }
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

    quilt->add_subcommand("types", "Prints the reference of view types and their properties")->callback([] {
        fmt::print("{}", Quilt::viewReference(Quilt::standardViews()));
    });
}

} // namespace Tool
