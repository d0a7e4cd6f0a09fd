#include "state/Bytes.h"

#include "state/Errors.h"

namespace Bnk {

namespace {

constexpr std::size_t kNumberSize = 4;

std::uint32_t byteAt(std::string_view bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes[index]);
}

} // namespace

std::uint32_t ByteReader::littleEndian() {
    const auto b = bytes(kNumberSize);
    return byteAt(b, 0) | byteAt(b, 1) << 8 | byteAt(b, 2) << 16 | byteAt(b, 3) << 24;
}

std::uint32_t ByteReader::bigEndian() {
    const auto b = bytes(kNumberSize);
    return byteAt(b, 0) << 24 | byteAt(b, 1) << 16 | byteAt(b, 2) << 8 | byteAt(b, 3);
}

std::string_view ByteReader::bytes(std::size_t count) {
    if (count > rest_.size()) {
        throw StreamException();
    }
    const auto taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
}

std::string_view ByteReader::string() {
    return bytes(littleEndian());
}

void appendLittleEndian(std::string& block, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8) {
        block += static_cast<char>(number >> shift & 255);
    }
}

void appendBigEndian(std::string& block, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        block += static_cast<char>(number >> shift & 255);
    }
}

void appendString(std::string& block, std::string_view text) {
    appendLittleEndian(block, static_cast<std::uint32_t>(text.size()));
    block += text;
}

} // namespace Bnk
