// The pixels of one window: kept in a bitmap of the system's that we write to directly, shown by copying.
#pragma once

#include "platform/Pixels.h"

#include <windows.h>

#include <span>

namespace Platform {

class GdiSurface {
public:
    // Black at first. Throws std::runtime_error when the system has no memory for it.
    explicit GdiSurface(Size size);
    ~GdiSurface();
    GdiSurface(const GdiSurface&) = delete;
    GdiSurface& operator=(const GdiSurface&) = delete;

    Size size() const { return size_; }
    // Copies a part of the picture here.
    void take(const PixelView& picture, const Rect& part);
    void show(HDC target, const Rect& part) const;

private:
    Size size_;
    Argb* pixels_ = nullptr;
    HDC context_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ bitmapBefore_ = nullptr;
};

} // namespace Platform
