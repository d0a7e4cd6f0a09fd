// Carries out the instructions of one drawing. Pictures within it (masks, patterns, defined images) get an executor
// of their own.
#pragma once

#include "ovs/DrawingState.h"
#include "ovs/PaintArguments.h"
#include "ovs/Picture.h"
#include "zekt/Executor.h"

#include <optional>
#include <string>
#include <string_view>

namespace OVS {

class DrawingExecutor : public ZEKT::Executor, private PatternMaker {
public:
    DrawingExecutor(Picture& picture, const DrawingState& state) : picture_(picture), state_(state) {}

    bool supportsFormat(const ZEKT::FormatStatement& format) override;
    bool execute(ZEKT::Frame& frame, std::string_view name, const ZEKT::ArgumentText& text) override;
    bool progress(ZEKT::Frame& frame, std::uint32_t statementsLeft) override;
    void trace(std::string_view line) override;

private:
    struct Instruction;
    static const Instruction kInstructions[];

    using Frame = ZEKT::Frame;
    using Arguments = ZEKT::Arguments;

    // Shapes and text.
    void rect(Frame& frame, Arguments& arguments);
    void ellipse(Frame& frame, Arguments& arguments);
    void star(Frame& frame, Arguments& arguments);
    void path(Frame& frame, Arguments& arguments);
    void wipe(Frame& frame, Arguments& arguments);
    void text(Frame& frame, Arguments& arguments);
    void image(Frame& frame, Arguments& arguments);

    // The state.
    void pen(Frame& frame, Arguments& arguments);
    void fill(Frame& frame, Arguments& arguments);
    void font(Frame& frame, Arguments& arguments);
    void options(Frame& frame, Arguments& arguments);
    void reset(Frame& frame, Arguments& arguments);

    // The picture, and pictures within.
    void bounds(Frame& frame, Arguments& arguments);
    void context(Frame& frame, Arguments& arguments);
    void mask(Frame& frame, Arguments& arguments);
    void define(Frame& frame, Arguments& arguments);
    void defineImage(Frame& frame, const std::string& name, const ZEKT::Argument& body, double resolution);
    Drawing::Pattern makePattern(Frame& frame, const ZEKT::Argument& body, bool relative,
                                 const Drawing::Transform& transform) override;

    Drawing::DrawOptions drawOptions() const;
    void drawShape(const Drawing::Path& shape);
    void drawText(const TextRun& run, Drawing::Point at);

    Picture& picture_;
    DrawingState state_;
    Drawing::Path scratch_; // kept from shape to shape for its memory
};

} // namespace OVS
