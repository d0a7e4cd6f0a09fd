#include "quilt/LiveText.h"

#include "quilt/Document.h"
#include "quilt/Properties.h"

#include <utility>

namespace Quilt {

LiveText::LiveText(std::string source)
    : source_(std::move(source)), live_(source_.find('[') != std::string::npos) {
    if (!live_) {
        value_ = source_;
    }
}

std::optional<bool> LiveText::boolean() const {
    return wholeBoolean(value_);
}

double LiveText::number(double fallback) const {
    return wholeNumber(value_).value_or(fallback);
}

bool LiveText::refresh(Document& document) {
    if (!live_) {
        return false;
    }
    std::string value;
    try {
        value = document.expand(source_);
        failed_ = false;
    } catch (const std::exception& error) {
        if (!std::exchange(failed_, true)) {
            document.reportError(kMetaTextErrorTitle, error.what());
        }
    }
    if (value == value_) {
        return false;
    }
    value_ = std::move(value);
    return true;
}

} // namespace Quilt
