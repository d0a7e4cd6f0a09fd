#include "CommandRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using CommandRun::CommandTest;
using testing::HasSubstr;

using QuiltCommand = CommandTest;

// JSON without blanks outside of strings.
std::string compact(const std::string& json) {
    std::string text;
    bool inString = false;
    for (std::size_t i = 0; i < json.size(); ++i) {
        if (inString && json[i] == '\\') {
            text += json[i++];
        } else if (json[i] == '"') {
            inString = !inString;
        } else if (!inString && (json[i] == ' ' || json[i] == '\n')) {
            continue;
        }
        text += json[i];
    }
    return text;
}

TEST_F(QuiltCommand, PrintsWhatWasBuilt) {
    write("parts", "@define wide = w-35\n");
    write("a.quilt",
          "@include parts\n"
          "bounds: { 0, 0, 470, 320 }\n"
          "views: { { type: group, bounds: { @wide, 1, 34, 16 }, views: { { type: knob, variable: a } } } }\n"
          "autoexecs: { { action: set, onReload: false, params: { variable: v, value: \"x\" } }\n"
          " { action: set, params: { variable: [var]name[/var], value: 1 }, repeat: 0.25 }\n"
          " { action: set, onChanged: { v, w }, onClose: true } }\n"
          "transitions: { default: { time: 0.3 } }, translations: { \"zoom:1/1\": \"100%\" }\n");
    const std::string first =
        R"({"action":"set","params":"{ variable: v, value: \"x\" }","delay":null,"repeat":null,)"
        R"("onChanged":[],"onReload":false,"onClose":false},)";
    const auto expected = [](const std::string& knob, const std::string& bounds,
                             const std::string& autoexec) {
        return R"({"bounds":[0,0,470,320],"views":[{"type":"group","bounds":)" + bounds +
               R"(,"children":[{"type":"knob","bounds":)" + knob + R"(,"children":[]}]}],"autoexecs":[)" +
               autoexec +
               R"({"action":"set","params":"{ variable: [var]name[/var], value: 1 }","delay":null,"repeat":250,)"
               R"("onChanged":[],"onReload":true,"onClose":false},{"action":"set","params":"","delay":null,)"
               R"("repeat":null,"onChanged":["v","w"],"onReload":true,"onClose":true}],"transitions":{)"
               R"("default":"{ time: 0.3 }","open":"{ time: 0.3 }","close":"{ time: 0.3 }","swapIn":"{ time: 0.3 }",)"
               R"("swapOut":"{ time: 0.3 }"},"translations":{"zoom:1/1":"100%"},"errors":[]})";
    };
    const auto plain = run({"quilt", "load", "a.quilt"});
    EXPECT_EQ(plain.status, 0) << plain.errors;
    EXPECT_EQ(compact(plain.output), expected("[0,0,34,16]", "[435,1,34,16]", first));
    const auto again = run({"quilt", "load", "--reload", "--scale", "5/4", "a.quilt"});
    EXPECT_EQ(compact(again.output), expected("[0,0,42,20]", "[543,1,42,20]", ""));
}

TEST_F(QuiltCommand, TellsErrorsAndFails) {
    std::string text = "views: {";
    for (int i = 0; i < 5; ++i) {
        text += " { type: v" + std::to_string(i) + " }";
        text += i < 4 ? "," : " }";
    }
    const auto result = run({"quilt", "load", "-"}, text);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(
        compact(result.output),
        HasSubstr(R"("errors":["Error parsing quilt:\n\nUnknown view type: v0 (- line 1, column 18).",)"));
    EXPECT_EQ(result.errors,
              "Error queue overflow: Error parsing quilt Unknown view type: v4 (- line 1, column 74)\n"
              "error: 4 errors in the document\n");
}

TEST_F(QuiltCommand, LoadsWhatViewsDrawWith) {
    const struct {
        std::string view;
        std::string error;
    } rows[] = {
        {"raster, image: { name: diode, slices: 2, index: 1 }", ""},
        {"raster, image: { ovsFile: dot }", ""},
        {"raster, image: { name: nobody }", "image:\\n\\nMissing image: nobody."},
        {"raster, image: { name: diode, slices: 2, index: 2 }", "image:\\n\\nInvalid image slice index."},
        {"animation, film: { image: knob, frames: 0 }", "film:\\n\\nInvalid frame film count."},
        {"caption, text: a, font: { ovsfont: nobody }", "font:\\n\\nCould not obtain OVS font: nobody."},
        {"midiAssign, variable: params.mix", ""},
    };
    write("dot.ovs", "format ovs-1 requires:ZEKT-1\nbounds 0,0,4,4\n");
    for (const auto& row : rows) {
        write("a.quilt", "views: { { type: " + row.view + ", bounds: { 0, 0, 9, 9 } } }");
        const auto result = run({"quilt", "load", "a.quilt"});
        EXPECT_EQ(result.status, row.error.empty() ? 0 : 1) << row.view;
        const std::string errors = row.error.empty() ? "" : "\"Error loading " + row.error + "\"";
        EXPECT_THAT(compact(result.output), HasSubstr("\"errors\":[" + errors + "]")) << row.view;
    }
}

TEST_F(QuiltCommand, SetsVariablesBefore) {
    write("inner", "bounds: { 5, 5, w/2, 60 }");
    write("a.quilt", "views: { { type: quilt, layoutVariable: modalLayout } }");
    EXPECT_THAT(compact(run({"quilt", "load", "a.quilt", "--set", "modalLayout=inner"}).output),
                HasSubstr(R"("children":[{"type":"document","bounds":[5,5,235,60],"children":[]}])"));
    const auto wrong = run({"quilt", "load", "a.quilt", "--set", "modalLayout"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(run({"quilt", "load", "a.quilt", "--scale", "0/1"}).errors,
                testing::Eq("error: Invalid scale: 0/1\n"));
}

TEST_F(QuiltCommand, PrintsTheReferenceOfViews) {
    EXPECT_TRUE(run({"quilt", "types"}).output == CommandRun::contentsOf(MURMELON_DOCS "/quilt-views.md"))
        << "Made anew by: murmelon quilt types > docs/quilt-views.md";
}

} // namespace
