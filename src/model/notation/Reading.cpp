#include "notation/Compound.h"

#include "notation/Errors.h"
#include "notation/Quoting.h"
#include "notation/Scan.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Stackbrace {

// Walks over the elements of one level.
class LevelReader {
public:
    explicit LevelReader(const Element& element)
        : document_(*element.document_), text_(document_.text_.data()), p_(text_ + element.begin_),
          end_(text_ + element.end_) {
        skipBlanks();
        if (p_ != end_ && *p_ == '{') {
            braced_ = true;
            enter(element.span_ != Element::kUnknownSpan ? element.span_ : scannedSpan());
            ++p_;
            skipBlanks();
        }
    }

    List list() {
        List result;
        result.elements_.reserve(kUsualSize);
        while (!atEnd()) {
            const Element value = readValue();
            if (failed_) {
                break;
            }
            skipSeparator();
            result.elements_.push_back(value);
        }
        result.complete_ = complete();
        result.endOffset_ = endOffset();
        return result;
    }

    Structure structure() {
        Structure result;
        result.entries_.reserve(kUsualSize);
        while (!atEnd()) {
            const auto key = readKey(result);
            if (!key) {
                break;
            }
            Element value(document_, offset(p_), offset(p_)); // what stands with a key alone
            if (p_ != end_ && (*p_ == '=' || *p_ == ':')) {
                ++p_;
                skipBlanks();
                value = readValue();
            }
            if (failed_) {
                break;
            }
            skipSeparator();
            result.entries_.push_back({*key, value});
        }
        order(result.entries_);
        result.complete_ = complete();
        result.missing_ = Element(document_, 0, 0);
        result.endOffset_ = endOffset();
        return result;
    }

private:
    static constexpr std::size_t kUsualSize = 8;

    bool atEnd() const { return failed_ || p_ == end_ || *p_ == '}'; }
    bool complete() const { return !failed_ && (p_ != end_) == braced_; }
    std::size_t offset(const char* at) const { return static_cast<std::size_t>(at - text_); }
    std::size_t endOffset() const { return offset(p_); }

    void skipBlanks() { p_ = Scan::skipBlanks(p_, end_, false); }

    void skipSeparator() {
        skipBlanks();
        if (p_ != end_ && (*p_ == ',' || *p_ == ';')) {
            ++p_;
            skipBlanks();
        }
    }

    Element readValue() {
        if (p_ != end_ && Scan::in(*p_, Scan::opener)) {
            return readOpened();
        }
        const auto words = Scan::skipWords(p_, end_, Scan::valueStop, Scan::valueWordStop);
        Element element(document_, offset(p_), offset(words.last));
        element.regular_ = words.regular;
        p_ = words.next;
        return element;
    }

    // A string or a compound, taken whole.
    Element readOpened() {
        const char* const begin = p_;
        auto span = Element::kUnknownSpan;
        if (*p_ == '{') {
            span = findSpan();
            if (span == Element::kUnknownSpan) {
                failed_ = true;
                return {document_, offset(begin), offset(begin)};
            }
            p_ = std::min(end_, text_ + document_.spans_[span].end);
        } else {
            p_ = Scan::skipString(p_, end_);
        }
        Element element(document_, offset(begin), offset(p_));
        element.span_ = span;
        p_ = Scan::skipBlanks(p_, end_, true);
        return element;
    }

    // The compounds nested in the span are the ones that this level may meet.
    void enter(std::uint32_t span) {
        if (span != Element::kUnknownSpan) {
            span_ = span + 1;
            spansEnd_ = document_.spans_[span].next;
        }
    }

    // The span of the compound that opens here. Those within the enclosing compound stand in the order of
    // their opening braces; such as do not begin a value at this level are passed by, once.
    std::uint32_t findSpan() {
        const auto& spans = document_.spans_;
        const auto begin = offset(p_);
        while (span_ < spansEnd_ && spans[span_].begin < begin) {
            span_ = spans[span_].end <= begin ? spans[span_].next : span_ + 1;
        }
        if (span_ < spansEnd_ && spans[span_].begin == begin) {
            return std::exchange(span_, spans[span_].next);
        }
        return scannedSpan();
    }

