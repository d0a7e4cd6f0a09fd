#include "platform/win32/GdiSurface.h"

#include <algorithm>
#include <stdexcept>

namespace Platform {

GdiSurface::GdiSurface(Size size) : size_(size), context_(CreateCompatibleDC(nullptr)) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = size.width;
    info.bmiHeader.biHeight = -size.height; // the first row is the top one
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* memory = nullptr;
    bitmap_ = CreateDIBSection(context_, &info, DIB_RGB_COLORS, &memory, nullptr, 0);
    if (!context_ || !bitmap_) {
        DeleteDC(context_);
        throw std::runtime_error("The system has no memory for the window's pixels");
    }
    pixels_ = static_cast<Argb*>(memory); // zero, which is black
    bitmapBefore_ = SelectObject(context_, bitmap_);
}

GdiSurface::~GdiSurface() {
    SelectObject(context_, bitmapBefore_);
    DeleteObject(bitmap_);
    DeleteDC(context_);
}

void GdiSurface::take(const PixelView& picture, const Rect& wanted) {
    const Rect part = intersection(intersection(wanted, {0, 0, size_.width, size_.height}),
                                   {0, 0, picture.width, picture.height});
    if (part.empty()) {
        return;
    }
    GdiFlush(); // an earlier copy may still be reading
    const Canvas canvas{pixels_, size_.width, size_.height, size_.width};
    for (int y = part.y; y < part.y + part.height; ++y) {
        std::copy_n(picture.row(y) + part.x, part.width, canvas.row(y) + part.x);
    }
}

void GdiSurface::show(HDC target, const Rect& wanted) const {
    const Rect part = intersection(wanted, {0, 0, size_.width, size_.height});
    if (!part.empty()) {
        BitBlt(target, part.x, part.y, part.width, part.height, context_, part.x, part.y, SRCCOPY);
    }
}

} // namespace Platform
