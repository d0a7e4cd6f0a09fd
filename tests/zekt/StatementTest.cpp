#include "ScriptRun.h"

namespace {

using ScriptRun::expectResults;
using ScriptRun::Row;
using ScriptRun::run;

} // namespace

TEST(Statement, endsAtLineEndsAndSemicolons) {
    expectResults(std::vector<Row>{
        {"a=1;b=2 ; trace $a$b\r\ntrace x", "12\nx\n"},
        {";;\n ; trace x;;", "x\n"},
        {"trace a /* ; \n */ b // c ; \" [\ntrace d", "a b\nd\n"},
        {"trace [a;\nb] \"c;\n\" d\\;e", "[a;\nb] \"c;\n\" d\\;e\n"},
        {"trace \\\r\nx", "\\\r\nx\n"},
        {"trace last // no line end", "last\n"},
        {"trace x\\ ;trace y\\\\ \ntrace \\\n \n", "x\\ \ny\\\\\n\\\n\n"},
        {"show x\\ ; list x\\ ,y\\\\ ", "<x >\n<x ><y\\>\n"},
        {"trace", "\n"},
        {"\\", "SyntaxException: Invalid instruction [\\]"},
        {"x y = 1", "SyntaxException: Unrecognized instruction: x [x y = 1]"},
        {"trace = 1; trace $trace", "1\n"},
        {"TRACE x; Trace y", "x\ny\n"},
        {"9x", "SyntaxException: Invalid instruction [9x]"},
        {"9x=1; trace $9x", "1\n"},
        {"=1", "SyntaxException: Invalid instruction [=1]"},
        {"trace[x]", "SyntaxException: Invalid instruction [trace[x]]"},
        {"trace/**/x", "x\n"},
        {"META $no {1/0", ""},
        {"metadata", "SyntaxException: Unrecognized instruction: metadata [metadata]"},
        {"trace 1\nfoo.bar-1 $no", "1\nSyntaxException: Unrecognized instruction: foo.bar-1 [foo.bar-1 $no]"},
        {"trace a\n  x=[1\n2", "a\nSyntaxException: Missing ] [x=[1]"},
        {"trace a\nx=\"1", "a\nSyntaxException: Missing \" [x=\"1]"},
        {"trace a\nx /* y", "a\nSyntaxException: Missing */ [x /* y]"},
        {"trace a\n/* y", "a\nSyntaxException: Missing */ []"},
    });
}

TEST(Statement, expandsAndAssigns) {
    expectResults(std::vector<Row>{
        {"p = M; p=$p 1 {2 + 3}  x; trace $p", "M 1 5 x\n"},
        {"a=x; a=$a$a; a=$a-; trace $a", "RunTimeException: Variable a- does not exist [a=$a-]"},
        {"a=x; a=${1}", "SyntaxException: Syntax error [a=${1}]"},
        {"a=\"x  y\" [ z  ] \\$b; trace $a", "\"x  y\" [ z  ] \\$b\n"},
        {"a={1/3}; trace {$a * 3} {$a == 1/3}", "0.9999999999999 yes\n"},
        {"a=1.0; trace $a {$a} {$a + 0}", "1.0 1.0 1\n"},
        {"a={\"  b\"}; trace $a.", "RunTimeException: Variable a. does not exist [trace $a.]"},
        {"a={\" b \"}; trace x $a x", "x  b  x\n"},
        {"a=; trace <$a>", "<>\n"},
        {"A=1; trace {def a} {def A}", "no yes\n"},
        {"trace {1 + ", "SyntaxException: Unexpected end [trace {1 +]"},
        {"trace {1", "SyntaxException: Syntax error [trace {1]"},
        {"trace {}", "SyntaxException: Syntax error [trace {}]"},
        {"trace $a $b {1 +", "RunTimeException: Variable a does not exist [trace $a $b {1 +]"},
        {"a=1; a=$a {1/0}; ", "RunTimeException: Division by zero [a=$a {1/0}]"},
        {"n={2}; n=$n{3}; trace $n {$n + 1}", "23 24\n"},
    });
}

TEST(Statement, finalValuesOfArguments) {
    expectResults(std::vector<Row>{
        {"show a \"b c\\n\" [d {1 + 1}\\x41 \"e\"] f\\ g", "<a><b c\n><d 2A \"e\"><f g>\n"},
        {"v=[x $w]; w=7; show $v", "<x 7>\n"},
        {"v=1 2; show $v$v a:$v:b", "<1 21 2>a<1 2:b>\n"},
        {"show \\u20AC \\U1F600 \\xe9 \\66\\0x\\q \\xg \\99999999999",
         "<\xE2\x82\xAC><\xF0\x9F\x98\x80><\xE9><B" + std::string(1, '\0') + "xq><xg><\xEF\xBF\xBD>\n"},
        {"show \"a:b\" [c:d] {yes ? e : f} x\\:y", "<a:b><c:d><e><x:y>\n"},
        {"l=z; show $l:1 l:", "z<1>l<>\n"},
        {"show :1", "SyntaxException: Label cannot be empty [show :1]"},
        {"show a:1 a:{1/0}", "SyntaxException: Duplicate label: a [show a:1 a:{1/0}]"},
        {"show a:{1/0} a:1", "RunTimeException: Division by zero [show a:{1/0} a:1]"},
        {"show [{1/0}] $b", "RunTimeException: Variable b does not exist [show [{1/0}] $b]"},
        {"show [a [b \"]\" \\]] c]", "<a [b \"]\" ]] c>\n"},
    });
}

