// Breaks text into lines that fit.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

// Breaks at blanks, and where the text has line ends; a word that is wider than a line is broken between
// letters.
std::vector<std::string> breakIntoLines(std::string_view utf8, int width,
                                        const std::function<int(std::string_view)>& widthOf);

} // namespace Platform
