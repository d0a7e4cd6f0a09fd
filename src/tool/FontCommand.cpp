#include "tool/Commands.h"

#include "fonts/FontReading.h"
#include "model/PathText.h"
#include "platform/AtomicFileWrite.h"
#include "tool/FontConverter.h"
#include "tool/ScriptError.h"
#include "tool/TextFile.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace Tool {

namespace {

struct Options {
    std::vector<std::string> files;
    bool convert = false;
    FontOrigin origin;
};

void checkFont(const std::string& file) {
    try {
        const auto font =
            OVS::readFont(readTextFile(file), [](std::string_view line) { std::cerr << line << '\n'; });
        const OVS::FontMetrics& metrics = font->metrics();
        fmt::print("upm={} ascent={} descent={} linegap={} glyphs={} kerns={}\n", metrics.unitsPerEm,
                   metrics.ascent, metrics.descent, metrics.lineGap, font->glyphCount(),
                   font->kerningCount());
    } catch (const ZEKT::Exception& error) {
        reportScriptError(error);
    }
}

void convert(const std::string& from, const std::string& to, const FontOrigin& origin) {
    Platform::atomicFileWrite(Model::pathFromUtf8(to), convertFont(from, origin));
}

} // namespace

void addFontCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        program.add_subcommand("ovsfont", "Checks a font document, or makes one from an outline font.");
    command
        ->add_option("FILE", options->files, "A font document; with --convert an outline font and the output")
        ->required();
    CLI::Option* converting = command->add_flag("--convert", options->convert, "Write a font document");
    command
        ->add_option("--source", options->origin.source,
                     "Where the font came from, for the document's comment")
        ->needs(converting);
    command->add_option("--licence", options->origin.licence, "The name of its licence, likewise")
        ->needs(converting);
    command->callback([options] {
        if (options->files.size() != (options->convert ? 2U : 1U)) {
            throw CLI::ValidationError("ovsfont", options->convert
                                                      ? "takes an outline font and an output file"
                                                      : "takes one font document");
        }
        if (options->convert) {
            convert(options->files[0], options->files[1], options->origin);
        } else {
            checkFont(options->files[0]);
        }
    });
}

} // namespace Tool
