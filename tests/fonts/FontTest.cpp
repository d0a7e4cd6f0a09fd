#include "fonts/FontLibrary.h"
#include "fonts/FontReading.h"
#include "zekt/Interpreter.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

const std::string kHead = "format ovsfont-1 requires:ZEKT-1\n";
const std::string kMetrics = kHead + "metrics upm:1000 ascent:750 descent:-250 linegap:500\n";

// What reading a document comes to: its error and the statement, or nothing.
std::string failureOf(const std::string& document) {
    try {
        OVS::readFont(document);
        return {};
    } catch (const ZEKT::Exception& error) {
        return std::string(error.className()) + ": " + error.what() + " in: " + error.statement();
    }
}

// Origins and width of a text of 10 units an em, with the code of nothing but how far the pen got.
std::vector<double> placesOf(const OVS::Font& font, std::u16string_view text, double tracking,
                             bool& complete) {
    const OVS::TextRun run = font.layOut(text, 10.0, tracking);
    std::vector<double> places;
    for (const OVS::PlacedGlyph& glyph : run.glyphs) {
        places.push_back(glyph.x);
    }
    places.push_back(run.width);
    complete = run.complete;
    return places;
}

} // namespace

TEST(FontReading, tellsWhatIsWrongWithADocument) {
    struct Row {
        std::string document;
        std::string failure;
    };
    const Row rows[] = {
        {kMetrics, ""},
        {"format OVSFONT-1\nmetrics upm:1 ascent:0 descent:0 linegap:0", ""},
        {"format ovsfont-2", "ZEKT::FormatException: Unsupported data format in: format ovsfont-2"},
        {"format ovsfont-1 requires:ZEKT-1,colour",
         "ZEKT::FormatException: Unsupported data format in: format ovsfont-1 requires:ZEKT-1,colour"},
        {kHead, "ZEKT::RunTimeException: Missing metrics instruction in font definition in: "},
        {kHead + "glyph A 10 \"\"",
         "ZEKT::RunTimeException: Missing metrics before glyph instruction in font "
         "definition in: glyph A 10 \"\""},
        {kMetrics + "metrics upm:1 ascent:0 descent:0 linegap:0",
         "ZEKT::RunTimeException: Duplicate metrics instruction in font definition in: metrics upm:1 "
         "ascent:0 "
         "descent:0 linegap:0"},
        {"metrics upm:0 ascent:0 descent:0 linegap:0",
         "ZEKT::RunTimeException: Invalid metrics instruction in font "
         "definition in: metrics upm:0 ascent:0 descent:0 linegap:0"},
        {"metrics upm:1 ascent:-1 descent:0 linegap:0",
         "ZEKT::RunTimeException: Invalid metrics instruction in font "
         "definition in: metrics upm:1 ascent:-1 descent:0 linegap:0"},
        {"metrics upm:1 ascent:0 descent:1 linegap:0",
         "ZEKT::RunTimeException: Invalid metrics instruction in font "
         "definition in: metrics upm:1 ascent:0 descent:1 linegap:0"},
        {"metrics upm:1 ascent:0 descent:0",
         "ZEKT::SyntaxException: Missing argument: linegap in: metrics upm:1 "
         "ascent:0 descent:0"},
        {"metrics upm:1 ascent:0 descent:0 linegap:0 weight:4",
         "ZEKT::SyntaxException: Unrecognized labels or too many arguments in: metrics upm:1 ascent:0 "
         "descent:0 "
         "linegap:0 weight:4"},
        {kMetrics + "glyph AB 10 \"\"",
         "ZEKT::RunTimeException: Invalid glyph character (length is not 1): AB in: glyph AB 10 \"\""},
        {kMetrics + "glyph \"\" 10 \"\"",
         "ZEKT::RunTimeException: Invalid glyph character (length is not 1):  in: glyph \"\" 10 \"\""},
        {kMetrics + "glyph A -0.5 \"\"",
         "ZEKT::RunTimeException: Negative glyph advance in font definition: -0.5 in: glyph A -0.5 \"\""},
        {kMetrics + "glyph \\xE9 1 \"\"\nglyph \\xE9 1 \"\"",
         "ZEKT::RunTimeException: Duplicate glyph definition in font definition (unicode: 233) in: glyph "
         "\\xE9 1 \"\""},
        {kMetrics + "glyph A 10", "ZEKT::SyntaxException: Missing indexed argument 2 in: glyph A 10"},
        {kMetrics + "glyph A 10 \"\" 5",
         "ZEKT::SyntaxException: Unrecognized labels or too many arguments in: glyph A 10 \"\" 5"},
        {kMetrics + "glyph A 10 \"nonsense\"", ""}, // only who writes with it is told
        {kMetrics + "kern -10", ""},
        {kMetrics + "kern -10 AB", "ZEKT::SyntaxException: Missing indexed argument 2 in: kern -10 AB"},
        {kMetrics + "kern -10 A B C", "ZEKT::SyntaxException: Missing indexed argument 4 in: kern -10 A B C"},
        {kMetrics + "kern -10 AB CD\nkern 5 X Y B D",
         "ZEKT::RunTimeException: Duplicate kerning pair in font definition: 66,68 in: kern 5 X Y B D"},
        {kMetrics + "kern 1 A B unit:em",
         "ZEKT::SyntaxException: Unrecognized labels or too many arguments in: kern 1 A B unit:em"},
        {kMetrics + "rect 0,0,1,1", "ZEKT::SyntaxException: Unrecognized instruction: rect in: rect 0,0,1,1"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(failureOf(row.document), row.failure) << row.document;
    }
}

TEST(FontReading, isBoundedWhateverTheDocumentAsksFor) {
    // Each glyph has 2 points, then twice as many: 2^17 in the end, several times over.
    EXPECT_EQ(failureOf(kMetrics + "p = m0,0h1\nREPEAT 16 [ p = $p$p ]\n"
                                   "FOR c in:A,B,C,D,E,F,G,H,I [ glyph $c 1 $p ]\n")
                  .substr(0, 74),
              "ZEKT::RunTimeException: Too many outline points in font definition in: gly");
    std::string every;
    for (int code = 0x100; code < 0x400; ++code) {
        const char* digits = "0123456789ABCDEF";
        every += std::string("\\u0") + digits[code >> 8] + digits[code >> 4 & 15] + digits[code & 15];
    }
    EXPECT_EQ(failureOf(kMetrics + "kern 1 " + every + " " + every).substr(0, 66),
              "ZEKT::RunTimeException: Too many kerning pairs in font definition ");
}

TEST(FontReading, readsCharactersInAllTheirForms) {
    const auto font = OVS::readFont(
        kMetrics + "glyph \\x00 1 \"\"\nglyph \\  2 \"\"\nglyph \\\" 3 \"\"\nglyph \\xA0 4 \"\"\n"
                   "glyph \\xFF 5 \"\"\nglyph \\u0416 6 \"\"\nglyph 7 7 \"\"\nglyph \\; 8 \"\"\n"
                   "glyph \\x3A 9 \"\"\nglyph \\= 10 \"\"\nglyph ' 11 \"\"\n");
    const char16_t characters[] = {0, u' ', u'"', 0xA0, 0xFF, 0x416, u'7', u';', u':', u'=', u'\''};
    double advance = 1.0;
    for (const char16_t character : characters) {
        ASSERT_NE(font->glyph(character), nullptr) << static_cast<int>(character);
        EXPECT_EQ(font->glyph(character)->advance, advance++);
    }
    EXPECT_EQ(font->glyphCount(), std::size(characters));
}

TEST(FontLayout, kernsTracksAndReplaces) {
    const auto font = OVS::readFont(kMetrics + "glyph \\x00 400 \"m0,0h1\"\nglyph A 500 \"m0,0h1\"\n"
                                               "glyph V 600 \"m0,0h1\"\nglyph B 700 \"broken\"\n"
                                               "kern -100 A V\nkern 50 V A?\n");
    struct Row {
        std::u16string text;
        double tracking;
        std::vector<double> places; // origins, then the width
        bool complete;
    };
    const Row rows[] = {
        {u"", 3, {0}, true},
        {u"A", 3, {0, 5}, true},
        {u"AV", 0, {0, 4, 10}, true},
        {u"VA", 0, {0, 6.5, 11.5}, true},
        {u"AVA", 2, {0, 6, 14.5, 19.5}, true},    // between characters only
        {u"V?A", 0, {0, 6.5, 10.5, 15.5}, false}, // kerned as what it is, shown as the sign for missing ones
        {u"AB", 0, {0, 5, 9}, false},
        {std::u16string(1, u'\0'), 0, {0, 4}, true},
    };
    for (const Row& row : rows) {
        bool complete = false;
        const auto places = placesOf(*font, row.text, row.tracking, complete);
        ASSERT_EQ(places.size(), row.places.size());
        for (std::size_t i = 0; i < places.size(); ++i) {
            EXPECT_NEAR(places[i], row.places[i], 1e-12);
        }
        EXPECT_EQ(complete, row.complete);
    }
}

TEST(FontLayout, aFontWithoutASignForMissingCharactersShowsNothing) {
    const auto font = OVS::readFont(kMetrics + "glyph A 500 \"m0,0h1\"\n");
    bool complete = true;
    EXPECT_EQ(placesOf(*font, u"?A", 0.0, complete), (std::vector<double>{0.0, 5.0}));
    EXPECT_FALSE(complete);
}

TEST(FontLibrary, hasTheFontsOfThePlugin) {
    OVS::FontLibrary fonts;
    struct Row {
        std::string name;
        OVS::FontMetrics metrics;
        bool kerned;
    };
    const Row rows[] = {
        {"JostBook", {1000, 1070, -375, 0}, true},
        {"Kalam", {1000, 1063, -531, 0}, false},
        {"SourceSansPro", {1000, 984, -273, 0}, true},
        {"SourceCodePro", {1000, 984, -273, 0}, false},
    };
    for (const Row& row : rows) {
        const auto font = fonts.document(row.name);
        ASSERT_NE(font, nullptr) << row.name;
        EXPECT_EQ(font->metrics(), row.metrics);
        EXPECT_EQ(font->glyphCount(), 192U);
        EXPECT_EQ(font->kerningCount() > 0, row.kerned) << row.name;
        for (char16_t code = 0x21; code <= 0xFF; code == 0x7E ? code = 0xA1 : ++code) {
            ASSERT_NE(font->glyph(code), nullptr) << row.name << " " << static_cast<int>(code);
            ASSERT_TRUE(font->glyph(code)->outline.has_value()) << row.name << " " << static_cast<int>(code);
            // Everything that shows stands within a reasonable distance of its line.
            const Drawing::Rect bounds = font->glyph(code)->outline->bounds();
            EXPECT_GT(bounds.width, 0.0) << row.name << " " << static_cast<int>(code);
            EXPECT_GT(bounds.y, -1400.0) << row.name << " " << static_cast<int>(code);
            EXPECT_LT(bounds.bottom(), 700.0) << row.name << " " << static_cast<int>(code);
        }
        EXPECT_LT(font->glyph(u'x')->outline->bounds().bottom(), 60.0) << row.name; // on the line, not below
        EXPECT_FALSE(font->glyph(0)->outline->isEmpty()) << row.name;
        EXPECT_TRUE(font->layOut(u"Grüße, Øre & ½!", 12.0, 0.0).complete) << row.name;
        EXPECT_EQ(fonts.document(row.name), font); // read once
    }
    EXPECT_LT(fonts.document("JostBook")->kerning(u'A', u'V'), 0.0);
    EXPECT_EQ(fonts.document("sans-serif"), fonts.document("SourceSansPro"));
    EXPECT_EQ(fonts.document("monospace"), fonts.document("SourceCodePro"));
    EXPECT_EQ(fonts.document("Gothic"), nullptr);
}

TEST(FontLibrary, readsFontsOfItsFolder) {
    const auto folder = std::filesystem::temp_directory_path() / "murmelon-fonts-test";
    std::filesystem::create_directories(folder / "more");
    std::ofstream(folder / "more" / "Own.ovsfont") << kMetrics << "glyph A 1 \"\"";
    std::ofstream(folder / "Broken.ovsfont") << kMetrics << "glyph A";
    OVS::FontLibrary fonts{Resources::Lookup(folder / "more")};
    EXPECT_NE(fonts.document("Own"), nullptr);
    EXPECT_EQ(fonts.document("../Broken"), nullptr);
    EXPECT_EQ(fonts.document((folder / "more" / "Own").string()), nullptr);
    EXPECT_EQ(OVS::FontLibrary{Resources::Lookup(folder)}.document("Broken"), nullptr);
    EXPECT_NE(OVS::FontLibrary{Resources::Lookup(folder)}.document("more/Own"), nullptr);
    std::filesystem::remove_all(folder);
}
