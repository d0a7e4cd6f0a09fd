// What names stand for in one stretch of macro text, and in the scopes around it.
#pragma once

#include "tombola/PositionMap.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tombola {

class Scope;

// An expanded text: a range of a source that holds nothing to expand, else a string of its own. Stretches are
// kept only when positions are wanted.
class Value {
public:
    Value() = default;
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;

    std::string_view text() const { return owns_ ? std::string_view(own_) : borrowed_; }

    // The source has to live as long as the value.
    void borrow(std::string_view text) {
        borrowed_ = text;
        owns_ = false;
        stretches.clear();
    }

    // An empty string to expand into. It keeps its room from earlier use.
    std::string& ownText() {
        own_.clear();
        owns_ = true;
        stretches.clear();
        return own_;
    }

    // Takes over what `value` holds, for longer than its source may live.
    void keep(Value& value) {
        own_ = value.owns_ ? std::move(value.own_) : std::string(value.borrowed_);
        own_.shrink_to_fit();
        owns_ = true;
        stretches = std::move(value.stretches);
    }

    std::vector<Stretch> stretches;

private:
    std::string own_;
    std::string_view borrowed_;
    bool owns_ = false;
};

// Values in the order in which they are needed and given up, so that their strings' room is used again.
class ValueStack {
public:
    std::size_t size() const { return size_; }
    Value& operator[](std::size_t index) { return *values_[index]; }
    Value& push() {
        if (size_ == values_.size()) {
            values_.push_back(std::make_unique<Value>());
        }
        return *values_[size_++];
    }
    void shrink(std::size_t size) { size_ = size; }

private:
    std::vector<std::unique_ptr<Value>> values_;
    std::size_t size_ = 0;
};

struct BlockMacro {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    SourcePointer source; // of the parameters' names and the body
    std::vector<std::string_view> parameters;
    std::string_view body;
    Scope* scope = nullptr; // in which it was defined

    // False for a name that is taken.
    bool addParameter(std::string_view name);
    std::size_t parameter(std::string_view name) const;

private:
    static constexpr std::size_t kFewParameters = 12; // searched in a row
    std::unordered_map<std::string_view, std::size_t> index_;
};

class Scope {
public:
    Scope(Scope* parent, unsigned remainingDepth) : parent_(parent), remainingDepth_(remainingDepth) {}

    // Of a call: the arguments are values from `first` on.
    Scope(Scope* parent, unsigned remainingDepth, const BlockMacro& macro, ValueStack& values,
          std::size_t first)
        : parent_(parent), remainingDepth_(remainingDepth), macro_(&macro), values_(&values), first_(first) {}

    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

    unsigned remainingDepth() const { return remainingDepth_; }

    struct Meaning {
        const BlockMacro* block = nullptr;
        Value* value = nullptr;
    };

    // The nearest definition of the name; of both kinds in one scope the block macro.
    Meaning find(std::string_view name);

    // nullptr when this scope has a definition of that kind and name.
    Value* defineValue(std::string_view name);
    bool defineBlock(std::string_view name, std::unique_ptr<BlockMacro> macro);

private:
    struct Definition {
        std::unique_ptr<BlockMacro> block;
        std::unique_ptr<Value> value;
    };
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    using Definitions = std::unordered_map<std::string, Definition, Hash, std::equal_to<>>;

    Value* argument(std::string_view name);
    Definition& definition(std::string_view name);

    Scope* parent_;
    unsigned remainingDepth_;
    const BlockMacro* macro_ = nullptr;
    ValueStack* values_ = nullptr;
    std::size_t first_ = 0;
    std::unique_ptr<Definitions> definitions_; // most scopes define nothing
};

} // namespace Tombola
