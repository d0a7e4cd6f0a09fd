// The instructions that declare the picture and make pictures within it.
#include "ovs/DrawingExecutor.h"

#include "ovs/Values.h"
#include "zekt/NumberText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace OVS {

namespace {

constexpr double kLeastResolution = 0.0001;

int boundsNumber(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min() / 2,
                                                     std::numeric_limits<int>::max() / 2));
}

int boundsSide(std::int64_t value, const char* message) {
    constexpr std::int64_t kMost = 32767;
    if (value < 1 || value > kMost) {
        fail(message + std::to_string(value));
    }
    return static_cast<int>(value);
}

} // namespace

void DrawingExecutor::bounds(Frame&, Arguments& arguments) {
    std::array<std::int64_t, 4> v{};
    const auto elements = arguments.required(0).list({.atLeast = v.size(), .atMost = v.size()});
    std::transform(elements.begin(), elements.end(), v.begin(),
                   [](const std::string& element) { return ZEKT::toInteger(element); });
    arguments.finish();
    const int width = boundsSide(v[2], "bounds width out of range [1..32767]: ");
    const int height = boundsSide(v[3], "bounds height out of range [1..32767]: ");
    picture_.declareBounds({boundsNumber(v[0]), boundsNumber(v[1]), width, height});
}

void DrawingExecutor::context(Frame& frame, Arguments& arguments) {
    const ZEKT::Argument& body = arguments.required(0);
    arguments.finish();
    struct Restore {
        DrawingState& state;
        DrawingState before;
        ~Restore() { state = std::move(before); }
    } restore{state_, state_};
    state_ = restore.before.nested();
    Frame scope(frame);
    scope.run(body);
}

void DrawingExecutor::mask(Frame& frame, Arguments& arguments) {
    const ZEKT::Argument* const body = arguments.optional(0);
    const ZEKT::Argument* const invert = arguments.optional("inverted");
    const bool inverted = invert && invert->boolean();
    arguments.finish();
    if (!body && !inverted) {
        state_.mask = state_.firstMask;
        return;
    }
    const Drawing::SurfaceView& target = picture_.canvas().target();
    Picture drawing(picture_.run(), Picture::Kind::mask, target.width, target.height, picture_.placement());
    if (body) {
        DrawingState state = state_.nested();
        state.mask = state.firstMask = nullptr;
        DrawingExecutor executor(drawing, state);
        Frame scope(frame, executor);
        scope.run(*body);
    } else {
        drawing.canvas().wipe({Drawing::kBlack}, {}); // no mask at all, inverted: nothing passes
    }
    state_.mask = picture_.run().makeMask(drawing.pixels()->view(), inverted, state_.mask.get());
}

void DrawingExecutor::define(Frame& frame, Arguments& arguments) {
    const ZEKT::Argument& type = arguments.required(0);
    const std::string kind = type.keyword();
    const std::string name = arguments.required(1).text();
    const ZEKT::Argument& body = arguments.required(2);
    Run& run = picture_.run();
    if (kind == "image") {
        const ZEKT::Argument* const resolution = arguments.optional("resolution");
        const double scale = resolution ? atLeast(kLeastResolution, resolution->number(),
                                                  "resolution out of range [0.0001..inf): ")
                                        : 1.0;
        arguments.finish();
        if (run.hasImage(name)) {
            fail("Duplicate image definition: " + name);
        }
        defineImage(frame, name, body, scale);
    } else if (kind == "font") {
        arguments.finish();
        if (run.hasFont(name)) {
            fail("Duplicate font definition: " + name);
        }
        FontSource* const fonts = run.environment().fonts;
        if (!fonts) {
            fail("Missing font: " + name);
        }
        run.defineFont(name, fonts->read(frame, body));
    } else {
        fail("Invalid define instruction type: " + type.text());
    }
}

namespace {

Drawing::Rect areaOf(const Drawing::IntRect& bounds) {
    return {static_cast<double>(bounds.x), static_cast<double>(bounds.y), static_cast<double>(bounds.width),
            static_cast<double>(bounds.height)};
}

// Runs a body as a drawing of its own.
void drawBody(ZEKT::Frame& frame, const ZEKT::Argument& body, Picture& picture) {
    DrawingExecutor executor(picture, {});
    ZEKT::Frame scope(frame, executor);
    scope.run(body);
    picture.requireBounds();
}

} // namespace

void DrawingExecutor::defineImage(Frame& frame, const std::string& name, const ZEKT::Argument& body,
                                  double resolution) {
    const double scale = resolution * picture_.run().environment().scale;
    Picture drawing(picture_.run(), Picture::Kind::image, scale, scale);
    drawBody(frame, body, drawing);
    picture_.run().defineImage(name, {drawing.pixels(), areaOf(drawing.bounds())});
}

// A relative pattern does not know its shapes yet: they are at most as large as the canvas.
Drawing::Pattern DrawingExecutor::makePattern(Frame& frame, const ZEKT::Argument& body, bool relative,
                                              const Drawing::Transform& transform) {
    Drawing::Transform place = picture_.placement() * state_.transform;
    if (relative) {
        const Drawing::SurfaceView& target = picture_.canvas().target();
        place = Drawing::Transform::scale(target.width, target.height);
    }
    place = place * transform;
    const double scaleX = relative ? std::hypot(place.a, place.b) : place.maxScale();
    const double scaleY = relative ? std::hypot(place.c, place.d) : place.maxScale();
    Picture drawing(picture_.run(), Picture::Kind::pattern, scaleX * state_.patternResolution,
                    scaleY * state_.patternResolution);
    drawBody(frame, body, drawing);
    return {drawing.pixels(), areaOf(drawing.bounds())};
}

} // namespace OVS
