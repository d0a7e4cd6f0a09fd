// The examples of docs/quilt.md yield what the page says.
#include "expression/Expression.h"
#include "metatext/MetaText.h"
#include "metatext/StringTable.h"
#include "tombola/Processor.h"

#include <gtest/gtest.h>

#include <exception>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <string>

namespace {

std::string outcome(const std::function<std::string()>& run) {
    try {
        return run();
    } catch (const std::exception& error) {
        return std::string("error: ") + error.what();
    }
}

std::string eachLine(const std::string& text, const std::function<std::string(const std::string&)>& run) {
    std::istringstream lines(text);
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        result += outcome([&] { return run(line); }) + "\n";
    }
    return result;
}

std::string expanded(const std::string& text) {
    return outcome([&] {
        std::string output;
        Tombola::Processor().process("page", text, output);
        return output;
    });
}

std::string evaluated(const std::string& line) {
    return std::to_string(Quilt::evaluateAll<int>(
        line, 0, [](std::string_view name) { return name == "w" ? std::optional(470) : std::nullopt; }));
}

} // namespace

TEST(Page, examplesYieldWhatItSays) {
    std::ifstream file(MURMELON_DOCS "/quilt.md");
    Quilt::StringTable strings;
    const std::map<std::string, std::string> variables = {
        {"uiScale", "5/4"}, {"scaleName", "uiScale"}, {"patch.name", "the \"big\" one"}};
    const Quilt::MetaTextSources sources{[&](const std::string& name) { return variables.at(name); },
                                         [&](const std::string& text) { return strings.translate(text); }};
    std::string fence;
    std::string text;
    std::optional<std::string> found; // nothing for blocks of other kinds
    int compared = 0;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (!line.starts_with("```")) {
            text.append(line).append("\n");
            continue;
        }
        if (fence == "```tombola") {
            found = expanded(text);
            if (!found->ends_with('\n')) {
                *found += '\n';
            }
        } else if (fence == "```expr") {
            found = eachLine(text, evaluated);
        } else if (fence == "```strings") {
            strings = Quilt::StringTable::read(text);
        } else if (fence == "```metatext") {
            found =
                eachLine(text, [&](const std::string& row) { return Quilt::expandMetaText(row, sources); });
        } else if (fence == "```output" && found) {
            EXPECT_EQ(*found, text) << "docs/quilt.md, block that ends in line " << number;
            found.reset();
            ++compared;
        }
        fence = fence.empty() ? line : "";
        text.clear();
    }
    EXPECT_GE(compared, 6);
}
