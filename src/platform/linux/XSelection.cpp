#include "platform/linux/XSelection.h"

#include <poll.h>

#include <algorithm>

namespace Platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kLongestText = std::size_t{1} << 24;

class SelectionReader {
public:
    explicit SelectionReader(std::chrono::milliseconds patience)
        : atoms_(connection_), window_(xcb_generate_id(connection_)), deadline_(Clock::now() + patience) {
        constexpr std::uint32_t kEvents = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, connection_.screen().root, 0, 0, 1, 1,
                          0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &kEvents);
    }

    std::optional<std::string> read() {
        const XReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
            connection_, xcb_get_selection_owner(connection_, atoms_.clipboard), nullptr));
        if (!owner || !owner->owner) {
            return std::nullopt;
        }
        auto text = readAs(atoms_.utf8);
        return text ? text : readAs(XCB_ATOM_STRING);
    }

private:
    std::optional<std::string> readAs(xcb_atom_t target) {
        xcb_convert_selection(connection_, window_, atoms_.clipboard, target, atoms_.own, XCB_CURRENT_TIME);
        const auto event =
            waitFor([](const xcb_generic_event_t& e) { return eventKind(e) == XCB_SELECTION_NOTIFY; });
        if (!event || eventAs<xcb_selection_notify_event_t>(*event).property == XCB_ATOM_NONE) {
            return std::nullopt;
        }
        std::string text;
        xcb_atom_t type = XCB_ATOM_NONE;
        if (!takeProperty(text, type)) {
            return std::nullopt;
        }
        if (type == atoms_.incremental && !readPieces(text, type)) {
            return std::nullopt;
        }
        return decoded(std::move(text), type);
    }

    // Programs answer in a form of their own choice, whatever they were asked for; the type tells.
    std::optional<std::string> decoded(std::string text, xcb_atom_t type) const {
        if (type == XCB_ATOM_STRING) {
            return utf8FromLatin1(text);
        }
        const bool utf8 = type == atoms_.utf8 || type == atoms_.plainUtf8 || type == atoms_.plain;
        return utf8 ? std::optional(std::move(text)) : std::nullopt;
    }

    bool readPieces(std::string& text, xcb_atom_t& type) {
        const auto nextPiece = [&](const xcb_generic_event_t& e) {
            const auto& change = eventAs<xcb_property_notify_event_t>(e);
            return eventKind(e) == XCB_PROPERTY_NOTIFY && change.atom == atoms_.own &&
                   change.state == XCB_PROPERTY_NEW_VALUE;
        };
        while (waitFor(nextPiece)) {
            const std::size_t before = text.size();
            if (!takeProperty(text, type)) {
                return false;
            }
            if (text.size() == before) {
                return true;
            }
        }
        return false;
    }

    // Appends what the property holds and removes it, which asks for the next piece.
    bool takeProperty(std::string& text, xcb_atom_t& type) {
        constexpr std::uint32_t kWords = 1U << 16;
        std::uint32_t offset = 0;
        std::uint32_t left = 1;
        while (left > 0 && text.size() <= kLongestText) {
            const XReply<xcb_get_property_reply_t> reply(
                xcb_get_property_reply(connection_,
                                       xcb_get_property(connection_, 0, window_, atoms_.own,
                                                        XCB_GET_PROPERTY_TYPE_ANY, offset, kWords),
                                       nullptr));
            if (!reply) {
                return false;
            }
            type = reply->type;
            left = reply->bytes_after;
            offset += kWords;
            if (reply->format == 8) {
                text.append(static_cast<const char*>(xcb_get_property_value(reply.get())),
                            static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
            }
        }
        xcb_delete_property(connection_, window_, atoms_.own);
        xcb_flush(connection_);
        return text.size() <= kLongestText;
    }

    template <typename Wanted>
    XReply<xcb_generic_event_t> waitFor(const Wanted& wanted) {
        xcb_flush(connection_);
        while (true) {
            while (auto event = connection_.nextEvent()) {
                if (wanted(*event)) {
                    return event;
                }
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline_ - Clock::now());
            if (left.count() <= 0 || connection_.lost()) {
                return nullptr;
            }
            pollfd descriptor{xcb_get_file_descriptor(connection_), POLLIN, 0};
            ::poll(&descriptor, 1, static_cast<int>(left.count()) + 1);
        }
    }

    XConnection connection_;
    SelectionAtoms atoms_;
    xcb_window_t window_;
    Clock::time_point deadline_;
};

} // namespace

SelectionAtoms::SelectionAtoms(const XConnection& connection)
    : clipboard(connection.atom("CLIPBOARD")), clipboardManager(connection.atom("CLIPBOARD_MANAGER")),
      saveTargets(connection.atom("SAVE_TARGETS")), targets(connection.atom("TARGETS")),
      timestamp(connection.atom("TIMESTAMP")), utf8(connection.atom("UTF8_STRING")),
      text(connection.atom("TEXT")), plainUtf8(connection.atom("text/plain;charset=utf-8")),
      plain(connection.atom("text/plain")), incremental(connection.atom("INCR")),
      own(connection.atom("MURMELON_SELECTION")) {}

std::optional<std::string> readSelection(std::chrono::milliseconds patience) {
    return SelectionReader(patience).read();
}

std::string latin1FromUtf8(std::string_view utf8) {
    std::string latin1;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        if (byte < 0x80) {
            latin1 += utf8[i];
        } else if ((byte == 0xC2 || byte == 0xC3) && i + 1 < utf8.size()) {
            latin1 += static_cast<char>(((byte & 3) << 6) | (static_cast<unsigned char>(utf8[++i]) & 0x3F));
        } else if (byte >= 0xC0) {
            latin1 += '?';
        }
    }
    return latin1;
}

std::string utf8FromLatin1(std::string_view latin1) {
    std::string utf8;
    for (const char c : latin1) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            utf8 += c;
        } else {
            utf8 += static_cast<char>(0xC0 | (byte >> 6));
            utf8 += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return utf8;
}

} // namespace Platform
