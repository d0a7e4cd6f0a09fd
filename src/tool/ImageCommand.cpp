#include "tool/Commands.h"

#include "images/ImageLibrary.h"
#include "model/PathText.h"
#include "notation/Compound.h"
#include "tool/ScriptError.h"
#include "tool/SurfaceFile.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <charconv>
#include <memory>
#include <string>
#include <string_view>

namespace Tool {

namespace {

struct Options {
    std::string specification;
    std::string output;
    std::string folder;
    std::string scale;
};

// "3/2", or a whole number.
double scaleOf(const std::string& text) {
    int numerator = 0;
    int denominator = 1;
    const char* end = text.data() + text.size();
    auto read = std::from_chars(text.data(), end, numerator);
    if (read.ptr != end && *read.ptr == '/') {
        read = std::from_chars(read.ptr + 1, end, denominator);
    }
    if (read.ec != std::errc() || read.ptr != end || numerator < 1 || denominator < 1) {
        throw CLI::ValidationError("--scale", "is a fraction, as 3/2");
    }
    return static_cast<double>(numerator) / denominator;
}

// Keys without braces around them are an object, too; a text without keys is the name of an image.
std::string inBraces(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin != std::string::npos && text[begin] != '{') {
        const Stackbrace::Document document(text);
        const Stackbrace::Structure keys = Stackbrace::readStructure(document.root());
        if (keys.complete() && (keys.find("name") || keys.find("ovsCode") || keys.find("ovsFile"))) {
            return "{" + text + "}";
        }
    }
    return begin == std::string::npos ? text
                                      : text.substr(begin, text.find_last_not_of(" \t\r\n") + 1 - begin);
}

void writeImage(const Options& options) {
    const double scale = options.scale.empty() ? Images::kOwnResolution : scaleOf(options.scale);
    const Stackbrace::Document document(inBraces(options.specification));
    const Images::ImageSpecification specification = Images::readImageSpecification(document.root());
    Images::ImageLibrary library(Resources::Lookup(Model::pathFromUtf8(options.folder)),
                                 [](std::string_view line) { fmt::print("{}\n", line); });
    const auto image = library.image(specification, scale);
    Drawing::Surface pixels(image->width(), image->height());
    image->draw(pixels.view(), pixels.view().bounds(), 0, 0);
    writeSurface(Model::pathFromUtf8(options.output), pixels.view());
}

} // namespace

void addImageCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = program.add_subcommand("image", "Makes a picture of an image specification.");
    command->add_option("SPEC", options->specification, "An image specification as layouts hold it")
        ->required();
    command->add_option("OUT", options->output, "The PNG file to write")->required();
    command->add_option("--resources", options->folder,
                        "Where to look for names that the plug-in does not have");
    command->add_option(
        "--scale", options->scale,
        "Pixels a unit, as a display of this scale shows it (default: the picture's own pixels)");
    command->callback([options] {
        try {
            writeImage(*options);
        } catch (const ZEKT::Exception& error) {
            reportScriptError(error);
        }
    });
}

} // namespace Tool
