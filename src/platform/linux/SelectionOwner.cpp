#include "platform/linux/QuietThread.h"
#include "platform/linux/XSelection.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace Platform {

namespace {

using namespace std::chrono_literals;

constexpr auto kTransferPatience = 5s;
constexpr auto kManagerPatience = 500ms;
constexpr std::size_t kPieceBytes = std::size_t{1} << 17; // well below what any server takes at once

} // namespace

SelectionOwner::SelectionOwner(std::string text)
    : atoms_(connection_), window_(xcb_generate_id(connection_)), wake_(eventfd(0, EFD_CLOEXEC)),
      text_(std::move(text)) {
    try {
        claim();
        owns_ = true;
        thread_ = startQuietThread([this] { run(); });
    } catch (...) {
        close(wake_);
        throw;
    }
}

SelectionOwner::~SelectionOwner() {
    eventfd_write(wake_, 1);
    thread_.join();
    close(wake_);
}

std::optional<std::string> SelectionOwner::text() const {
    const std::lock_guard lock(mutex_);
    return owns_ ? std::optional(text_) : std::nullopt;
}

// The selection is to be taken at a time of the server's, which any change of a property tells.
void SelectionOwner::claim() {
    constexpr std::uint32_t kEvents = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, connection_.screen().root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &kEvents);
    xcb_change_property(connection_, XCB_PROP_MODE_APPEND, window_, atoms_.own, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    connection_.sync();
    while (const auto event = connection_.nextEvent()) {
        if (eventKind(*event) == XCB_PROPERTY_NOTIFY) {
            since_ = eventAs<xcb_property_notify_event_t>(*event).time;
        }
    }
    xcb_set_selection_owner(connection_, window_, atoms_.clipboard, since_);
    const XReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection_, xcb_get_selection_owner(connection_, atoms_.clipboard), nullptr));
    if (!owner || owner->owner != window_) {
        throw std::runtime_error("Could not take the clipboard");
    }
}

void SelectionOwner::run() {
    while (!stopped_ && !connection_.lost()) {
        while (const auto event = connection_.nextEvent()) {
            handle(*event);
        }
        std::erase_if(transfers_,
                      [now = Clock::now()](const Transfer& transfer) { return transfer.deadline < now; });
        xcb_flush(connection_);
        if (stopAt_ && Clock::now() > *stopAt_) {
            break;
        }
        waitForEvent();
    }
    const std::lock_guard lock(mutex_);
    owns_ = false;
}

void SelectionOwner::waitForEvent() {
    std::array<pollfd, 2> descriptors{
        {{xcb_get_file_descriptor(connection_), POLLIN, 0}, {wake_, POLLIN, 0}}};
    constexpr int kForEver = -1;
    constexpr int kTick = 50; // milliseconds
    const bool bounded = stopAt_ || !transfers_.empty();
    ::poll(descriptors.data(), stopAt_ ? 1 : 2, bounded ? kTick : kForEver);
    if (!stopAt_ && (descriptors[1].revents & POLLIN)) {
        leaveToManager();
    }
}

void SelectionOwner::leaveToManager() {
    stopAt_ = Clock::now() + kManagerPatience;
    const XReply<xcb_get_selection_owner_reply_t> manager(xcb_get_selection_owner_reply(
        connection_, xcb_get_selection_owner(connection_, atoms_.clipboardManager), nullptr));
    if (!text() || !manager || !manager->owner) {
        stopped_ = true;
        return;
    }
    xcb_convert_selection(connection_, window_, atoms_.clipboardManager, atoms_.saveTargets, atoms_.own,
                          since_);
}

void SelectionOwner::handle(const xcb_generic_event_t& event) {
    switch (eventKind(event)) {
    case XCB_SELECTION_REQUEST:
        answer(eventAs<xcb_selection_request_event_t>(event));
        break;
    case XCB_SELECTION_CLEAR: {
        const std::lock_guard lock(mutex_);
        owns_ = false;
        break;
    }
    case XCB_SELECTION_NOTIFY: // the manager has what it wants
        stopped_ = true;
        break;
    case XCB_PROPERTY_NOTIFY:
        continueTransfer(eventAs<xcb_property_notify_event_t>(event));
        break;
    default:
        break;
    }
}

void SelectionOwner::answer(const xcb_selection_request_event_t& request) {
    // Old programs name no property and mean the target.
    const xcb_atom_t property = request.property ? request.property : request.target;
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property =
        convert(request.requestor, property, request.target) ? property : xcb_atom_t{XCB_ATOM_NONE};
    std::array<char, 32> bytes{}; // every event on the wire has this size
    std::copy_n(reinterpret_cast<const char*>(&notice), sizeof(notice), bytes.begin());
    xcb_send_event(connection_, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, bytes.data());
}

bool SelectionOwner::convert(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t target) {
    const auto giveWords = [&](xcb_atom_t type, const void* words, std::size_t count) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, type, 32,
                            static_cast<std::uint32_t>(count), words);
        return true;
    };
    if (target == atoms_.targets) {
        const std::array offered{
            atoms_.targets, atoms_.timestamp,           atoms_.utf8, atoms_.plainUtf8, atoms_.text,
            atoms_.plain,   xcb_atom_t{XCB_ATOM_STRING}};
        return giveWords(XCB_ATOM_ATOM, offered.data(), offered.size());
    }
    if (target == atoms_.timestamp) {
        return giveWords(XCB_ATOM_INTEGER, &since_, 1);
    }
    if (target == atoms_.utf8 || target == atoms_.plainUtf8 || target == atoms_.plain) {
        return giveText(requestor, property, target, text_);
    }
    if (target == atoms_.text) { // ours is the choice of the type
        return giveText(requestor, property, atoms_.utf8, text_);
    }
    return target == XCB_ATOM_STRING && giveText(requestor, property, XCB_ATOM_STRING, latin1FromUtf8(text_));
}

bool SelectionOwner::giveText(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type,
                              std::string text) {
    if (text.size() <= kPieceBytes) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, type, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
        return true;
    }
    constexpr std::uint32_t kEvents = XCB_EVENT_MASK_PROPERTY_CHANGE;
    const auto size = static_cast<std::uint32_t>(text.size());
    xcb_change_window_attributes(connection_, requestor, XCB_CW_EVENT_MASK, &kEvents);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, atoms_.incremental, 32, 1,
                        &size);
    transfers_.push_back({requestor, property, type, std::move(text), 0, Clock::now() + kTransferPatience});
    return true;
}

// An empty piece ends it.
void SelectionOwner::continueTransfer(const xcb_property_notify_event_t& event) {
    const auto transfer = std::find_if(transfers_.begin(), transfers_.end(), [&](const Transfer& candidate) {
        return candidate.requestor == event.window && candidate.property == event.atom;
    });
    if (event.state != XCB_PROPERTY_DELETE || transfer == transfers_.end()) {
        return;
    }
    const std::size_t count = std::min(kPieceBytes, transfer->text.size() - transfer->sent);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, transfer->requestor, transfer->property,
                        transfer->type, 8, static_cast<std::uint32_t>(count),
                        transfer->text.data() + transfer->sent);
    transfer->sent += count;
    transfer->deadline = Clock::now() + kTransferPatience;
    if (count == 0) {
        transfers_.erase(transfer);
    }
}

} // namespace Platform
