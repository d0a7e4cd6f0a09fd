// The instructions that draw: shapes, paths, text, images.
#include "ovs/DrawingExecutor.h"

#include "drawing/PathData.h"
#include "ovs/Transforms.h"
#include "ovs/Values.h"
#include "zekt/NumberText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace OVS {

using Drawing::Point;
using Drawing::Rect;
using Drawing::Transform;

void DrawingExecutor::drawShape(const Drawing::Path& shape) {
    Drawing::Canvas& canvas = picture_.canvas();
    picture_.run().effort().spend(shape.points().size() * Drawing::Effort::kPoint);
    const Drawing::DrawOptions options = drawOptions();
    canvas.fill(shape, state_.fill, state_.rule, options);
    canvas.stroke(shape, state_.pen, options);
}

void DrawingExecutor::rect(Frame&, Arguments& arguments) {
    const auto v = arguments.required(0).numbers(4, 4);
    const ZEKT::Argument* const rounded = arguments.optional("rounded");
    const auto radii = rounded ? rounded->numbers(1, 2) : std::vector{0.0};
    arguments.finish();
    notNegative(v[2], "Negative rectangle width: ");
    notNegative(v[3], "Negative rectangle height: ");
    for (const double radius : radii) {
        notNegative(radius, "Negative rounded corner radius: ");
    }
    scratch_.clear();
    scratch_.addRoundedRect({v[0], v[1], v[2], v[3]}, radii.front(), radii.back());
    drawShape(scratch_);
}

void DrawingExecutor::ellipse(Frame&, Arguments& arguments) {
    const auto v = arguments.required(0).numbers(3, 4);
    arguments.finish();
    const double radiusX = notNegative(v[2], "Negative ellipse radius: ");
    const double radiusY = notNegative(v.back(), "Negative ellipse radius: ");
    scratch_.clear();
    scratch_.addEllipse({v[0], v[1]}, radiusX, radiusY);
    drawShape(scratch_);
}

void DrawingExecutor::star(Frame&, Arguments& arguments) {
    constexpr std::int64_t kMostPoints = 10000;
    const auto elements = arguments.required(0).list({.atLeast = 4, .atMost = 5});
    const ZEKT::Argument* const rotation = arguments.optional("rotation");
    const double degrees = rotation ? rotation->number() : 0.0;
    arguments.finish();
    const Point centre = {ZEKT::toNumber(elements[0]), ZEKT::toNumber(elements[1])};
    const std::int64_t points = ZEKT::toInteger(elements[2]);
    if (points < 1 || points > kMostPoints) {
        fail("star points out of range [1..10000]: " + std::to_string(points));
    }
    const double radius1 = notNegative(ZEKT::toNumber(elements[3]), "Negative star radius: ");
    const double radius2 = notNegative(ZEKT::toNumber(elements.back()), "Negative star radius: ");
    scratch_.clear();
    scratch_.addStar(centre, static_cast<int>(points), radius1, radius2, degrees);
    drawShape(scratch_);
}

namespace {

Drawing::Path pathOf(std::string_view data) {
    try {
        return Drawing::parsePathData(data);
    } catch (const Drawing::PathDataError& error) {
        fail(error.what());
    }
}

} // namespace

void DrawingExecutor::path(Frame&, Arguments& arguments) {
    const ZEKT::Argument* const data = arguments.optional("svg");
    if (!data) {
        throw ZEKT::SyntaxException("Invalid PATH arguments (missing svg argument)");
    }
    arguments.finish();
    drawShape(pathOf(data->text()));
}

void DrawingExecutor::wipe(Frame& frame, Arguments& arguments) {
    const Drawing::Paint paint = readPaint(frame, arguments, *this);
    arguments.finish();
    if (paint.relative) {
        fail("Relative paint is not allowed with wipe");
    }
    picture_.canvas().wipe(paint, drawOptions());
}

namespace {

// Where a text is drawn from the current position, and where the next one goes on, in widths.
struct TextAnchor {
    double drawn;
    double next; // from where it was drawn
};

constexpr std::array<std::pair<std::string_view, TextAnchor>, 3> kTextAnchors = {
    {{"left", {0.0, 1.0}}, {"center", {-0.5, 1.0}}, {"right", {-1.0, 0.0}}}};

} // namespace

void DrawingExecutor::text(Frame& frame, Arguments& arguments) {
    const std::u16string characters = arguments.required(0).wideText();
    const ZEKT::Argument* const at = arguments.optional("at");
    const ZEKT::Argument* const anchorWord = arguments.optional("anchor");
    const ZEKT::Argument* const caret = arguments.optional("caret");
    TextSettings& settings = state_.text;
    Point position = settings.position;
    if (at) {
        const auto v = at->numbers(2, 2);
        position = {v[0], v[1]};
    }
    const TextAnchor anchor =
        anchorWord ? keyword<TextAnchor>(*anchorWord, kTextAnchors, "Unrecognized anchor: ") : TextAnchor{0.0, 1.0};
    const std::string caretName = caret ? caret->text() : std::string();
    arguments.finish();
    if (!settings.font) {
        fail("Need to set font before writing");
    }
    const TextRun run = settings.font->layOut(characters, settings.size, settings.tracking);
    if (!run.complete) {
        trace("Missing glyph");
    }
    // Along the transformed baseline.
    const double width = settings.transform.a * run.width;
    position.x += anchor.drawn * width;
    drawText(run, position);
    position.x += anchor.next * width;
    settings.position = position;
    if (caret) {
        frame.set(caretName, position.x);
    }
}

