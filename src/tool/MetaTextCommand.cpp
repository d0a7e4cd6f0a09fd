#include "tool/Commands.h"
#include "tool/TextArgument.h"

#include "metatext/MetaText.h"
#include "metatext/StringTable.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tool {

namespace {

struct Options {
    std::vector<std::string> variables;
    std::vector<std::string> translations;
};

Quilt::StringTable tableOf(const std::vector<std::string>& pairs) {
    Quilt::StringTable table;
    for (const std::string& pair : pairs) {
        const auto [name, value] = splitPair(pair);
        table.set(std::string(name), std::string(value));
    }
    return table;
}

void print(const std::string& text, const Options& options) {
    const auto variables = tableOf(options.variables);
    const auto translations = tableOf(options.translations);
    const auto variable = [&variables](const std::string& name) {
        const std::string* const value = variables.find(name);
        if (value == nullptr) {
            throw std::runtime_error("Unknown variable: " + name);
        }
        return *value;
    };
    const auto translate = [&translations](const std::string& source) {
        return translations.translate(source);
    };
    fmt::print("{}\n", Quilt::expandMetaText(text, {variable, translate}));
}

} // namespace

void addMetaTextCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    auto* const command = program.add_subcommand("metatext", "Expands the tags in a caption or parameter");
    addPairsOption(*command, "--var", options->variables, "Gives a variable a value");
    addPairsOption(*command, "--translate", options->translations, "Gives a text a translation")
        ->type_name("SOURCE=TARGET");
    addTextArgument(*command, "The text", [options](const std::string& text) { print(text, *options); });
}

} // namespace Tool
