// One level of a compound, split into its elements. Braces around it are optional, elements are separated by
// commas, semicolons or just line ends. Whether a compound is a list or a structure is for the reader to say.
//
// readList and readStructure are lenient: they keep what could be read and tell in `complete` whether the
// text went on to its end, or to the brace that matches its first. Element::list and Element::structure throw
// instead.
#pragma once

#include "notation/Document.h"

#include <cstddef>
#include <forward_list>
#include <string>
#include <string_view>
#include <vector>

namespace Stackbrace {

class List {
public:
    std::size_t size() const { return elements_.size(); }
    bool empty() const { return elements_.empty(); }
    const Element& operator[](std::size_t index) const { return elements_[index]; }
    std::vector<Element>::const_iterator begin() const { return elements_.begin(); }
    std::vector<Element>::const_iterator end() const { return elements_.end(); }

    bool complete() const { return complete_; }
    std::size_t endOffset() const { return endOffset_; } // where reading stopped

private:
    friend class LevelReader;

    std::vector<Element> elements_;
    std::size_t endOffset_ = 0;
    bool complete_ = false;
};

// Keys are unique, the first of equal ones wins, and stand in the order of their bytes.
class Structure {
public:
    struct Entry {
        std::string_view key; // unquoted; lives as long as the structure
        Element value;
    };

    // nullptr when there is no such key.
    const Element* find(std::string_view key) const;

    // An empty element of the document when there is no such key: what it should have been and is not, the
    // document's name is told with.
    Element operator[](std::string_view key) const;

    // Throws UndefinedElementError when there is no such key.
    const Element& at(std::string_view key) const;

    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }
    std::vector<Entry>::const_iterator begin() const { return entries_.begin(); }
    std::vector<Entry>::const_iterator end() const { return entries_.end(); }

    bool complete() const { return complete_; }
    std::size_t endOffset() const { return endOffset_; }

    Structure() = default;
    Structure(Structure&&) = default;
    Structure& operator=(Structure&&) = default;

private:
    friend class LevelReader;

    std::vector<Entry> entries_;
    std::forward_list<std::string> ownKeys_; // of keys that do not stand in the source as they read
    Element missing_;
    std::size_t endOffset_ = 0;
    bool complete_ = false;
};

List readList(const Element& element);
Structure readStructure(const Element& element);

} // namespace Stackbrace
