#include "images/ImageError.h"
#include "images/Specifications.h"
#include "notation/Errors.h"

#include <gtest/gtest.h>

#include <string>

using Images::Format;

namespace {

template <class Read>
std::string failureOf(Read read, const std::string& text) {
    try {
        const Stackbrace::Document document(text);
        read(document.root());
        return {};
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace

TEST(ImageSpecification, readsEveryKey) {
    const Stackbrace::Document document(
        "{ name: \"diode\", format: \"rle\"; gamma: 2.5, opacity: 0.5, scale: 0.33333, slices: 3, index: 2,"
        " defines: { b: \"two words\", a: 1.50 } }");
    const auto image = Images::readImageSpecification(document.root());
    EXPECT_EQ(image.name, "diode");
    EXPECT_EQ(image.format, Format::rle);
    EXPECT_EQ(image.gamma, 2.5);
    EXPECT_EQ(image.opacity, 0.5);
    EXPECT_EQ(image.scale, 3333);
    EXPECT_EQ(image.slices, 3);
    EXPECT_EQ(image.index, 2);
    EXPECT_EQ(image.defines,
              (std::vector<std::pair<std::string, std::string>>{{"a", "1.50"}, {"b", "two words"}}));
    EXPECT_FALSE(image.isVector());
    const Stackbrace::Document name("knob");
    Images::ImageSpecification plain;
    plain.name = "knob";
    EXPECT_EQ(Images::readImageSpecification(name.root()), plain);
}

TEST(ImageSpecification, clampsAndRefuses) {
    struct Row {
        std::string keys;
        double gamma;
        double opacity;
        std::string failure = {};
    };
    const Row rows[] = {
        {"gamma: 9, opacity: -1", 4.0, 0.0},
        {"gamma: -9, opacity: 7", 0.0, 1.0},
        {"gamma: nan, opacity: nan", 0.0, 0.0},
        {"format: \"RLE\"", 0, 0, "Invalid image format specification: RLE"},
        {"format: \"\"", 0, 0, "Invalid image format specification: "},
        {"slices: 0", 0, 0, "Invalid image slice count"},
        {"slices: -2, index: 0", 0, 0, "Invalid image slice count"},
        {"slices: 2, index: 2", 0, 0, "Invalid image slice index"},
        {"slices: 2, index: -1", 0, 0, "Invalid image slice index"},
        {"index: 1", 0, 0, "Invalid image slice index"},
        {"scale: 0", 0, 0, "Image scale out of range: 0"},
        {"scale: 101", 0, 0, "Image scale out of range: 101"},
        {"scale: nan", 0, 0, "Image scale out of range: nan"},
        {"ovsCode: \"\"", 0, 0, "Invalid image specification: { name: \"x\", ovsCode: \"\" }"},
        {"gamma: much", 0, 0, "Invalid number: much"},
    };
    for (const Row& row : rows) {
        const std::string text = "{ name: \"x\", " + row.keys + " }";
        EXPECT_EQ(failureOf(Images::readImageSpecification, text), row.failure);
        if (row.failure.empty()) {
            const Stackbrace::Document document(text);
            EXPECT_EQ(Images::readImageSpecification(document.root()).gamma, row.gamma);
            EXPECT_EQ(Images::readImageSpecification(document.root()).opacity, row.opacity);
        }
    }
    for (const std::string text : {"{ }", "\"\"", "", "{ slices: 2 }", "{ name: \"\" }"}) {
        EXPECT_EQ(failureOf(Images::readImageSpecification, text), "Invalid image specification: " + text);
    }
}

TEST(FilmSpecification, isAnImageAndItsFrames) {
    const Stackbrace::Document document(
        "{ image: { name: \"knob\", slices: 2 }, frames: 271, interpolate: true }");
    const auto film = Images::readFilmSpecification(document.root());
    EXPECT_EQ(film.image.name, "knob");
    EXPECT_EQ(film.image.slices, 2);
    EXPECT_EQ(film.frames, 271);
    EXPECT_TRUE(film.interpolate);
    const Stackbrace::Document name("\"knob\"");
    EXPECT_EQ(Images::readFilmSpecification(name.root()).image.name, "knob");
    EXPECT_FALSE(Images::readFilmSpecification(name.root()).frames.has_value());
    EXPECT_EQ(failureOf(Images::readFilmSpecification, "{ image: x, frames: 0 }"),
              "Invalid frame film count");
    EXPECT_EQ(failureOf(Images::readFilmSpecification, "{ frames: 2 }"), "Undefined element: image");
}

TEST(FontSpecification, readsOutlineAndFilmFonts) {
    const Stackbrace::Document outline(
        "{ ovsfont: \"Kalam\", size: 9.5, curveQuality: 2, cacheResolution: 8,"
        " color: red, gamma: 1.5, outlineWidth: 2, outlineColor: \"#80000000\" }");
    const Images::OutlineFontSpecification expected = {"Kalam",    9.5, 2.0, 8,
                                                       0xFFFF0000, 1.5, 2.0, 0x80000000};
    EXPECT_EQ(std::get<Images::OutlineFontSpecification>(Images::readFontSpecification(outline.root())),
              expected);
    const Stackbrace::Document film(
        "{ film: digits, charset: \"01\\xC3\\xA9\\xE9\", unknown: \"0\", ascent: 7,"
        " leading: 2, advance: 6 }");
    const auto font = std::get<Images::FilmFontSpecification>(Images::readFontSpecification(film.root()));
    EXPECT_EQ(font.film.image.name, "digits");
    EXPECT_EQ(font.charset, u"01\u00E9\u00E9");
    EXPECT_EQ(font.unknown, u'0');
    EXPECT_EQ(font.ascent, 7.0);
    EXPECT_EQ(font.leading, 2.0);
    EXPECT_EQ(font.advance, 6.0);
    const Stackbrace::Document range("{ film: digits, first: 65535, chars: 1 }");
    EXPECT_EQ(std::get<Images::FilmFontSpecification>(Images::readFontSpecification(range.root())).charset,
              std::u16string(1, 0xFFFF));
}

TEST(FontSpecification, refusesWhatNoFontCanBe) {
    const std::pair<std::string, std::string> rows[] = {
        {"ovsfont: K, size: 0", "OVS font size out of range: 0"},
        {"ovsfont: K, size: -1", "OVS font size out of range: -1"},
        {"ovsfont: K, size: 1000.5", "OVS font size out of range: 1000.5"},
        {"ovsfont: K, gamma: 0", "OVS font gamma out of range: 0"},
        {"ovsfont: K, gamma: 100", "OVS font gamma out of range: 100"},
        {"ovsfont: K, cacheResolution: 0", "OVS font cache resolution out of range: 0"},
        {"ovsfont: K, cacheResolution: 65", "OVS font cache resolution out of range: 65"},
        {"ovsfont: K, outlineWidth: -0.5", "Negative OVS font outlineWidth: -0.5"},
        {"ovsfont: K, color: blurple", "Invalid color name: blurple"},
        {"film: f, charset: \"abc\", unknown: \"d\"", "Replacement char not found in charset"},
        {"film: f, charset: \"abc\", unknown: \"ab\"", "Replacement char not found in charset"},
        {"film: f, charset: \"\"", "Invalid font specification: { film: f, charset: \"\" }"},
        {"film: f, first: 65535, chars: 2",
         "Invalid font specification: { film: f, first: 65535, chars: 2 }"},
        {"film: f, first: 32, chars: 0", "Invalid font specification: { film: f, first: 32, chars: 0 }"},
        {"film: f, charset: a, advance: nan",
         "Invalid font specification: { film: f, charset: a, advance: nan }"},
        {"size: 10", "Invalid font specification: { size: 10 }"},
    };
    for (const auto& [keys, failure] : rows) {
        EXPECT_EQ(failureOf(Images::readFontSpecification, "{ " + keys + " }"), failure);
    }
    EXPECT_EQ(failureOf(Images::readFontSpecification, "Kalam"), "Invalid font specification: Kalam");
}
