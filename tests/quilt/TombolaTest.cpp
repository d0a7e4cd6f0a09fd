#include "tombola/Processor.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

using namespace Tombola;
using namespace std::string_literals;

namespace {

std::optional<std::string> included(const std::string& name) {
    static const std::map<std::string, std::string> texts = {
        {"empty", ""},
        {"names", "@define inner = from the include\n@begin twice(x)\n@x@x\n@end\n"},
        {"bad", "one\ntwo @nothing"},
        {"itself", "more\n@include itself\n"},
        {"two of itself", "@include two of itself\n@include two of itself\n"},
    };
    const auto found = texts.find(name);
    return found == texts.end() ? std::nullopt : std::optional(found->second);
}

std::string expansion(const std::string& text, const std::string& name = "main") {
    std::string output = "kept ";
    try {
        Processor(included).process(name, text, output);
    } catch (const Exception& error) {
        EXPECT_EQ(output, "kept ") << text;
        return error.what();
    }
    return output.substr(5);
}

struct Row {
    std::string text;
    std::string outcome;
};

template <std::size_t count>
void check(const Row (&rows)[count]) {
    for (const Row& row : rows) {
        EXPECT_EQ(expansion(row.text), row.outcome) << row.text;
    }
}

std::string error(const std::string& message, int line, int column) {
    return "Tombola error: " + message + " (main line " + std::to_string(line) + ", column " +
           std::to_string(column) + ")";
}

std::string repeated(std::size_t count, const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

} // namespace

TEST(Tombola, copiesText) {
    check({
        {"", ""},
        {"plain \t\n\0 text"s, "plain \t\n\0 text"s},
        {"a@@b @@begin x@@", "a@b @begin x@"},
        {"/* @define f = 1\n*/@f", "/**/1"}, // comments are the reader's
    });
}

TEST(Tombola, defines) {
    check({
        {"@define a = x y \t\n[@a]", "[x y]"},
        {"@define a=1\r\n  @define b = @a@a\r\n\t@b @a.", "\t11 1."},
        {"x  @define a = 1\ny", "xy"}, // blanks around it go, and the line end
        {"@define\n a = (1\n2)\n@a", "(1\n2)"},
        {"@define a = @< (, @@ @<x@>\n @>  \n[@a]", error("Missing / invalid name", 1, 23)},
        {"@define a = @<(,\n @>  \n[@a]", "[(,]"},
        {"@define a = 'a\nb' \"\\\"\" z\n@a", "'a\nb' \"\\\"\" z"},
        {"@define a =\n[@a]", "[]"},
        {"@define a = 1\n@redefine a = @a 2\n@a", "1 2"},
        {"@define include = 1\n@begin m(include)\n@(include)\n@end\n@m(2)", "2\n"},
        {"@definex", error("\"definex\" is undefined", 1, 9)},
        {"@define = 1", error("Missing / invalid name", 1, 9)},
        {"@define end = 1", error("Illegal use of \"end\"", 1, 12)},
        {"@define a 1", error("Expected =", 1, 11)},
        {"@define a = 1\n@define a = 2\n", error("\"a\" is already defined", 2, 14)},
        {"@define a = @b\n", error("\"b\" is undefined", 1, 15)},
        {"\n\n @redefine a = 2", error("Cannot redefine undefined \"a\"", 3, 17)},
        {"@begin m\n@end\n@redefine m = 2", error("Cannot redefine macro \"m\"", 3, 16)},
        {"@define a = (1", error("Missing )", 1, 15)},
        {"@define a = [(1]", error("Missing )", 1, 17)},
        {"@define a = don't\n", error("Missing '", 2, 1)},
        {"@define a = \"\\\"", error("Missing \"", 1, 16)},
        {"@define a = @<x", error("Missing @>", 1, 16)},
        {"@define a = " + std::string(20, '[') + std::string(20, ']') + "\nok", "ok"},
        {"@define a = " + std::string(21, '('), error("Recursion depth limit reached", 1, 33)},
    });
}

TEST(Tombola, calls) {
    const std::string pair = "@begin pair(a, b)\n<@a|@b>\n@end\n";
    check({
        {pair + "@pair({1, 2}, 'a,b')", "<{1, 2}|'a,b'>\n"},
        {pair + "@pair( 1 \n,\t(2,[)]) )", "<1|(2,[)])>\n"},
        {pair + "@pair(@< a, ) @>, @pair(1,2))", "< a, )|<1|2>\n>\n"},
        {pair + "@pair(,)", "<|>\n"},
        {"@begin m\nx\n@end\n@m@m", "x\nx\n"},
        {"@begin m() y\n@end\n@m", " y\n"}, // the header line went on
        {"@begin one(p)\n[@p]\n@end\n@one()", "[]\n"},
        {"@begin out(n)\n@begin in\n@n\n@end\n@in\n@end\n@out(1)@out(2)", "1\n\n2\n\n"},
        {"@begin m\n@@end @@begin\n@end\n@m", "@end @begin\n"},
        {"@define b = 5\n@define ab = 6\n@(a@(@<b@>)) @( ab )", error("\"a5\" is undefined", 3, 13)},
        {"@define b = 5\n@define a5 = 6\n@(a@b) @( a5 )", "6 6"},
        // A macro sees where it was defined, not where it is called; parameters hide what is outside.
        {"@define v = outer\n@begin m\n@v\n@end\n@begin c(v)\n@m @v\n@end\n@c(inner)", "outer\n inner\n"},
        // What a body defines ends with it; what it redefines does not.
        {"@define g = 1\n@begin m\n@define l = 2\n@redefine g = @l\n@end\n@m@g @l",
         error("\"l\" is undefined", 6, 8)},
        {"@define g = 1\n@begin m(p)\n@define l = 2\n@redefine g = @l@p\n@redefine p = 9\n@p\n@end\n@m(3)@g",
         "9\n23"},
        {"@define m = value\n@begin m\nblock\n@end\n@m", "block\n"},
        {"@begin m(p)\n@define p = 1\n@end\n@m(2)", error("\"p\" is already defined", 2, 14)},
        {"@nothing(1, 2).", error("\"nothing\" is undefined", 1, 15)},
        {"a@ b", error("Missing / invalid name", 1, 3)},
        {"@()", error("Missing / invalid name", 1, 4)},
        {"@(a", error("Expected )", 1, 4)},
        {"@end", error("Illegal use of \"end\"", 1, 5)},
        {"@if2", error("\"if2\" is undefined", 1, 5)},
        {"@define v = 1\n@v()", error("Incorrect number of arguments for v", 2, 5)},
        {"@begin m\n@end\n@m()", error("Incorrect number of arguments for m", 3, 5)},
        {pair + "@pair(1)", error("Incorrect number of arguments for pair", 4, 9)},
        {pair + "@pair(@<1@> 2, 3)", error("Expected , or )", 4, 13)},
        {pair + "@pair(1, 2", error("Expected , or )", 4, 11)},
        {pair + "@pair(1, @no)", error("\"no\" is undefined", 4, 13)},
        {"@begin m\nx\n  @no\n@end\n\n@m", error("\"no\" is undefined", 3, 6)}, // where it is written
        {"@begin", error("Missing / invalid name", 1, 7)},
        {"@begin m(a,)", error("Expected parameter name", 1, 12)},
        {"@begin m(a, a)", error("Duplicate parameter name \"a\"", 1, 14)},
        {"@begin m(a, if)", error("Illegal use of \"if\"", 1, 15)},
        {"@begin m(a b)", error("Expected parameter name or )", 1, 11)},
        {"@begin m\n@begin n\n@end\n", error("Missing @end", 4, 1)},
        {"@begin m\n@end\n@begin m\n@endx\n@end\n", error("\"m\" is already defined", 5, 5)},
    });
    EXPECT_EQ(expansion("\n@x", ""), "Tombola error: \"x\" is undefined (line 2, column 3)");
}

TEST(Tombola, manyParametersAreFoundAsFewAre) {
    for (const int count : {1, 12, 13, 40}) {
        std::string parameters;
        std::string uses;
        std::string arguments;
        std::string expected;
        for (int i = 0; i < count; ++i) {
            const std::string number = std::to_string(i);
            parameters += (i == 0 ? "p" : ", p") + number;
            uses += "@p" + number + ";";
            arguments += (i == 0 ? "" : ",") + number;
            expected += number + ";";
        }
        EXPECT_EQ(expansion("@begin m(" + parameters + ")\n" + uses + "@end\n@m(" + arguments + ")"),
                  expected);
        EXPECT_NE(expansion("@begin m(" + parameters + ", p0)").find("Duplicate parameter name \"p0\""),
                  std::string::npos);
    }
}

TEST(Tombola, conditionals) {
    check({
        {"@if (a == a)\nyes\n@endif\n.", "yes\n."},
        {"@if ( a == A )\nyes\n@else \nno\n  @endif  \n.", "no\n  ."},
        {"@define x = b\n@if (@x != b) 1 @elif(@x@x == bb) 2 @elif (@nothing == 1) 3 @else 4 @endif.",
         " 2 ."},
        {"@if (a == b) @nothing( @else fine @endif", " fine "},
        {"@if (a == b)@if (1 == 1)@else@endif no @elif (@<(@> == @<(@>)@if(x==y)@else in @endif yes @endif",
         " in  yes "},
        {"@if (a == b)x@endif", ""},
        {"@if (a == b)@@if@@endif x@else y@@else@endif", " y@else"},
        {"@if (a == a)@define l = 1\n@endif@l", error("\"l\" is undefined", 2, 9)},
        {"@if (a == a)@else@else@endif@if a", error("Expected (", 1, 33)},
        {"@if (a = b)", error("Expected == or !=", 1, 8)},
        {"@if (a)", error("Expected == or !=", 1, 8)},
        {"@if (a == b", error("Expected )", 1, 12)},
        {"@if (a == b)\n@else\n@elif (a == a)\n@endif", error("Illegal use of \"elif\"", 3, 6)},
        {"@if (a == a)\n@nothing\n@if (a == a) @endif", error("Missing @endif", 3, 20)},
    });
}

TEST(Tombola, includes) {
    check({
        {"  @include names \n@inner @twice(!)", "from the include !!\n"},
        {"a\n@include empty\nb", "a\nb"},
        {"@define n = nam\n@include @(n)es\n@inner", "from the include"},
        {"@include none\nx", error("Could not load include file: none", 2, 1)},
        {"\n@include bad", "Tombola error: \"nothing\" is undefined (bad line 2, column 13)"},
        {"@begin m\n@include names\n@inner\n@end\n@m@inner", error("\"inner\" is undefined", 5, 9)},
    });
}

TEST(Tombola, scopesAreTwentyDeep) {
    const auto nested = [](std::size_t depth, const std::string& open, const std::string& inner,
                           const std::string& close) {
        return expansion("@begin m(x)\n@x@end\n" + repeated(depth, open) + inner + repeated(depth, close));
    };
    EXPECT_EQ(nested(19, "@if(a==a)", "in", "@endif"), "in");
    // A condition's operands are as deep as the branch.
    EXPECT_EQ(nested(20, "@if(a==a)", "in", "@endif"), error("Recursion depth limit reached", 3, 176));
    // The innermost call's argument and body are as deep as each other.
    EXPECT_EQ(nested(19, "@m(", "in", ")"), "in");
    EXPECT_EQ(nested(20, "@m(", "in", ")"), error("Recursion depth limit reached", 3, 61));
    EXPECT_EQ(expansion("@begin m\n@m\n@end\n@m"), error("Recursion depth limit reached", 2, 1));
}

TEST(Tombola, textsThatGrowWithoutEndAreStopped) {
    std::string doubling = "@define a0 = 0123456789abcdef\n";
    std::string silent = "@begin a0\n@end\n";
    for (int i = 1; i <= 18; ++i) {
        const std::string last = "@a" + std::to_string(i - 1);
        doubling += "@define a" + std::to_string(i) + " = " + repeated(4, last) + "\n";
        silent += "@begin a" + std::to_string(i) + "\n" + repeated(40, last) + "\n@end\n";
    }
    EXPECT_NE(expansion(doubling).find("Expansion limit reached (main line "), std::string::npos);
    EXPECT_NE(expansion(silent + "@a18").find("Expansion limit reached (main line "), std::string::npos);
    EXPECT_EQ(expansion("@include itself\n"),
              "Tombola error: Include limit reached: itself (itself line 3, column 1)");
    EXPECT_EQ(expansion("@include two of itself\n"),
              "Tombola error: Include limit reached: two of itself (two of itself line 2, column 1)");
}

TEST(Tombola, keepsTopLevelDefinitionsForLaterTexts) {
    Processor processor(included);
    std::string output;
    processor.process("first", "@define a = 1\n@begin m(x)\n@x@a\n@end\n", output);
    EXPECT_THROW(processor.process("second", "text @redefine a = 2\n@nothing", output), Exception);
    EXPECT_EQ(output, "");
    processor.process("third", "@m(3)", output);
    processor.process("", "@include names\n@inner", output);
    EXPECT_EQ(output, "32\nfrom the include");

    try {
        processor.process("late", "\n@m(@x)", output);
        FAIL();
    } catch (const Exception& fault) {
        EXPECT_EQ(fault.message(), "\"x\" is undefined");
        EXPECT_EQ(fault.sourceName(), "late");
        EXPECT_EQ(fault.offset(), 6U);
        EXPECT_EQ(fault.line(), 2U);
        EXPECT_EQ(fault.column(), 6U);
    }
}

// Every letter of this text is written once, so an expansion's letters tell where they came from.
TEST(Tombola, mapsEveryByteToWhereItWasWritten) {
    const std::string text = "@define v = ABC\n@begin m(p, q)\nD @p E@q\n@v@@\n@end\n  F @m(G@(v)H, I) J\n"
                             "@if (@v == ABC)\nK@else@endif @include letters\nL";
    const std::string letters = "\nM@v";
    Processor processor([&](const std::string&) { return std::optional(letters); });
    std::string output;
    PositionMap map;
    processor.process("main", text, output, &map);
    ASSERT_EQ(output, "  F D GABCH EI\nABC@\n J\nK\nMABCL");
    for (std::size_t i = 0; i <= output.size(); ++i) {
        const bool inLetters = i < output.size() && output[i] == 'M';
        const auto position = map.locate(i);
        const std::string& source = position.sourceName == "letters" ? letters : text;
        EXPECT_EQ(position.sourceName, inLetters || i == 24 ? "letters" : "main") << i;
        if (i < output.size()) {
            EXPECT_EQ(source.at(position.offset), output[i]) << i;
        } else {
            EXPECT_EQ(position.offset, text.size());
        }
        const auto again = Stackbrace::positionIn(source, position.offset);
        EXPECT_EQ(position.line, again.line);
        EXPECT_EQ(position.column, again.column);
    }
    EXPECT_EQ(PositionMap().locate(3).line, 1U);
}
