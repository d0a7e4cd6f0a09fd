#include "ovs/Document.h"

#include "drawing/Compose.h"
#include "ovs/DrawingExecutor.h"
#include "zekt/Interpreter.h"

#include <utility>

namespace OVS {

namespace {

// What the interpreter knows as its host for as long as it lives; each run has an executor of its own.
class Host : public ZEKT::Executor {
public:
    bool supportsFormat(const ZEKT::FormatStatement& format) override { return current->supportsFormat(format); }
    bool execute(ZEKT::Frame& frame, std::string_view name, const ZEKT::ArgumentText& text) override {
        return current->execute(frame, name, text);
    }
    bool progress(ZEKT::Frame& frame, std::uint32_t statementsLeft) override {
        return current->progress(frame, statementsLeft);
    }
    void trace(std::string_view line) override { current->trace(line); }
    std::optional<std::string> outerVariable(std::string_view name) override {
        return *outer ? (*outer)(name) : std::nullopt;
    }

    DrawingExecutor* current = nullptr;
    const std::function<std::optional<std::string>(std::string_view)>* outer = nullptr;
};

} // namespace

struct Document::State {
    explicit State(std::string document) : text(std::move(document)) {}

    void run(Picture& picture) {
        DrawingExecutor executor(picture, {});
        host.current = &executor;
        host.outer = &picture.run().environment().outerVariable;
        interpreter.forgetVariables();
        for (const auto& [name, value] : picture.run().environment().variables) {
            interpreter.globals().set(name, value);
        }
        interpreter.run(text);
    }

    std::string text;
    Host host;
    ZEKT::Interpreter interpreter{host};
};

Document::Document(std::string text) : state_(std::make_unique<State>(std::move(text))) {}
Document::~Document() = default;
Document::Document(Document&&) noexcept = default;
Document& Document::operator=(Document&&) noexcept = default;

Drawing::Surface Document::renderImage(const Environment& environment) {
    Run run(environment);
    Picture picture(run, Picture::Kind::resource, environment.scale, environment.scale);
    state_->run(picture);
    picture.requireBounds();
    return std::move(*picture.pixels());
}

// On a sheet of its own first, so that a document that fails half-way leaves no trace.
void Document::draw(const Drawing::SurfaceView& target, const Environment& environment) {
    if (target.isEmpty()) {
        return;
    }
    Run run(environment);
    Picture picture(run, Picture::Kind::view, target.width, target.height,
                    Drawing::Transform::scale(environment.scale, environment.scale));
    state_->run(picture);
    Drawing::compose(target, std::as_const(*picture.pixels()).view());
}

} // namespace OVS
