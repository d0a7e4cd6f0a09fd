#include "platform/Clipboard.h"

#include "platform/linux/XSelection.h"

#include <algorithm>
#include <stdexcept>

namespace Platform {

namespace {

constexpr std::chrono::milliseconds kPatience{1000};

std::string withUnixLineEnds(std::string text) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool dropped = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (!dropped) {
            text[kept++] = text[i];
        }
    }
    text.resize(kept);
    while (text.ends_with('\0')) { // some programs count the end of a C string
        text.pop_back();
    }
    return text;
}

class XClipboard final : public Clipboard {
public:
    std::string text() override {
        if (owner_) {
            if (auto own = owner_->text()) {
                return *own;
            }
        }
        try {
            return withUnixLineEnds(readSelection(kPatience).value_or(std::string()));
        } catch (const std::runtime_error&) {
            return withoutDisplay_;
        }
    }

    void setText(std::string_view utf8) override {
        withoutDisplay_ = utf8;
        try {
            // The old owner goes last: it would else leave its text to the clipboard manager.
            owner_ = std::make_unique<SelectionOwner>(std::string(utf8));
        } catch (const std::runtime_error&) {
            owner_.reset();
        }
    }

private:
    std::unique_ptr<SelectionOwner> owner_;
    std::string withoutDisplay_;
};

} // namespace

std::unique_ptr<Clipboard> Clipboard::open() {
    return std::make_unique<XClipboard>();
}

} // namespace Platform
