#include "TestPictures.h"

#include "images/ImageError.h"
#include "images/ImageLibrary.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

std::unique_ptr<Images::TextFont> fontOf(Images::ImageLibrary& library, const std::string& text,
                                         double scale = 1.0) {
    const Stackbrace::Document document(text);
    return library.font(Images::readFontSpecification(document.root()), scale);
}

double coverage(const Drawing::Surface& surface) {
    double sum = 0.0;
    for (int y = 0; y < surface.height(); ++y) {
        for (int x = 0; x < surface.width(); ++x) {
            sum += Drawing::alphaOf(surface.view().at(x, y)) / 255.0;
        }
    }
    return sum;
}

Drawing::Surface written(Images::TextFont& font, std::u16string_view text, double x, double baseline,
                         const Drawing::IntRect& clip = {0, 0, 300, 60}) {
    Drawing::Surface surface(300, 60);
    EXPECT_TRUE(font.draw(surface.view(), clip, x, baseline, text));
    return surface;
}

} // namespace

TEST(OutlineText, measuresInPixels) {
    Images::ImageLibrary library;
    const auto font = fontOf(library, "{ ovsfont: SourceCodePro, size: 20 }", 1.5);
    EXPECT_NEAR(font->width(u"abcd"), 4 * 0.6 * 30, 1e-9);
    EXPECT_NEAR(font->ascent(), 0.984 * 30, 1e-9);
    EXPECT_NEAR(font->descent(), 0.273 * 30, 1e-9);
    EXPECT_NEAR(font->lineHeight(), 1.257 * 30, 1e-9);
}

TEST(OutlineText, glyphsStandWhereTheyAreAskedFor) {
    Images::ImageLibrary library;
    const auto font = fontOf(library, "{ ovsfont: SourceSansPro, size: 32, cacheResolution: 4, color: red }");
    // The centre of a letter's pixels follows the pen in quarters of a pixel.
    const auto centre = [&](double x) {
        const Drawing::Surface surface = written(*font, u"o", x, 40);
        double sum = 0.0;
        double moment = 0.0;
        for (int y = 0; y < 60; ++y) {
            for (int at = 0; at < 300; ++at) {
                const double alpha = Drawing::alphaOf(surface.view().at(at, y));
                sum += alpha;
                moment += alpha * at;
            }
        }
        return moment / sum;
    };
    const double first = centre(100.0);
    for (const double by : {0.25, 0.5, 0.75, 1.0, 3.25, -60.5}) {
        EXPECT_NEAR(centre(100.0 + by), first + by, 0.03) << by;
    }
    const Drawing::Surface surface = written(*font, u"x", 10, 40);
    EXPECT_EQ(Drawing::redOf(surface.view().at(17, 33)), Drawing::alphaOf(surface.view().at(17, 33)));
    for (int x = 0; x < 300; ++x) {
        EXPECT_EQ(surface.view().at(x, 41), 0U); // an x does not go below its line
    }
}

TEST(OutlineText, isCutOffAtItsClipAndNowhereElse) {
    Images::ImageLibrary library;
    const auto font = fontOf(library, "{ ovsfont: Kalam, size: 40, outlineWidth: 3, outlineColor: blue }");
    const Drawing::Surface whole = written(*font, u"Murmelon", 5, 45);
    const Drawing::IntRect clip = {20, 30, 77, 9};
    const Drawing::Surface part = written(*font, u"Murmelon", 5, 45, clip);
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 300; ++x) {
            ASSERT_EQ(part.view().at(x, y), clip.contains(x, y) ? whole.view().at(x, y) : 0U)
                << x << "," << y;
        }
    }
    EXPECT_GT(coverage(part), 50.0);
    EXPECT_EQ(coverage(written(*font, u"Murmelon", 5e9, 45)), 0.0);
    EXPECT_EQ(coverage(written(*font, u"Murmelon", 5, NAN)), 0.0);
}

