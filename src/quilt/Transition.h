// How a document's surface comes and goes. A transition gives the far end of a movement whose near end is the
// surface at its place, at full size and opacity: an incoming one begins there, an outgoing one ends there.
#pragma once

#include "notation/Document.h"

#include <chrono>
#include <string>

namespace Quilt {

struct Transition {
    enum class Direction { incoming, outgoing };

    // What the surface looks like at a moment of the movement.
    struct Look {
        double scale = 1; // about the middle
        double opacity = 1;
    };

    std::string raw; // as the document has it; empty: there is none, changes show at once
    Direction direction = Direction::incoming;
    std::chrono::milliseconds time{0};
    double scale = 1;      // at the far end
    double scaleCurve = 0; // -1 to 1: above 0 the movement is fast away from its near end, below 0 slow
    double opacity = 1;    // at the far end
    bool restart = false;  // a change of direction on the way begins anew instead of turning round

    // `at` after the start, which may be past the end.
    Look look(std::chrono::milliseconds at) const;
    bool over(std::chrono::milliseconds at) const { return at >= time; }
};

struct Transitions {
    Transition open;
    Transition close;
    Transition swapIn;
    Transition swapOut;
    std::string defaultRaw;
};

// Of the structure under `transitions`: what is absent falls back, open and close to default, swapIn and
// swapOut to open and close. Throws LayoutError, or what Stackbrace throws.
Transitions readTransitions(const Stackbrace::Element& element);

} // namespace Quilt
