// The layouts in docs/quilt.md load, and the reference of view types is the one that the rows yield.
#include "TestEditor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

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

TEST(LayoutPage, ReferenceIsThatOfTheRows) {
    std::ifstream page(MURMELON_DOCS "/quilt-views.md");
    const std::string text{std::istreambuf_iterator<char>(page), {}};
    EXPECT_EQ(text, Quilt::viewReference(Quilt::standardViews())) << "murmelon quilt types > docs/quilt-views.md";
}

} // namespace
