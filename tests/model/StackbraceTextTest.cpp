// Strings, numbers, booleans and the writer.
#include "notation/Compound.h"
#include "notation/Document.h"
#include "notation/Errors.h"
#include "notation/Numbers.h"
#include "notation/Quoting.h"
#include "notation/Writer.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>

using namespace Stackbrace;
using namespace std::string_literals;

TEST(StackbraceStrings, unquotes) {
    struct Row {
        std::string element;
        std::string content;
    };
    const Row rows[] = {
        {"", ""},
        {"  plain \\n text ", "  plain \\n text "},
        {"\v\"a\"", "\v\"a\""}, // VT is no leading blank
        {" \t\r\n\"a\" \t\v\r\n", "a"},
        {"\"\"", ""},
        {"'it\"s'", "it\"s"},
        {R"("\"\'\\\n\r\t")", "\"'\\\n\r\t"},
        {R"("\x41\u0042\U00000043")", "ABC"},
        {R"("\xe9\u00E9\U000000FF")", "\xE9\xE9\xFF"},
        {R"("\x00z")", "\0z"s},
        {"\"a\"\x1A rest", "a"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(unquote(row.element), row.content) << row.element;
    }
}

TEST(StackbraceStrings, refusesInvalidOnesAtTheFault) {
    struct Row {
        std::string element;
        std::uint64_t offset;
    };
    const Row rows[] = {
        {"\"", 1},
        {"\"abc", 4},
        {"\"a\\q\"", 2},
        {"\"a\\", 2},
        {R"("\x4")", 1},
        {R"("\x4g")", 1},
        {R"("\u0100")", 1},
        {R"("\u041")", 1},
        {R"("\U00000100")", 1},
        {R"("\U80000041")", 1},
        {"\"tab\there\"", 4},
        {"\"\xE9\"", 1},
        {"\"\x7F\"", 1},
        {"  'a' b", 6},
        {"\"a\" // no comment", 4},
    };
    for (const auto& [element, offset] : rows) {
        try {
            unquote(element);
            ADD_FAILURE() << element;
        } catch (const ParsingError& error) {
            EXPECT_EQ(error.offset(), offset) << element;
        }
    }
}

