#include "quilt/Scale.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace Quilt {

namespace {

[[noreturn]] void refuse(std::string_view text) {
    throw std::invalid_argument("Invalid scale: " + std::string(text));
}

// The whole of `text`, or nothing.
bool readWhole(std::string_view text, std::int32_t& number) {
    const auto* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stopped == end;
}

std::int64_t floorDivided(std::int64_t dividend, std::int64_t positiveDivisor) {
    const std::int64_t quotient = dividend / positiveDivisor;
    return quotient - (dividend % positiveDivisor < 0 ? 1 : 0);
}

std::int32_t inRange(std::int64_t value) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

} // namespace

Scale::Scale(std::int32_t numerator, std::int32_t denominator) {
    if (numerator <= 0 || denominator <= 0) {
        refuse(std::to_string(numerator) + "/" + std::to_string(denominator));
    }
    const std::int32_t divisor = std::gcd(numerator, denominator);
    numerator_ = numerator / divisor;
    denominator_ = denominator / divisor;
}

Scale Scale::fromText(std::string_view text) {
    const std::size_t slash = text.find('/');
    std::int32_t numerator = 0;
    std::int32_t denominator = 1;
    if (!readWhole(text.substr(0, slash), numerator) ||
        (slash != std::string_view::npos && !readWhole(text.substr(slash + 1), denominator)) ||
        numerator <= 0 || denominator <= 0) {
        refuse(text);
    }
    return {numerator, denominator};
}

std::string Scale::text() const {
    return std::to_string(numerator_) + "/" + std::to_string(denominator_);
}

std::int32_t Scale::toPixels(std::int32_t units) const {
    return inRange(floorDivided(std::int64_t{units} * numerator_, denominator_));
}

std::int32_t Scale::toUnits(std::int32_t pixels) const {
    return inRange(-floorDivided(-(std::int64_t{pixels} * denominator_), numerator_));
}

Rectangle Scale::toPixels(const Rectangle& units) const {
    return {toPixels(units.left), toPixels(units.top), toPixels(units.width), toPixels(units.height)};
}

} // namespace Quilt
