#include "vst2/HostKeys.h"

namespace Shell {

using namespace Vst2;

namespace {

constexpr VstInt32 kDelete = 0x7F;
constexpr VstInt32 kLastOfLatin1 = 0xFF; // hosts hand bytes; beyond, every host has a mind of its own

// Some hosts fill in no character for keys that have both.
VstInt32 characterOf(VstInt32 character, VstIntPtr virtualKey) {
    if (character > 0) {
        return character <= kLastOfLatin1 ? character : 0;
    }
    if (virtualKey == VKEY_SPACE) {
        return ' ';
    }
    const bool digit = virtualKey >= VKEY_NUMPAD0 && virtualKey <= VKEY_NUMPAD9;
    return digit ? static_cast<VstInt32>('0' + virtualKey - VKEY_NUMPAD0) : 0;
}

std::string utf8(VstInt32 latin1) {
    if (latin1 < 0x80) {
        return {static_cast<char>(latin1)};
    }
    return {static_cast<char>(0xC0 | (latin1 >> 6)), static_cast<char>(0x80 | (latin1 & 0x3F))};
}

} // namespace

Platform::KeyEvent keyOf(VstInt32 character, VstIntPtr virtualKey, float modifiers) {
    const int held = modifiers > 0 && modifiers < 256 ? static_cast<int>(modifiers) : 0;
    Platform::KeyEvent event;
    event.modifiers = {.shift = (held & MODIFIER_SHIFT) != 0,
                       .control = (held & (MODIFIER_CONTROL | MODIFIER_COMMAND)) != 0,
                       .alt = (held & MODIFIER_ALTERNATE) != 0};
    if (virtualKey > 0 && virtualKey <= VKEY_ALT) {
        event.key = static_cast<Platform::VirtualKey>(virtualKey);
    }
    const VstInt32 typed = characterOf(character, virtualKey);
    if (typed < ' ' || typed == kDelete) {
        return event;
    }
    const bool capital = typed >= 'A' && typed <= 'Z';
    event.character = static_cast<char32_t>(capital ? typed - 'A' + 'a' : typed);
    if (!event.modifiers.control && !event.modifiers.alt) {
        event.text = utf8(typed);
    }
    return event;
}

} // namespace Shell
