#include "platform/linux/xkb_events.h"

#include <stddef.h>
#include <xcb/xkb.h>

int murmelon_xkb_listen(xcb_connection_t* connection) {
    const uint32_t detectable = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    const uint16_t events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    const uint16_t all_parts = 0xFF;
    const xcb_query_extension_reply_t* const extension = xcb_get_extension_data(connection, &xcb_xkb_id);
    if (!extension || !extension->present) {
        return -1;
    }
    xcb_discard_reply(
        connection, xcb_xkb_use_extension(connection, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION).sequence);
    xcb_discard_reply(connection, xcb_xkb_per_client_flags(connection, XCB_XKB_ID_USE_CORE_KBD, detectable,
                                                           detectable, 0, 0, 0)
                                      .sequence);
    xcb_xkb_select_events(connection, XCB_XKB_ID_USE_CORE_KBD, events, 0, events, all_parts, all_parts, NULL);
    return extension->first_event;
}
