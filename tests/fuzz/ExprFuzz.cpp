// Evaluates any text in all three number types.
#include "expression/Expression.h"

#include <cstdint>
#include <cstdlib>
#include <limits>

namespace {

template <class Number>
bool evaluates(std::string_view text) {
    const Quilt::Symbols<Number> symbols = [](std::string_view name) -> std::optional<Number> {
        if (name == "least") {
            return std::numeric_limits<Number>::lowest();
        }
        return name.size() == 1 ? std::optional(static_cast<Number>(name.front() - 'm')) : std::nullopt;
    };
    const std::string_view whole = text;
    try {
        Number result{};
        Quilt::evaluate(text, result, symbols);
        return true;
    } catch (const Quilt::ExpressionError& error) {
        if (*error.what() == '\0' || text != whole) {
            std::abort();
        }
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const bool integer = evaluates<std::int32_t>(text);
    const bool single = evaluates<float>(text);
    // Floats read all that integers do, and neither type has errors of its own.
    if (single != evaluates<double>(text) || (integer && !single)) {
        std::abort();
    }
    return 0;
}
