#include "platform/linux/DBusLibrary.h"

#include "platform/linux/DynamicLibrary.h"

namespace Platform {

namespace {

template <typename Function>
bool find(const DynamicLibrary& library, const char* name, Function*& function) {
    function = library.function<Function>(name);
    return function != nullptr;
}

bool load(DBusLibrary& d) {
    const DynamicLibrary library{"libdbus-1.so.3"};
    return find(library, "dbus_bus_get_private", d.busGetPrivate) &&
           find(library, "dbus_bus_get_unique_name", d.busGetUniqueName) &&
           find(library, "dbus_bus_add_match", d.busAddMatch) &&
           find(library, "dbus_connection_set_exit_on_disconnect", d.setExitOnDisconnect) &&
           find(library, "dbus_connection_close", d.close) &&
           find(library, "dbus_connection_unref", d.unref) && find(library, "dbus_connection_send", d.send) &&
           find(library, "dbus_connection_flush", d.flush) &&
           find(library, "dbus_connection_read_write", d.readWrite) &&
           find(library, "dbus_connection_pop_message", d.popMessage) &&
           find(library, "dbus_message_new_method_call", d.newMethodCall) &&
           find(library, "dbus_message_unref", d.messageUnref) &&
           find(library, "dbus_message_get_type", d.messageType) &&
           find(library, "dbus_message_get_reply_serial", d.replySerial) &&
           find(library, "dbus_message_get_path", d.messagePath) &&
           find(library, "dbus_message_is_signal", d.isSignal) &&
           find(library, "dbus_message_iter_init", d.iterInit) &&
           find(library, "dbus_message_iter_init_append", d.iterInitAppend) &&
           find(library, "dbus_message_iter_append_basic", d.appendBasic) &&
           find(library, "dbus_message_iter_append_fixed_array", d.appendFixedArray) &&
           find(library, "dbus_message_iter_open_container", d.openContainer) &&
           find(library, "dbus_message_iter_close_container", d.closeContainer) &&
           find(library, "dbus_message_iter_get_arg_type", d.argType) &&
           find(library, "dbus_message_iter_get_basic", d.getBasic) &&
           find(library, "dbus_message_iter_recurse", d.recurse) &&
           find(library, "dbus_message_iter_next", d.next);
}

} // namespace

const DBusLibrary* DBusLibrary::get() {
    static DBusLibrary functions{};
    static const bool loaded = load(functions);
    return loaded ? &functions : nullptr;
}

} // namespace Platform
