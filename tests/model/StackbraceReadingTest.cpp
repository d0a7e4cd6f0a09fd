#include "notation/Compound.h"
#include "notation/Document.h"
#include "notation/Errors.h"

#include "NaiveNotation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

using namespace Stackbrace;
using namespace std::string_literals;

namespace {

using Texts = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

std::pair<bool, Texts> readTexts(const Element& element) {
    const List list = readList(element);
    Texts texts;
    for (const Element& item : list) {
        texts.push_back(item.text());
    }
    return {list.complete(), texts};
}

std::pair<bool, Pairs> readPairs(const Element& element) {
    const Structure structure = readStructure(element);
    Pairs pairs;
    for (const auto& [key, value] : structure) {
        pairs.emplace_back(key, value.text());
    }
    return {structure.complete(), pairs};
}

} // namespace

TEST(StackbraceList, splitsOneLevel) {
    struct Row {
        std::string text;
        Texts elements;
        bool complete = true;
    };
    const Row rows[] = {
        {"", {}},
        {" \t\v\r\n", {}},
        {"// nothing", {}},
        {"{}", {}},
        {"{ /* nothing */ }", {}},
        {"{", {}, false},
        {"}", {}, false},
        {"a}", {"a"}, false},
        {"{a", {"a"}, false},
        {"a, b; c", {"a", "b", "c"}},
        {"{ a, b }", {"a", "b"}},
        {"{a} b }}", {"a"}}, // what follows the matching brace is not looked at
        {"a,", {"a"}},
        {",a", {"", "a"}},
        {"a,,b", {"a", "", "b"}},
        {"{,}", {""}},
        {"a\nb\r\nc", {"a", "b", "c"}},
        {"a \t b\v  c", {"a b c"}},
        {"a // comment\nb", {"a", "b"}},
        {"a /* x */ b", {"a b"}},
        {"a/**/b", {"a b"}},
        {"/* a /* b */ c */ word", {"word"}},
        {"a /* never closed */ /* , b", {"a"}},
        {"c:/samples/a b.wav, 1/2", {"c:/samples/a b.wav", "1/2"}},
        {"/ / a", {"/ / a"}},
        {"a\fb", {"a\fb"}},
        {"a = b: c", {"a = b: c"}},
        {"\"a, }\" , 'b\"'", {"\"a, }\"", "'b\"'"}},
        {"\"a\" b", {"\"a\"", "b"}},
        {"a \"b, c\"", {"a \"b", "c\""}},
        {"\"a\\\"b\"", {"\"a\\\"b\""}},
        {"\"open\nb", {"\"open", "b"}},
        {"\"two\\\r\nlines\"", {"\"two\\\r\nlines\""}},
        {"\"one\\\nline\"", {"\"one\\\nline\""}},
        {"\"end\\", {"\"end\\"}},
        {"{ { a, { b } }, \"}\" }", {"{ a, { b } }", "\"}\""}},
        {"{{ '}' /* } */ // }\n }, b}", {"{ '}' /* } */ // }\n }", "b"}},
        {"x, { a, { b }", {"x", "{ a, { b }"}},
        {"a{b}", {"a{b"}, false},
        {"\xE9\xFF, \x7F", {"\xE9\xFF", "\x7F"}},
        {"a, b\x1A, c", {"a", "b"}},
        {"a, b\0, c"s, {"a", "b"}},
        {"\"a\\\x1A\", c", {"\"a\\"}},
    };
    for (const Row& row : rows) {
        const Document document(row.text);
        EXPECT_EQ(readTexts(document.root()), std::pair(row.complete, row.elements)) << row.text;
    }
}

