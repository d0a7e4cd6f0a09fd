// What each instruction refuses, word for word.
#include "Drawn.h"

#include <gtest/gtest.h>

namespace {

using OVSTest::drawn;

struct Row {
    const char* statement;
    const char* error; // of ZEKT::RunTimeException, or with its class
};

// In a document with bounds, "#" before an error standing for SyntaxException.
template <std::size_t count>
void expectErrors(const Row (&rows)[count]) {
    for (const Row& row : rows) {
        const std::string document = std::string("format ovs-1 requires:ZEKT-1\nbounds 0,0,10,10\n") + row.statement;
        std::string expected = row.error;
        expected = expected.starts_with('#') ? "ZEKT::SyntaxException: " + expected.substr(1)
                                             : "ZEKT::RunTimeException: " + expected;
        const std::string error = drawn(document).error;
        EXPECT_EQ(error.substr(0, error.find(" in: ")), expected) << row.statement;
    }
}

TEST(Errors, OfShapes) {
    expectErrors({
        {"rect", "#Missing argument(s)"},
        {"rect 1,2,3", "Too few list elements (got 3, expected at least 4)"},
        {"rect 1,2,3,4,5", "Too many list elements (got 5, expected at most 4)"},
        {"rect 1,2,3,x", "Invalid number: x"},
        {"rect 0,0,-1.5,1", "Negative rectangle width: -1.5"},
        {"rect 0,0,1,-2", "Negative rectangle height: -2"},
        {"rect 0,0,1,1 rounded:-1", "Negative rounded corner radius: -1"},
        {"rect 0,0,1,1 rounded:1,-3", "Negative rounded corner radius: -3"},
        {"rect 0,0,1,1 rounded:1,2,3", "Too many list elements (got 3, expected at most 2)"},
        {"rect 0,0,1,1 round:1", "#Unrecognized labels or too many arguments"},
        {"rect 0,0,1,1 5", "#Unrecognized labels or too many arguments"},
        {"ellipse", "#Missing argument(s)"},
        {"ellipse 0,0", "Too few list elements (got 2, expected at least 3)"},
        {"ellipse 0,0,-1", "Negative ellipse radius: -1"},
        {"ellipse 0,0,1,-1", "Negative ellipse radius: -1"},
        {"star 0,0,0,5", "star points out of range [1..10000]: 0"},
        {"star 0,0,10001,5", "star points out of range [1..10000]: 10001"},
        {"star 0,0,2.5,5", "Invalid integer: 2.5"},
        {"star 0,0,5,-5", "Negative star radius: -5"},
        {"star 0,0,5,5,-1", "Negative star radius: -1"},
        {"star 0,0,5", "Too few list elements (got 3, expected at least 4)"},
        {"path", "#Missing argument(s)"},
        {"path [M0 0]", "#Invalid PATH arguments (missing svg argument)"},
        {"path svg:[M0]", "Invalid M syntax in svg path data"},
        {"path svg:[M0 0 L 1]", "Invalid L syntax in svg path data"},
        {"path svg:[M0 0 B]", "Invalid command in svg path data"},
        {"path svg:[M0 0] rule:even-odd", "#Unrecognized labels or too many arguments"},
        {"wipe", "#Missing argument(s)"},
        {"wipe gradient:[linear 0,0,1,1 from:red to:blue] relative:yes",
         "Relative paint is not allowed with wipe"},
    });
}

TEST(Errors, OfPaintsAndPens) {
    expectErrors({
        {"fill", "#Missing argument(s)"},
        {"fill rule:even-odd", "#Missing indexed argument 0"},
        {"fill red rule:odd", "Unrecognized fill rule: odd"},
        {"fill Orange", "Invalid color name: Orange"},
        {"fill #80ff0000", "Invalid pre-multiplied alpha color: 80ff0000"},
        {"fill #123", "Invalid color: #123"},
        {"fill hsv(0,2,0)", "hsv value number 2 out of range [0..1]: 2"},
        {"fill red opacity:x", "Invalid opacity: x"},
        {"fill red opacity:1.5", "opacity out of range [0..1]: 1.5"},
        {"fill red relative:maybe", "Invalid boolean (should be 'yes' or 'no'): maybe"},
        {"fill red blue", "#Unrecognized labels or too many arguments"},
        {"fill [red blue]", "#Unrecognized labels or too many arguments"},
        {"fill red gradient:[linear 0,0,1,1 from:red to:blue]", "#Unrecognized labels or too many arguments"},
        {"fill red transform:[rect 0,0,1,1]", "#Unrecognized instruction: rect"},
        {"fill red transform:[scale 1,2,3]", "Too many list elements (got 3, expected at most 2)"},
        {"fill gradient:[]", "#Missing indexed argument 0"},
        {"fill gradient:[conic 0,0]", "Unrecognized gradient type: conic"},
        {"fill gradient:[linear]", "#Missing indexed argument 1"},
        {"fill gradient:[linear 0,0,1]", "Too few list elements (got 3, expected at least 4)"},
        {"fill gradient:[linear 0,0,1,1 from:red]", "#Missing argument: to"},
        {"fill gradient:[linear 0,0,1,1]", "#Missing argument: from"},
        {"fill gradient:[linear 0,0,1,1 from:red to:blue stops:0,red]",
         "#Unrecognized labels or too many arguments"},
        {"fill gradient:[radial 0,0,-1 from:red to:blue]", "Negative radial gradient radius: -1"},
        {"fill gradient:[radial 0,0,1,-2 from:red to:blue]", "Negative radial gradient radius: -2"},
        {"fill gradient:[linear 0,0,1,1 stops:0,red,1]",
         "Invalid stops for gradient (odd number of elements): 0,red,1"},
        {"fill gradient:[linear 0,0,1,1 stops:\"\"]", "Too few list elements (got 0, expected at least 2)"},
        {"fill gradient:[linear 0,0,1,1 stops:0.5,red,0.4,rgb(0,0,1)]",
         "Invalid stops for gradient (invalid position: 0.4)"},
        {"fill gradient:[linear 0,0,1,1 stops:0,red,1.01,blue]",
         "Invalid stops for gradient (invalid position: 1.01)"},
        {"fill gradient:[linear 0,0,1,1 stops:-1,red]", "Invalid stops for gradient (invalid position: -1)"},
        {"fill pattern:[fill red]", "Undeclared bounds"},
        {"pen", "#Missing argument(s)"},
        {"pen width:2", "#Missing indexed argument 0"},
        {"pen red width:-1", "Negative stroke width: -1"},
        {"pen red caps:flat", "Unrecognized stroke caps: flat"},
        {"pen red joints:round", "Unrecognized stroke joints: round"},
        {"pen red miter-limit:0.9", "miter-limit out of range [1..inf): 0.9"},
        {"pen red dash:-1,2", "Negative dash value: -1"},
        {"pen red dash:1,-2", "Negative gap value: -2"},
        {"pen red dash:1,2,3", "Too many list elements (got 3, expected at most 2)"},
        {"pen red dash-offset:x", "Invalid number: x"},
        {"pen red rule:non-zero", "#Unrecognized labels or too many arguments"},
    });
}

TEST(Errors, OfTheState) {
    expectErrors({
        {"matrix 1,0,0,1,0", "Too few list elements (got 5, expected at least 6)"},
        {"matrix", "#Missing argument(s)"},
        {"scale anchor:1,1", "#Missing indexed argument 0"},
        {"scale 1,2,3", "Too many list elements (got 3, expected at most 2)"},
        {"rotate 1,2", "Invalid number: 1,2"},
        {"offset 1", "Too few list elements (got 1, expected at least 2)"},
        {"shear 1", "Too few list elements (got 1, expected at least 2)"},
        {"rotate 1 anchor:5", "Too few list elements (got 1, expected at least 2)"},
        {"rotate 1 about:5,5", "#Unrecognized labels or too many arguments"},
        {"options", "#Missing argument(s)"},
        {"options aa-gamma:100", "aa-gamma out of range (0..100): 100"},
        {"options aa-gamma:0.00009", "aa-gamma out of range (0..100): 9e-05"},
        {"options curve-quality:0", "curve-quality out of range (0..100): 0"},
        {"options pattern-resolution:99.99991", "pattern-resolution out of range (0..100): 99.99991"},
        {"options gamma:1", "#Unrecognized labels or too many arguments"},
        {"reset all", "#Unrecognized labels or too many arguments"},
        {"context", "#Missing argument(s)"},
        {"context [] []", "#Unrecognized labels or too many arguments"},
        {"mask [bounds 0,0,1,1]", "Bounds cannot be declared for mask"},
        {"mask [] inverted:1", "Invalid boolean (should be 'yes' or 'no'): 1"},
        {"bounds 0,0,10,10", "Multiple bounds declarations"},
        {"bounds 0,0,0,10", "bounds width out of range [1..32767]: 0"},
        {"bounds 0,0,1,32768", "bounds height out of range [1..32767]: 32768"},
        {"bounds 0,0,1,1.5", "Invalid integer: 1.5"},
        {"bounds 0,0,1", "Too few list elements (got 3, expected at least 4)"},
        {"wobble", "#Unrecognized instruction: wobble"},
    });
}

TEST(Errors, OfDefinitionsTextAndImages) {
    expectErrors({
        {"define", "#Missing argument(s)"},
        {"define sound a []", "Invalid define instruction type: sound"},
        {"define image", "#Missing indexed argument 1"},
        {"define image a", "#Missing indexed argument 2"},
        {"define image a []", "Undeclared bounds"},
        {"define image a [rect 0,0,1,1]", "Undeclared bounds"},
        {"define image a [bounds 0,0,1,1] resolution:0.00009", "resolution out of range [0.0001..inf): 9e-05"},
        {"define image a [bounds 0,0,1,1]; define image a [bounds 0,0,1,1]", "Duplicate image definition: a"},
        {"define image a [bounds 0,0,9000,9000]", "Image too large: 9000 x 9000 pixels"},
        {"define image a [bounds 0,0,1,1] resolution:1e300", "Image too large: 1000000000 x 1000000000 pixels"},
        {"for i from:1 to:9 [define image a$i [bounds 0,0,8000,8000]]", "Image memory limit reached"},
        {"fill none; pen red width:1e5 joints:curve; star 9,9,10000,9,1", "Drawing limit reached"},
        {"define font a []; define font a []", "Duplicate font definition: a"},
        {"font", "#Missing argument(s)"},
        {"font Nowhere", "Missing font: Nowhere"},
        {"font \"\"", "Invalid font name"},
        {"font size:0", "font size out of range (0..inf): 0"},
        {"font color:x", "Invalid color name: x"},
        {"font outline:[red width:-1]", "Negative stroke width: -1"},
        {"font outline:[red size:1]", "#Unrecognized labels or too many arguments"},
        {"text [a]", "Need to set font before writing"},
        {"font Block; text", "#Missing argument(s)"},
        {"font Block; text at:1,2", "#Missing indexed argument 0"},
        {"font Block; text [a] anchor:middle", "Unrecognized anchor: middle"},
        {"font Block; text [a] caret:\"\"", "Could not set variable"},
        {"image", "#Missing argument(s)"},
        {"image dot", "Missing image: dot"},
        {"define image d [bounds 0,0,1,1]; image d align:left,right", "Duplicate horizontal alignment: right"},
        {"define image d [bounds 0,0,1,1]; image d align:top,Bottom", "Duplicate vertical alignment: Bottom"},
        {"define image d [bounds 0,0,1,1]; image d align:up", "Unrecognized alignment: up"},
        {"define image d [bounds 0,0,1,1]; image d clip:0,0,-1,1", "Negative clip width: -1"},
        {"define image d [bounds 0,0,1,1]; image d clip:0,0,1,-1", "Negative clip height: -1"},
        {"define image d [bounds 0,0,1,1]; image d opacity:2", "opacity out of range [0..1]: 2"},
    });
}

TEST(Errors, OfTheDocumentAsAWhole) {
    const struct {
        const char* document;
        const char* error;
    } rows[] = {
        {"format OVS-1 requires:ZEKT-1\nbounds 0,0,1,1", ""},
        {"format ovs-2 requires:zekt-1 uses:anything\nbounds 0,0,1,1", ""},
        {"format ovs-3", "ZEKT::FormatException: Unsupported data format in: format ovs-3"},
        {"format ovs-1 requires:ZEKT-2", "ZEKT::FormatException: Unsupported data format in: format ovs-1 requires:ZEKT-2"},
        {"format ovs-1", "ZEKT::RunTimeException: Undeclared bounds"},
        {"rect 0,0,1,1", "ZEKT::RunTimeException: Undeclared bounds in: rect 0,0,1,1"},
        {"context [wipe red]", "ZEKT::RunTimeException: Undeclared bounds in: wipe red"},
        {"bounds 1,-2,3,4", "ZEKT::RunTimeException: OVS bounds need to be zero based: 1,-2,3,4 in: bounds 1,-2,3,4"},
        {"bounds 0,0,32767,32767",
         "ZEKT::RunTimeException: Image too large: 32767 x 32767 pixels in: bounds 0,0,32767,32767"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(drawn(row.document).error, row.error) << row.document;
    }
}

} // namespace
