// Actions that a document carries out by itself: when it has been loaded, after a while and in intervals,
// when a variable changes, when it is closed.
#pragma once

#include "notation/Document.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace Quilt {

struct Autoexec {
    std::string action;
    std::string params; // raw
    std::vector<std::string> onChanged;
    bool onReload = true;
    bool onClose = false;
    std::optional<std::chrono::milliseconds> delay;
    std::optional<std::chrono::milliseconds> repeat;

    // The first that applies decides when the action runs.
    enum class Occasion { close, time, change, load };
    Occasion occasion() const {
        return onClose              ? Occasion::close
               : delay || repeat    ? Occasion::time
               : !onChanged.empty() ? Occasion::change
                                    : Occasion::load;
    }
};

// Throws LayoutError, or what Stackbrace throws.
Autoexec readAutoexec(const Stackbrace::Element& element);

// To whole milliseconds, half of one counting as one.
std::chrono::milliseconds toMilliseconds(double seconds);

} // namespace Quilt
