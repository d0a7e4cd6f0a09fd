// What the plug-in remembers for the user between sessions: named entries of text or bytes (the startup bank,
// the default MIDI configuration, folders), in one record that all instances in all processes share. A change
// touches its own entry only; whatever others have stored since stays.
#pragma once

#include "platform/SharedRecord.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Model {

class Preferences {
public:
    using Report = std::function<void(const std::string& message)>;

    // A record that makes no sense is set aside and begun afresh; `report` is told so, once.
    explicit Preferences(Platform::SharedRecord& record, Report report = {})
        : record_(record), report_(std::move(report)) {}

    // nullopt when there is no such entry. Throws std::runtime_error when the record cannot be reached.
    std::optional<std::string> get(std::string_view name) const;
    void set(std::string_view name, std::string_view content);
    void remove(std::string_view name);

private:
    using Entries = std::map<std::string, std::string, std::less<>>;

    Entries read() const;
    void change(const std::function<void(Entries&)>& edit) const;

    Platform::SharedRecord& record_;
    Report report_;
};

} // namespace Model