TEST(StackbraceStructure, splitsOneLevel) {
    struct Row {
        std::string text;
        Pairs elements;
        bool complete = true;
    };
    const Row rows[] = {
        {"", {}},
        {"{}", {}},
        {"{", {}, false},
        {"}", {}, false},
        {"a = 1, b: 2; c=3", {{"a", "1"}, {"b", "2"}, {"c", "3"}}},
        {"a: 1\nb: 2", {{"a", "1"}, {"b", "2"}}},
        {"a:\n\n  1", {{"a", "1"}}},
        {"a\n: 1", {{"", "1"}, {"a", ""}}},
        {"a /* x */ : 1", {{"a", "1"}}},
        {"alone, b: , c", {{"alone", ""}, {"b", ""}, {"c", ""}}},
        {"{ b: 1, a: 2, b: 3 }", {{"a", "2"}, {"b", "1"}}},
        {"a: x = y: z", {{"a", "x = y: z"}}},
        {"long  key /**/ here : 1", {{"long key here", "1"}}},
        {"\"q\\x41:\" : 1, 'p' = 2", {{"p", "2"}, {"qA:", "1"}}},
        {"\"a\" b: 1", {{"a", ""}, {"b", "1"}}},
        {"{x}: 1", {{"x", ""}}},
        {"a: { b: { c: 1 } }, d: \"}\"", {{"a", "{ b: { c: 1 } }"}, {"d", "\"}\""}}},
        {"a: 1, \"\\q\": 2, c: 3", {{"a", "1"}}, false},
        {"a: {", {{"a", "{"}}},
        {"a: 1 }", {{"a", "1"}}, false},
        {"a: c:/b//c", {{"a", "c:/b"}}},
    };
    for (const Row& row : rows) {
        const Document document(row.text);
        EXPECT_EQ(readPairs(document.root()), std::pair(row.complete, row.elements)) << row.text;
    }
}

TEST(StackbraceStructure, answersForMissingKeys) {
    const Document document("{ a: 1 }");
    const Structure structure = readStructure(document.root());
    EXPECT_EQ(structure.find("b"), nullptr);
    EXPECT_EQ(structure["b"].text(), "");
    EXPECT_EQ(structure["a"].integer(), 1);
    try {
        structure.at("b");
        FAIL();
    } catch (const UndefinedElementError& error) {
        EXPECT_EQ(error.key(), "b");
    }
}

namespace {

// Whether the reader agrees with the plain one on this text, and on every compound inside it.
void compare(const std::string& text, const Element& element, int depth) {
    ASSERT_EQ(readTexts(element), Naive::list(text)) << text;
    const List list = readList(element);
    for (const Element& item : list) {
        if (depth > 0 && item.raw().starts_with('{')) {
            compare(item.text(), item, depth - 1);
        }
    }
    if (text.find_first_of("\"'") != std::string::npos) {
        return; // quoted keys
    }
    const auto [complete, expected] = Naive::structure(text);
    ASSERT_EQ(readPairs(element), std::pair(complete, Pairs(expected.begin(), expected.end()))) << text;
    const Structure structure = readStructure(element);
    for (const auto& [key, value] : structure) {
        if (depth > 0 && value.raw().starts_with('{')) {
            compare(value.text(), value, depth - 1);
        }
    }
}

} // namespace

TEST(StackbraceReading, agreesWithPlainRulesOnAllSmallTexts) {
    constexpr std::string_view kBytes = "a \n,={}\"'/*\\";
    for (std::size_t size = 0; size <= 5; ++size) {
        std::string text(size, kBytes.front());
        std::vector<std::size_t> digits(size);
        for (bool more = true; more;) {
            const Document document(text);
            compare(text, document.root(), 3);
            ASSERT_FALSE(testing::Test::HasFatalFailure());
            more = false;
            for (std::size_t i = 0; i < size && !more; ++i) {
                digits[i] = (digits[i] + 1) % kBytes.size();
                text[i] = kBytes[digits[i]];
                more = digits[i] != 0;
            }
        }
    }
}

