#include "tool/Sound.h"

#include "platform/AtomicFileWrite.h"
#include "platform/PathText.h"
#include "tool/TextFile.h"

#include <fmt/core.h>
#include <sndfile.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace Tool {

namespace {

struct Closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using File = std::unique_ptr<SNDFILE, Closer>;

// A file in memory as the library reads it, so that standard input is a file like any other.
struct Bytes {
    std::string contents;
    sf_count_t position = 0;

    sf_count_t size() const { return static_cast<sf_count_t>(contents.size()); }

    sf_count_t seek(sf_count_t offset, int whence) {
        const sf_count_t base = whence == SEEK_CUR ? position : whence == SEEK_END ? size() : 0;
        position = std::clamp<sf_count_t>(base + offset, 0, size());
        return position;
    }

    sf_count_t read(void* to, sf_count_t count) {
        count = std::min(count, size() - position);
        std::memcpy(to, contents.data() + position, static_cast<std::size_t>(count));
        position += count;
        return count;
    }

    sf_count_t write(const void* from, sf_count_t count) {
        const auto start = static_cast<std::size_t>(position);
        const auto length = static_cast<std::size_t>(count);
        contents.resize(std::max(contents.size(), start + length));
        std::memcpy(contents.data() + start, from, length);
        position += count;
        return count;
    }
};

Bytes& bytes(void* user) {
    return *static_cast<Bytes*>(user);
}

SF_VIRTUAL_IO kInMemory = {
    [](void* user) { return bytes(user).size(); },
    [](sf_count_t offset, int whence, void* user) { return bytes(user).seek(offset, whence); },
    [](void* to, sf_count_t count, void* user) { return bytes(user).read(to, count); },
    [](const void* from, sf_count_t count, void* user) { return bytes(user).write(from, count); },
    [](void* user) { return bytes(user).position; },
};

[[noreturn]] void fail(const char* action, const std::string& name, const std::string& why) {
    throw std::runtime_error(fmt::format("Could not {} {}: {}", action, name, why));
}

// Headers may promise more than there is, and some formats promise nothing: what is read is what counts.
std::vector<float> readAll(SNDFILE* file, int channels) {
    constexpr std::size_t kFramesAtOnce = 65536;
    std::vector<float> samples;
    for (;;) {
        const std::size_t before = samples.size();
        samples.resize(before + kFramesAtOnce * static_cast<std::size_t>(channels));
        const sf_count_t count = sf_readf_float(file, samples.data() + before, kFramesAtOnce);
        samples.resize(before + static_cast<std::size_t>(std::max<sf_count_t>(count, 0) * channels));
        if (samples.size() == before) {
            return samples;
        }
    }
}

} // namespace

Sound readSound(const std::string& name) {
    Bytes source{readTextFile(name)};
    SF_INFO info{};
    const File file(sf_open_virtual(&kInMemory, SFM_READ, &info, &source));
    if (!file) {
        fail("read", name, sf_strerror(nullptr));
    }
    if (info.channels > 2) {
        fail("read", name,
             fmt::format("it has {} channels; the effect takes mono and stereo", info.channels));
    }
    const std::vector<float> samples = readAll(file.get(), info.channels);
    if (samples.empty()) {
        fail("read", name, "it holds no samples");
    }
    Sound sound{.rate = info.samplerate, .channels = {}};
    const auto step = static_cast<std::size_t>(info.channels);
    for (std::size_t channel = 0; channel < 2; ++channel) {
        for (std::size_t i = std::min(channel, step - 1); i < samples.size(); i += step) {
            sound.channels[channel].push_back(samples[i]);
        }
    }
    return sound;
}

int soundFormatOf(const std::filesystem::path& path) {
    std::string extension = Platform::utf8Of(path.extension());
    std::ranges::transform(extension, extension.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    if (extension == ".wav") {
        return SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    }
    if (extension == ".flac") {
        return SF_FORMAT_FLAC | SF_FORMAT_PCM_24;
    }
    fail("write", Platform::utf8Of(path), "the name must end in .wav or .flac");
}

void writeSound(const std::filesystem::path& path, const Sound& sound) {
    SF_INFO info{};
    info.samplerate = sound.rate;
    info.channels = 2;
    info.format = soundFormatOf(path);
    std::vector<float> pairs(2 * sound.length());
    for (std::size_t i = 0; i < sound.length(); ++i) {
        pairs[2 * i] = sound.channels[0][i];
        pairs[2 * i + 1] = sound.channels[1][i];
    }
    Bytes target;
    File file(sf_open_virtual(&kInMemory, SFM_WRITE, &info, &target));
    if (!file) {
        fail("write", Platform::utf8Of(path), sf_strerror(nullptr));
    }
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    // Peak chunks carry the time of writing: the same sound shall give the same bytes.
    sf_command(file.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    const auto frames = static_cast<sf_count_t>(sound.length());
    if (sf_writef_float(file.get(), pairs.data(), frames) != frames) {
        fail("write", Platform::utf8Of(path), sf_strerror(file.get()));
    }
    if (const int error = sf_close(file.release())) {
        fail("write", Platform::utf8Of(path), sf_error_number(error));
    }
    Platform::atomicFileWrite(path, target.contents);
}

} // namespace Tool
