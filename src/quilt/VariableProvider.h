// Where the variables come from that a layout shows and changes but does not own. The editor bridge
// implements it; the framework asks it first for every name and keeps the names it does not know in a table
// of its own.
//
// Values are texts. All calls come from the editor's thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Quilt {

class VariableProvider {
public:
    virtual ~VariableProvider() = default;

    // nullopt: no variable of the provider's.
    virtual std::optional<std::string> get(std::string_view name) const = 0;

    // false: no variable of the provider's. Throws when the value is refused, a read-only variable's among
    // them; then nothing has changed.
    virtual bool set(std::string_view name, std::string_view value) = 0;

    // Grows whenever the value of some variable may have changed, by a call of the framework's or from
    // outside. The framework asks at each tick and reads again what it watches when the number is a new one;
    // it compares values, so a number that grows too often costs time but redraws nothing.
    virtual std::uint64_t changeCount() const = 0;

    // One gesture of the user's, a drag for example, writes `name` many times between these two: one undo
    // step, one begin and end of an edit at the host. Calls pair up; `name` may be any variable.
    virtual void beginGesture(std::string_view name) { static_cast<void>(name); }
    virtual void endGesture(std::string_view name) { static_cast<void>(name); }

    // The translation of a text that the layout itself does not translate; nullopt leaves it as it is.
    virtual std::optional<std::string> translate(std::string_view text) const {
        static_cast<void>(text);
        return std::nullopt;
    }
};

} // namespace Quilt
