#include "ovs/Transforms.h"

#include <algorithm>
#include <array>

namespace OVS {

using Drawing::Transform;

namespace {

constexpr double kRadiansADegree = 0.017453292519943295; // pi / 180

using Read = Transform (*)(const ZEKT::Argument& argument);

Transform matrix(const ZEKT::Argument& argument) {
    const auto v = argument.numbers(6, 6);
    return {v[0], v[1], v[2], v[3], v[4], v[5]};
}

Transform scale(const ZEKT::Argument& argument) {
    const auto v = argument.numbers(1, 2);
    return Transform::scale(v.front(), v.back());
}

Transform rotate(const ZEKT::Argument& argument) {
    return Transform::rotation(argument.number() * kRadiansADegree);
}

Transform offset(const ZEKT::Argument& argument) {
    const auto v = argument.numbers(2, 2);
    return Transform::offset(v[0], v[1]);
}

Transform shear(const ZEKT::Argument& argument) {
    const auto v = argument.numbers(2, 2);
    return Transform::shear(v[0], v[1]);
}

struct Row {
    std::string_view name;
    Read read;
};

constexpr std::array<Row, 5> kTable = {
    {{"matrix", matrix}, {"scale", scale}, {"rotate", rotate}, {"offset", offset}, {"shear", shear}}};

class BlockExecutor : public ZEKT::Executor {
public:
    explicit BlockExecutor(ZEKT::Executor& host) : host_(host) {}

    const Transform& result() const { return result_; }

    bool supportsFormat(const ZEKT::FormatStatement& format) override { return host_.supportsFormat(format); }
    bool execute(ZEKT::Frame& frame, std::string_view name, const ZEKT::ArgumentText& text) override {
        const auto transform = readTransform(frame, name, text);
        if (transform) {
            result_ = result_ * *transform;
        }
        return transform.has_value();
    }
    bool progress(ZEKT::Frame& frame, std::uint32_t statementsLeft) override {
        return host_.progress(frame, statementsLeft);
    }
    std::optional<std::string> loadInclude(const std::string& fileName) override {
        return host_.loadInclude(fileName);
    }
    void trace(std::string_view line) override { host_.trace(line); }

private:
    ZEKT::Executor& host_;
    Transform result_;
};

} // namespace

std::optional<Transform> readTransform(ZEKT::Frame& frame, std::string_view name,
                                       const ZEKT::ArgumentText& text) {
    const auto row = std::find_if(kTable.begin(), kTable.end(), [&](const Row& r) { return r.name == name; });
    if (row == kTable.end()) {
        return std::nullopt;
    }
    ZEKT::Arguments arguments(frame, text);
    arguments.requireAny();
    const Transform transform = row->read(arguments.required(0));
    const ZEKT::Argument* const anchor = arguments.optional("anchor");
    const auto about = anchor ? anchor->numbers(2, 2) : std::vector{0.0, 0.0};
    arguments.finish();
    return anchor ? Transform::offset(about[0], about[1]) * transform * Transform::offset(-about[0], -about[1])
                  : transform;
}

Transform readTransformBlock(ZEKT::Frame& frame, const ZEKT::Argument& block) {
    BlockExecutor executor(frame.executor());
    ZEKT::Frame scope(frame, executor);
    scope.run(block);
    return executor.result();
}

} // namespace OVS
