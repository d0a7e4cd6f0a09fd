// Texts on the command line that may look like options, "-2*3" for one, and NAME=VALUE pairs.
#pragma once

#include <CLI/App.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tool {

// Gives the command a required argument TEXT; what no option of the command knows is taken for it, so its
// help has no short form. `run` gets the text.
void addTextArgument(CLI::App& command, const char* help, const std::function<void(const std::string&)>& run);

// A repeatable option. What stands before the first "=" is the name.
CLI::Option* addPairsOption(CLI::App& command, const char* name, std::vector<std::string>& pairs,
                            const char* help);

std::pair<std::string_view, std::string_view> splitPair(std::string_view pair);

} // namespace Tool
