#include "platform/linux/XSurface.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>

namespace Platform {

namespace {

constexpr Argb kOpaque = 0xFF000000;

// Without big requests the server takes 256 KB at once; the header of a put needs 24 bytes of it.
std::size_t mostPixelsAtOnce(xcb_connection_t* connection) {
    constexpr std::size_t kHeaderWords = 6;
    constexpr std::size_t kEnough = std::size_t{1} << 18;
    const std::size_t words = xcb_get_maximum_request_length(connection);
    return words > kHeaderWords ? std::min(words - kHeaderWords, kEnough) : 1;
}

} // namespace

XSurface::XSurface(const XConnection& connection, xcb_window_t window, int depth, Size size)
    : connection_(connection), window_(window), context_(xcb_generate_id(connection)),
      depth_(static_cast<std::uint8_t>(depth)), size_{std::max(1, size.width), std::max(1, size.height)} {
    constexpr std::uint32_t kNoExposures = 0;
    xcb_create_gc(connection_, context_, window_, XCB_GC_GRAPHICS_EXPOSURES, &kNoExposures);
    if (connection_.local()) {
        share();
    }
    const std::size_t count = static_cast<std::size_t>(size_.width) * static_cast<std::size_t>(size_.height);
    if (!pixels_) {
        own_.resize(count);
        pixels_ = own_.data();
    }
    std::fill_n(pixels_, count, kOpaque);
}

XSurface::~XSurface() {
    if (segment_ != XCB_NONE) {
        xcb_shm_detach(connection_, segment_);
        shmdt(pixels_);
    }
    xcb_free_gc(connection_, context_);
}

// Any failure leaves the surface without shared memory, which costs time and nothing else.
void XSurface::share() {
    const auto* const extension = xcb_get_extension_data(connection_, &xcb_shm_id);
    if (!extension || !extension->present) {
        return;
    }
    const std::size_t bytes =
        static_cast<std::size_t>(size_.width) * static_cast<std::size_t>(size_.height) * sizeof(Argb);
    const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (id < 0) {
        return;
    }
    void* const memory = shmat(id, nullptr, 0);
    if (memory != reinterpret_cast<void*>(-1)) {
        const xcb_shm_seg_t segment = xcb_generate_id(connection_);
        const XReply<xcb_generic_error_t> error(xcb_request_check(
            connection_, xcb_shm_attach_checked(connection_, segment, static_cast<std::uint32_t>(id), 1)));
        if (error || connection_.lost()) {
            shmdt(memory);
        } else {
            segment_ = segment;
            pixels_ = static_cast<Argb*>(memory);
        }
    }
    // It lives on until both sides have let go of it, however they end.
    shmctl(id, IPC_RMID, nullptr);
}

Canvas XSurface::canvas() {
    return {pixels_, size_.width, size_.height, size_.width};
}

void XSurface::present(const PixelView& picture, std::span<const Rect> parts) {
    for (const Rect& wanted : parts) {
        const Rect part = intersection(intersection(wanted, {0, 0, size_.width, size_.height}),
                                       {0, 0, picture.width, picture.height});
        for (int y = part.y; y < part.y + part.height; ++y) {
            const Argb* const from = picture.row(y) + part.x;
            // A window of 32 bits would let the desktop shine through.
            std::transform(from, from + part.width, canvas().row(y) + part.x,
                           [](Argb pixel) { return pixel | kOpaque; });
        }
        show(part);
    }
}

void XSurface::show(const Rect& wanted) {
    const Rect part = intersection(wanted, {0, 0, size_.width, size_.height});
    if (part.empty()) {
        return;
    }
    if (!shared()) {
        send(part);
        return;
    }
    const auto narrow = [](int value) { return static_cast<std::uint16_t>(value); };
    xcb_shm_put_image(connection_, window_, context_, narrow(size_.width), narrow(size_.height),
                      narrow(part.x), narrow(part.y), narrow(part.width), narrow(part.height),
                      static_cast<std::int16_t>(part.x), static_cast<std::int16_t>(part.y), depth_,
                      XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment_, 0);
}

// In bands of as many rows as one request takes.
void XSurface::send(const Rect& part) {
    const std::size_t most = mostPixelsAtOnce(connection_);
    const int columns = std::min(part.width, static_cast<int>(most));
    if (columns < part.width) {
        send({part.x + columns, part.y, part.width - columns, part.height});
    }
    const int band = std::max(1, static_cast<int>(most) / columns);
    for (int y = part.y; y < part.y + part.height; y += band) {
        const int count = std::min(band, part.y + part.height - y);
        rows_.clear();
        for (int row = y; row < y + count; ++row) {
            const Argb* const from = canvas().row(row) + part.x;
            rows_.insert(rows_.end(), from, from + columns);
        }
        xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context_,
                      static_cast<std::uint16_t>(columns), static_cast<std::uint16_t>(count),
                      static_cast<std::int16_t>(part.x), static_cast<std::int16_t>(y), 0, depth_,
                      static_cast<std::uint32_t>(rows_.size() * sizeof(Argb)),
                      reinterpret_cast<const std::uint8_t*>(rows_.data()));
    }
}

} // namespace Platform
