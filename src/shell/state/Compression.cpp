#include "state/Compression.h"

#include "state/Errors.h"

#include <zlib.h>

#include <algorithm>
#include <limits>
#include <new>

namespace Bnk {

namespace {

Bytef* bytesOf(const char* text) {
    return reinterpret_cast<Bytef*>(const_cast<char*>(text)); // zlib does not write to its input
}

struct Inflater {
    z_stream stream{};

    Inflater() {
        if (inflateInit(&stream) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~Inflater() { inflateEnd(&stream); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
};

} // namespace

std::string deflated(std::string_view content) {
    uLongf size = compressBound(static_cast<uLong>(content.size()));
    std::string result(size, '\0');
    if (compress(bytesOf(result.data()), &size, bytesOf(content.data()),
                 static_cast<uLong>(content.size())) != Z_OK) {
        throw std::bad_alloc();
    }
    result.resize(size);
    return result;
}

std::string inflated(std::string_view stream, std::uint32_t length) {
    if (length < kLeastInflated || length > kMostInflated) {
        throw FormatException("Invalid data format (insane inflated length)");
    }
    std::string result(length, '\0');
    Inflater inflater;
    z_stream& zlib = inflater.stream;
    zlib.next_in = bytesOf(stream.data());
    zlib.avail_in = static_cast<uInt>(std::min<std::size_t>(stream.size(), std::numeric_limits<uInt>::max()));
    zlib.next_out = bytesOf(result.data());
    zlib.avail_out = length;
    switch (inflate(&zlib, Z_FINISH)) {
    case Z_STREAM_END:
        if (zlib.avail_out > 0) {
            throw FormatException("Invalid data format (inflated data is too short)");
        }
        return result;
    case Z_OK:
    case Z_BUF_ERROR:
        if (zlib.avail_in == 0) {
            throw StreamException();
        }
        throw FormatException("Invalid data format (inflated data is too long)");
    case Z_MEM_ERROR:
        throw std::bad_alloc();
    default:
        throw FormatException("Invalid data format (corrupt compressed data)");
    }
}

} // namespace Bnk
