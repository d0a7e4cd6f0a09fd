#include "ScriptRun.h"

#include "zekt/Expression.h"
#include "zekt/NumberText.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>

namespace {

struct Row {
    std::string expression;
    std::string result; // or class and message of the failure
};

std::string evaluated(const std::string& expression) {
    ScriptRun::Host host;
    ZEKT::Interpreter interpreter(host);
    ZEKT::Frame& globals = interpreter.globals();
    globals.set("s", "hello");
    globals.set("x", "1.0");
    globals.set("two", 2.0);
    globals.set("quoted", "\"a\"");
    globals.set("0", "zero");
    globals.set("round", "square");
    globals.set("a.hello", "named");
    try {
        return globals.evaluate(expression);
    } catch (const ZEKT::Exception& error) {
        return std::string(error.className()).append(": ").append(error.what());
    }
}

void expectValues(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(evaluated(row.expression), row.result) << row.expression;
    }
}

std::string syntax(const std::string& message) {
    return "ZEKT::SyntaxException: " + message;
}
std::string runTime(const std::string& message) {
    return "ZEKT::RunTimeException: " + message;
}

} // namespace

TEST(Expression, operatorsBindByTheirLevels) {
    expectValues({
        {"-2 ** 2", "-4"},
        {"2 ** -1", "0.5"},
        {"2 ** 3 ** 2", "64"},
        {"-7 % 4", "-3"},
        {"2 * 7 % 4", "6"},
        {"10 - 3 - 2", "5"},
        {"2 + 3 * 4", "14"},
        {"100 / 10 / 5", "2"},
        {"- - 3", "3"},
        {"!yes", "no"},
        {"!0 == 1", "no"}, // the text "yes" and a number
        {"1 + 1 == 2 && 3 > 2", "yes"},
        {"1 < 2 < 3", "no"},
        {"yes || no && no", "no"}, // one level
        {"1 + 2 3 + 4", "3 7"},
        {"a\"b\"2 + 1", runTime("Invalid number: ab2")},
        {"1\"2\" + 1", "13"},
        {"sin(0)1", "01"},
        {"yes ? 1 : 2 3", "1"},
        {"no ? 1 : 2 3", "2 3"},
        {"no ? 1 : yes ? 2 : 3", "2"},
        {"yes ? no ? 1 : 2 : 3", "2"},
        {"(1 + 2) * 3", "9"},
        {"6 /* six */ * 7", "42"},
        {"len $s", "5"},
        {"-len(abc)", "-3"},
        {"abs -2 ** 2", "4"},
    });
}

TEST(Expression, readsValues) {
    expectValues({
        {".5 + 1.", "1.5"},
        {"1.50", "1.5"},
        {"1e3", "1000"},
        {"2e", "2e"},
        {"1.2.3", "1.20.3"},
        {"word.with.dots", "word.with.dots"},
        {"a b  c", "a b c"},
        {"\"a\\x41\\66\\tb\\\"\"", "aAB\tb\""},
        {"\\x41\\ ", "A "},
        {"[a  $s { 1 + 1 }]", "a hello 2"},
        {"$a.$s", "named"},
        {"$\"a.\"$s", "named"},
        {"$(\"a.\" \"\"){0}", runTime("Variable a.  does not exist")},
        {"$0", "zero"},
        {"$round", "square"},
        {"$x", "1.0"},
        {"+$x", "1"},
        {"$quoted", "\"a\""},
        {"pi", "3.14159265359"},
        {"pi * 1000000", "3141592.65359"},
        {"def s", "yes"},
        {"def(nothing)", "no"},
        {"def a.$s", "nohello"}, // a function takes the nearest operand
        {"def(a.$s)", "yes"},
        {"def round", "yes"},
        {"len(\"\\0\\255\")", "2"},
        {"floor(-1.5) ceil(1.2) round(2.5) round(-2.5) abs(-3)", "-2 2 3 -3 3"},
        {"sqrt(16) exp(0) log(1) log10(1000) atan(0) acos(1) asin(0)", "4 1 0 3 0 0 0"},
        {"cos(0) cosh(0) sinh(0) tan(0) tanh(0)", "1 1 0 0 0"},
    });
}

TEST(Expression, comparesNumbersAsNumbersAndTextsByBytes) {
    expectValues({
        {"0.1 + 0.2 == 0.3", "yes"},
        {"0.1 + 0.2 > 0.3", "no"},
        {"1 == 1.0000000000002", "no"},
        {"1 == 1.00000000000005", "yes"},
        {"$x == 1", "yes"},
        {"1 < abc", "yes"},
        {"abc > 1", "yes"},
        {"10 < 9", "no"},
        {"\"10\" < \"9\"", "no"},
        {"a10 < a9", "yes"},
        {"ab < abc", "yes"},
        {"\"\\255\" > a", "yes"},
        {"yes == yes", "yes"},
        {"B <= a", "yes"},
        {"0 == -0", "yes"},
        {"a != a", "no"},
    });
}

TEST(Expression, cutsSubstrings) {
    expectValues({
        {"$s{0}", "h"},
        {"$s{1:3}", "ell"},
        {"$s{:2}", "he"},
        {"$s{3:}", "lo"},
        {"$s{1.9}", "e"},
        {"$s{-5:2}", "he"},
        {"$s{4:99}", "o"},
        {"$s{9}", ""},
        {"$s{2:-1}", ""},
        {"(abc $s){4:2}", "he"},
        {"$s{0}{0}", "h"},
        {"-12{1}", "-2"},
        {"a$s{0}", "a"},
        {"$s{yes ? 1 : 2 : 2}", "el"},
        {"$s{}", syntax("Syntax error")},
        {"$s{:}", syntax("Syntax error")},
        {"$s{1", syntax("Missing }")},
        {"$s{1:2", syntax("Missing }")},
        {"$s{x}", runTime("Invalid number: x")},
    });
}

