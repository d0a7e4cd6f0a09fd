// File dialogs of the desktop portal: asked for over D-Bus, answered by a signal.
#include "platform/linux/DBusLibrary.h"
#include "platform/linux/FileChooser.h"
#include "platform/linux/XConnection.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace Platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kObject = "/org/freedesktop/portal/desktop";
constexpr const char* kChooser = "org.freedesktop.portal.FileChooser";
constexpr const char* kRequest = "org.freedesktop.portal.Request";
constexpr std::chrono::seconds kStartPatience{10}; // the portal may have to be started first

// Without an address libdbus would try to start a bus of its own.
bool sessionBusExists() {
    if (const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address && *address) {
        return true;
    }
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    std::error_code error;
    return folder && std::filesystem::exists(std::filesystem::path(folder) / "bus", error);
}

std::string parentName(NativeWindow parent) {
    if (parent == 0) {
        return {};
    }
    try {
        const XConnection connection;
        char name[32];
        std::snprintf(name, sizeof(name), "x11:%x", connection.topLevelOf(static_cast<xcb_window_t>(parent)));
        return name;
    } catch (const std::runtime_error&) {
        return {};
    }
}

// Writes the values of a message, level by level.
class MessageWriter {
public:
    MessageWriter(const DBusLibrary& dbus, DBusMessage* message) : dbus_(dbus) {
        dbus_.iterInitAppend(message, &at_);
    }

    void text(const std::string& value) {
        const char* const characters = value.c_str();
        dbus_.appendBasic(&at_, DBUS_TYPE_STRING, &characters);
    }
    void number(std::uint32_t value) { dbus_.appendBasic(&at_, DBUS_TYPE_UINT32, &value); }
    void bytes(const std::string& value) { // with the final zero, as paths travel
        in(DBUS_TYPE_ARRAY, "y", [&](MessageWriter& array) {
            const char* const first = value.c_str();
            dbus_.appendFixedArray(&array.at_, DBUS_TYPE_BYTE, &first, static_cast<int>(value.size()) + 1);
        });
    }

    template <typename Write>
    void in(int container, const char* signature, const Write& write) {
        MessageWriter inner(dbus_);
        dbus_.openContainer(&at_, container, signature, &inner.at_);
        write(inner);
        dbus_.closeContainer(&at_, &inner.at_);
    }

    // An entry of a dictionary of variants.
    template <typename Write>
    void option(const char* name, const char* signature, const Write& write) {
        in(DBUS_TYPE_DICT_ENTRY, nullptr, [&](MessageWriter& entry) {
            entry.text(name);
            entry.in(DBUS_TYPE_VARIANT, signature, write);
        });
    }

private:
    explicit MessageWriter(const DBusLibrary& dbus) : dbus_(dbus) {}

    const DBusLibrary& dbus_;
    DBusMessageIter at_{};
};

void writeFilters(MessageWriter& options, const std::vector<FileFilter>& filters) {
    options.option("filters", "a(sa(us))", [&](MessageWriter& variant) {
        variant.in(DBUS_TYPE_ARRAY, "(sa(us))", [&](MessageWriter& list) {
            for (const FileFilter& filter : filters) {
                list.in(DBUS_TYPE_STRUCT, nullptr, [&](MessageWriter& record) {
                    record.text(filter.name);
                    record.in(DBUS_TYPE_ARRAY, "(us)", [&](MessageWriter& patterns) {
                        for (const std::string& pattern : filter.patterns) {
                            patterns.in(DBUS_TYPE_STRUCT, nullptr, [&](MessageWriter& one) {
                                one.number(0); // a pattern of names, not a MIME type
                                one.text(pattern);
                            });
                        }
                    });
                });
            }
        });
    });
}

class PortalChooser final : public FileChooser {
public:
    PortalChooser(const DBusLibrary& dbus, const FileDialogRequest& request)
        : dbus_(dbus), connection_(dbus.busGetPrivate(DBUS_BUS_SESSION, nullptr)) {
        if (!connection_) {
            throw std::runtime_error("There is no session bus");
        }
        dbus_.setExitOnDisconnect(connection_, 0);
        const char* const name = dbus_.busGetUniqueName(connection_);
        static std::atomic<unsigned> count{0};
        const std::string token = "murmelon" + std::to_string(++count);
        handle_ = std::string(kObject) + "/request/" + escaped(name ? name : "") + "/" + token;
        const std::string match = std::string("type='signal',interface='") + kRequest + "',member='Response'";
        dbus_.busAddMatch(connection_, match.c_str(), nullptr);
        ask(request, token);
    }
    ~PortalChooser() override {
        if (!answered_) {
            if (DBusMessage* const close =
                    dbus_.newMethodCall(kService, handle_.c_str(), kRequest, "Close")) {
                dbus_.send(connection_, close, nullptr);
                dbus_.flush(connection_);
                dbus_.messageUnref(close);
            }
        }
        dbus_.close(connection_);
        dbus_.unref(connection_);
    }
    PortalChooser(const PortalChooser&) = delete;
    PortalChooser& operator=(const PortalChooser&) = delete;

    std::optional<ChooserOutcome> poll() override {
        const bool connected = dbus_.readWrite(connection_, 0) != 0;
        std::optional<ChooserOutcome> outcome;
        while (DBusMessage* const message = outcome ? nullptr : dbus_.popMessage(connection_)) {
            outcome = receive(message);
            dbus_.messageUnref(message);
        }
        if (!outcome && (!connected || (!started_ && Clock::now() > deadline_))) {
            outcome = ChooserOutcome{};
        }
        answered_ = outcome.has_value();
        return outcome;
    }

private:
    // ":1.42" to "1_42", as request objects are named.
    static std::string escaped(std::string_view name) {
        std::string text(name.substr(name.starts_with(':') ? 1 : 0));
        for (char& c : text) {
            c = c == '.' ? '_' : c;
        }
        return text;
    }

