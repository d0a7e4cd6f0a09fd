#include "tool/Commands.h"

#include "model/PathText.h"
#include "platform/AtomicFileWrite.h"
#include "tool/FontConverter.h"

#include <CLI/CLI.hpp>

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

} // namespace

void addFontCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        program.add_subcommand("ovsfont", "Checks a font document, or makes one from an outline font.");
    command
        ->add_option("FILE", options->files, "A font document; with --convert an outline font and the output")
        ->required();
    CLI::Option* convert = command->add_flag("--convert", options->convert, "Write a font document");
    command
        ->add_option("--source", options->origin.source,
                     "Where the font came from, for the document's comment")
        ->needs(convert);
    command->add_option("--licence", options->origin.licence, "The name of its licence, likewise")
        ->needs(convert);
    command->callback([options] {
        if (options->files.size() != 2) {
            throw CLI::ValidationError("ovsfont", "takes an outline font and an output file");
        }
        Platform::atomicFileWrite(Model::pathFromUtf8(options->files[1]),
                                  convertFont(Model::pathFromUtf8(options->files[0]), options->origin));
    });
}

} // namespace Tool
