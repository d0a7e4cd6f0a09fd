#include "ovs/DrawingExecutor.h"

#include "ovs/Transforms.h"
#include "ovs/Values.h"

#include <algorithm>
#include <array>
#include <utility>

namespace OVS {

struct DrawingExecutor::Instruction {
    std::string_view name;
    void (DrawingExecutor::*run)(Frame& frame, Arguments& arguments);
    bool needsArguments = true;
};

// Besides these, the five of Transforms.h. By name.
constexpr DrawingExecutor::Instruction DrawingExecutor::kInstructions[] = {
    {"bounds", &DrawingExecutor::bounds},
    {"context", &DrawingExecutor::context},
    {"define", &DrawingExecutor::define},
    {"ellipse", &DrawingExecutor::ellipse},
    {"fill", &DrawingExecutor::fill},
    {"font", &DrawingExecutor::font},
    {"image", &DrawingExecutor::image},
    {"mask", &DrawingExecutor::mask, false},
    {"options", &DrawingExecutor::options},
    {"path", &DrawingExecutor::path},
    {"pen", &DrawingExecutor::pen},
    {"rect", &DrawingExecutor::rect},
    {"reset", &DrawingExecutor::reset, false},
    {"star", &DrawingExecutor::star},
    {"text", &DrawingExecutor::text},
    {"wipe", &DrawingExecutor::wipe},
};

bool DrawingExecutor::supportsFormat(const ZEKT::FormatStatement& format) {
    return (format.name == "ovs-1" || format.name == "ovs-2") && format.requirements.empty();
}

bool DrawingExecutor::execute(Frame& frame, std::string_view name, const ZEKT::ArgumentText& text) {
    const auto* const row =
        std::lower_bound(std::begin(kInstructions), std::end(kInstructions), name,
                         [](const Instruction& instruction, std::string_view n) { return instruction.name < n; });
    if (row != std::end(kInstructions) && row->name == name) {
        Arguments arguments(frame, text);
        if (row->needsArguments) {
            arguments.requireAny();
        }
        try {
            (this->*row->run)(frame, arguments);
        } catch (const Drawing::EffortError& error) {
            fail(error.what());
        }
        return true;
    }
    if (const auto transform = readTransform(frame, name, text)) {
        state_.transform = state_.transform * *transform;
        return true;
    }
    return false;
}

bool DrawingExecutor::progress(Frame&, std::uint32_t) {
    const auto& goOn = picture_.run().environment().progress;
    return !goOn || goOn();
}

void DrawingExecutor::trace(std::string_view line) {
    if (const auto& trace = picture_.run().environment().trace) {
        trace(line);
    }
}

Drawing::DrawOptions DrawingExecutor::drawOptions() const {
    return {picture_.placement() * state_.transform, state_.gamma, state_.curveQuality, state_.mask.get()};
}

void DrawingExecutor::pen(Frame& frame, Arguments& arguments) {
    const Drawing::Pen pen = readPen(frame, arguments, *this);
    arguments.finish();
    state_.pen = pen;
}

void DrawingExecutor::fill(Frame& frame, Arguments& arguments) {
    static constexpr std::array<std::pair<std::string_view, Drawing::FillRule>, 2> kRules = {
        {{"non-zero", Drawing::FillRule::nonZero}, {"even-odd", Drawing::FillRule::evenOdd}}};
    Drawing::Paint paint = readPaint(frame, arguments, *this);
    const ZEKT::Argument* const rule = arguments.optional("rule");
    state_.rule = rule ? keyword<Drawing::FillRule>(*rule, kRules, "Unrecognized fill rule: ")
                       : Drawing::FillRule::nonZero;
    arguments.finish();
    state_.fill = std::move(paint);
}

void DrawingExecutor::font(Frame& frame, Arguments& arguments) {
    TextSettings text = state_.text;
    if (const ZEKT::Argument* const argument = arguments.optional(0)) {
        const std::string name = argument->text();
        if (name.empty()) {
            fail("Invalid font name");
        }
        text.font = picture_.run().font(name);
    }
    if (const ZEKT::Argument* const colour = arguments.optional("color")) {
        text.colour = readPaint(frame, *colour, *this);
    }
    if (const ZEKT::Argument* const outline = arguments.optional("outline")) {
        Arguments pen = outline->arguments();
        text.outline = readPen(frame, pen, *this);
        pen.finish();
    }
    if (const ZEKT::Argument* const transform = arguments.optional("transform")) {
        text.transform = readTransformBlock(frame, *transform);
    }
    if (const ZEKT::Argument* const size = arguments.optional("size")) {
        text.size = above(0.0, size->number(), "font size out of range (0..inf): ");
    }
    if (const ZEKT::Argument* const tracking = arguments.optional("tracking")) {
        text.tracking = tracking->number();
    }
    arguments.finish();
    state_.text = std::move(text);
}

void DrawingExecutor::options(Frame&, Arguments& arguments) {
    struct Option {
        std::string_view label;
        double DrawingState::*value;
    };
    static constexpr Option kOptions[] = {{"aa-gamma", &DrawingState::gamma},
                                          {"curve-quality", &DrawingState::curveQuality},
                                          {"pattern-resolution", &DrawingState::patternResolution}};
    // The ends of the open range, as near as they are accepted.
    constexpr double kLeast = 0.0001;
    constexpr double kMost = 99.9999;
    for (const auto& [label, value] : kOptions) {
        if (const ZEKT::Argument* const argument = arguments.optional(label)) {
            state_.*value =
                within(kLeast, kMost, argument->number(), std::string(label) + " out of range (0..100): ");
        }
    }
    arguments.finish();
}

void DrawingExecutor::reset(Frame&, Arguments& arguments) {
    arguments.finish();
    state_.transform = state_.firstTransform;
}

} // namespace OVS
