// The functions of libdbus that we use, loaded when a file dialog is wanted: the plug-in runs without the
// library.
#pragma once

#include <dbus/dbus.h>

#include <memory>
#include <string>

namespace Platform {

struct DBusLibrary {
    decltype(&dbus_bus_get_private) busGetPrivate;
    decltype(&dbus_bus_get_unique_name) busGetUniqueName;
    decltype(&dbus_bus_add_match) busAddMatch;
    decltype(&dbus_connection_set_exit_on_disconnect) setExitOnDisconnect;
    decltype(&dbus_connection_close) close;
    decltype(&dbus_connection_unref) unref;
    decltype(&dbus_connection_send) send;
    decltype(&dbus_connection_flush) flush;
    decltype(&dbus_connection_read_write) readWrite;
    decltype(&dbus_connection_pop_message) popMessage;
    decltype(&dbus_message_new_method_call) newMethodCall;
    decltype(&dbus_message_unref) messageUnref;
    decltype(&dbus_message_get_type) messageType;
    decltype(&dbus_message_get_reply_serial) replySerial;
    decltype(&dbus_message_get_path) messagePath;
    decltype(&dbus_message_is_signal) isSignal;
    decltype(&dbus_message_iter_init) iterInit;
    decltype(&dbus_message_iter_init_append) iterInitAppend;
    decltype(&dbus_message_iter_append_basic) appendBasic;
    decltype(&dbus_message_iter_append_fixed_array) appendFixedArray;
    decltype(&dbus_message_iter_open_container) openContainer;
    decltype(&dbus_message_iter_close_container) closeContainer;
    decltype(&dbus_message_iter_get_arg_type) argType;
    decltype(&dbus_message_iter_get_basic) getBasic;
    decltype(&dbus_message_iter_recurse) recurse;
    decltype(&dbus_message_iter_next) next;

    // Null when the library, or one of these, is missing.
    static const DBusLibrary* get();
};

} // namespace Platform
