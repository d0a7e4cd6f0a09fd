// What a key message says, by the user's layout.
#pragma once

#include "platform/Keys.h"

#include <windows.h>

#include <string_view>

namespace Platform {

Modifiers modifiersNow();

// The key of WM_KEYDOWN and its like. `text` is what the characters that the system made of it write.
KeyEvent keyOf(WPARAM virtualKey, LPARAM details, std::wstring_view text);

} // namespace Platform
