// Letters for axes and legends, drawn as strokes: lower case, digits, and the few capitals that units have.
#pragma once

#include "tool/plot/Canvas.h"

#include <string_view>

namespace Tool {

enum class Align { left, centre, right };

// `at` is on the base line, at the edge or middle that `align` names. Characters without a letter show as
// blanks.
void drawText(Canvas& canvas, Point at, Align align, std::string_view text, Colour colour);

float textWidth(std::string_view text);

inline constexpr float kCapHeight = 12; // pixels

} // namespace Tool
