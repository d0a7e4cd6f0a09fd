// The pixels of one X window: kept here, shown there. They lie in memory shared with the server where that
// can be had, else they are sent.
#pragma once

#include "platform/Pixels.h"
#include "platform/linux/XConnection.h"

#include <xcb/shm.h>

#include <span>
#include <vector>

namespace Platform {

class XSurface {
public:
    // Black at first. The connection must outlive the surface.
    XSurface(const XConnection& connection, xcb_window_t window, int depth, Size size);
    ~XSurface();
    XSurface(const XSurface&) = delete;
    XSurface& operator=(const XSurface&) = delete;

    Size size() const { return size_; }
    bool shared() const { return segment_ != XCB_NONE; }
    Canvas canvas();

    // Copies the parts from `picture`, then shows them.
    void present(const PixelView& picture, std::span<const Rect> parts);
    // Shows what is here already.
    void show(const Rect& part);

private:
    void share();
    void send(const Rect& part);

    const XConnection& connection_;
    xcb_window_t window_;
    xcb_gcontext_t context_;
    std::uint8_t depth_;
    Size size_;
    Argb* pixels_ = nullptr;
    xcb_shm_seg_t segment_ = XCB_NONE;
    std::vector<Argb> own_; // without shared memory
    std::vector<Argb> rows_;
};

} // namespace Platform
