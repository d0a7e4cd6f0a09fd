#include "platform/win32/WinKeys.h"

#include "platform/win32/SystemText.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Platform {

namespace {

constexpr std::pair<int, VirtualKey> kKeys[] = {
    {VK_BACK, VirtualKey::back},
    {VK_TAB, VirtualKey::tab},
    {VK_CLEAR, VirtualKey::clear},
    {VK_RETURN, VirtualKey::enter},
    {VK_PAUSE, VirtualKey::pause},
    {VK_ESCAPE, VirtualKey::escape},
    {VK_SPACE, VirtualKey::space},
    {VK_END, VirtualKey::end},
    {VK_HOME, VirtualKey::home},
    {VK_LEFT, VirtualKey::left},
    {VK_UP, VirtualKey::up},
    {VK_RIGHT, VirtualKey::right},
    {VK_DOWN, VirtualKey::down},
    {VK_PRIOR, VirtualKey::pageUp},
    {VK_NEXT, VirtualKey::pageDown},
    {VK_SELECT, VirtualKey::select},
    {VK_PRINT, VirtualKey::print},
    {VK_SNAPSHOT, VirtualKey::snapshot},
    {VK_INSERT, VirtualKey::insert},
    {VK_DELETE, VirtualKey::del},
    {VK_HELP, VirtualKey::help},
    {VK_MULTIPLY, VirtualKey::numpadMultiply},
    {VK_ADD, VirtualKey::numpadAdd},
    {VK_SEPARATOR, VirtualKey::numpadSeparator},
    {VK_SUBTRACT, VirtualKey::numpadSubtract},
    {VK_DECIMAL, VirtualKey::numpadDecimal},
    {VK_DIVIDE, VirtualKey::numpadDivide},
    {VK_NUMLOCK, VirtualKey::numLock},
    {VK_SCROLL, VirtualKey::scrollLock},
    {VK_SHIFT, VirtualKey::shift},
    {VK_CONTROL, VirtualKey::control},
    {VK_MENU, VirtualKey::alt},
};

VirtualKey offset(VirtualKey first, int by) {
    return static_cast<VirtualKey>(static_cast<int>(first) + by);
}

VirtualKey virtualKeyOf(int code, bool extended) {
    if (code == VK_RETURN && extended) {
        return VirtualKey::numpadEnter;
    }
    if (code >= VK_NUMPAD0 && code <= VK_NUMPAD9) {
        return offset(VirtualKey::numpad0, code - VK_NUMPAD0);
    }
    if (code >= VK_F1 && code <= VK_F12) {
        return offset(VirtualKey::f1, code - VK_F1);
    }
    const auto* const found =
        std::find_if(std::begin(kKeys), std::end(kKeys), [&](const auto& key) { return key.first == code; });
    return found != std::end(kKeys) ? found->second : VirtualKey::none;
}

char32_t plainCharacter(int code) {
    constexpr UINT kCharacter = 0xFFFF; // the bits above say that it is a dead key
    const UINT character = MapVirtualKeyW(static_cast<UINT>(code), MAPVK_VK_TO_CHAR) & kCharacter;
    const auto lower = reinterpret_cast<UINT_PTR>(CharLowerW(
        reinterpret_cast<LPWSTR>(static_cast<UINT_PTR>(character)))); // one letter in place of a text
    return lower >= 0x20 ? static_cast<char32_t>(lower) : 0;
}

bool down(int key) {
    return GetKeyState(key) < 0;
}

} // namespace

Modifiers modifiersNow() {
    return {.shift = down(VK_SHIFT),
            .control = down(VK_CONTROL),
            .alt = down(VK_MENU),
            .super = down(VK_LWIN) || down(VK_RWIN)};
}

KeyEvent keyOf(WPARAM virtualKey, LPARAM details, std::wstring_view text) {
    constexpr LPARAM kExtended = 1 << 24;
    constexpr LPARAM kWasDown = 1 << 30;
    const int code = static_cast<int>(virtualKey);
    KeyEvent key;
    key.key = virtualKeyOf(code, (details & kExtended) != 0);
    key.character = plainCharacter(code);
    key.modifiers = modifiersNow();
    key.repeated = (details & kWasDown) != 0;
    const bool writes = !text.empty() && text.front() >= 0x20 && text.front() != 0x7F;
    if (writes) {
        key.text = toUtf8(text);
        if (key.modifiers.control && key.modifiers.alt) { // AltGr, a shift of its own
            key.modifiers.control = false;
            key.modifiers.alt = false;
        }
    }
    return key;
}

} // namespace Platform
