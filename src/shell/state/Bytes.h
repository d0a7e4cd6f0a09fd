// Binary blocks: 32-bit numbers, and strings with their length in front (little-endian).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Bnk {

// Takes pieces off the front of a block. Reading past the end throws StreamException, "End of file error".
class ByteReader {
public:
    explicit ByteReader(std::string_view bytes) : rest_(bytes) {}

    std::uint32_t littleEndian();
    std::uint32_t bigEndian();
    std::string_view bytes(std::size_t count);
    std::string_view string();

    std::string_view rest() const { return rest_; }

private:
    std::string_view rest_;
};

void appendLittleEndian(std::string& block, std::uint32_t number);
void appendBigEndian(std::string& block, std::uint32_t number);
void appendString(std::string& block, std::string_view text);

} // namespace Bnk
