// A text of a view's with meta tags in it, expanded again whenever variables may have changed.
#pragma once

#include <optional>
#include <string>

namespace Quilt {

class Document;

class LiveText {
public:
    LiveText() = default;
    explicit LiveText(std::string source);

    const std::string& source() const { return source_; }
    const std::string& value() const { return value_; }
    std::optional<bool> boolean() const;
    double number(double fallback) const;

    // True when the value is another now. A text that cannot be expanded is empty; the document hears of it
    // once and not again before it has worked.
    bool refresh(Document& document);

private:
    std::string source_;
    std::string value_;
    bool live_ = false; // has to be expanded
    bool failed_ = false;
};

} // namespace Quilt
