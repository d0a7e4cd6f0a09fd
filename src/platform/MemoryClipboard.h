// A clipboard that nobody else sees, for tests and for programs that are to leave no trace.
#pragma once

#include "platform/Clipboard.h"

namespace Platform {

class MemoryClipboard final : public Clipboard {
public:
    std::string text() override { return text_; }
    void setText(std::string_view utf8) override { text_ = utf8; }

private:
    std::string text_;
};

} // namespace Platform
