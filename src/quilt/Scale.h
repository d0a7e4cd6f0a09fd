// How many pixels a document unit has: a fraction, so that sizes come out the same wherever they are
// computed.
#pragma once

#include "quilt/Geometry.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Quilt {

class Scale {
public:
    Scale() = default; // 1/1

    // Throws std::invalid_argument "Invalid scale: N/D" unless both are positive.
    Scale(std::int32_t numerator, std::int32_t denominator);

    // "5/4", or a whole number. Throws std::invalid_argument "Invalid scale: TEXT".
    static Scale fromText(std::string_view text);
    std::string text() const;

    // In lowest terms.
    std::int32_t numerator() const { return numerator_; }
    std::int32_t denominator() const { return denominator_; }
    double factor() const { return static_cast<double>(numerator_) / denominator_; }

    // Rounded down, and rounded up: what has been scaled to whole pixels comes back to its own units. Results
    // are brought to the nearer end of their range.
    std::int32_t toPixels(std::int32_t units) const;
    std::int32_t toUnits(std::int32_t pixels) const;
    Rectangle toPixels(const Rectangle& units) const;

    bool operator==(const Scale&) const = default;

private:
    std::int32_t numerator_ = 1;
    std::int32_t denominator_ = 1;
};

} // namespace Quilt