TEST(Statement, splitsLists) {
    expectResults(std::vector<Row>{
        {"list 1,2", "<1><2>\n"},
        {"list [ a b , \"c,d\",[e $x]]; x=9",
         "RunTimeException: Variable x does not exist [list [ a b , \"c,d\",[e $x]]]"},
        {"x=1,9; list [ a b , \"c,d\",[e $x]]", "<a b><c,d><e 1,9>\n"},
        {"x=1,9; list $x", "<1><9>\n"},
        {"x=1,9; list [$x,2]", "<1,9><2>\n"},
        {"list a\\,b,", "<a,b><>\n"},
        {"list [a /* b */, /* c */]", "<a><>\n"},
        {"list \"\"", "RunTimeException: Too few list elements (got 0, expected at least 2) [list \"\"]"},
        {"list 1", "RunTimeException: Too few list elements (got 1, expected at least 2) [list 1]"},
        {"list 1,2,3,4",
         "RunTimeException: Too many list elements (got 4, expected at most 3) [list 1,2,3,4]"},
        {"list", "SyntaxException: Missing indexed argument 0 [list]"},
        {"list 1,2 x:1", "SyntaxException: Unrecognized labels or too many arguments [list 1,2 x:1]"},
    });
}

TEST(Instruction, formatAsksTheHost) {
    expectResults(std::vector<Row>{
        {"FORMAT Test-1 requires:ZEKT-1", "format test-1\n"},
        {"format test-1 uses:b,A,b requires:[zekt-1, Zekt-1]", "format test-1 uses a uses b\n"},
        {"format test-1 requires:x,a,ZEKT-1",
         "format test-1 requires a requires x\nFormatException: Unsupported data "
         "format [format test-1 requires:x,a,ZEKT-1]"},
        {"format test-2", "format test-2\nFormatException: Unsupported data format [format test-2]"},
        {"format", "SyntaxException: Missing indexed argument 0 [format]"},
    });
}

TEST(Instruction, branchesAndLoops) {
    expectResults(std::vector<Row>{
        {"IF [{1 > 0}] [trace a] else:[trace b]; if no [trace a] else:[trace b]; if no [x]", "a\nb\n"},
        {"if {1} [trace a]",
         "RunTimeException: Invalid boolean (should be 'yes' or 'no'): 1 [if {1} [trace a]]"},
        {"if Yes []", "RunTimeException: Invalid boolean (should be 'yes' or 'no'): Yes [if Yes []]"},
        {"if yes", "SyntaxException: Missing indexed argument 1 [if yes]"},
        {"if yes [trace a] [b]",
         "SyntaxException: Unrecognized labels or too many arguments [if yes [trace a] [b]]"},
        {"if no [trace (] else:[trace b]; if yes [\n x ]",
         "b\nSyntaxException: Unrecognized instruction: x [x]"},
        {"for i from:3 to:3 [trace $i]", "3\n"},
        {"for i from:0 to:-2 [trace $i]; trace end $i", "0\n-1\n-2\nend -2\n"},
        {"for i from:0 to:1 step:0.4 [trace $i]", "0\n0.4\n0.8\n"},
        {"for i from:1 to:3 step:-1 [trace $i]", "1\n"},
        {"for i from:1 to:3 [ trace $i; i=7 ]", "1\n2\n3\n"},
        {"for i from:1 [x]", "SyntaxException: Missing argument: to [for i from:1 [x]]"},
        {"for i [x]", "SyntaxException: Missing argument: from [for i [x]]"},
        {"for i from:a to:2 []", "RunTimeException: Invalid number: a [for i from:a to:2 []]"},
        {"for i from:1 to:2 reverse:no []",
         "SyntaxException: Unrecognized labels or too many arguments [for i from:1 to:2 reverse:no []]"},
        {"for \"a b\" from:1 to:2 []",
         "RunTimeException: Could not set variable [for \"a b\" from:1 to:2 []]"},
        {"y=2; for v in:[a, $y, \"c,d\"] [trace $v]", "a\n2\n\"c,d\"\n"},
        {"for v in:a,b,c reverse:yes [trace $v]; for v in:\"\" [trace no]", "c\nb\na\n"},
        {"repeat 2 [trace a]; repeat 0 [trace b]; repeat -1 [trace c]", "a\na\n"},
        {"i=0; repeat 10 [i={$i + 1}] while:[{$i < 3}]; trace $i", "3\n"},
        {"repeat 1e0 [trace a]; repeat 1.5 []", "a\nRunTimeException: Invalid integer: 1.5 [repeat 1.5 []]"},
        {"repeat x []", "RunTimeException: Invalid integer: x [repeat x []]"},
        {"repeat 2 [] while:{1}",
         "SyntaxException: 'while:' condition has to be enclosed in [ ] [repeat 2 [] while:{1}]"},
        {"b=[trace $i]; for i from:1 to:2 $b; b=trace\\ $i; repeat 1 $b", "1\n2\n2\n"},
    });
}

