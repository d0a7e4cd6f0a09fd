// A vector image: a script that draws. It keeps what it has parsed, so an image that is drawn again and again (the live
// graph) is read once. For one thread at a time.
//
//   Document document(text);
//   Drawing::Surface pixels = document.renderImage({.scale = 2.0, .fonts = &fonts});
//
// What goes wrong is thrown as a ZEKT exception, and then nothing has been drawn.
#pragma once

#include "drawing/Surface.h"
#include "ovs/Font.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace OVS {

struct Environment {
    double scale = 1.0; // pixels a user unit
    std::vector<std::pair<std::string, std::string>> variables = {}; // set before the document runs
    std::function<std::optional<std::string>(std::string_view name)> outerVariable = {}; // for names that it has not
    FontSource* fonts = nullptr;                                     // none: there are no fonts
    std::function<void(std::string_view line)> trace = {};
    std::function<bool()> progress = {}; // asked once a statement; false: "Aborted"
};

class Document {
public:
    explicit Document(std::string text);
    ~Document();
    Document(Document&&) noexcept;
    Document& operator=(Document&&) noexcept;

    // As an image resource: the document declares bounds, from 0,0, and they times the scale are the picture.
    Drawing::Surface renderImage(const Environment& environment);

    // As a view of the host's size: user unit 0,0 is the view's left top corner. Bounds may be declared and change
    // nothing. The drawing goes over what `target` shows.
    void draw(const Drawing::SurfaceView& target, const Environment& environment);

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace OVS