// One path of the whole text, so that paints lie over it as over any shape.
void DrawingExecutor::drawText(const TextRun& run, Point at) {
    const TextSettings& settings = state_.text;
    Drawing::Canvas& canvas = picture_.canvas();
    const Transform place = Transform::offset(at.x, at.y) * settings.transform;
    scratch_.clear();
    for (const PlacedGlyph& glyph : run.glyphs) {
        picture_.run().effort().spend(glyph.outline->points().size() * Drawing::Effort::kPoint);
        if (scratch_.points().size() > Drawing::Effort::kMostPoints) {
            throw Drawing::EffortError();
        }
        scratch_.append(*glyph.outline,
                        place * Transform{run.scale, 0.0, 0.0, run.scale, glyph.x, 0.0});
    }
    const Drawing::DrawOptions options = drawOptions();
    if (settings.outline) {
        canvas.stroke(scratch_, *settings.outline, options);
    }
    canvas.fill(scratch_, settings.colour, Drawing::FillRule::nonZero, options);
}

namespace {

// Which part of an image lies on the origin: 0 its left or top edge, 1 its right or bottom one.
struct Alignment {
    std::optional<double> horizontal;
    std::optional<double> vertical;
};

struct AlignmentWord {
    std::string_view word;
    bool isHorizontal;
    double part;
};

constexpr AlignmentWord kAlignmentWords[] = {{"left", true, 0.0},   {"center", true, 0.5},  {"right", true, 1.0},
                                             {"top", false, 0.0},   {"middle", false, 0.5}, {"bottom", false, 1.0}};

Alignment readAlignment(const ZEKT::Argument& argument) {
    Alignment result;
    for (const std::string& text : argument.list({.atLeast = 1, .atMost = 2})) {
        const std::string word = ZEKT::folded(text);
        const auto* const known = std::find_if(std::begin(kAlignmentWords), std::end(kAlignmentWords),
                                               [&](const AlignmentWord& row) { return row.word == word; });
        if (known == std::end(kAlignmentWords)) {
            fail("Unrecognized alignment: " + text);
        }
        auto& slot = known->isHorizontal ? result.horizontal : result.vertical;
        if (slot) {
            fail((known->isHorizontal ? "Duplicate horizontal alignment: " : "Duplicate vertical alignment: ") +
                 text);
        }
        slot = known->part;
    }
    return result;
}

// The image's units to those around: the part that is shown becomes as large as asked, and what the alignment names
// comes to lie on the origin. One side given alone keeps the shape.
Transform imagePlace(const Rect& shown, const Alignment& align, std::optional<double> width,
                     std::optional<double> height) {
    const auto ratio = [](const std::optional<double>& wanted, double is) {
        return wanted && is > 0.0 ? std::optional(*wanted / is) : std::nullopt;
    };
    const auto ratioX = ratio(width, shown.width);
    const auto ratioY = ratio(height, shown.height);
    const double scaleX = ratioX.value_or(ratioY.value_or(1.0));
    const double scaleY = ratioY.value_or(ratioX.value_or(1.0));
    const double x = align.horizontal ? shown.x + *align.horizontal * shown.width : 0.0;
    const double y = align.vertical ? shown.y + *align.vertical * shown.height : 0.0;
    return Transform::scale(scaleX, scaleY) * Transform::offset(-x, -y);
}

} // namespace

void DrawingExecutor::image(Frame& frame, Arguments& arguments) {
    const Image image = picture_.run().image(arguments.required(0).text());
    Rect shown = image.bounds;
    std::optional<Rect> clip;
    if (const ZEKT::Argument* const argument = arguments.optional("clip")) {
        const auto v = argument->numbers(4, 4);
        clip = Rect{v[0], v[1], notNegative(v[2], "Negative clip width: "),
                    notNegative(v[3], "Negative clip height: ")};
        shown = *clip;
    }
    const ZEKT::Argument* const align = arguments.optional("align");
    const Alignment alignment = align ? readAlignment(*align) : Alignment();
    const auto side = [&](std::string_view label) {
        const ZEKT::Argument* const argument = arguments.optional(label);
        return argument ? std::optional(argument->number()) : std::nullopt;
    };
    const auto width = side("width");
    const auto height = side("height");
    const ZEKT::Argument* const opacity = arguments.optional("opacity");
    const double strength = opacity ? readOpacity(*opacity) : 1.0;
    const ZEKT::Argument* const transform = arguments.optional("transform");
    const Transform own = transform ? readTransformBlock(frame, *transform) : Transform();
    arguments.finish();
    Drawing::DrawOptions options = drawOptions();
    options.transform = options.transform * own * imagePlace(shown, alignment, width, height);
    picture_.canvas().drawImage(std::as_const(*image.pixels).view(), image.bounds, strength,
                                clip ? &*clip : nullptr, options);
}

} // namespace OVS
