// Where something stands in a text, as error messages tell it. Positions are counted only when somebody asks:
// readers carry byte offsets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Stackbrace {

struct Position {
    std::string sourceName;   // may be empty
    std::uint32_t line = 1;   // counts line feeds
    std::uint32_t column = 1; // in bytes; a carriage return is an ordinary column
    std::uint64_t offset = 0; // bytes from the start of the source
};

// The position of the byte at `offset` (or of the end) of `text`.
Position positionIn(std::string_view text, std::size_t offset, std::string sourceName = {});

// Where the bytes of a text came from that a program has put together, a macro processor's expansion for one.
class PositionMap {
public:
    virtual ~PositionMap() = default;
    virtual Position locate(std::size_t offset) const = 0;
};

} // namespace Stackbrace
