#include "tool/TextArgument.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

namespace Tool {

void addTextArgument(CLI::App& command, const char* help,
                     const std::function<void(const std::string&)>& run) {
    const auto text = std::make_shared<std::string>();
    command.set_help_flag("--help", "Print this help message and exit");
    command.allow_extras();
    auto* const option = command.add_option("TEXT", *text, help)->allow_extra_args(false);
    command.callback([&command, option, text, run] {
        auto others = command.remaining();
        if (const auto mark = std::ranges::find(others, "--"); mark != others.end()) {
            others.erase(mark); // says that no option follows, as elsewhere
        }
        if (option->count() + others.size() > 1) {
            throw CLI::ExtrasError(command.get_name(), others);
        }
        if (option->count() + others.size() == 0) {
            throw CLI::RequiredError("TEXT");
        }
        run(others.empty() ? *text : others.front());
    });
}

CLI::Option* addPairsOption(CLI::App& command, const char* name, std::vector<std::string>& pairs,
                            const char* help) {
    return command.add_option(name, pairs, help)
        ->allow_extra_args(false)
        ->type_name("NAME=VALUE")
        ->check([](const std::string& pair) {
            return pair.find('=') == std::string::npos ? "\"" + pair + "\" has no =" : std::string();
        });
}

std::pair<std::string_view, std::string_view> splitPair(std::string_view pair) {
    const std::size_t sign = pair.find('=');
    return {pair.substr(0, sign), pair.substr(sign + 1)};
}

} // namespace Tool
