// The commands on the text side of layouts: tombola, expr, metatext.
#include "CommandRun.h"

namespace {

class LayoutTextCommandTest : public CommandRun::CommandTest {
protected:
    struct Row {
        std::vector<std::string> arguments;
        int status;
        std::string output;
        std::string errors = {};
    };

    void check(const std::vector<Row>& rows, const std::string& input = {}) {
        for (const Row& row : rows) {
            std::string line;
            for (const std::string& argument : row.arguments) {
                line += argument + " ";
            }
            const auto result = run(row.arguments, input);
            EXPECT_EQ(result.status, row.status) << line;
            EXPECT_EQ(result.output, row.output) << line;
            if (row.status != 2) {
                EXPECT_EQ(result.errors, row.errors) << line;
            }
        }
    }
};

} // namespace

TEST_F(LayoutTextCommandTest, expr) {
    check({
        {{"expr", "w-35", "--symbol", "w=470"}, 0, "435\n"},
        {{"expr", "--symbol", "w=470", "--symbol", "x=-1", "w*x"}, 0, "-470\n"},
        {{"expr", "-2*3"}, 0, "-6\n"},
        {{"expr", "-h", "--symbol", "h=4"}, 0, "-4\n"},
        {{"expr", "--", "-(1)"}, 0, "-1\n"},
        {{"expr", ""}, 0, "0\n"},
        {{"expr", " ", "--default", "-7"}, 0, "-7\n"},
        {{"expr", "7/2", "--type", "float"}, 0, "3.5\n"},
        {{"expr", "1/3", "--type", "double"}, 0, "0.3333333333333333\n"},
        {{"expr", "x1"}, 1, "", "error: Undefined symbol: x1\n"},
        {{"expr", "1 2"}, 1, "", "error: Unexpected text: 2\n"},
        {{"expr", "1/0"}, 1, "", "error: Division by zero\n"},
        {{"expr"}, 2, ""},
        {{"expr", "1", "2"}, 2, ""},
        {{"expr", "1", "--tipe"}, 2, ""},
        {{"expr", "1", "--symbol", "w"}, 2, ""},
        {{"expr", "1", "--type", "long"}, 2, ""},
    });
}

TEST_F(LayoutTextCommandTest, metatext) {
    check({
        {{"metatext", "[trim] a [/trim]"}, 0, "a\n"},
        {{"metatext", "-[xlate]zoom:[var]s[/var][/xlate]", "--var", "s=5/4", "--translate", "zoom:5/4=1=2"},
         0,
         "-1=2\n"},
        {{"metatext", "--translate", "[a,b]=[c,d]", "[xlate]\\[a,b\\]"}, 0, "[c,d]\n"},
        {{"metatext", "[var]q[/var]"}, 1, "", "error: Unknown variable: q\n"},
        {{"metatext", "[/mac]"}, 1, "", "error: Unexpected meta tag [/mac]\n"},
    });
}

TEST_F(LayoutTextCommandTest, tombola) {
    std::filesystem::create_directories(folder_ / "parts");
    write("parts/a", "@define n = 1\nincluded\n");
    write("main", "@include parts/a\n x@n");
    write("below", "@include a\n@n");
    write("above", "@include ../main");
    write("broken", "\n@n");
    check({
        {{"tombola", "main"}, 0, "included\n x1"},
        {{"tombola", "main", "--map", "0"}, 0, "parts/a:2:1\n"},
        {{"tombola", "main", "--map", "10"}, 0, "main:2:2\n"},
        {{"tombola", "main", "--map", "11"}, 0, "parts/a:1:13\n"},
        {{"tombola", "main", "--map", "12"}, 0, "main:2:5\n"},
        {{"tombola", "main", "--map", "-1"}, 2, ""},
        {{"tombola", "main", "--map", "13"}, 1, "", "error: Offset 13 is beyond the expansion's 12 bytes\n"},
        {{"tombola", "below", "--include-dir", "parts"}, 0, "included\n1"},
        {{"tombola", "below"},
         1,
         "",
         "error: Tombola error: Could not load include file: a (below line 2, column 1)\n"},
        {{"tombola", "above", "--include-dir", "parts"},
         1,
         "",
         "error: Tombola error: Could not load include file: ../main (above line 1, column 17)\n"},
        {{"tombola", "broken"},
         1,
         "",
         "error: Tombola error: \"n\" is undefined (broken line 2, column 3)\n"},
        {{"tombola", "none"}, 1, "", "error: Could not read none: No such file or directory\n"},
    });
    check({{{"tombola", "-"}, 0, "a@\n"}, {{"tombola", "-", "--map", "1"}, 0, ":1:2\n"}}, "a@@\n");
    EXPECT_EQ(run({"tombola", "main", "--map", "-1"}).status, 2);
}
