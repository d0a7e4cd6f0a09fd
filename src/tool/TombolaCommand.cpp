#include "tool/Commands.h"
#include "tool/TextFile.h"

#include "platform/PathText.h"
#include "tombola/Processor.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <cstddef>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace Tool {

namespace {

struct Options {
    std::string file;
    std::string includeFolder;
    std::optional<std::size_t> offset;
};

Tombola::IncludeLoader loaderBelow(const std::filesystem::path& folder) {
    return [folder](const std::string& name) -> std::optional<std::string> {
        const auto path = Platform::pathFromUtf8(name).lexically_normal();
        if (path.has_root_path() || (!path.empty() && *path.begin() == "..")) {
            return std::nullopt;
        }
        return Tombola::loadFile(Platform::utf8Of(folder / path));
    };
}

void expand(const Options& options) {
    Tombola::Processor processor(options.includeFolder.empty() ? Tombola::loadFile
                                                               : loaderBelow(Platform::pathFromUtf8(options.includeFolder)));
    std::string expansion;
    Tombola::PositionMap positions;
    processor.process(sourceName(options.file), readTextFile(options.file), expansion,
                      options.offset ? &positions : nullptr);
    if (!options.offset) {
        std::cout.write(expansion.data(), static_cast<std::streamsize>(expansion.size()));
        return;
    }
    if (*options.offset > expansion.size()) {
        throw std::runtime_error(
            fmt::format("Offset {} is beyond the expansion's {} bytes", *options.offset, expansion.size()));
    }
    const auto position = positions.locate(*options.offset);
    fmt::print("{}:{}:{}\n", position.sourceName, position.line, position.column);
}

} // namespace

void addTombolaCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    auto* const command = program.add_subcommand("tombola", "Expands the macros in a layout");
    command->add_option("FILE", options->file, "A file, or - for standard input")->required();
    command->add_option("--include-dir", options->includeFolder, "Reads includes below this folder only")
        ->type_name("DIR");
    command->add_option("--map", options->offset, "Prints where that byte of the expansion came from instead")
        ->check([](const std::string& offset) {
            // Else it would be read as a number beyond all texts.
            return std::string(offset.starts_with('-') ? "expected an offset of 0 or more, not " + offset : "");
        })
        ->type_name("OFFSET");
    command->callback([options] { expand(*options); });
}

} // namespace Tool
