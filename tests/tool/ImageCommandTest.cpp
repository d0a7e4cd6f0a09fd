// The commands for images and fonts: image, ovsfont, and the plug-in's fonts in ovs.
#include "CommandRun.h"
#include "TestFont.h"

#include <string>

namespace {

class ImageCommandTest : public CommandRun::CommandTest {
protected:
    // Width and height from the header of a PNG file.
    std::pair<int, int> sizeOf(const std::string& name) const {
        const std::string bytes = read(name);
        const auto number = [&](std::size_t at) {
            int value = 0;
            for (std::size_t i = at; i < at + 4 && i < bytes.size(); ++i) {
                value = value << 8 | static_cast<unsigned char>(bytes[i]);
            }
            return value;
        };
        return {number(16), number(20)};
    }
};

const std::string kFlag =
    "format ovs-1 requires:ZEKT-1\nbounds 0,0,6,4\nfill $colour\nrect 0,0,6,4\nTRACE drawn\n";

} // namespace

TEST_F(ImageCommandTest, imageMakesPicturesOfSpecifications) {
    write("flag.ovs", kFlag);
    std::filesystem::create_directories(folder_ / "pictures");
    const auto made = run({"image", "{ ovsFile: \"flag\", defines: { colour: red }, scale: 2 }",
                           "pictures/flag_X2.png", "--resources", "."});
    EXPECT_EQ(made.status, 0);
    EXPECT_EQ(made.output, "drawn\n");
    EXPECT_EQ(made.errors, "");
    struct Row {
        std::string specification;
        std::vector<std::string> options;
        std::pair<int, int> size;
    };
    const Row rows[] = {
        {"flag", {}, {12, 8}},
        {" { name: flag }\n", {"--scale", "1"}, {6, 4}},
        {"name: flag, slices: 2", {"--scale", "3/2"}, {9, 3}},
        {"{ name: \"flag_X2\", format: \"rlemask\", index: 1, slices: 4 }", {}, {12, 2}},
    };
    for (const Row& row : rows) {
        std::vector<std::string> arguments = {"image", row.specification, "out.png", "--resources",
                                              "pictures"};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        EXPECT_EQ(run(arguments).errors, "") << row.specification;
        EXPECT_EQ(sizeOf("out.png"), row.size) << row.specification;
    }
}

TEST_F(ImageCommandTest, imageFailsWithoutHarmingWhatWasThere) {
    write("out.png", "precious");
    const std::pair<std::string, std::string> rows[] = {
        {"flag", "error: Missing image: flag\n"},
        {"{ name: flag, format: \"jpeg\" }", "error: Invalid image format specification: jpeg\n"},
        {"{ ovsCode: \"bounds 0,0,1\" }",
         "error: ZEKT::RunTimeException: Too few list elements (got 3, expected at "
         "least 4)\nin: bounds 0,0,1\n"},
        {"{ name: flag", "error: Invalid Stackbrace at line 1 column 13 (offset 12)\n"},
    };
    for (const auto& [specification, errors] : rows) {
        const auto failed = run({"image", specification, "out.png"});
        EXPECT_EQ(failed.status, 1);
        EXPECT_EQ(failed.errors, errors);
        EXPECT_EQ(read("out.png"), "precious");
    }
    EXPECT_EQ(run({"image", "flag"}).status, 2);
    EXPECT_EQ(run({"image", "flag", "out.png", "--scale", "0/2"}).status, 2);
}

TEST_F(ImageCommandTest, vectorImagesHaveTheFontsOfThePlugin) {
    write("text.ovs", "format ovs-1\nbounds 0,0,60,20\nfont $font size:12\ntext [Aa] at:2,15 caret:x\n"
                      "trace {round($x * 100)}");
    for (const auto& [font, width] :
         {std::pair("SourceCodePro", "1640\n"), std::pair("monospace", "1640\n")}) {
        EXPECT_EQ(run({"ovs", "text.ovs", "out.png", "--define", std::string("font=") + font}).output, width);
    }
    const auto failed = run({"ovs", "text.ovs", "out.png", "--define", "font=Gothic"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.errors, "error: ZEKT::RunTimeException: Missing font: Gothic\nin: font $font size:12\n");
}

TEST_F(ImageCommandTest, ovsfontChecksDocuments) {
    const std::string font =
        "format ovsfont-1 requires:ZEKT-1\nmetrics upm:1000 ascent:750.5 descent:-250 linegap:0\n"
        "glyph A 600 \"m0,0l250-700h100l250,700z\"\nkern -80 A AV\n";
    EXPECT_EQ(run({"ovsfont", "-"}, font).output,
              "upm=1000 ascent=750.5 descent=-250 linegap=0 glyphs=1 kerns=2\n");
    const auto failed = run({"ovsfont", "-"}, font + "glyph AB 1 \"\"\n");
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.errors, "error: ZEKT::RunTimeException: Invalid glyph character (length is not 1): AB\n"
                             "in: glyph AB 1 \"\"\n");
    EXPECT_EQ(run({"ovsfont"}).status, 2);
    EXPECT_EQ(run({"ovsfont", "a", "b"}).status, 2);
    EXPECT_EQ(run({"ovsfont", "--convert", "a"}).status, 2);
}

TEST_F(ImageCommandTest, ovsfontConvertsOutlineFonts) {
    write("test.ttf", TestFont::file());
    write("no font.ttf", "nothing");
    EXPECT_EQ(
        run({"ovsfont", "--convert", "test.ttf", "out", "--source", "the tests", "--licence", "None"}).errors,
        "");
    EXPECT_EQ(read("out"), "// Test Font, ISO charset only, converted from the tests.\n"
                           "// Licence: None\n"
                           "format ovsfont-1 requires:ZEKT-1\n\n"
                           "metrics upm:1000 ascent:800 descent:-200 linegap:90\n\n"
                           "glyph \\x00 500 \"m50,0v-700h400v700zm50-50h300v-600h-300z\"\n"
                           "glyph \\$ 600 \"m100,0v-500h300v500h-300z\"\n"
                           "glyph A 700 \"m0-100q100,0,100-100t-100-100-100,100,100,100z\"\n\n"
                           "kern -50 \\$ A\n");
    EXPECT_EQ(run({"ovsfont", "out"}).output,
              "upm=1000 ascent=800 descent=-200 linegap=90 glyphs=3 kerns=1\n");
    run({"ovsfont", "--convert", "-", "same", "--source", "the tests", "--licence", "None"},
        TestFont::file());
    EXPECT_EQ(read("same"), read("out"));
    EXPECT_EQ(run({"ovsfont", "--convert", "none.ttf", "out"}).errors,
              "error: Could not read none.ttf: No such file or directory\n");
    const auto failed = run({"ovsfont", "--convert", "no font.ttf", "out"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.errors, "error: Could not read the font no font.ttf\n");
}