TEST(StackbraceStrings, quotes) {
    struct Row {
        std::string content;
        std::string literal;
    };
    const Row rows[] = {
        {"", R"("")"},
        {"it's \"so\" \\", R"("it's \"so\" \\")"},
        {"\t\n\r\v\x1A", R"("\t\n\r\x0b\x1a")"},
        {"\0\x7F\x80\xE9\xFF"s, R"("\x00\x7f\x80\xe9\xff")"},
        {" ~", R"(" ~")"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(quote(row.content), row.literal);
    }
    for (int c = 0; c < 256; ++c) {
        const std::string content{'x', static_cast<char>(c), '1'};
        EXPECT_EQ(unquote(quote(content)), content) << c;
    }
}

TEST(StackbraceNumbers, convertsIntegers) {
    struct Row {
        std::string text;
        std::int64_t value;
    };
    const Row rows[] = {
        {"0", 0},
        {"42 sm", 42},
        {" \t\n\v\f\r-7", -7},
        {"+5", 5},
        {"0x1F", 31},
        {"0Xff", 255},
        {"-0x10", -16},
        {"0x", 0},
        {"0xg", 0},
        {"010", 8},
        {"017", 15},
        {"09", 0},
        {"2147483647", 2147483647},
        {"2147483648", 2147483647},
        {"-2147483648", -2147483648LL},
        {"-2147483649", -2147483648LL},
        {std::string(100, '9'), 2147483647},
        {"1.9", 1},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(toInt32(row.text), row.value) << row.text;
    }
}

TEST(StackbraceNumbers, convertsFloats) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    struct Row {
        std::string text;
        double value;
    };
    const Row rows[] = {
        {"0.1", 0.1},
        {" +.5x", 0.5},
        {"5.", 5},
        {"-1e3", -1000},
        {"1e", 1},
        {"0x1.8p1", 3},
        {"-0x10", -16},
        {"0xz", 0},
        {"1e400", kInfinity},
        {"-1e400", -kInfinity},
        {"1e-400", 0},
        {"0." + std::string(500, '0') + "1", 0},
        {"1" + std::string(500, '0'), kInfinity},
        {"0.001e99999999999999999999", kInfinity},
        {"inf", kInfinity},
        {"4.9e-324", 4.9e-324},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(toFloat64(row.text), row.value) << row.text;
    }
    EXPECT_EQ(toFloat32("0.1"), 0.1f);
    EXPECT_EQ(toFloat32("3e38"), 3e38f);
    EXPECT_EQ(toFloat32("4e38"), std::numeric_limits<float>::infinity());
    // Between two floats, nearer to the upper one only when it is not first rounded to double.
    EXPECT_EQ(toFloat32("1.00000005960464477540"), std::nextafter(1.0f, 2.0f));
    EXPECT_TRUE(std::isnan(toFloat64("nan")));
    for (const float value : {440.0f, 0.1f, 9999.999f, 1e-7f}) {
        EXPECT_EQ(toFloat32(numberText(value)), value);
    }
    EXPECT_EQ(numberText(440), "440");
}

TEST(StackbraceNumbers, refusesWhatBeginsWithNone) {
    for (const std::string text : {"abc", "", "  ", "-", "+-1", "--1", "x10", ".", "\"1\""}) {
        const auto message = [&](auto convert) {
            try {
                convert(text);
                return std::string("no exception");
            } catch (const Exception& error) {
                return std::string(error.what());
            }
        };
        EXPECT_EQ(message(toInt32), "Invalid number: " + text);
        EXPECT_EQ(message(toFloat32), "Invalid number: " + text);
        EXPECT_EQ(message(toFloat64), "Invalid number: " + text);
    }
}

TEST(StackbraceNumbers, doNotHeedTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", ""}) {
        std::setlocale(LC_ALL, name);
        EXPECT_EQ(toFloat64("1.5"), 1.5);
        EXPECT_EQ(numberText(1.5f), "1.5");
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(StackbraceBooleans, readsThemAlone) {
    struct Row {
        std::string text;
        int value; // or -1 - offset of the fault
    };
    const Row rows[] = {
        {"true", 1},   {" \t\v\r\nfalse \n", 0}, {"True", -1},     {"", -1},          {"  ", -3}, {"yes", -1},
        {"truex", -5}, {"true x", -6},           {"\"true\"", -1}, {"true // x", -6},
    };
    for (const auto& [text, value] : rows) {
        const Document document(text);
        try {
            EXPECT_EQ(document.root().boolean(), value == 1) << text;
            EXPECT_GE(value, 0) << text;
        } catch (const ParsingError& error) {
            EXPECT_EQ(-1 - static_cast<int>(error.offset()), value) << text;
        }
    }
}

TEST(StackbraceErrors, countLinesAndColumns) {
    struct Row {
        std::string before;
        std::string name;
        std::string text;
    };
    const Row rows[] = {
        {"", "", "Invalid Stackbrace at line 1 column 1 (offset 0)"},
        {"ab", "a b.txt", "Invalid Stackbrace in a b.txt at line 1 column 3 (offset 2)"},
        {"ab\r", "", "Invalid Stackbrace at line 1 column 4 (offset 3)"},
        {"ab\r\n", "", "Invalid Stackbrace at line 2 column 1 (offset 4)"},
        {"\n\n\t", "", "Invalid Stackbrace at line 3 column 2 (offset 3)"},
    };
    for (const Row& row : rows) {
        const ParsingError error("reason", positionIn(row.before + "rest", row.before.size(), row.name));
        EXPECT_EQ(error.what(), row.text);
        EXPECT_STREQ(error.message(), "reason");
    }
}

TEST(StackbraceWriter, laysOutCompounds) {
    Writer writer;
    writer.begin("MurmelonPatch");
    writer.value("format", "1").string("name", "a \"b\"\n");
    writer.begin("parameters").string("mix", "100%").string("an odd: key", "\xE9").end();
    writer.begin("empty").end();
    writer.begin("bounds", Layout::inLine).value("0").value("12").begin().string("x").end().end();
    writer.boolean("last", true);
    writer.end();
    const std::string text = writer.take();
    EXPECT_EQ(text, "MurmelonPatch: {\n"
                    "\tformat: 1\n"
                    "\tname: \"a \\\"b\\\"\\n\"\n"
                    "\tparameters: {\n"
                    "\t\tmix: \"100%\"\n"
                    "\t\t\"an odd: key\": \"\\xe9\"\n"
                    "\t}\n"
                    "\tempty: { }\n"
                    "\tbounds: { 0, 12, { \"x\" } }\n"
                    "\tlast: true\n"
                    "}\n");
    EXPECT_EQ(withFileLineEnds("a\n\tb\n"), "a\r\n\tb\r\n");

    const Document document(withFileLineEnds(text));
    const Structure patch = document.root().structure().at("MurmelonPatch").structure();
    EXPECT_EQ(patch.at("name").string(), "a \"b\"\n");
    EXPECT_EQ(patch.at("parameters").structure().at("an odd: key").string(), "\xE9");
    EXPECT_TRUE(patch.at("empty").structure().empty());
    EXPECT_EQ(patch.at("bounds").list()[2].list()[0].string(), "x");
    EXPECT_TRUE(patch.at("last").boolean());
}

TEST(StackbraceWriter, keysReadBackWhateverTheyHold) {
    for (const std::string key :
         {"plain", "", "a b", " a", "a/b", "a//b", "{", "a,b", "'q'", "\xE9", "a:b"}) {
        Writer writer;
        writer.value(key, "1");
        const Document document(writer.take());
        EXPECT_EQ(document.root().structure().at(key).integer(), 1) << key;
    }
}
