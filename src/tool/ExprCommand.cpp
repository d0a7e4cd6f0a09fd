#include "tool/Commands.h"
#include "tool/TextArgument.h"

#include "expression/Expression.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Tool {

namespace {

struct Options {
    std::string type = "int";
    std::vector<std::string> symbols;
    std::string whenBlank = "0";
};

template <class Number>
void print(const std::string& text, const Options& options) {
    std::map<std::string, Number, std::less<>> values;
    for (const std::string& pair : options.symbols) {
        const auto [name, value] = splitPair(pair);
        values[std::string(name)] = Quilt::evaluateAll<Number>(value, Number{}, {});
    }
    const Quilt::Symbols<Number> symbols = [&values](std::string_view name) -> std::optional<Number> {
        const auto found = values.find(name);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    };
    const auto whenBlank = Quilt::evaluateAll<Number>(options.whenBlank, Number{}, {});
    fmt::print("{}\n", Quilt::evaluateAll<Number>(text, whenBlank, symbols));
}

struct Type {
    const char* name;
    void (*print)(const std::string&, const Options&);
};

constexpr Type kTypes[] = {{"int", print<std::int32_t>}, {"float", print<float>}, {"double", print<double>}};

} // namespace

void addExprCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    auto* const command =
        program.add_subcommand("expr", "Evaluates an arithmetic expression as layouts hold it");
    command->add_option("--type", options->type, "What to compute in")
        ->check(CLI::IsMember({"int", "float", "double"}))
        ->capture_default_str();
    addPairsOption(*command, "--symbol", options->symbols, "Gives a name a value");
    command->add_option("--default", options->whenBlank, "The value of a blank text")
        ->capture_default_str()
        ->type_name("VALUE");
    addTextArgument(*command, "The expression", [options](const std::string& text) {
        for (const Type& type : kTypes) {
            if (options->type == type.name) {
                type.print(text, *options);
            }
        }
    });
}

} // namespace Tool
