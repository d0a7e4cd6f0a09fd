// The window, or whatever holds an editor's surface. The shell implements it, tests fake it.
#pragma once

#include "quilt/Geometry.h"
#include "quilt/Input.h"

#include <string>

namespace Quilt {

class EditorHost {
public:
    virtual ~EditorHost() = default;

    // True: the host shows the error itself, in its own way.
    virtual bool takeError(const std::string& title, const std::string& message) {
        static_cast<void>(title);
        static_cast<void>(message);
        return false;
    }

    virtual void log(const std::string& line) = 0; // for developers

    // The top document has been loaded and wants a surface of this size, in pixels.
    virtual void resized(std::int32_t width, std::int32_t height) {
        static_cast<void>(width);
        static_cast<void>(height);
    }

    // `part` of the surface, in pixels, is out of date.
    virtual void invalidate(const Rectangle& part) { static_cast<void>(part); }

    virtual void setCursor(Cursor cursor) { static_cast<void>(cursor); }
};

} // namespace Quilt
