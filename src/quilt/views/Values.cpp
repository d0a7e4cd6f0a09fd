#include "quilt/View.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kSlider[] = {
    {"image", image, "", "The handle."},
    {"film", film, "", "Frames for all values, in place of the handle."},
    {"color", color, "", "Fills the way from the beginning to the value."},
    {"size", number, "10", "The handle's length along the way, in units, when it has no image.", "", 0, 1000},
    {"handleColor", color, "", "Of the handle when it has no image."},
    {"jump", boolean, "false", "Whether a press moves the handle to the mouse."},
};

constexpr Property kKnob[] = {
    {"film", film, "", "Frames for all values. Without them an arc is drawn."},
    {"color", color, "white", "Of the arc up to the value."},
    {"trackColor", color, "#404040", "Of the rest of the arc."},
    {"pointerColor", color, "", "Of a line from the middle to the value."},
    {"thickness", number, "3", "Of the arc, in units.", "", 0, 1000},
    {"origin", number, "", "The value from which the arc is drawn; without one the range's beginning."},
};

constexpr Property kDragArea[] = {
    {"xVariable", variable, "", "Changed by dragging to the right."},
    {"xRange", range, "{ 0, 1 }", "Its values at the left and at the right."},
    {"xDefault", number, "", "What a double click sets."},
    {"yVariable", variable, "", "Changed by dragging up."},
    {"yRange", range, "{ 0, 1 }", "Its values at the bottom and at the top."},
    {"yDefault", number, "", "What a double click sets."},
    {"fine", number, "0.1", "How much slower the values move with the shift key.", "", 0.0001, 1},
    {"image", image, "", "The handle; without one nothing is to be seen."},
};

} // namespace

ViewType sliderType() {
    return {"slider", "Moves a variable's value along a straight way.", {kValue, kOrientation, kSlider, kMenu, kBox, kFocus},
            make<View>};
}

ViewType knobType() {
    return {"knob", "Turns a variable's value: drag up and down.", {kValue, kKnob, kMenu, kFocus}, make<View>};
}

ViewType dragAreaType() {
    return {"dragArea", "A plane on which two variables are dragged at once.", {kDragArea, kMenu}, make<View>};
}

} // namespace Quilt
