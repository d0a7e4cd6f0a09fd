// The view type `midiAssign`: a small indicator beside a control that shows which MIDI controller moves it, learns
// one by a click, and lets go of it by a click with the right button.
#pragma once

#include "quilt/ViewFactory.h"

namespace Bridge {

class MidiLearn;

// `learn` outlives the views.
Quilt::ViewType midiAssignType(MidiLearn& learn);

} // namespace Bridge