TEST(OutlineText, largeGlyphsLookAsSmallOnesDo) {
    // Beyond a certain size glyphs are no longer kept as pixels: what they cover still grows with the square.
    Images::ImageLibrary library;
    const auto coverageAt = [&](double size) {
        Drawing::Surface surface(900, 900);
        fontOf(library, "{ ovsfont: JostBook, size: " + std::to_string(size) + ", gamma: 1 }")
            ->draw(surface.view(), surface.view().bounds(), 100, 800, u"H");
        return coverage(surface) / size / size;
    };
    EXPECT_NEAR(coverageAt(990), coverageAt(300), 0.001);
    EXPECT_GT(coverageAt(990), 0.05);
}

TEST(OutlineText, outlineAndOpacityShow) {
    Images::ImageLibrary library;
    const auto plain = fontOf(library, "{ ovsfont: JostBook, size: 30, color: white }");
    const auto outlined = fontOf(library, "{ ovsfont: JostBook, size: 30, color: white, outlineWidth: 4 }");
    EXPECT_GT(coverage(written(*outlined, u"Il", 10, 40)), coverage(written(*plain, u"Il", 10, 40)) * 1.5);
    Drawing::Surface faint(300, 60);
    plain->draw(faint.view(), faint.view().bounds(), 10, 40, u"Il", 51);
    EXPECT_NEAR(coverage(faint), coverage(written(*plain, u"Il", 10, 40)) * 0.2, 1.0);
    EXPECT_FALSE(plain->draw(faint.view(), faint.view().bounds(), 10, 40, u"\u4E00"));
}

TEST(FilmText, writesTheFramesOfItsCharacters) {
    const auto folder = std::filesystem::temp_directory_path() / "murmelon-film-text";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "digits.png", std::ios::binary) << TestPictures::placedPng(3, 12);
    Images::ImageLibrary library{Resources::Lookup(folder)};
    const auto font = fontOf(
        library, "{ film: digits, charset: \"ab?\", unknown: \"?\", ascent: 3, leading: 2, advance: 5 }");
    EXPECT_EQ(font->width(u"abab"), 18.0);
    EXPECT_EQ(font->ascent(), 3.0);
    EXPECT_EQ(font->descent(), 1.0);
    EXPECT_EQ(font->lineHeight(), 6.0);
    Drawing::Surface surface(20, 20);
    EXPECT_TRUE(font->draw(surface.view(), surface.view().bounds(), 2, 10, u"ba"));
    EXPECT_EQ(surface.view().at(2, 7), TestPictures::placed(0, 4));
    EXPECT_EQ(surface.view().at(4, 10), TestPictures::placed(2, 7));
    EXPECT_EQ(surface.view().at(5, 8), 0U);
    EXPECT_EQ(surface.view().at(7, 7), TestPictures::placed(0, 0));
    EXPECT_FALSE(font->draw(surface.view(), surface.view().bounds(), 2, 10, u"z"));
    EXPECT_EQ(surface.view().at(2, 7), TestPictures::placed(0, 8));

    const auto failureOf = [&](const std::string& text) -> std::string {
        try {
            fontOf(library, text);
            return {};
        } catch (const Images::ImageError& error) {
            return error.what();
        }
    };
    EXPECT_EQ(failureOf("{ film: digits, charset: \"abcd\" }"), ""); // as many frames as characters
    EXPECT_EQ(failureOf("{ film: digits, charset: \"abcde\" }"), "Image height not dividable by slice count");
    EXPECT_EQ(failureOf("{ film: { image: digits, frames: 2 }, charset: \"abc\" }"),
              "Invalid film image type");
    EXPECT_EQ(failureOf("{ film: { image: { name: digits, format: mask } }, charset: \"abc\" }"),
              "Image is of incorrect type");
    EXPECT_EQ(failureOf("{ ovsfont: Gothic }"), "Could not obtain OVS font: Gothic");
    std::filesystem::remove_all(folder);
}
