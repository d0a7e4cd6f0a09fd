#include "tool/Commands.h"

#include "fonts/FontLibrary.h"
#include "ovs/Document.h"
#include "tool/ScriptError.h"
#include "tool/SurfaceFile.h"
#include "tool/TextFile.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Tool {

namespace {

struct Options {
    std::string file;
    std::string picture;
    std::vector<std::string> definitions;
    double scale = 1.0;
};

std::pair<std::string, std::string> parted(const std::string& definition) {
    const auto equals = definition.find('=');
    if (equals == std::string::npos) {
        throw CLI::ValidationError("--define", "NAME=VALUE expected: " + definition);
    }
    return {definition.substr(0, equals), definition.substr(equals + 1)};
}

void drawImage(const Options& options) {
    if (!(options.scale > 0.0 && std::isfinite(options.scale))) {
        throw CLI::ValidationError("--scale", "a number above 0 expected");
    }
    OVS::Environment environment;
    environment.scale = options.scale;
    OVS::FontLibrary fonts;
    environment.fonts = &fonts;
    environment.trace = [](std::string_view line) { std::cout << line << '\n'; };
    for (const std::string& definition : options.definitions) {
        environment.variables.push_back(parted(definition));
    }
    OVS::Document document(readTextFile(options.file));
    try {
        const Drawing::Surface picture = document.renderImage(environment);
        writeSurface(options.picture, picture.view());
    } catch (const ZEKT::Exception& error) {
        reportScriptError(error);
    }
}

} // namespace

void addImageScriptCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    auto* const command =
        program.add_subcommand("ovs", "Draws a vector image; trace lines go to standard output");
    command->add_option("FILE", options->file, "A vector image, or - for standard input")->required();
    command->add_option("OUT", options->picture, "The picture to write, a PNG")->required();
    command->add_option("--define", options->definitions, "NAME=VALUE, a global variable")
        ->allow_extra_args(false);
    command->add_option("--scale", options->scale, "Pixels for each unit of the image");
    command->callback([options] { drawImage(*options); });
}

} // namespace Tool