TEST(Instruction, framesHoldVariables) {
    expectResults(std::vector<Row>{
        {"call [trace $n $0 $1 $a; b=1; trace {def b}] x \"y z\" a:[q]; trace {def b} {def a}",
         "2 x \"y z\" [q]\nyes\nno no\n"},
        {"a=1; call [a=2; local a=3; a=4; trace $a]; trace $a", "4\n2\n"},
        {"local a; trace <$a>; local a=2", "<>\nRunTimeException: Variable a already declared [local a=2]"},
        {"local", "SyntaxException: Missing variable name [local]"},
        {"local $a", "SyntaxException: Invalid variable name [local $a]"},
        {"local a b", "SyntaxException: Expected = [local a b]"},
        {"local a-1.b = {1 + 1} x; trace $a-1.b", "2 x\n"},
        {"call [r=1; return r; return s = 2; trace on]; trace $r $s", "on\n1 2\n"},
        {"call [call [return r=5]; trace $r]; trace {def r}", "5\nno\n"},
        {"call [local x=1; call [return x=2]; trace $x]", "2\n"},
        {"return a=1", "RunTimeException: Cannot return in global frame [return a=1]"},
        {"return", "SyntaxException: Missing variable name [return]"},
        {"call [return q]", "RunTimeException: Variable q does not exist [return q]"},
        {"call", "SyntaxException: Missing argument(s) [call]"},
        {"call a:1", "SyntaxException: Missing indexed argument 0 [call a:1]"},
        {"call [] a+b:1", "RunTimeException: Could not set variable [call [] a+b:1]"},
        {"include", "SyntaxException: Missing argument(s) [include]"},
        {"include \"no\"", "RunTimeException: Could not include file: no [include \"no\"]"},
        {"x=1; scope [y=2; x=3]; trace $x {def y}", "3 no\n"},
        {"b=1; a={\"$b\"}; _debug; _debug expand:yes; call [_DEBUG]", "a=$b|b=1\na=1|b=1\nn=0\n"},
        {"trace a; stop; trace b", "a\nAbortedException: Encountered STOP instruction [stop]"},
        {"stop 1", "SyntaxException: Unrecognized labels or too many arguments [stop 1]"},
    });
    ScriptRun::Host host;
    host.files["sub"] = "trace $0 $k\nfail";
    EXPECT_EQ(run("include sub 7 k:8", host), "7 8\nSyntaxException: Unrecognized instruction: fail [fail]");
}

// A statement that ran before must not be remembered for more than its text.
TEST(Instruction, bodiesRunAgainAsTheirTextSays) {
    expectResults(std::vector<Row>{
        {"for i from:0 to:2 [ if [{$i == 1}] [ trace {1/(1-$i)} ] else:[ trace $i ] ]",
         "0\nRunTimeException: Division by zero [trace {1/(1-$i)}]"},
        {"for b in:[[trace a],[trace b],[trace a]] [ call $b ]", "a\nb\na\n"},
        {"f=[ if [{$0 > 0}] [ trace $0; call $f {$0 - 1} ] ]; call $f 3", "3\n2\n1\n"},
        {"for i from:1 to:2 [ call [ local x=$0; trace $x; x={$x * 2}; return x ] $i; trace $x ]",
         "1\n2\n2\n4\n"},
    });
}

TEST(Outer, VariablesAreThereWhereTheDocumentHasNone) {
    struct Outer : ScriptRun::Host {
        int asked = 0;
        std::optional<std::string> outerVariable(std::string_view name) override {
            ++asked;
            return name == "level" || name == "a.1" ? std::optional("7" + std::string(name == "a.1" ? ".5" : ""))
                                                    : std::nullopt;
        }
    };
    const ScriptRun::Row rows[] = {
        {"trace $level", "7\n"},
        {"trace {$level + 1} {$level + 1}", "8 8\n"},
        {"i=1; trace {$a.$i + $a.1}", "15\n"},
        {"trace {def(level)} {def(a.1)} {def(nobody)}", "yes yes no\n"},
        {"level=3; trace $level", "3\n"}, // hidden by the document's own
        {"trace $level; level=3; trace $level", "7\n3\n"},
        {"scope [ trace $level ]", "7\n"},
        {"trace $nobody", "RunTimeException: Variable nobody does not exist [trace $nobody]"},
        {"i=2; trace {$a.$i}", "RunTimeException: Variable a.2 does not exist [trace {$a.$i}]"},
    };
    for (const auto& [script, result] : rows) {
        Outer host;
        EXPECT_EQ(ScriptRun::run(script, host), result) << script;
    }
    Outer host;
    ScriptRun::run("for i from:0 to:9 [ x=$level ]", host);
    EXPECT_EQ(host.asked, 1); // once a run
}
