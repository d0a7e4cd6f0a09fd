#include "tool/MidiFile.h"

#include "tool/TextFile.h"

#include <fmt/core.h>
#include <glib.h>
#include <smf.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <stdexcept>

namespace Tool {

namespace {

struct Deleter {
    void operator()(smf_t* song) const { smf_delete(song); }
};

constexpr int kFirstSystemMessage = 0xF0;

} // namespace

std::vector<TimedMessage> readMidiFile(const std::string& name) {
    const std::string file = readTextFile(name);
    // The library tells the terminal what it thinks of a file; standard error is for this program's words.
    g_log_set_default_handler([](const gchar*, GLogLevelFlags, const gchar*, gpointer) {}, nullptr);
    const bool fits = file.size() <= static_cast<std::size_t>(std::numeric_limits<int>::max());
    const std::unique_ptr<smf_t, Deleter> song(
        fits ? smf_load_from_memory(file.data(), static_cast<int>(file.size())) : nullptr);
    if (!song) {
        throw std::runtime_error(fmt::format("Could not read {}: it is no standard MIDI file", name));
    }
    std::vector<TimedMessage> messages;
    while (const smf_event_t* event = smf_get_next_event(song.get())) {
        if (event->midi_buffer_length < 1 || event->midi_buffer[0] >= kFirstSystemMessage) {
            continue;
        }
        TimedMessage message{.seconds = event->time_seconds, .bytes = {}};
        const auto length = std::min<std::size_t>(static_cast<std::size_t>(event->midi_buffer_length), 3);
        std::copy_n(event->midi_buffer, length, message.bytes.begin());
        messages.push_back(message);
    }
    return messages;
}

} // namespace Tool