TEST(Expression, failsWithTheRightTextAtTheRightTime) {
    expectValues({
        {"", syntax("Unexpected end")},
        {"1 +", syntax("Unexpected end")},
        {"(1", syntax("Missing )")},
        {"\"a", syntax("Missing \"")},
        {"[a", syntax("Missing ]")},
        {"1 /* 2", syntax("Missing */")},
        {"1 = 2", syntax("Syntax error")},
        {"1 ! 2", syntax("Syntax error")},
        {"1 & 2", syntax("Syntax error")},
        {"}", syntax("Syntax error")},
        {"yes ? 1", syntax("Expected :")},
        {"\\x100", "\x10"
                   "0"}, // two digits at most
        {"\"\\u100\"", syntax("Invalid character escape code inside { } expression")},
        {"\\300", syntax("Invalid character escape code inside { } expression")},
        {"1 / 0", runTime("Division by zero")},
        {"1 % 0", runTime("Modulo by zero")},
        {"log(0)", runTime("Math error (log of 0 or less)")},
        {"log10(-1)", runTime("Math error (log10 of 0 or less)")},
        {"sqrt(-1)", runTime("Math error (sqrt of negative)")},
        {"asin(2)", runTime("Math error")},
        {"(-8) ** 0.5", runTime("Math error")},
        {"0 ** -1", runTime("Number overflow")},
        {"10 ** 400", runTime("Number overflow")},
        {"exp(1000)", runTime("Number overflow")},
        {"1e308 * 10", runTime("Number overflow")},
        {"1e309", runTime("Number overflow")},
        {"1" + std::string(500, '0') + "e-50", runTime("Number overflow")},
        {"0." + std::string(400, '0') + "1", "0"},
        {"0." + std::string(400, '0') + "1e900", runTime("Number overflow")},
        {"1e-99999999999999999999", "0"},
        {"1e99999999999999999999", runTime("Number overflow")},
        {"\"1e309\" == 1", runTime("Number overflow")},
        {"\"1e-400\" + 0", "0"},
        {"1 + a", runTime("Invalid number: a")},
        {"yes + 1", runTime("Invalid number: yes")},
        {"!maybe", runTime("Invalid boolean (should be 'yes' or 'no'): maybe")},
        {"no && maybe", runTime("Invalid boolean (should be 'yes' or 'no'): maybe")},
        {"$nothing", runTime("Variable nothing does not exist")},
        // What is evaluated by the time the syntax goes wrong fails first; a branch not taken is still read.
        {"1 / 0 + (", runTime("Division by zero")},
        {"1 / (", syntax("Unexpected end")},
        {"1 / 0 1 = 2", runTime("Division by zero")},
        {"no ? 1 / 0 : 3", "3"},
        {"no ? 1 / : 3", syntax("Syntax error")},
        {"yes ? 3 : (1", syntax("Missing )")},
        {"yes ? 1 / 0 : (1", runTime("Division by zero")},
        {"maybe ? (1", runTime("Invalid boolean (should be 'yes' or 'no'): maybe")},
    });
}

TEST(Expression, isBoundedInDepth) {
    const auto nested = [](std::size_t depth) {
        return std::string(depth, '(') + "1" + std::string(depth, ')');
    };
    EXPECT_EQ(evaluated(nested(ZEKT::kExpressionDepth - 1)), "1");
    EXPECT_EQ(evaluated(nested(ZEKT::kExpressionDepth)), runTime("Recursion limit reached"));
    for (const char* prefix : {"-", "$", "!", "sin ", "1?1:", "2 ** -"}) {
        std::string deep;
        for (int i = 0; i < 100000; ++i) {
            deep += prefix;
        }
        EXPECT_EQ(evaluated(deep + "1"), runTime("Recursion limit reached")) << prefix;
    }
    std::string brackets;
    for (int i = 0; i < 1000; ++i) {
        brackets = "[{" + brackets + "}]";
        if (brackets.size() > 4000) {
            break;
        }
    }
    EXPECT_EQ(evaluated(brackets), runTime("Recursion limit reached"));
}

// The C library prints and reads without any of the shortcuts here.
TEST(Expression, numbersAreTheirTextsToThirteenDigits) {
    std::mt19937_64 random(1);
    const auto check = [](double value) {
        char expected[40];
        std::snprintf(expected, sizeof expected, "%.13g", value);
        char buffer[ZEKT::kLongestNumberText];
        ASSERT_EQ(ZEKT::numberText(value, buffer), value == 0 ? "0" : expected);
        ASSERT_EQ(ZEKT::roundedAsText(value), std::strtod(expected, nullptr)) << expected;
    };
    for (const double value :
         {0.0, -0.0, 1e12, 1e13, 9999999999999.0, 9999999999999.5, 999999999999.95, 0.0001,
          0.00009999999999999999, 20.00000000000001, 1.99999999999999, 5e-324, 1e300, 0.1}) {
        check(value);
        check(-value);
        check(std::nextafter(value, 1e301));
        check(std::nextafter(value, -1.0));
    }
    for (int i = 0; i < 200000; ++i) {
        const double digits = static_cast<double>(random() % 100000000);
        check(digits / std::pow(10.0, static_cast<double>(random() % 14)));
        check(std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 120) - 90));
        // halfway between two texts, and beside
        const double tie = (static_cast<double>(random() % 1000000000000) + 1e12 + 0.5) / 8;
        check(tie);
        check(std::nextafter(tie, 0.0));
    }
}