TEST(StackbraceReading, keepsPlacesAtAnyDepth) {
    const std::string text = "first: 1\nouter: {\n\tinner: { flag: maybe,\n\t\tnumber: abc } }\n";
    const Document document(text, "layout.txt");
    const Structure root = document.root().structure();
    const Structure outer = root.at("outer").structure();
    const Structure inner = outer.at("inner").structure();
    try {
        inner.at("flag").boolean();
        FAIL();
    } catch (const ParsingError& error) {
        EXPECT_EQ(error.offset(), text.find("maybe"));
        EXPECT_STREQ(error.what(), "Invalid Stackbrace in layout.txt at line 3 column 17 (offset 34)");
    }
    EXPECT_EQ(inner.at("number").position().line, 4);
    EXPECT_EQ(inner.at("number").position().column, 11);
}

TEST(StackbraceReading, asksThePositionMapOfExpandedTexts) {
    struct Map : PositionMap {
        Position locate(std::size_t offset) const override { return {"macros.txt", 7, 3, offset + 100}; }
    };
    const Document document("a: \"\\q\"", "unused", std::make_shared<Map>());
    const Structure structure = document.root().structure();
    try {
        structure.at("a").string();
        FAIL();
    } catch (const ParsingError& error) {
        EXPECT_STREQ(error.what(), "Invalid Stackbrace in macros.txt at line 7 column 3 (offset 104)");
    }
}

TEST(StackbraceReading, strictReadingTellsWhereItStopped) {
    struct Row {
        std::string text;
        std::uint64_t offset;
    };
    for (const auto& [text, offset] : {Row{"{ a, b", 6}, Row{"a }", 2}, Row{"{ a, { b }", 10}}) {
        const Document document(text);
        for (const bool asList : {true, false}) {
            try {
                if (asList) {
                    document.root().list();
                } else {
                    document.root().structure();
                }
                FAIL() << text;
            } catch (const ParsingError& error) {
                EXPECT_EQ(error.offset(), offset) << text;
            }
        }
    }
}

namespace {

// Reads all levels down along the first compound of each; returns how many there are.
std::size_t descend(const Document& document) {
    std::size_t depth = 0;
    Element element = document.root();
    for (bool found = true; found;) {
        const List list = readList(element);
        found = false;
        for (const Element& item : list) {
            if (item.raw().starts_with('{')) {
                element = item;
                found = true;
                ++depth;
                break;
            }
        }
    }
    return depth;
}

} // namespace

// Depth times size would be 10^11 steps here.
TEST(StackbraceReading, takesLinearTimeOverAllLevels) {
    constexpr std::size_t kDepth = 300'000;
    const auto nested = [](std::size_t depth, const std::string& open, const std::string& close) {
        std::string text;
        for (std::size_t i = 0; i < depth; ++i) {
            text += open;
        }
        for (std::size_t i = 0; i < depth; ++i) {
            text += close;
        }
        return text;
    };
    struct Row {
        std::string text;
        std::size_t leastDepth;
    };
    const Row rows[] = {
        {nested(kDepth, "{", "}"), kDepth - 1}, {nested(kDepth, "x, {", "}, y"), kDepth},
        {nested(kDepth, "{", ""), kDepth - 1},  {nested(kDepth, "a: {", ""), 0},
        {nested(kDepth, "{a'b,", ""), 1}, // each level hides the braces of every other one from its parent
        {nested(kDepth, "{a\\',", ""), 1},      {nested(kDepth, "{a'b, '/*' ", ""), 1},
        {nested(kDepth, "/*", "*/"), 0},        {nested(kDepth, "\"", ""), 0},
        {nested(kDepth, "/*{", ""), 0},
    };
    const auto start = std::chrono::steady_clock::now();
    for (const Row& row : rows) {
        const Document document(row.text);
        EXPECT_GE(descend(document), row.leastDepth) << row.text.substr(0, 20);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

TEST(StackbraceReading, readsTheSameLevelAsOftenAsAsked) {
    const Document document("a: { b: 1 }, c: { d: { e: 2 } }");
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(document.root().structure().at("c").structure().at("d").structure().at("e").integer(), 2);
    }
}
