#include "tool/MidiFile.h"

#include "tool/TextFile.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace Tool {

namespace {

constexpr std::uint32_t kDefaultTempo = 500000; // microseconds a quarter note
constexpr int kTempoBytes = 3;

enum Status : std::uint8_t {
    channelMessages = 0x80,
    systemExclusive = 0xF0,
    systemExclusiveEnd = 0xF7,
    meta = 0xFF,
};

enum Meta : std::uint8_t {
    endOfTrack = 0x2F,
    tempo = 0x51,
};

struct Event {
    std::uint64_t tick = 0;
    std::uint32_t tempo = 0; // microseconds a quarter note; 0: the event is a message
    std::array<std::uint8_t, 3> bytes{};
};

// Takes pieces off the front of the file or of a track.
class Pieces {
public:
    explicit Pieces(std::string_view bytes) : rest_(bytes) {}

    bool empty() const { return rest_.empty(); }

    std::string_view take(std::size_t count) {
        if (count > rest_.size()) {
            throw MidiFileError("the MIDI file is cut off");
        }
        const auto piece = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return piece;
    }

    std::uint8_t byte() { return static_cast<std::uint8_t>(take(1).front()); }

    std::uint32_t bigEndian(int count) {
        std::uint32_t number = 0;
        for (int i = 0; i < count; ++i) {
            number = number << 8 | byte();
        }
        return number;
    }

    // Seven bits a byte, the highest tells whether there is more: up to four bytes.
    std::uint32_t variableLength() {
        std::uint32_t number = 0;
        for (int i = 0; i < 4; ++i) {
            const std::uint8_t next = byte();
            number = number << 7 | (next & 0x7F);
            if (next < 0x80) {
                return number;
            }
        }
        throw MidiFileError("the MIDI file is damaged");
    }

    bool nextIsData() const { return !rest_.empty() && static_cast<std::uint8_t>(rest_.front()) < 0x80; }

private:
    std::string_view rest_;
};

class Track {
public:
    Track(std::string_view bytes, std::vector<Event>& events) : pieces_(bytes), events_(events) {}

    void read() {
        while (!ended_ && !pieces_.empty()) {
            tick_ += pieces_.variableLength();
            readEvent();
        }
    }

private:
    void readEvent() {
        // A channel message may go without its status when that is the one of the message before.
        const std::uint8_t status = pieces_.nextIsData() ? running_ : pieces_.byte();
        if (status >= channelMessages && status < systemExclusive) {
            running_ = status;
            readMessage(status);
        } else if (status == meta) {
            readMeta();
        } else if (status == systemExclusive || status == systemExclusiveEnd) {
            running_ = 0;
            pieces_.take(pieces_.variableLength());
        } else {
            throw MidiFileError("the MIDI file is damaged");
        }
    }

    void readMessage(std::uint8_t status) {
        Event event{.tick = tick_, .bytes = {status, pieces_.byte()}};
        const int kind = status & 0xF0;
        if (kind != 0xC0 && kind != 0xD0) { // program and channel pressure are the short ones
            event.bytes[2] = pieces_.byte();
        }
        if ((event.bytes[1] | event.bytes[2]) >= 0x80) {
            throw MidiFileError("the MIDI file is damaged");
        }
        events_.push_back(event);
    }

    void readMeta() {
        running_ = 0;
        const std::uint8_t kind = pieces_.byte();
        const std::string_view content = pieces_.take(pieces_.variableLength());
        if (kind == endOfTrack) {
            ended_ = true;
        } else if (kind == tempo && content.size() == kTempoBytes) {
            const std::uint32_t microseconds = Pieces(content).bigEndian(kTempoBytes);
            events_.push_back(
                {.tick = tick_, .tempo = std::max<std::uint32_t>(microseconds, 1), .bytes = {}});
        }
    }

    Pieces pieces_;
    std::vector<Event>& events_;
    std::uint64_t tick_ = 0;
    std::uint8_t running_ = 0;
    bool ended_ = false;
};

// Ticks, which come in order, to seconds.
class TickClock {
public:
    // Either ticks a quarter note or, when the highest bit is set, frames a second (negated) and ticks a
    // frame.
    explicit TickClock(std::uint32_t division) {
        if (division & 0x8000) {
            const int frames = 256 - static_cast<int>(division >> 8);
            const double perSecond = frames == 29 ? 30000 / 1001.0 : frames; // of colour television
            fixed_ = 1 / (perSecond * (division & 0xFF));
        } else {
            ticksPerQuarter_ = division;
        }
        if ((division & (division & 0x8000 ? 0xFF : 0x7FFF)) == 0) {
            throw MidiFileError("the MIDI file is damaged");
        }
    }

    double at(std::uint64_t tick) {
        const double secondsPerTick = fixed_ > 0 ? fixed_ : tempo_ * 1e-6 / ticksPerQuarter_;
        return begin_ + static_cast<double>(tick - beginTick_) * secondsPerTick;
    }

    void setTempo(std::uint64_t tick, std::uint32_t microseconds) {
        begin_ = at(tick);
        beginTick_ = tick;
        tempo_ = microseconds;
    }

private:
    double fixed_ = 0;
    double ticksPerQuarter_ = 1;
    double tempo_ = kDefaultTempo;
    double begin_ = 0;
    std::uint64_t beginTick_ = 0;
};

std::vector<TimedMessage> timed(std::vector<Event> events, TickClock clock) {
    std::ranges::stable_sort(events, {}, &Event::tick);
    std::vector<TimedMessage> messages;
    for (const Event& event : events) {
        if (event.tempo > 0) {
            clock.setTempo(event.tick, event.tempo);
        } else {
            messages.push_back({clock.at(event.tick), event.bytes});
        }
    }
    return messages;
}

} // namespace

std::vector<TimedMessage> readMidi(std::string_view file) {
    constexpr std::size_t kHeader = 6;
    if (!file.starts_with("MThd")) {
        throw MidiFileError("it is no standard MIDI file");
    }
    Pieces pieces(file.substr(4));
    const std::uint32_t headerLength = pieces.bigEndian(4);
    if (headerLength < kHeader) {
        throw MidiFileError("the MIDI file is damaged");
    }
    Pieces header(pieces.take(headerLength));
    header.bigEndian(2); // whether the tracks sound together; those that do not are rare, and sound so here
    const std::uint32_t tracks = header.bigEndian(2);
    const TickClock clock(header.bigEndian(2));
    std::vector<Event> events;
    for (std::uint32_t track = 0; track < tracks;) {
        const bool isTrack = pieces.take(4) == "MTrk"; // chunks of other kinds may stand between
        const std::string_view content = pieces.take(pieces.bigEndian(4));
        if (isTrack) {
            Track(content, events).read();
            ++track;
        }
    }
    return timed(std::move(events), clock);
}

std::vector<TimedMessage> readMidiFile(const std::string& name) {
    try {
        return readMidi(readTextFile(name));
    } catch (const MidiFileError& error) {
        throw std::runtime_error(fmt::format("Could not read {}: {}", name, error.what()));
    }
}

} // namespace Tool
