// The editor still looks as its pictures in docs/pictures show it. Whoever changes it on purpose makes them anew
// with scripts/pictures.
#include "CommandRun.h"

#include "images/Png.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <vector>

namespace {

// Dates and the compiler's name stand in the about box; a pixel counts as another from this difference on.
constexpr int kSeenDifference = 32;
constexpr double kMostOthers = 0.01;

bool differs(Drawing::Pixel a, Drawing::Pixel b) {
    for (int shift = 0; shift < 32; shift += 8) {
        if (std::abs(static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF)) > kSeenDifference) {
            return true;
        }
    }
    return false;
}

using EditorPicturesTest = CommandRun::CommandTest;

TEST_F(EditorPicturesTest, AreWhatTheEditorLooksLike) {
    for (const std::string layout : {"main", "about", "zoom"}) {
        for (const std::string scale : {"1-2", "1-1", "5-4", "2-1"}) {
            const std::string name = "editor-" + layout + "-" + scale + ".png";
            std::string document = "MURMELON_" + layout;
            std::ranges::transform(document, document.begin(), [](char c) { return static_cast<char>(std::toupper(c)); });
            std::string fraction = scale;
            fraction[1] = '/';
            const auto result = run({"quilt", "snapshot", document, "now.png", "--scale", fraction});
            ASSERT_EQ(result.status, 0) << result.errors;
            const auto now = Images::readPng(read("now.png"));
            const auto then = Images::readPng(CommandRun::contentsOf(std::filesystem::path(MURMELON_PICTURES) / name));
            const auto a = now.pixels.view();
            const auto b = then.pixels.view();
            ASSERT_EQ(a.width, b.width) << name;
            ASSERT_EQ(a.height, b.height) << name;
            int others = 0;
            for (int y = 0; y < a.height; ++y) {
                for (int x = 0; x < a.width; ++x) {
                    others += differs(a.row(y)[x], b.row(y)[x]);
                }
            }
            EXPECT_LT(others, kMostOthers * a.width * a.height) << name;
        }
    }
}

// The mark of a changed patch stands at the end of the name's field.
TEST_F(EditorPicturesTest, HaveRoomForTheMarkBehindALongName) {
    const auto markWith = [this](const std::string& name) {
        const auto result = run({"quilt", "snapshot", "MURMELON_MAIN", "now.png", "--set", "patch.name=" + name});
        EXPECT_EQ(result.status, 0) << result.errors;
        const auto picture = Images::readPng(read("now.png"));
        std::vector<Drawing::Pixel> mark;
        for (int y = 6; y < 28; ++y) {
            const Drawing::Pixel* const row = picture.pixels.view().row(y);
            mark.insert(mark.end(), row + 353, row + 369);
        }
        return mark;
    };
    EXPECT_EQ(markWith("A name as long as no field of any editor could hold it"), markWith("Short"));
}

} // namespace
