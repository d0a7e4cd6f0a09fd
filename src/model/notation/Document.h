// A text in the notation, and its parts as ranges of it. A document is not parsed into a tree: reading a
// compound (Compound.h) splits its own level only and hands the elements down as they stand in the text, to
// be read in turn by whoever knows what they are. Every element therefore knows its place in the source at
// any depth, and a text of which one key is wanted costs one pass.
//
// All levels together still take linear time: finding a compound's end notes the ends of all that are nested
// in it, and readers of deeper levels look them up.
//
// Elements point into their document, which has to outlive them. A document is read by one thread at a time.
#pragma once

#include "notation/Position.h"
#include "notation/Scan.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Stackbrace {

class Document;
class List;
class Structure;

// The text of one value: a quoted string with its quotes, a compound with its braces, or a run of words. The
// default is an empty text of no document.
class Element {
public:
    Element();

    // The range of the source, from the first byte of the value to its last.
    std::string_view raw() const;

    // The element's text: as raw(), but with one space between the words of an unquoted value, whatever
    // blanks and comments the source has there.
    std::string text() const;

    bool empty() const { return begin_ == end_; }
    std::size_t offset() const { return begin_; }
    Position position() const;

    // Strict reading. Each throws ParsingError at the byte that does not fit.
    Stackbrace::List list() const;
    Stackbrace::Structure structure() const;
    std::string string() const; // a quoted string's content, else the text as it stands
    bool boolean() const;

    // Numbers as Numbers.h converts them: an Exception "Invalid number: TEXT" for what is none, but
    // ParsingError where there is nothing at all.
    double float64() const;
    float float32() const;
    std::int32_t integer() const;

private:
    friend class Document;
    friend class Cursor;
    friend class LevelReader;

    static constexpr auto kUnknownSpan = static_cast<std::uint32_t>(-1);

    Element(const Document& document, std::size_t begin, std::size_t end)
        : document_(&document), begin_(static_cast<std::uint32_t>(begin)),
          end_(static_cast<std::uint32_t>(end)) {}

    const Document* document_;
    std::uint32_t begin_ = 0;
    std::uint32_t end_ = 0;
    std::uint32_t span_ = kUnknownSpan; // of a compound whose inside has been scanned
    bool regular_ = true;               // raw() is text()
};

class Document {
public:
    // Offsets are 32 bits wide inside. Throws std::length_error beyond.
    static constexpr std::size_t kLargestText = 0xFFFFFFF0;

    explicit Document(std::string text, std::string sourceName = {},
                      std::shared_ptr<const PositionMap> positions = nullptr);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    // Up to the first NUL or SUB byte, which end a text.
    std::string_view text() const { return {text_.data(), size_}; }
    Element root() const { return {*this, 0, size_}; }

    // Where the byte at `offset` stands: in the sources of the position map if there is one, else in this
    // text.
    Position position(std::size_t offset) const;

private:
    friend class LevelReader;

    // A compound that opens where no scan has seen one (a quote inside a word hides braces from a scan of the
    // level above but not from the reader of its own) is scanned anew. Nested, such places could cost depth
    // times size; so all scans together may pass over the text this many times.
    static constexpr std::size_t kMostScans = 64;

    // The span of a compound at `begin` that no enclosing scan has seen: scanned now, or when it was met
    // before. kUnknownSpan when the budget is used up.
    std::uint32_t scannedSpan(std::size_t begin, std::size_t end) const;

    std::string text_;
    std::size_t size_;
    std::string sourceName_;
    std::shared_ptr<const PositionMap> positions_;
    mutable std::vector<Scan::Span> spans_;
    mutable std::unordered_map<std::size_t, std::uint32_t> scannedSpans_; // by begin
    mutable std::size_t scannedBytes_ = 0;
};

inline std::string_view Element::raw() const {
    return {document_->text().data() + begin_, end_ - begin_};
}

} // namespace Stackbrace
