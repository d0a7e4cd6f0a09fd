#include "notation/Document.h"

#include "notation/Cursor.h"
#include "notation/Scan.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Stackbrace {

namespace {

// Twice a search for one byte is many times faster than a search for either.
std::size_t endOfText(const std::string& text) {
    return std::min({text.find('\0'), text.find('\x1A'), text.size()});
}

const Document& noDocument() {
    static const Document empty{std::string{}};
    return empty;
}

} // namespace

Document::Document(std::string text, std::string sourceName, std::shared_ptr<const PositionMap> positions)
    : text_(std::move(text)), size_(endOfText(text_)), sourceName_(std::move(sourceName)),
      positions_(std::move(positions)) {
    if (size_ > kLargestText) {
        throw std::length_error("Stackbrace text is too long");
    }
}

Position Document::position(std::size_t offset) const {
    return positions_ ? positions_->locate(offset) : positionIn(text(), offset, sourceName_);
}

std::uint32_t Document::scannedSpan(std::size_t begin, std::size_t end) const {
    const auto known = scannedSpans_.find(begin);
    if (known != scannedSpans_.end()) {
        return known->second;
    }
    if (scannedBytes_ > kMostScans * size_) {
        return Element::kUnknownSpan;
    }
    const auto span = static_cast<std::uint32_t>(spans_.size());
    const char* const opening = text_.data() + begin;
    const char* const behind = Scan::scanCompound(text_.data(), opening, text_.data() + end, spans_);
    scannedBytes_ += static_cast<std::size_t>(behind - opening);
    scannedSpans_.emplace(begin, span);
    return span;
}

Element::Element() : document_(&noDocument()) {}

std::string Element::text() const {
    return regular_ ? std::string(raw()) : Scan::joinWords(raw());
}

Position Element::position() const {
    return document_->position(begin_);
}

std::string Element::string() const {
    return Cursor(*this).string();
}

bool Element::boolean() const {
    return Cursor(*this).boolean();
}

double Element::float64() const {
    return Cursor(*this).float64();
}

float Element::float32() const {
    return Cursor(*this).float32();
}

std::int32_t Element::integer() const {
    return Cursor(*this).integer();
}

} // namespace Stackbrace
