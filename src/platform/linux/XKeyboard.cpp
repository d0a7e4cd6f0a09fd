#include "platform/linux/XKeyboard.h"

#include "platform/linux/xkb_events.h"

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

namespace Platform {

namespace {

struct KeyName {
    xkb_keysym_t symbol;
    VirtualKey key;
};

constexpr std::array kKeyNames{
    KeyName{XKB_KEY_BackSpace, VirtualKey::back},
    KeyName{XKB_KEY_Tab, VirtualKey::tab},
    KeyName{XKB_KEY_ISO_Left_Tab, VirtualKey::tab},
    KeyName{XKB_KEY_Clear, VirtualKey::clear},
    KeyName{XKB_KEY_Return, VirtualKey::enter},
    KeyName{XKB_KEY_Pause, VirtualKey::pause},
    KeyName{XKB_KEY_Escape, VirtualKey::escape},
    KeyName{XKB_KEY_space, VirtualKey::space},
    KeyName{XKB_KEY_End, VirtualKey::end},
    KeyName{XKB_KEY_Home, VirtualKey::home},
    KeyName{XKB_KEY_Left, VirtualKey::left},
    KeyName{XKB_KEY_Up, VirtualKey::up},
    KeyName{XKB_KEY_Right, VirtualKey::right},
    KeyName{XKB_KEY_Down, VirtualKey::down},
    KeyName{XKB_KEY_Page_Up, VirtualKey::pageUp},
    KeyName{XKB_KEY_Page_Down, VirtualKey::pageDown},
    KeyName{XKB_KEY_Select, VirtualKey::select},
    KeyName{XKB_KEY_Print, VirtualKey::print},
    KeyName{XKB_KEY_KP_Enter, VirtualKey::numpadEnter},
    KeyName{XKB_KEY_Insert, VirtualKey::insert},
    KeyName{XKB_KEY_Delete, VirtualKey::del},
    KeyName{XKB_KEY_Help, VirtualKey::help},
    KeyName{XKB_KEY_KP_Home, VirtualKey::home},
    KeyName{XKB_KEY_KP_End, VirtualKey::end},
    KeyName{XKB_KEY_KP_Left, VirtualKey::left},
    KeyName{XKB_KEY_KP_Up, VirtualKey::up},
    KeyName{XKB_KEY_KP_Right, VirtualKey::right},
    KeyName{XKB_KEY_KP_Down, VirtualKey::down},
    KeyName{XKB_KEY_KP_Page_Up, VirtualKey::pageUp},
    KeyName{XKB_KEY_KP_Page_Down, VirtualKey::pageDown},
    KeyName{XKB_KEY_KP_Insert, VirtualKey::insert},
    KeyName{XKB_KEY_KP_Delete, VirtualKey::del},
    KeyName{XKB_KEY_KP_Multiply, VirtualKey::numpadMultiply},
    KeyName{XKB_KEY_KP_Add, VirtualKey::numpadAdd},
    KeyName{XKB_KEY_KP_Separator, VirtualKey::numpadSeparator},
    KeyName{XKB_KEY_KP_Subtract, VirtualKey::numpadSubtract},
    KeyName{XKB_KEY_KP_Decimal, VirtualKey::numpadDecimal},
    KeyName{XKB_KEY_KP_Divide, VirtualKey::numpadDivide},
    KeyName{XKB_KEY_Num_Lock, VirtualKey::numLock},
    KeyName{XKB_KEY_Scroll_Lock, VirtualKey::scrollLock},
    KeyName{XKB_KEY_Shift_L, VirtualKey::shift},
    KeyName{XKB_KEY_Shift_R, VirtualKey::shift},
    KeyName{XKB_KEY_Control_L, VirtualKey::control},
    KeyName{XKB_KEY_Control_R, VirtualKey::control},
    KeyName{XKB_KEY_Alt_L, VirtualKey::alt},
    KeyName{XKB_KEY_Alt_R, VirtualKey::alt},
};

VirtualKey offset(VirtualKey first, xkb_keysym_t by) {
    return static_cast<VirtualKey>(static_cast<int>(first) + static_cast<int>(by));
}

VirtualKey virtualKey(xkb_keysym_t symbol) {
    if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F12) {
        return offset(VirtualKey::f1, symbol - XKB_KEY_F1);
    }
    if (symbol >= XKB_KEY_KP_0 && symbol <= XKB_KEY_KP_9) {
        return offset(VirtualKey::numpad0, symbol - XKB_KEY_KP_0);
    }
    const auto* const found = std::find_if(kKeyNames.begin(), kKeyNames.end(),
                                           [&](const KeyName& name) { return name.symbol == symbol; });
    return found == kKeyNames.end() ? VirtualKey::none : found->key;
}

bool isControl(const std::string& text) {
    return text.size() == 1 && (static_cast<unsigned char>(text[0]) < 0x20 || text[0] == 0x7F);
}

const char* localeName() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        if (const char* const value = std::getenv(variable); value && *value) {
            return value;
        }
    }
    return "C";
}

bool startsComposing(xkb_keysym_t symbol) {
    return (symbol >= XKB_KEY_dead_grave && symbol <= XKB_KEY_dead_greek) || symbol == XKB_KEY_Multi_key;
}

} // namespace

