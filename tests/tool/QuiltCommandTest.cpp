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

TEST_F(QuiltCommand, DrawsSnapshots) {
    std::filesystem::create_directories(folder_ / "parts");
    write("parts/inner.quilt", "bounds: { 2, 2, 4, 4 }, transitions: { default: { time: 0.3, opacity: 0 } }\n"
                               "views: { { type: rectangle, color: '#ff0000' } }");
    write("a.quilt", "bounds: { 0, 0, 20, 11 }, views: { { type: rectangle, color: '#0000ff' }\n"
                     "{ type: caption, text: '[var]params.mix.human[/var]' } { type: quilt, layoutVariable: modalLayout } }\n"
                     "autoexecs: { { action: set, params: { variable: modalLayout, value: '' } } }");
    // Scaled, with the folder's documents, at the end of all transitions, and with what is set for good.
    const auto inner = run({"quilt", "snapshot", "a.quilt", "inner.png", "--resources", "parts", "--set", "modalLayout=inner"});
    EXPECT_EQ(inner.status, 0) << inner.errors;
    EXPECT_EQ(inner.errors, "");
    EXPECT_EQ(run({"quilt", "snapshot", "a.quilt", "plain.png"}).status, 0);
    EXPECT_EQ(run({"quilt", "snapshot", "a.quilt", "large.png", "--scale", "3/2"}).status, 0);
    EXPECT_EQ(run({"quilt", "snapshot", "a.quilt", "set.png", "--set", "params.mix=0.5"}).status, 0);
    EXPECT_EQ(read("plain.png").substr(12, 12), std::string("IHDR\0\0\0\x14\0\0\0\x0B", 12));
    EXPECT_EQ(read("large.png").substr(12, 12), std::string("IHDR\0\0\0\x1E\0\0\0\x10", 12));
    EXPECT_NE(read("plain.png"), read("inner.png"));
    EXPECT_NE(read("plain.png"), read("set.png"));

    write("broken.quilt", "views: { { type: raster, image: nobody } }");
    const auto broken = run({"quilt", "snapshot", "broken.quilt", "broken.png"});
    EXPECT_EQ(broken.status, 1);
    EXPECT_EQ(broken.errors, "Error loading image:\n\nMissing image: nobody.\nerror: 1 error in the document\n");
    EXPECT_NE(read("broken.png"), "");
}

TEST_F(QuiltCommand, DrawsTheEditorsOwnDocuments) {
    for (const std::string document : {"MURMELON_MAIN", "MURMELON_ABOUT", "MURMELON_ZOOM"}) {
        for (const std::string scale : {"1/2", "2/1"}) {
            const auto result = run({"quilt", "snapshot", document, "out.png", "--scale", scale, "--tone", "220"});
            EXPECT_EQ(result.status, 0) << document << result.errors;
            EXPECT_EQ(result.errors, "") << document;
        }
    }
}

// Who has a switch learn a controller from its menu sees it learn.
TEST_F(QuiltCommand, ShowsTheControllerOfEachParameter) {
    const auto result = run({"quilt", "load", "MURMELON_MAIN"});
    EXPECT_EQ(result.status, 0) << result.errors;
    std::size_t marks = 0;
    for (std::size_t at = 0; (at = result.output.find("\"midiAssign\"", at)) != std::string::npos; ++at) {
        ++marks;
    }
    EXPECT_EQ(marks, 10U); // as many as parameters
}

TEST_F(QuiltCommand, PrintsTheReferenceOfViews) {
    EXPECT_TRUE(run({"quilt", "types"}).output == CommandRun::contentsOf(MURMELON_DOCS "/quilt-views.md"))
        << "Made anew by: murmelon quilt types > docs/quilt-views.md";
}

} // namespace
