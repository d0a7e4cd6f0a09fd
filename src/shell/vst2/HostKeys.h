// Keys that the host hands on, as editors know them.
#pragma once

#include "platform/Keys.h"
#include "vst2abi/Vst2.h"

namespace Shell {

Platform::KeyEvent keyOf(Vst2::VstInt32 character, Vst2::VstIntPtr virtualKey, float modifiers);

} // namespace Shell
