// The examples of docs/zekt.md print what the page says. A block "zekt NAME" is a file for others to include.
#include "ScriptRun.h"

#include <fstream>
#include <sstream>

namespace {

struct Example {
    std::string script;
    std::string output;
    int line;
};

struct Page {
    std::vector<Example> examples;
    std::map<std::string, std::string> files;
};

Page readPage() {
    std::ifstream file(MURMELON_DOCS "/zekt.md");
    Page page;
    std::string fence;
    std::string text;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (!line.starts_with("```")) {
            text.append(line).append("\n");
            continue;
        }
        if (fence == "```zekt") {
            page.examples.push_back({text, "nothing", number});
        } else if (fence == "```output") {
            page.examples.back().output = text;
        } else if (fence.starts_with("```zekt ")) {
            page.files[fence.substr(8)] = text;
        }
        fence = fence.empty() ? line : "";
        text.clear();
    }
    return page;
}

class PageHost : public ScriptRun::Host {
public:
    bool supportsFormat(const ZEKT::FormatStatement& format) override {
        return format.name == "ovs-1" && format.requirements.empty();
    }
};

} // namespace

TEST(Page, examplesPrintWhatItSays) {
    const Page page = readPage();
    EXPECT_GT(page.examples.size(), 10U);
    for (const Example& example : page.examples) {
        PageHost host;
        host.files = page.files;
        ZEKT::Interpreter interpreter(host);
        try {
            interpreter.run(example.script);
        } catch (const ZEKT::Exception& error) {
            host.output.append("error: ").append(error.className()).append(": ").append(error.what());
            host.output.append("\nin: ").append(error.statement()).append("\n");
        }
        EXPECT_EQ(host.output, example.output) << "docs/zekt.md, block that ends in line " << example.line;
    }
}
