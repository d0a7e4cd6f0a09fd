#include "ovs/PaintArguments.h"

#include "ovs/Transforms.h"
#include "ovs/Values.h"
#include "zekt/Lexical.h"
#include "zekt/NumberText.h"

#include <array>

namespace OVS {

using Drawing::GradientStop;
using Drawing::Paint;
using Drawing::Pen;

namespace {

std::vector<GradientStop> stopsFromList(const ZEKT::Argument& argument) {
    // One colour is one element, whatever commas it holds.
    const auto elements = argument.list({.commasInParentheses = false});
    if (elements.size() % 2 != 0) {
        fail("Invalid stops for gradient (odd number of elements): " + argument.text());
    }
    if (elements.empty()) {
        fail("Too few list elements (got 0, expected at least 2)");
    }
    std::vector<GradientStop> stops;
    double least = 0.0;
    for (std::size_t i = 0; i < elements.size(); i += 2) {
        const double position = ZEKT::toNumber(elements[i]);
        if (!(position >= least && position <= 1.0)) {
            fail("Invalid stops for gradient (invalid position: " + shown(position) + ")");
        }
        least = position;
        stops.push_back({position, colourOf(elements[i + 1])});
    }
    return stops;
}

std::shared_ptr<const Drawing::GradientTable> readStops(ZEKT::Arguments& arguments) {
    std::vector<GradientStop> stops;
    if (const ZEKT::Argument* const list = arguments.optional("stops")) {
        stops = stopsFromList(*list);
    } else {
        stops = {{0.0, colourOf(arguments.required("from").text())},
                 {1.0, colourOf(arguments.required("to").text())}};
    }
    return std::make_shared<const Drawing::GradientTable>(std::move(stops));
}

void readGradient(const ZEKT::Argument& argument, Paint& paint) {
    ZEKT::Arguments arguments = argument.arguments();
    const ZEKT::Argument& type = arguments.required(0);
    const std::string kind = type.keyword();
    if (kind == "linear") {
        const auto v = arguments.required(1).numbers(4, 4);
        paint.source = Drawing::LinearGradient{{v[0], v[1]}, {v[2], v[3]}, readStops(arguments)};
    } else if (kind == "radial") {
        constexpr std::string_view kNegative = "Negative radial gradient radius: ";
        const auto v = arguments.required(1).numbers(3, 4);
        const double radiusX = notNegative(v[2], kNegative);
        const double radiusY = notNegative(v.back(), kNegative);
        paint.source = Drawing::RadialGradient{{v[0], v[1]}, radiusX, radiusY, readStops(arguments)};
    } else {
        fail("Unrecognized gradient type: " + type.text());
    }
    arguments.finish();
}

constexpr std::array<std::pair<std::string_view, Drawing::Caps>, 3> kCaps = {
    {{"butt", Drawing::Caps::butt}, {"round", Drawing::Caps::round}, {"square", Drawing::Caps::square}}};

constexpr std::array<std::pair<std::string_view, Drawing::Joints>, 3> kJoints = {
    {{"bevel", Drawing::Joints::bevel}, {"curve", Drawing::Joints::curve}, {"miter", Drawing::Joints::miter}}};

void readDash(const ZEKT::Argument& argument, Pen& pen) {
    if (argument.keyword() == "none") {
        return;
    }
    const auto lengths = argument.numbers(1, 2);
    pen.dash = notNegative(lengths.front(), "Negative dash value: ");
    pen.gap = notNegative(lengths.back(), lengths.size() == 2 ? "Negative gap value: " : "Negative dash value: ");
}

// The labels of a paint; `readColour` reads the indexed argument when neither gradient nor pattern is there.
template <class ReadColour>
Paint readLabels(ZEKT::Frame& frame, ZEKT::Arguments& arguments, PatternMaker& patterns,
                 const ReadColour& readColour) {
    Paint paint;
    const ZEKT::Argument* const relative = arguments.optional("relative");
    const ZEKT::Argument* const gradient = arguments.optional("gradient");
    const ZEKT::Argument* const pattern = gradient ? nullptr : arguments.optional("pattern");
    if (!gradient && !pattern) {
        paint = readColour(arguments.required(0));
    }
    if (relative) {
        paint.relative = relative->boolean();
    }
    if (const ZEKT::Argument* const transform = arguments.optional("transform")) {
        paint.transform = readTransformBlock(frame, *transform);
    }
    if (gradient) {
        readGradient(*gradient, paint);
    } else if (pattern) {
        paint.source = patterns.makePattern(frame, *pattern, paint.relative, paint.transform);
    }
    if (const ZEKT::Argument* const opacity = arguments.optional("opacity")) {
        paint.opacity = readOpacity(*opacity);
    }
    return paint;
}

// Whether all of a bracketed argument is one colour by its components, which may have blanks between them.
bool isComponentColour(std::string_view inside) {
    const std::string_view text = ZEKT::Lexical::trimmed(inside);
    const std::string kind = ZEKT::folded(text.substr(0, 4));
    return (kind == "rgb(" || kind == "hsv(") && text.ends_with(')');
}

// All of a paint in one bracketed argument, or a colour.
Paint wholePaint(ZEKT::Frame& frame, const ZEKT::Argument& argument, PatternMaker& patterns) {
    if (!argument.isBracketed() || isComponentColour(ZEKT::Lexical::inside(argument.raw()))) {
        return {colourOf(argument.text())};
    }
    ZEKT::Arguments inner = argument.arguments();
    const Paint paint = readLabels(frame, inner, patterns, [](const ZEKT::Argument& colour) {
        return Paint{colourOf(colour.text())};
    });
    inner.finish();
    return paint;
}

} // namespace

double readOpacity(const ZEKT::Argument& argument) {
    const std::string text = argument.text();
    double value = 0.0;
    if (ZEKT::readNumber(text, value) != ZEKT::Numeric::yes) {
        fail("Invalid opacity: " + text);
    }
    return within(0.0, 1.0, value, "opacity out of range [0..1]: ");
}

Paint readPaint(ZEKT::Frame& frame, ZEKT::Arguments& arguments, PatternMaker& patterns) {
    return readLabels(frame, arguments, patterns, [&](const ZEKT::Argument& argument) {
        return wholePaint(frame, argument, patterns);
    });
}

Paint readPaint(ZEKT::Frame& frame, const ZEKT::Argument& argument, PatternMaker& patterns) {
    return wholePaint(frame, argument, patterns);
}

Pen readPen(ZEKT::Frame& frame, ZEKT::Arguments& arguments, PatternMaker& patterns) {
    Pen pen;
    pen.paint = readPaint(frame, arguments, patterns);
    if (const ZEKT::Argument* const width = arguments.optional("width")) {
        pen.width = notNegative(width->number(), "Negative stroke width: ");
    }
    if (const ZEKT::Argument* const caps = arguments.optional("caps")) {
        pen.caps = keyword<Drawing::Caps>(*caps, kCaps, "Unrecognized stroke caps: ");
    }
    if (const ZEKT::Argument* const joints = arguments.optional("joints")) {
        pen.joints = keyword<Drawing::Joints>(*joints, kJoints, "Unrecognized stroke joints: ");
    }
    if (const ZEKT::Argument* const limit = arguments.optional("miter-limit")) {
        pen.miterLimit = atLeast(1.0, limit->number(), "miter-limit out of range [1..inf): ");
    }
    if (const ZEKT::Argument* const dash = arguments.optional("dash")) {
        readDash(*dash, pen);
    }
    if (const ZEKT::Argument* const offset = arguments.optional("dash-offset")) {
        pen.dashOffset = offset->number();
    }
    return pen;
}

} // namespace OVS
