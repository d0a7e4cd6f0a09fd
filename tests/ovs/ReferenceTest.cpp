// The examples of docs/ovs.md do what the page says: each fenced block marked `ovs` runs, as a document of its own or
// with bounds put before it; one marked `ovs fails: MESSAGE` fails with that message.
#include "Drawn.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace {

struct Example {
    int line = 0;
    std::string mark;
    std::string text;
};

std::vector<Example> examples() {
    std::ifstream page(MURMELON_REFERENCE);
    std::vector<Example> result;
    std::string line;
    bool inside = false;
    for (int number = 1; std::getline(page, line); ++number) {
        if (line.starts_with("```")) {
            inside = !inside && line.starts_with("```ovs");
            if (inside) {
                result.push_back({number, line.substr(3), ""});
            }
        } else if (inside) {
            result.back().text += line + "\n";
        }
    }
    return result;
}

TEST(Reference, ExamplesRun) {
    const auto all = examples();
    EXPECT_GE(all.size(), 20U);
    for (const Example& example : all) {
        const bool whole = example.text.find("bounds ") == 0 || example.text.find("\nbounds ") != std::string::npos;
        auto picture = OVSTest::drawn((whole ? "" : "bounds 0,0,100,100\n") + example.text);
        const std::string message = picture.error.substr(0, picture.error.find(" in: "));
        if (const auto fails = example.mark.find("fails: "); fails != std::string::npos) {
            EXPECT_TRUE(message.ends_with(": " + example.mark.substr(fails + 7))) << example.line << ": " << message;
            continue;
        }
        EXPECT_EQ(picture.error, "") << "line " << example.line;
        bool drawn = false;
        for (int y = 0; y < picture.pixels.height() && !drawn; ++y) {
            for (int x = 0; x < picture.pixels.width() && !drawn; ++x) {
                drawn = picture.at(x, y) != 0;
            }
        }
        EXPECT_TRUE(drawn) << "line " << example.line << " draws nothing";
    }
}

} // namespace
