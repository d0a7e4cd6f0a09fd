#include "FakePortal.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace Testing {

PrivateBus::PrivateBus() {
    int ends[2];
    if (pipe(ends) != 0) {
        throw std::runtime_error("pipe");
    }
    // Always the same address, for libdbus remembers the first one.
    const std::string address = "unix:path=/tmp/murmelon-bus-" + std::to_string(getpid());
    const std::string listen = "--address=" + address;
    const std::string print = "--print-address=" + std::to_string(ends[1]);
    process_ = fork();
    if (process_ == 0) {
        close(ends[0]);
        if (!freopen("/dev/null", "w", stderr)) {
            _exit(126);
        }
        execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", listen.c_str(), print.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    char c = 0;
    while (read(ends[0], &c, 1) == 1 && c != '\n') { // it listens when it has said so
    }
    close(ends[0]);
    setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
}

PrivateBus::~PrivateBus() {
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
}

namespace {

// Any value as text, the elements of lists with ", " between and those of records with " ".
std::string textOf(DBusMessageIter& at) {
    const int type = dbus_message_iter_get_arg_type(&at);
    if (type == DBUS_TYPE_STRING) {
        const char* text = "";
        dbus_message_iter_get_basic(&at, &text);
        return text;
    }
    DBusMessageIter inner;
    dbus_message_iter_recurse(&at, &inner);
    if (type == DBUS_TYPE_VARIANT) {
        return textOf(inner);
    }
    std::string text;
    const bool bytes = dbus_message_iter_get_arg_type(&inner) == DBUS_TYPE_BYTE;
    const bool records = dbus_message_iter_get_arg_type(&inner) == DBUS_TYPE_STRUCT;
    int count = 0;
    for (; dbus_message_iter_get_arg_type(&inner) != DBUS_TYPE_INVALID; dbus_message_iter_next(&inner)) {
        if (bytes) {
            char c = 0;
            dbus_message_iter_get_basic(&inner, &c);
            text.append(c ? 1 : 0, c);
            continue;
        }
        if (dbus_message_iter_get_arg_type(&inner) == DBUS_TYPE_UINT32) {
            continue;
        }
        if (count++ > 0) {
            text += records && textOf(inner).find(' ') != std::string::npos ? ", " : " ";
        }
        text += textOf(inner);
    }
    return text;
}

std::string describe(DBusMessage* call) {
    DBusMessageIter at;
    DBusMessageIter entry;
    dbus_message_iter_init(call, &at);
    dbus_message_iter_next(&at);
    std::string text = dbus_message_get_member(call);
    text += '|';
    text += textOf(at);
    dbus_message_iter_next(&at);
    dbus_message_iter_recurse(&at, &entry);
    std::string folder;
    std::string name;
    std::string filters;
    for (; dbus_message_iter_get_arg_type(&entry) != DBUS_TYPE_INVALID; dbus_message_iter_next(&entry)) {
        DBusMessageIter pair;
        dbus_message_iter_recurse(&entry, &pair);
        const std::string key = textOf(pair);
        dbus_message_iter_next(&pair);
        (key == "current_folder" ? folder
         : key == "current_name" ? name
                                 : filters) = key == "handle_token" ? filters : textOf(pair);
    }
    return text + "|current_folder=" + folder + "|current_name=" + name + "|filters=" + filters;
}

} // namespace

FakePortal::FakePortal(Answer answer) : answer_(std::move(answer)) {
    DBusError error = DBUS_ERROR_INIT;
    connection_ = dbus_bus_get_private(DBUS_BUS_SESSION, &error);
    if (!connection_) {
        throw std::runtime_error(std::string("No private bus: ") + error.message);
    }
    dbus_connection_set_exit_on_disconnect(connection_, 0);
    dbus_bus_request_name(connection_, "org.freedesktop.portal.Desktop", 0, nullptr);
    thread_ = std::thread([this] { serve(); });
}

FakePortal::~FakePortal() {
    stop_ = true;
    thread_.join();
    dbus_connection_close(connection_);
    dbus_connection_unref(connection_);
}

std::string FakePortal::question() {
    const std::lock_guard lock(mutex_);
    return question_;
}

void FakePortal::serve() {
    constexpr int kMilliseconds = 5;
    while (!stop_ && dbus_connection_read_write(connection_, kMilliseconds)) {
        while (DBusMessage* const message = dbus_connection_pop_message(connection_)) {
            if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL &&
                dbus_message_has_interface(message, "org.freedesktop.portal.FileChooser")) {
                answerCall(message);
            }
            dbus_message_unref(message);
        }
    }
}

void FakePortal::answerCall(DBusMessage* call) {
    {
        const std::lock_guard lock(mutex_);
        question_ = describe(call);
    }
    if (answer_.response == kRefuses) {
        DBusMessage* const error = dbus_message_new_error(call, DBUS_ERROR_UNKNOWN_METHOD, "no such thing");
        dbus_connection_send(connection_, error, nullptr);
        dbus_message_unref(error);
        return;
    }
    // As an old portal: the request has a name of its own choice.
    const char* const path = "/org/freedesktop/portal/desktop/request/own/choice";
    DBusMessage* const reply = dbus_message_new_method_return(call);
    dbus_message_append_args(reply, DBUS_TYPE_OBJECT_PATH, &path, DBUS_TYPE_INVALID);
    dbus_connection_send(connection_, reply, nullptr);
    dbus_message_unref(reply);
    sendResponse(path, dbus_message_get_sender(call));
}

void FakePortal::sendResponse(const std::string& path, const char* destination) {
    DBusMessage* const signal =
        dbus_message_new_signal(path.c_str(), "org.freedesktop.portal.Request", "Response");
    dbus_message_set_destination(signal, destination);
    DBusMessageIter at;
    DBusMessageIter options;
    dbus_message_iter_init_append(signal, &at);
    const dbus_uint32_t response = answer_.response;
    dbus_message_iter_append_basic(&at, DBUS_TYPE_UINT32, &response);
    dbus_message_iter_open_container(&at, DBUS_TYPE_ARRAY, "{sv}", &options);
    if (!answer_.address.empty()) {
        DBusMessageIter entry;
        DBusMessageIter variant;
        DBusMessageIter list;
        const char* const key = "uris";
        const char* const address = answer_.address.c_str();
        dbus_message_iter_open_container(&options, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
        dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &key);
        dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, "as", &variant);
        dbus_message_iter_open_container(&variant, DBUS_TYPE_ARRAY, "s", &list);
        dbus_message_iter_append_basic(&list, DBUS_TYPE_STRING, &address);
        dbus_message_iter_close_container(&variant, &list);
        dbus_message_iter_close_container(&entry, &variant);
        dbus_message_iter_close_container(&options, &entry);
    }
    dbus_message_iter_close_container(&at, &options);
    dbus_connection_send(connection_, signal, nullptr);
    dbus_connection_flush(connection_);
    dbus_message_unref(signal);
}

} // namespace Testing
