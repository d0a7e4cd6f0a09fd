#include "metatext/MetaText.h"
#include "metatext/StringTable.h"

#include "notation/Errors.h"
#include "tombola/Processor.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using namespace Quilt;

namespace {

MetaTextSources sources() {
    static const auto variables =
        StringTable::read("uiScale = 5/4; empty = \"\"; name = uiScale; spaced = '\\n a '\n"
                          "quoted = 'say \"it\\'s\" \\\\'; tags = '[mac]'");
    static const auto translations =
        StringTable::read("\"zoom:5/4\" = \"125%\" // shown\n/* none */ \"a\" = \"[var]b\"");
    return {[](const std::string& name) {
                const std::string* const value = variables.find(name);
                return value == nullptr ? throw std::runtime_error("Unknown variable: " + name) : *value;
            },
            [](const std::string& text) { return translations.translate(text); }};
}

struct Row {
    std::string text;
    std::string outcome;
};

std::string outcome(const std::string& text) {
    try {
        return expandMetaText(text, sources());
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

std::string repeated(std::size_t count, const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

} // namespace

TEST(MetaText, expands) {
    const Row rows[] = {
        {"", ""},
        {R"(a \\ "b\" ])", R"(a \\ "b\" ])"}, // nothing to expand: nothing touched
        {R"([trim]a \\ \[ \] \' \" \n \)", R"(a \ [ ] ' " \n \)"},
        {"[foo] [] [VAR] [var ] ]", "[foo] [] [VAR] [var ] ]"},
        {"[[var]uiScale[/var]", "[5/4"},
        {"[a[b[", "[a[b["},
        {R"(["x'\][var]uiScale[/var])", R"(["x'\]5/4)"}, // quotes in what is no tag are not seen
        {"[mac]x[/mac]y", "y"},
        {"[windows]x[/windows]y", "xy"},
        {"[uppercase]a\xE4[lowercase]Z[/lowercase]z", "A\xE4ZZ"},
        {"[lowercase]\xC4ZY[/lowercase]X", "\xC4zyX"},
        {"[trim] \t\n\v\f\r a b \xA0 [/trim]", "a b \xA0"},
        {"[trim] [/trim].[trim]", "."},
        {"[xlate]zoom:[var]uiScale[/var][/xlate]", "125%"},
        {"[xlate]a[/xlate]", "[var]b"}, // results are not expanded again
        {"[xlate]b[/xlate]", "b"},
        {"[var][var]name[/var][/var]", "5/4"},
        {"[var]tags[/var]x", "[mac]x"},
        {"&Undo [var]empty[/var]", "&Undo "},
        {"[trim][mac]a[/mac][xlate] b", "b"}, // what is open ends with the text
        {"[/var]", "Unexpected meta tag [/var]"},
        {"[var]a[/xlate]", "Unexpected meta tag [/xlate]"},
        {"[xlate][var]name[/xlate]", "Unexpected meta tag [/xlate]"},
        {"[mac][/mac][/mac]", "Unexpected meta tag [/mac]"},
        {"[mac][var]unknown", "Unknown variable: unknown"}, // dropped, but expanded before
    };
    for (const Row& row : rows) {
        EXPECT_EQ(outcome(row.text), row.outcome) << row.text;
    }
}

TEST(MetaText, escapesVariablesBetweenQuotes) {
    const Row rows[] = {
        {"[var]quoted[/var]", R"(say "it's" \)"},
        {R"("[var]quoted[/var]")", R"("say \"it's\" \\")"},
        {R"('[var]quoted[/var]')", R"('say \"it\'s\" \\')"},
        {R"("'" [var]spaced[/var])", "\"'\" \n a "}, // the other quote opens nothing inside
        {R"("' [var]spaced[/var])", R"("' \n a )"},
        {R"(\" [var]spaced[/var])", "\" \n a "}, // nor does an escaped one
        {R"([trim]"[/trim][var]spaced[/var])", R"("\n a )"},
        {R"('[trim][var]spaced[/var][/trim]')", R"('\n a')"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(outcome(row.text), row.outcome) << row.text;
    }
}

TEST(MetaText, boundsTagsInsideOneAnother) {
    EXPECT_EQ(outcome(repeated(kMostMetaTags, "[uppercase]") + "a"), "A");
    EXPECT_EQ(outcome(repeated(kMostMetaTags + 1, "[uppercase]") + "a"),
              "Too many meta tags inside one another");
    EXPECT_EQ(outcome(repeated(10 * kMostMetaTags, "[uppercase]a[/uppercase]")),
              std::string(10 * kMostMetaTags, 'A'));
}

TEST(MetaText, knowsWhatDependsOnVariables) {
    EXPECT_TRUE(containsVariableReference("[var]"));
    EXPECT_TRUE(containsVariableReference("a [trim][var]b"));
    EXPECT_FALSE(containsVariableReference("[var"));
    EXPECT_FALSE(containsVariableReference("[/var] var"));
}

TEST(MetaText, reportsFaults) {
    std::string reported;
    const ErrorReport report = [&](const std::string& title, const std::string& message) {
        reported += title + ": " + message + "\n";
    };
    Tombola::Processor processor;
    std::string unused;
    processor.process("", "@define size = 12\n", unused);
    EXPECT_EQ(expandMetaText("[var]name[/var]", sources(), report), "uiScale");
    EXPECT_EQ(expandMacros("@(size)pt", processor, report), "12pt");
    EXPECT_EQ(reported, "");

    EXPECT_EQ(expandMetaText("a [/var]", sources(), report), "");
    EXPECT_EQ(expandMacros("a @b", processor, report), "");
    EXPECT_EQ(reported, "Error processing meta text: Unexpected meta tag [/var]\n"
                        "Error processing Tombola macros in var expansion: "
                        "Tombola error: \"b\" is undefined (line 1, column 5)\n");
}

TEST(StringTable, readsItsResource) {
    const auto table =
        StringTable::read("// all of them\n\"zoom:1/1\" = \"100%\"\n/* \"a\" = \"b\" */\n"
                          "\"Unexpected error\" = \"Unknown / unexpected error\"\n\"zoom:1/1\" = \"2\"\n");
    EXPECT_EQ(table.size(), 2U);
    EXPECT_EQ(table.translate("zoom:1/1"), "100%");
    EXPECT_EQ(table.translate("Unexpected error"), "Unknown / unexpected error");
    EXPECT_EQ(table.translate("a"), "a");
    EXPECT_EQ(table.find("a"), nullptr);
    try {
        StringTable::read("\"a\" = \"b\"\n\"c\" = \"\\q\"", "strings");
        FAIL();
    } catch (const Stackbrace::ParsingError& error) {
        EXPECT_STREQ(error.what(), "Invalid Stackbrace in strings at line 2 column 8 (offset 17)");
    }
}
