#include "expression/Expression.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

using namespace Quilt;

namespace {

template <class Number>
std::optional<Number> symbol(std::string_view name) {
    if (name == "w" || name == "area.w:x_1") {
        return Number{470};
    }
    if (name == "$") {
        return Number{7};
    }
    if (name == "least") {
        return std::numeric_limits<Number>::lowest();
    }
    return std::nullopt;
}

template <class Number>
std::string outcome(const std::string& text) {
    try {
        return std::to_string(evaluateAll<Number>(text, Number{99}, symbol<Number>));
    } catch (const ExpressionError& error) {
        return error.what();
    }
}

struct Row {
    std::string text;
    std::string outcome;
};

} // namespace

TEST(Expression, integers) {
    const Row rows[] = {
        {"", "99"},
        {" \t\v\r\n\x1A", "99"},
        {std::string("\0 5", 3), "99"}, // a NUL ends the text
        {"2+3*4", "14"},
        {"(2+3)*4", "20"},
        {"-2*3", "-6"},
        {"7/2", "3"},
        {"-7/2", "-3"},
        {"100-10-1", "89"},
        {"100/10/5*3", "6"},
        {"2*3+4*5-6/2", "23"},
        {"2--3", "5"},
        {"- -(-3)", "-3"},
        {"-w*2", "-940"},
        {" ( w\t- 35 )\r\n/ 5\x1A", "87"},
        {"w-35", "435"},
        {"$+area.w:x_1", "477"},
        {"010", "10"},
        {"(", "Unexpected end of string"},
        {"1+", "Unexpected end of string"},
        {"2*-", "Unexpected end of string"},
        {"(1", "Expected ')'"},
        {"(1 2)", "Expected ')'"},
        {"()", "Syntax error"},
        {"#", "Syntax error"},
        {"+1", "Syntax error"},
        {"1+*2", "Syntax error"},
        {".5", "Syntax error"}, // no integer
        {"x1", "Undefined symbol: x1"},
        {"1+h/2", "Undefined symbol: h"},
        {"1) + 2", "Unexpected text: ) + 2"},
        {"1 2", "Unexpected text: 2"},
        {"1.5", "Unexpected text: .5"},
        {"1/0", "Division by zero"},
        {"1/(w-470)", "Division by zero"},
        {"least/-1", "Integer overflow"},
        {"least*-1", "Integer overflow"},
        {"-least", "Integer overflow"},
        {"least/1", "-2147483648"},
        {"-2147483648", "-2147483648"},
        {"2147483647", "2147483647"},
        {"2147483648", "Integer overflow"},
        {"--2147483648", "Integer overflow"},
        {"2147483647+1-1", "Integer overflow"},
        {"least-1", "Integer overflow"},
        {"99999999999999999999", "Integer overflow"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(outcome<std::int32_t>(row.text), row.outcome) << row.text;
    }
}

TEST(Expression, floats) {
    const Row rows[] = {
        {"7/2", "3.500000"},   {"-7/2", "-3.500000"},   {".5+1.25e2*2.", "250.500000"},
        {"1/0", "inf"},        {"-1/0", "-inf"},        {"1e", "Unexpected text: e"},
        {".", "Syntax error"}, {"..5", "Syntax error"}, {"1e-999", "0.000000"},
        {"1e999", "inf"},      {"w/4", "117.500000"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(outcome<float>(row.text), row.outcome) << row.text;
        EXPECT_EQ(outcome<double>(row.text), row.outcome) << row.text;
    }
    // Each type computes in its own precision.
    EXPECT_EQ(outcome<float>("16777216+1-16777216"), "0.000000");
    EXPECT_EQ(outcome<double>("16777216+1-16777216"), "1.000000");
    EXPECT_EQ(outcome<float>("1/3"), std::to_string(1.0F / 3.0F));
}

TEST(Expression, readsOneExpressionAndLeavesTheRest) {
    std::string_view text = " 1+2 , 3";
    std::int32_t result = 0;
    evaluate<std::int32_t>(text, result, {});
    EXPECT_EQ(result, 3);
    EXPECT_EQ(text, ", 3");

    text = "5 + nothing";
    EXPECT_THROW(evaluate<std::int32_t>(text, result, {}), ExpressionError);
    EXPECT_EQ(result, 3);
    EXPECT_EQ(text, "5 + nothing");
}

TEST(Expression, nestsAsDeepAsItsText) {
    constexpr std::size_t kDepth = 1'000'000;
    const std::string open(kDepth, '(');
    EXPECT_EQ(outcome<std::int32_t>(open + "1" + std::string(kDepth, ')')), "1");
    EXPECT_EQ(outcome<double>(open), "Unexpected end of string");
    EXPECT_EQ(outcome<double>(open + "1"), "Expected ')'");
    EXPECT_EQ(outcome<std::int32_t>(std::string(kDepth + 1, '-') + "1"), "-1");
}
