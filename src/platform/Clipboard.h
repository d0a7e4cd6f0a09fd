// The text that all programs of the desktop share by copy and paste. For the main thread only.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace Platform {

class Clipboard {
public:
    virtual ~Clipboard() = default;

    // The system's. Always succeeds; without a display it holds what is put there for this program alone. On
    // Linux the text lasts as long as this object, unless a clipboard manager of the desktop keeps it.
    static std::unique_ptr<Clipboard> open();

    // UTF-8, line ends as "\n". Empty when there is no text, or the program that has it does not answer
    // within a second.
    virtual std::string text() = 0;
    virtual void setText(std::string_view utf8) = 0;
};

} // namespace Platform
