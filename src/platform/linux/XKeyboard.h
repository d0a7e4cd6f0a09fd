// Turns X key events into keys and text by the user's layout, dead keys included. The layout is fetched with
// the first key, for most editors never see one.
#pragma once

#include "platform/Keys.h"
#include "platform/linux/XConnection.h"

#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

#include <bitset>
#include <memory>

namespace Platform {

class XKeyboard {
public:
    // The connection must outlive the keyboard.
    explicit XKeyboard(const XConnection& connection);

    // True when the event was about the layout.
    bool takeEvent(const xcb_generic_event_t& event);

    KeyEvent pressed(const xcb_key_press_event_t& event);
    KeyEvent released(const xcb_key_release_event_t& event);
    // The focus is gone, and with it the events that would tell of keys let go.
    void forgetKeys() { down_.reset(); }

private:
    template <auto unref>
    struct Unref {
        template <typename T>
        void operator()(T* object) const {
            unref(object);
        }
    };

    void fetchLayout();
    KeyEvent translate(const xcb_key_press_event_t& event);
    char32_t plainCharacter(xkb_keycode_t code, xkb_layout_index_t layout) const;
    void compose(xkb_keysym_t symbol, KeyEvent& key);

    const XConnection& connection_;
    int firstEvent_; // of the keyboard extension; -1 without it
    std::unique_ptr<xkb_context, Unref<xkb_context_unref>> context_;
    std::unique_ptr<xkb_keymap, Unref<xkb_keymap_unref>> keymap_;
    std::unique_ptr<xkb_state, Unref<xkb_state_unref>> state_;
    std::unique_ptr<xkb_compose_table, Unref<xkb_compose_table_unref>> composeTable_;
    std::unique_ptr<xkb_compose_state, Unref<xkb_compose_state_unref>> compose_;
    std::bitset<256> down_;
};

Modifiers modifiersOf(std::uint16_t state);

} // namespace Platform
