// Both sides of what bounds a run.
#include "ScriptRun.h"

#include <chrono>

namespace {

using ScriptRun::Host;
using ScriptRun::run;

std::string repeated(const std::string& text, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

std::string nestedCalls(std::size_t depth) {
    return repeated("call [", depth) + "trace in" + repeated("]", depth);
}

} // namespace

TEST(Limit, ofStatements) {
    EXPECT_EQ(run(repeated("a=1\n", ZEKT::kStatementLimit - 1) + "trace x"), "x\n");
    EXPECT_EQ(run(repeated("a=1\n", ZEKT::kStatementLimit) + "trace x"),
              "RunTimeException: Statements limit reached [trace x]");
    // All in one line: what a statement costs does not grow with what stands behind it.
    EXPECT_EQ(run(repeated("a=1;", ZEKT::kStatementLimit) + "trace x"),
              "RunTimeException: Statements limit reached [trace x]");
    const std::string endless = "RunTimeException: Statements limit reached ";
    EXPECT_EQ(run("for i from:1 to:2 step:0 []"), endless + "[for i from:1 to:2 step:0 []]");
    EXPECT_EQ(run("repeat 1e15 [ // nothing\n ]"), endless + "[repeat 1e15 [ // nothing\n ]]");
    EXPECT_EQ(run("repeat 999999 []; trace x"), "RunTimeException: Statements limit reached [trace x]");
    EXPECT_EQ(run("repeat 999998 []; trace x"), "x\n");
}

TEST(Limit, ofNesting) {
    EXPECT_EQ(run(nestedCalls(ZEKT::kNestingLimit - 1)), "in\n");
    EXPECT_EQ(run(nestedCalls(ZEKT::kNestingLimit)),
              "RunTimeException: Recursion limit reached [call [trace in]]");
    EXPECT_EQ(run("f=[call $f]; call $f"), "RunTimeException: Recursion limit reached [call $f]");
    EXPECT_EQ(run("f=[if yes $f]; if yes $f"), "RunTimeException: Recursion limit reached [if yes $f]");
    // Levels come back, also after a failure.
    Host host;
    ZEKT::Interpreter interpreter(host);
    for (int i = 0; i < 2; ++i) {
        EXPECT_THROW(interpreter.run(nestedCalls(ZEKT::kNestingLimit)), ZEKT::RunTimeException);
        interpreter.run(nestedCalls(ZEKT::kNestingLimit - 1));
    }
    EXPECT_EQ(host.output, "in\nin\n");
}

TEST(Limit, ofText) {
    const std::string reached = "RunTimeException: Text limit reached ";
    const struct {
        std::string script;
        std::string result;
    } rows[] = {
        {"a=x; repeat 99 [a=$a$a]", reached + "[a=$a$a]"},
        {"a=x; repeat 99 [a={($a)($a)}]", reached + "[a={($a)($a)}]"},
        {"a=x; repeat 23 [a=$a$a]; trace {len($a)}", "8388608\n"},
        {"a=x; repeat 22 [a=$a$a]; for i from:1 to:999 [call [local b=$a; call $f]; ]", ""},
        {"a=x; repeat 22 [a=$a$a]; repeat 99999 [b={$a == $a}]", reached + "[b={$a == $a}]"},
        {"a=x; repeat 22 [a=$a$a]; repeat 99999 [show $a]", ""},
        {"a=,; repeat 22 [a=$a$a]; for i in:$a []", reached + "[for i in:$a []]"},
        {"a=\\;; repeat 21 [a=$a$a]; call $a", reached + "[call $a]"},
        {"a=1; repeat 20 [a=$a$a]; repeat 99999 [b={$a{1:} + 1}]", ""},
    };
    for (const auto& row : rows) {
        const auto start = std::chrono::steady_clock::now();
        const std::string result = run(row.script);
        if (!row.result.empty()) {
            EXPECT_EQ(result, row.result) << row.script;
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << row.script;
    }
    // A document's variables together: eight texts of the greatest length.
    std::string document = "a=x; repeat 23 [a=$a$a];";
    for (int i = 1; i <= 7; ++i) {
        document.append("a").append(std::to_string(i)).append("=$a;");
    }
    EXPECT_EQ(run(document + "trace x"), "x\n");
    EXPECT_EQ(run(document + "b=$a"), reached + "[b=$a]");
}

TEST(Limit, progressCanAbort) {
    Host host;
    host.abortAt = ZEKT::kStatementLimit - 2;
    EXPECT_EQ(run("trace a; repeat 9 [trace b]", host), "a\nAbortedException: Aborted [trace b]");
}

TEST(Run, keepsVariablesButNotBudgets) {
    Host host;
    ZEKT::Interpreter interpreter(host);
    interpreter.globals().set("feedbacks.sampleRate", 44100.0);
    interpreter.run("a=1; trace $feedbacks.sampleRate");
    EXPECT_EQ(interpreter.statementsLeft(), ZEKT::kStatementLimit - 2);
    EXPECT_THROW(interpreter.run("a=2; b={$a + }"), ZEKT::SyntaxException);
    EXPECT_EQ(interpreter.globals().get("a"), "2");
    EXPECT_FALSE(interpreter.globals().has("b"));
    EXPECT_THROW(interpreter.globals().get("b"), ZEKT::RunTimeException);
    EXPECT_THROW(interpreter.globals().set("", "x"), ZEKT::RunTimeException);
    interpreter.forgetVariables();
    interpreter.run("trace {def a}");
    EXPECT_EQ(host.output, "44100\nno\n");
}

TEST(Run, readsWideText) {
    class WideHost : public Host {
    public:
        std::u16string text;
        bool execute(ZEKT::Frame& frame, std::string_view, const ZEKT::ArgumentText& arguments) override {
            text = ZEKT::Arguments(frame, arguments).required(0).wideText();
            return true;
        }
    } host;
    run("draw [a\\xA0\\u20ac\\U1F600 \xC3\xA9 \xE9 \\\xC3\xA9]", host);
    EXPECT_EQ(host.text, u"a\u00A0\u20AC\U0001F600 \u00E9 \u00E9 \u00E9");
}
