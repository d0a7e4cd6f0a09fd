#include "tool/Commands.h"

#include "platform/FileRead.h"
#include "platform/PathText.h"
#include "tool/ScriptError.h"
#include "tool/TextFile.h"
#include "zekt/Interpreter.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Tool {

namespace {

struct Options {
    std::string file;
    std::vector<std::string> definitions;
    std::string includeFolder;
    std::vector<std::string> formats;
    bool variables = false;
};

// A host with data formats but no instructions of its own.
class Host : public ZEKT::Executor {
public:
    explicit Host(const Options& options) : options_(options) {}

    bool supportsFormat(const ZEKT::FormatStatement& format) override {
        return format.requirements.empty() &&
               std::any_of(options_.formats.begin(), options_.formats.end(),
                           [&format](const std::string& name) { return ZEKT::folded(name) == format.name; });
    }

    bool execute(ZEKT::Frame&, std::string_view, const ZEKT::ArgumentText&) override { return false; }

    std::optional<std::string> loadInclude(const std::string& fileName) override {
        const auto path = Platform::pathFromUtf8(fileName).lexically_normal();
        const bool below = !path.has_root_path() && !path.empty() && *path.begin() != "..";
        if (options_.includeFolder.empty() || !below) {
            return std::nullopt;
        }
        try {
            return Platform::readFile(Platform::pathFromUtf8(options_.includeFolder) / path);
        } catch (const std::runtime_error&) {
            return std::nullopt;
        }
    }

    void trace(std::string_view line) override { std::cout << line << '\n'; }

private:
    const Options& options_;
};

void define(ZEKT::Frame& globals, std::string_view definition) {
    const auto equals = definition.find('=');
    if (equals == std::string_view::npos) {
        throw CLI::ValidationError("--define", "NAME=VALUE expected: " + std::string(definition));
    }
    globals.set(definition.substr(0, equals), definition.substr(equals + 1));
}

void printVariables(const ZEKT::Frame& globals) {
    for (const auto& [name, text] : globals.variables()) {
        std::cout << name << '=' << text << '\n';
    }
}

void runScript(const Options& options) {
    Host host(options);
    ZEKT::Interpreter interpreter(host);
    try {
        for (const std::string& definition : options.definitions) {
            define(interpreter.globals(), definition);
        }
        interpreter.run(readTextFile(options.file));
    } catch (const ZEKT::Exception& error) {
        if (options.variables) {
            printVariables(interpreter.globals());
        }
        reportScriptError(error);
    }
    if (options.variables) {
        printVariables(interpreter.globals());
    }
}

} // namespace

void addZektCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    auto* const command = program.add_subcommand("zekt", "Runs a script; trace lines go to standard output");
    command->add_option("FILE", options->file, "A script, or - for standard input")->required();
    command->add_option("--define", options->definitions, "NAME=VALUE, a global variable")
        ->allow_extra_args(false);
    command->add_option("--include-dir", options->includeFolder, "Where included files are");
    command->add_option("--format", options->formats, "A data format to accept")->allow_extra_args(false);
    command->add_flag("--vars", options->variables, "Prints the global variables after the run");
    command->callback([options] { runScript(*options); });
}

} // namespace Tool
