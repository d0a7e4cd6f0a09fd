#include "model/KeptVariables.h"

#include "model/Preferences.h"
#include "notation/Compound.h"
#include "notation/Document.h"
#include "notation/Writer.h"

namespace Model {

namespace {

constexpr std::string_view kPreferences = "preferences.";
constexpr std::string_view kInstance = "instance.";
constexpr std::string_view kProject = "project.";
constexpr std::string_view kProgram = "program.";

constexpr std::string_view kTopKey = "MurmelonVariables";

bool belongs(std::string_view name, std::string_view prefix) {
    return name.size() > prefix.size() && name.starts_with(prefix);
}

template <typename Table>
std::string valueOf(const Table& table, std::string_view key) {
    const auto entry = table.find(key);
    return entry != table.end() ? entry->second : std::string();
}

template <typename Table>
void assign(Table& table, std::string_view key, std::string_view value) {
    if (value.empty()) {
        if (const auto entry = table.find(key); entry != table.end()) {
            table.erase(entry);
        }
    } else {
        table.insert_or_assign(std::string(key), std::string(value));
    }
}

template <typename Table>
void write(Stackbrace::Writer& writer, std::string_view key, const Table& table) {
    if (table.empty()) {
        return;
    }
    writer.begin(key);
    for (const auto& [name, value] : table) {
        writer.string(name, value);
    }
    writer.end();
}

std::map<std::string, std::string, std::less<>> read(const Stackbrace::Element& element) {
    std::map<std::string, std::string, std::less<>> table;
    if (!element.empty()) {
        const auto stored = element.structure();
        for (const auto& [name, value] : stored) {
            table.emplace(name, value.string());
        }
    }
    return table;
}

std::string programKey(std::size_t program) {
    return "program" + std::to_string(program + 1);
}

} // namespace

std::optional<std::string> KeptVariables::get(std::string_view name) const {
    if (belongs(name, kPreferences)) {
        return preferences_.get(name).value_or(std::string());
    }
    if (belongs(name, kInstance)) {
        return valueOf(instance_, name.substr(kInstance.size()));
    }
    if (belongs(name, kProject)) {
        return valueOf(project_, name.substr(kProject.size()));
    }
    if (belongs(name, kProgram)) {
        return valueOf(current(), name.substr(kProgram.size()));
    }
    return std::nullopt;
}

bool KeptVariables::set(std::string_view name, std::string_view value) {
    if (belongs(name, kPreferences)) {
        preferences_.set(name, value);
    } else if (belongs(name, kInstance)) {
        assign(instance_, name.substr(kInstance.size()), value);
    } else if (belongs(name, kProject)) {
        assign(project_, name.substr(kProject.size()), value);
    } else if (belongs(name, kProgram)) {
        assign(current(), name.substr(kProgram.size()), value);
    } else {
        return false;
    }
    return true;
}

std::string KeptVariables::projectText() const {
    bool any = !project_.empty();
    for (const Table& table : programsTables_) {
        any = any || !table.empty();
    }
    if (!any) {
        return {};
    }
    Stackbrace::Writer writer;
    writer.begin(kTopKey);
    write(writer, "project", project_);
    for (std::size_t i = 0; i < programsTables_.size(); ++i) {
        write(writer, programKey(i), programsTables_[i]);
    }
    writer.end();
    return writer.take();
}

std::string KeptVariables::programText() const {
    if (current().empty()) {
        return {};
    }
    Stackbrace::Writer writer;
    writer.begin(kTopKey);
    write(writer, "program", current());
    writer.end();
    return writer.take();
}

void KeptVariables::readProject(const std::string& text) {
    Table project;
    std::array<Table, Programs::kCount> programs;
    if (!text.empty()) {
        const Stackbrace::Document document(text);
        const auto root = document.root().structure();
        const auto content = root.at(kTopKey).structure();
        project = read(content["project"]);
        for (std::size_t i = 0; i < programs.size(); ++i) {
            programs[i] = read(content[programKey(i)]);
        }
    }
    project_ = std::move(project);
    programsTables_ = std::move(programs);
}

void KeptVariables::readProgram(const std::string& text) {
    Table program;
    if (!text.empty()) {
        const Stackbrace::Document document(text);
        const auto root = document.root().structure();
        const auto content = root.at(kTopKey).structure();
        program = read(content["program"]);
    }
    current() = std::move(program);
}

} // namespace Model
