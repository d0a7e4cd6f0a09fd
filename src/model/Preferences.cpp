#include "model/Preferences.h"

#include "notation/Compound.h"
#include "notation/Document.h"
#include "notation/Errors.h"
#include "notation/Writer.h"

namespace Model {

namespace {

constexpr std::string_view kTopKey = "MurmelonPreferences";

// nullopt for a record that is damaged.
std::optional<std::map<std::string, std::string, std::less<>>> parse(const std::string& text) {
    std::map<std::string, std::string, std::less<>> entries;
    if (text.empty()) {
        return entries;
    }
    try {
        const Stackbrace::Document document(text);
        const auto root = document.root().structure();
        const auto stored = root.at(kTopKey).structure();
        for (const auto& [name, content] : stored) {
            entries.emplace(name, content.string());
        }
        return entries;
    } catch (const Stackbrace::Exception&) {
        return std::nullopt;
    }
}

std::string write(const std::map<std::string, std::string, std::less<>>& entries) {
    Stackbrace::Writer writer;
    writer.begin(kTopKey);
    for (const auto& [name, content] : entries) {
        writer.string(name, content);
    }
    writer.end();
    return writer.take();
}

} // namespace

std::optional<std::string> Preferences::get(std::string_view name) const {
    const Entries entries = read();
    const auto entry = entries.find(name);
    return entry != entries.end() ? std::optional(entry->second) : std::nullopt;
}

void Preferences::set(std::string_view name, std::string_view content) {
    change([&](Entries& entries) { entries.insert_or_assign(std::string(name), std::string(content)); });
}

void Preferences::remove(std::string_view name) {
    change([&](Entries& entries) {
        if (const auto entry = entries.find(name); entry != entries.end()) {
            entries.erase(entry);
        }
    });
}

Preferences::Entries Preferences::read() const {
    if (auto entries = parse(record_.read())) {
        return *std::move(entries);
    }
    // Looked at again with the record locked: another process may be setting it aside.
    Entries entries;
    change([&](Entries& current) { entries = current; });
    return entries;
}

void Preferences::change(const std::function<void(Entries&)>& edit) const {
    bool damaged = false;
    record_.update([&](const std::string& text) {
        auto entries = parse(text);
        damaged = !entries;
        if (damaged) {
            entries.emplace();
        }
        edit(*entries);
        return Platform::SharedRecord::Replacement{write(*entries), damaged};
    });
    if (damaged && report_) {
        report_("The preferences were damaged and have been reset.");
    }
}

} // namespace Model
