// The commands that read texts: stackbrace, patch, midiconfig.
#include "CommandRun.h"

#if !defined(_WIN32)
#include <sys/wait.h>

#include <cstdlib>
#endif

using NotationCommandTest = CommandRun::CommandTest;

TEST_F(NotationCommandTest, stackbracePrintsWhatTheReaderFinds) {
    struct Row {
        std::string reading;
        std::string input;
        int status;
        std::string output;
        std::string errors = {};
    };
    const Row rows[] = {
        {"list", "a  b, { c }\n\"d\"", 0, "{\"ok\":true,\"elements\":[\"a b\",\"{ c }\",\"\\\"d\\\"\"]}\n"},
        {"list", "\xE9\t\x7F, \\", 0, "{\"ok\":true,\"elements\":[\"\\u00e9 \\u007f\",\"\\\\\"]}\n"},
        {"list", "", 0, "{\"ok\":true,\"elements\":[]}\n"},
        {"list", "{ a", 1, "{\"ok\":false,\"elements\":[\"a\"]}\n",
         "error: Invalid Stackbrace at line 1 column 4 (offset 3)\n"},
        {"struct", "b: 2; \"a\\x20\" = \"1\"\nb: 3", 0,
         "{\"ok\":true,\"elements\":[[\"a \",\"\\\"1\\\"\"],[\"b\",\"2\"]]}\n"},
        {"struct", "a: 1 }", 1, "{\"ok\":false,\"elements\":[[\"a\",\"1\"]]}\n",
         "error: Invalid Stackbrace at line 1 column 6 (offset 5)\n"},
        {"unquote", "\"\\x41\\u0042\\xe9\"\n", 0, "AB\xE9\n"},
        {"unquote", "  plain", 0, "  plain\n"},
        {"unquote", "\"\\u0100\"", 1, "", "error: Invalid Stackbrace at line 1 column 2 (offset 1)\n"},
        {"quote", "\"\\\xE9\n", 0, "\"\\\"\\\\\\xe9\\n\"\n"},
        {"integer", "0x1F\n", 0, "31\n"},
        {"integer", "-99999999999", 0, "-2147483648\n"},
        {"integer", "abc\r\n", 1, "", "error: Invalid number: abc\n"},
        {"integer", "a\nb", 1, "", "error: Invalid number: a b\n"}, // one line
        {"float", "0.1", 0, "0.1\n"},
        {"double", "0.1000000000000000055 Hz", 0, "0.1\n"},
        {"double", "x", 1, "", "error: Invalid number: x\n"},
        {"bool", " true\n", 0, "true\n"},
        {"bool", "a\nTrue", 1, "", "error: Invalid Stackbrace at line 1 column 1 (offset 0)\n"},
    };
    for (const Row& row : rows) {
        const auto result = run({"stackbrace", row.reading, "-"}, row.input);
        EXPECT_EQ(result.status, row.status) << row.reading << " " << row.input;
        EXPECT_EQ(result.output, row.output);
        EXPECT_EQ(result.errors, row.errors);
    }
    EXPECT_EQ(run({"stackbrace", "list"}).status, 2);
    EXPECT_EQ(run({"stackbrace"}).status, 2);
    write("a file", "\n yes");
    EXPECT_EQ(run({"stackbrace", "bool", "a file"}).errors,
              "error: Invalid Stackbrace in a file at line 2 column 2 (offset 2)\n");
    EXPECT_EQ(run({"stackbrace", "bool", "none"}).errors,
              "error: Could not read none: No such file or directory\n");
}

TEST_F(NotationCommandTest, patchPrintsTheWritersLayout) {
    const std::string text = run({"patch", "-"}, "MurmelonPatch={format=1;parameters={mix=50}}").output;
    EXPECT_EQ(text, "MurmelonPatch: {\n"
                    "\tformat: 1\n"
                    "\tname: \"\"\n"
                    "\tmodified: false\n"
                    "\tparameters: {\n"
                    "\t\tsampleRate: \"22 kHz\"\n"
                    "\t\tsync: \"Off\"\n"
                    "\t\tframeRate: \"59.99999596149694 Hz\"\n"
                    "\t\tmidi: \"Off\"\n"
                    "\t\tpitch: \"0.0000000 sm\"\n"
                    "\t\ttracking: \"100.0000000%\"\n"
                    "\t\tdetune: \"0.00000000000000 ct\"\n"
                    "\t\tnoiseAdjust: \"0.0000000%\"\n"
                    "\t\tmix: \"50.0000000%\"\n"
                    "\t\tlegacyMode: \"Off\"\n"
                    "\t}\n"
                    "}\n");
    EXPECT_EQ(run({"patch", "-"}, text).output, text);
    const auto refused = run({"patch", "-"}, "MurmelonPatch: { format: 2 }");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "error: Patch format is too new\n");
}

TEST_F(NotationCommandTest, midiconfigPrintsTheWritersLayout) {
    const auto defaults = run({"midiconfig", "-"}, "Other: 1");
    EXPECT_EQ(defaults.status, 0); // what holds none changes nothing, but is spoken of
    EXPECT_NE(defaults.errors, "");
    EXPECT_EQ(run({"midiconfig", "-"}, defaults.output).output, defaults.output);
    EXPECT_EQ(run({"midiconfig", "-"}, "MurmelonMidiConfig: { }").errors,
              "error: Invalid Stackbrace at line 1 column 1 (offset 0)\n");
}

#if !defined(_WIN32) // where nobody can hand a folder on as a stream
TEST_F(NotationCommandTest, aStandardInputThatCannotBeReadIsAFailure) {
    const std::string command = "cd '" + folder_.string() + "' && '" MURMELON_COMMAND "' stackbrace list - < . 2> .errors";
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_EQ(read(".errors"), "error: Could not read standard input: Is a directory\n");
}
#endif

TEST_F(NotationCommandTest, resultsThatCannotBeWrittenAreAFailure) {
    const std::string error = "error: Could not write to standard output";
    const std::string reason = std::string(": ") + CommandRun::kFullError + "\n";
    const std::pair<std::vector<std::string>, std::string> rows[] = {
        {{"--version"}, error + "\n"}, // which flushes, and then nobody knows why
        {{"params"}, error + reason},
        {{"stackbrace", "quote", "-"}, error + reason},
    };
    for (const auto& [command, errors] : rows) {
        const auto result = run(command, "a", CommandRun::kFull);
        EXPECT_EQ(result.status, 1) << command.front();
        EXPECT_EQ(result.errors, errors) << command.front();
    }
}

TEST_F(NotationCommandTest, filesMayBeCalledAnything) {
    const std::string name = "Tr\xC3\xA4ume \xE9\x9F\xB3 '\xF0\x9D\x84\x9E' %TEMP%";
    write(name, "MurmelonPatch: { format: 1, name: One }");
    EXPECT_EQ(run({"patch", name}).errors, "");
    EXPECT_EQ(run({"bank", "--make", name + ".fxb", name}).errors, "");
    EXPECT_EQ(run({"bank", name + ".fxb", "--export", name + " to"}).errors, "");
    EXPECT_EQ(run({"patch", name + " to/01 One.kvmp"}).errors, "");
    EXPECT_EQ(run({"patch", name + "2"}).errors, "error: Could not read " + name + "2: No such file or directory\n");
    const auto unwritten = run({"bank", "--make", name + "2/b.fxb", name});
    EXPECT_EQ(unwritten.errors, "error: Could not write " + name + "2/b.fxb: No such file or directory\n");
}
