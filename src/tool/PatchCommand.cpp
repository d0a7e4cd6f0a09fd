#include "tool/Commands.h"

#include "model/MidiConfig.h"
#include "model/MidiConfigText.h"
#include "model/PatchText.h"
#include "tool/TextFile.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <cstdio>
#include <memory>
#include <string>

namespace Tool {

namespace {

void printPatch(const std::string& file) {
    fmt::print("{}", Model::writePatch(Model::readPatch(readTextFile(file), sourceName(file))));
}

void printMidiConfig(const std::string& file) {
    Model::MidiConfig config;
    if (!Model::readMidiConfig(readTextFile(file), config, sourceName(file))) {
        fmt::print(stderr, "{} holds no MIDI configuration; these are the defaults\n", file);
    }
    fmt::print("{}", Model::writeMidiConfig(config));
}

void addFileCommand(CLI::App& program, const char* name, const char* help,
                    void (*print)(const std::string&)) {
    const auto file = std::make_shared<std::string>();
    auto* const command = program.add_subcommand(name, help);
    command->add_option("FILE", *file, "A file, or - for standard input")->required();
    command->callback([file, print] { print(*file); });
}

} // namespace

void addPatchCommand(CLI::App& program) {
    addFileCommand(program, "patch", "Reads a patch and prints it as the plug-in writes it", printPatch);
}

void addMidiConfigCommand(CLI::App& program) {
    addFileCommand(program, "midiconfig", "Reads a MIDI configuration and prints it as the plug-in writes it",
                   printMidiConfig);
}

} // namespace Tool