    void ask(const FileDialogRequest& request, const std::string& token) {
        const bool save = request.kind == FileDialogRequest::Kind::save;
        DBusMessage* const call =
            dbus_.newMethodCall(kService, kObject, kChooser, save ? "SaveFile" : "OpenFile");
        if (!call) {
            throw std::runtime_error("Out of memory");
        }
        MessageWriter arguments(dbus_, call);
        arguments.text(parentName(request.parent));
        arguments.text(request.title);
        arguments.in(DBUS_TYPE_ARRAY, "{sv}", [&](MessageWriter& options) {
            options.option("handle_token", "s", [&](MessageWriter& value) { value.text(token); });
            if (!request.filters.empty()) {
                writeFilters(options, request.filters);
            }
            if (!request.folder.empty()) {
                options.option("current_folder", "ay",
                               [&](MessageWriter& value) { value.bytes(request.folder.string()); });
            }
            if (save && !request.fileName.empty()) {
                options.option("current_name", "s",
                               [&](MessageWriter& value) { value.text(request.fileName); });
            }
        });
        dbus_.send(connection_, call, &serial_);
        dbus_.flush(connection_);
        dbus_.messageUnref(call);
    }

    std::optional<ChooserOutcome> receive(DBusMessage* message) {
        DBusMessageIter at;
        const int type = dbus_.messageType(message);
        if (dbus_.replySerial(message) == serial_ && type == DBUS_MESSAGE_TYPE_ERROR) {
            return ChooserOutcome{};
        }
        if (dbus_.replySerial(message) == serial_ && type == DBUS_MESSAGE_TYPE_METHOD_RETURN) {
            started_ = true;
            const char* path = nullptr;
            if (dbus_.iterInit(message, &at) && dbus_.argType(&at) == DBUS_TYPE_OBJECT_PATH) {
                dbus_.getBasic(&at, &path);
                handle_ = path; // old portals choose another than they were asked for
            }
            return std::nullopt;
        }
        const char* const path = dbus_.messagePath(message);
        if (!dbus_.isSignal(message, kRequest, "Response") || !path || handle_ != path ||
            !dbus_.iterInit(message, &at) || dbus_.argType(&at) != DBUS_TYPE_UINT32) {
            return std::nullopt;
        }
        return readResponse(at);
    }

    ChooserOutcome readResponse(DBusMessageIter at) const {
        constexpr dbus_uint32_t kCancelled = 1;
        dbus_uint32_t response = 0;
        dbus_.getBasic(&at, &response);
        if (response != 0) {
            return {response == kCancelled ? ChooserOutcome::Kind::cancelled
                                           : ChooserOutcome::Kind::unavailable,
                    {}};
        }
        dbus_.next(&at);
        const std::filesystem::path file = firstFile(at);
        return {file.empty() ? ChooserOutcome::Kind::unavailable : ChooserOutcome::Kind::chosen, file};
    }

    // Of the entry "uris" in a dictionary of variants.
    std::filesystem::path firstFile(DBusMessageIter dictionary) const {
        if (dbus_.argType(&dictionary) != DBUS_TYPE_ARRAY) {
            return {};
        }
        DBusMessageIter entry;
        dbus_.recurse(&dictionary, &entry);
        for (; dbus_.argType(&entry) == DBUS_TYPE_DICT_ENTRY; dbus_.next(&entry)) {
            DBusMessageIter pair;
            DBusMessageIter variant;
            DBusMessageIter list;
            const char* key = "";
            dbus_.recurse(&entry, &pair);
            dbus_.getBasic(&pair, &key);
            dbus_.next(&pair);
            dbus_.recurse(&pair, &variant);
            if (std::string_view(key) != "uris" || dbus_.argType(&variant) != DBUS_TYPE_ARRAY) {
                continue;
            }
            dbus_.recurse(&variant, &list);
            if (dbus_.argType(&list) == DBUS_TYPE_STRING) {
                const char* address = "";
                dbus_.getBasic(&list, &address);
                return pathOfFileAddress(address);
            }
        }
        return {};
    }

    const DBusLibrary& dbus_;
    DBusConnection* connection_;
    std::string handle_;
    dbus_uint32_t serial_ = 0;
    bool started_ = false;
    bool answered_ = false;
    Clock::time_point deadline_ = Clock::now() + kStartPatience;
};

} // namespace

std::filesystem::path pathOfFileAddress(std::string_view address) {
    constexpr std::string_view kStart = "file://";
    if (!address.starts_with(kStart)) {
        return {};
    }
    address.remove_prefix(kStart.size());
    address.remove_prefix(std::min(address.size(), address.find('/'))); // a host name, this machine's
    std::string path;
    for (std::size_t i = 0; i < address.size(); ++i) {
        const auto digit = [&](std::size_t at) {
            const std::string_view digits = "0123456789abcdef";
            const char c = at < address.size() ? address[at] : '\0';
            return digits.find(c >= 'A' && c <= 'F' ? static_cast<char>(c + 32) : c);
        };
        const std::size_t high = digit(i + 1);
        const std::size_t low = digit(i + 2);
        if (address[i] == '%' && high < 16 && low < 16) {
            path += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            path += address[i];
        }
    }
    return path;
}

std::unique_ptr<FileChooser> openPortalChooser(const FileDialogRequest& request) {
    const DBusLibrary* const dbus = sessionBusExists() ? DBusLibrary::get() : nullptr;
    return dbus ? std::make_unique<PortalChooser>(*dbus, request) : nullptr;
}

} // namespace Platform
