// What the parameters of the action `changeParam` say.
#pragma once

#include "quilt/ActionHandler.h"

#include <optional>
#include <string>
#include <string_view>

namespace Bridge {

enum class WhenEqual { checked, disabled, nothing };

struct ParameterChange {
    int id = 0;
    float value = 0;   // what to set, in 0..1
    bool equal = false; // the control shows what it would set
    WhenEqual whenEqual = WhenEqual::checked;
};

// `current` holds the parameters' values. Exactly one of `toggle`, `to`, `by`, `toVariable` and `byVariable`
// says what to do; a toggle counts as equal while it is on. Throws std::runtime_error with the texts that
// layout authors see.
class CurrentValues {
public:
    virtual ~CurrentValues() = default;
    virtual float value(int id) const = 0;
};
ParameterChange readParameterChange(std::string_view params, const CurrentValues& current,
                                    const Quilt::ActionContext& context);

} // namespace Bridge