Modifiers modifiersOf(std::uint16_t state) {
    return {(state & XCB_MOD_MASK_SHIFT) != 0, (state & XCB_MOD_MASK_CONTROL) != 0,
            (state & XCB_MOD_MASK_1) != 0, (state & XCB_MOD_MASK_4) != 0};
}

XKeyboard::XKeyboard(const XConnection& connection)
    : connection_(connection), firstEvent_(murmelon_xkb_listen(connection)) {}

bool XKeyboard::takeEvent(const xcb_generic_event_t& event) {
    if (eventKind(event) != XCB_MAPPING_NOTIFY && eventKind(event) != firstEvent_) {
        return false;
    }
    keymap_.reset();
    return true;
}

void XKeyboard::fetchLayout() {
    if (!context_) {
        context_.reset(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    }
    keymap_.reset();
    xcb_connection_t* const connection = connection_;
    if (xkb_x11_setup_xkb_extension(connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                    XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr,
                                    nullptr)) {
        const int device = xkb_x11_get_core_keyboard_device_id(connection);
        keymap_.reset(
            xkb_x11_keymap_new_from_device(context_.get(), connection, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    }
    if (!keymap_) { // a server without the extension: the system's default layout is better than none
        const xkb_rule_names names{};
        keymap_.reset(xkb_keymap_new_from_names(context_.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    }
    state_.reset(keymap_ ? xkb_state_new(keymap_.get()) : nullptr);
}

KeyEvent XKeyboard::pressed(const xcb_key_press_event_t& event) {
    KeyEvent key = translate(event);
    key.repeated = down_[event.detail];
    down_.set(event.detail);
    if (state_) {
        compose(xkb_state_key_get_one_sym(state_.get(), event.detail), key);
    }
    if (key.modifiers.control || key.modifiers.alt || key.modifiers.super || isControl(key.text)) {
        key.text.clear();
    }
    return key;
}

KeyEvent XKeyboard::released(const xcb_key_release_event_t& event) {
    down_.reset(event.detail);
    KeyEvent key = translate(event);
    key.text.clear();
    return key;
}

KeyEvent XKeyboard::translate(const xcb_key_press_event_t& event) {
    if (!keymap_) {
        fetchLayout();
    }
    KeyEvent key;
    key.modifiers = modifiersOf(event.state);
    if (!state_) {
        return key;
    }
    // The event itself carries the modifiers and, in bits 13 and 14, the layout.
    constexpr std::uint16_t kModifierBits = 0xFF;
    const xkb_layout_index_t layout = (event.state >> 13) & 3U;
    xkb_state_update_mask(state_.get(), event.state & kModifierBits, 0, 0, 0, 0, layout);
    key.key = virtualKey(xkb_state_key_get_one_sym(state_.get(), event.detail));
    key.character = plainCharacter(event.detail, layout);
    std::array<char, 32> text{};
    const int length = xkb_state_key_get_utf8(state_.get(), event.detail, text.data(), text.size());
    key.text.assign(text.data(), static_cast<std::size_t>(std::clamp(length, 0, 31)));
    return key;
}

// Of the key without shift. Where the user's layout has no Latin letters, another of his layouts tells which
// shortcut is meant.
char32_t XKeyboard::plainCharacter(xkb_keycode_t code, xkb_layout_index_t layout) const {
    const auto characterIn = [&](xkb_layout_index_t index) -> char32_t {
        const xkb_keysym_t* symbols = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), code, index, 0, &symbols);
        const char32_t character = count == 1 ? xkb_keysym_to_utf32(symbols[0]) : 0;
        return character < 0x20 || character == 0x7F ? 0 : character;
    };
    const char32_t own = characterIn(layout);
    if (own > 0xFF) {
        for (xkb_layout_index_t other = 0; other < xkb_keymap_num_layouts_for_key(keymap_.get(), code);
             ++other) {
            if (const char32_t latin = characterIn(other); latin && latin < 0x80) {
                return latin;
            }
        }
    }
    return own;
}

void XKeyboard::compose(xkb_keysym_t symbol, KeyEvent& key) {
    if (!compose_) {
        if (!startsComposing(symbol)) {
            return;
        }
        composeTable_.reset(
            xkb_compose_table_new_from_locale(context_.get(), localeName(), XKB_COMPOSE_COMPILE_NO_FLAGS));
        if (!composeTable_) {
            return;
        }
        compose_.reset(xkb_compose_state_new(composeTable_.get(), XKB_COMPOSE_STATE_NO_FLAGS));
    }
    if (xkb_compose_state_feed(compose_.get(), symbol) != XKB_COMPOSE_FEED_ACCEPTED) {
        return;
    }
    std::array<char, 32> text{};
    switch (xkb_compose_state_get_status(compose_.get())) {
    case XKB_COMPOSE_COMPOSING:
    case XKB_COMPOSE_CANCELLED:
        key.text.clear();
        break;
    case XKB_COMPOSE_COMPOSED: {
        const int length = xkb_compose_state_get_utf8(compose_.get(), text.data(), text.size());
        key.text.assign(text.data(), static_cast<std::size_t>(std::clamp(length, 0, 31)));
        xkb_compose_state_reset(compose_.get());
        break;
    }
    case XKB_COMPOSE_NOTHING:
        break;
    }
}

} // namespace Platform
