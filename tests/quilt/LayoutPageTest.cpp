// The layouts in docs/quilt.md load.
#include "TestEditor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace {

TEST(LayoutPage, ExamplesLoadWithoutErrors) {
    std::ifstream page(MURMELON_DOCS "/quilt.md");
    std::string fence;
    std::string text;
    int loaded = 0;
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with("```")) {
            text += line + "\n";
            continue;
        }
        if (fence == "```layout") {
            TestEditor::Rig rig;
            rig.provider.values = {{"params.mix", "0.5"}, {"params.mix.human", "50 %"}};
            rig.open(text);
            rig.pass(1000);
            EXPECT_THAT(rig.desktop.messages, testing::IsEmpty()) << text;
            ++loaded;
        }
        fence = fence.empty() ? line : "";
        text.clear();
    }
    EXPECT_GE(loaded, 2);
}

} // namespace