    std::uint32_t scannedSpan() const { return document_.scannedSpan(offset(p_), offset(end_)); }

    // nullopt for a quoted key that is no valid string.
    std::optional<std::string_view> readKey(Structure& owner) {
        if (p_ != end_ && Scan::in(*p_, Scan::opener)) {
            const bool quoted = *p_ != '{';
            const std::string_view raw = readOpened().raw();
            if (failed_) {
                return std::nullopt;
            }
            return quoted ? unquotedKey(raw, owner) : raw;
        }
        const auto words = Scan::skipWords(p_, end_, Scan::keyStop, Scan::keyWordStop);
        const std::string_view raw(p_, static_cast<std::size_t>(words.last - p_));
        p_ = words.next;
        return words.regular ? raw : owner.ownKeys_.emplace_front(Scan::joinWords(raw));
    }

    std::optional<std::string_view> unquotedKey(std::string_view raw, Structure& owner) {
        std::string key;
        if (const auto fault = unquoteInto(raw, key)) {
            p_ = raw.data() + *fault;
            failed_ = true;
            return std::nullopt;
        }
        const auto inside = raw.substr(1, key.size());
        return inside == key ? inside : owner.ownKeys_.emplace_front(std::move(key));
    }

    // Keys in order, of equal ones only the first. Most structures are small, and then this is the fastest.
    static void order(std::vector<Structure::Entry>& entries) {
        constexpr std::size_t kFew = 24;
        // Most keys differ in their first byte; asking for it spares calls.
        const auto before = [](const Structure::Entry& a, const Structure::Entry& b) {
            if (!a.key.empty() && !b.key.empty() && a.key.front() != b.key.front()) {
                return static_cast<unsigned char>(a.key.front()) < static_cast<unsigned char>(b.key.front());
            }
            return a.key < b.key;
        };
        if (entries.size() > kFew) {
            std::stable_sort(entries.begin(), entries.end(), before);
        } else {
            for (std::size_t i = 1; i < entries.size(); ++i) {
                const Structure::Entry entry = entries[i];
                std::size_t place = i;
                for (; place > 0 && before(entry, entries[place - 1]); --place) {
                    entries[place] = entries[place - 1];
                }
                entries[place] = entry;
            }
        }
        entries.erase(std::unique(entries.begin(), entries.end(),
                                  [](const auto& a, const auto& b) { return a.key == b.key; }),
                      entries.end());
    }

    const Document& document_;
    const char* const text_;
    const char* p_;
    const char* const end_;
    std::uint32_t span_ = 0; // the next one that may open, up to spansEnd_
    std::uint32_t spansEnd_ = 0;
    bool braced_ = false;
    bool failed_ = false;
};

List readList(const Element& element) {
    return LevelReader(element).list();
}

Structure readStructure(const Element& element) {
    return LevelReader(element).structure();
}

namespace {

template <class Compound>
Compound complete(Compound compound, const Document& document) {
    if (!compound.complete()) {
        throw ParsingError("Malformed compound", document.position(compound.endOffset()));
    }
    return compound;
}

} // namespace

List Element::list() const {
    return complete(readList(*this), *document_);
}

Structure Element::structure() const {
    return complete(readStructure(*this), *document_);
}

const Element* Structure::find(std::string_view key) const {
    const auto entry = std::ranges::lower_bound(entries_, key, {}, &Entry::key);
    return entry != entries_.end() && entry->key == key ? &entry->value : nullptr;
}

Element Structure::operator[](std::string_view key) const {
    const Element* element = find(key);
    return element ? *element : missing_;
}

const Element& Structure::at(std::string_view key) const {
    if (const Element* element = find(key)) {
        return *element;
    }
    throw UndefinedElementError(std::string(key));
}

} // namespace Stackbrace
