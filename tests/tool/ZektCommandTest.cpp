#include "CommandRun.h"

using ZektCommandTest = CommandRun::CommandTest;

TEST_F(ZektCommandTest, runsScriptsAndReportsFailures) {
    std::filesystem::create_directories(folder_ / "parts");
    write("parts/twice", "return r={$0 * 2}");
    write("secret", "trace secret");
    struct Row {
        std::vector<std::string> arguments;
        std::string script;
        int status;
        std::string output;
        std::string errors;
    };
    const Row rows[] = {
        {{}, "trace a\nb=2", 0, "a\n", ""},
        {{"--define", "a=x=y", "--define", "b="}, "trace $a<$b>", 0, "x=y<>\n", ""},
        {{"--vars"}, "b=[1\n]; a={1/3}; call [c=1]", 0, "a=0.3333333333333\nb=[1\n]\n", ""},
        {{"--vars"},
         "z=1; a=2; trace {1/0}",
         1,
         "a=2\nz=1\n",
         "error: ZEKT::RunTimeException: Division by zero\nin: trace {1/0}\n"},
        {{"--format", "Ovs-1", "--format", "x"}, "format OVS-1; format x uses:y requires:ZEKT-1", 0, "", ""},
        {{"--format", "x"},
         "format x requires:y",
         1,
         "",
         "error: ZEKT::FormatException: Unsupported data format\nin: format x requires:y\n"},
        {{},
         "rect 1,2,3,4",
         1,
         "",
         "error: ZEKT::SyntaxException: Unrecognized instruction: rect\nin: rect 1,2,3,4\n"},
        {{}, "/* open", 1, "", "error: ZEKT::SyntaxException: Missing */\n"},
        {{},
         "trace a; stop",
         1,
         "a\n",
         "error: ZEKT::AbortedException: Encountered STOP instruction\nin: stop\n"},
        {{"--include-dir", "parts"}, "include twice 4; trace $r", 0, "8\n", ""},
        {{"--include-dir", "parts"},
         "include ../secret",
         1,
         "",
         "error: ZEKT::RunTimeException: Could not include file: ../secret\nin: include ../secret\n"},
        {{},
         "include secret",
         1,
         "",
         "error: ZEKT::RunTimeException: Could not include file: secret\nin: include secret\n"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> arguments = {"zekt", "-"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        const auto result = run(arguments, row.script);
        EXPECT_EQ(result.status, row.status) << row.script;
        EXPECT_EQ(result.output, row.output) << row.script;
        EXPECT_EQ(result.errors, row.errors) << row.script;
    }
    EXPECT_EQ(run({"zekt", "-", "--define", "a"}).status, 2);
    EXPECT_EQ(run({"zekt"}).status, 2);
    EXPECT_EQ(run({"zekt", "missing"}).status, 1);
}
