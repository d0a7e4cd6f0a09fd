// File dialogs shown by zenity or kdialog, which print what the user has chosen.
#include "platform/linux/ChildProcess.h"
#include "platform/linux/FileChooser.h"

namespace Platform {

namespace {

namespace fs = std::filesystem;

class ProgramChooser final : public FileChooser {
public:
    explicit ProgramChooser(const std::vector<std::string>& words) : process_(words) {}

    std::optional<ChooserOutcome> poll() override {
        auto result = process_.poll();
        if (!result) {
            return std::nullopt;
        }
        constexpr int kCancelled = 1;
        if (result->output.ends_with('\n')) {
            result->output.pop_back();
        }
        if (result->status == 0 && !result->output.empty()) {
            return ChooserOutcome{ChooserOutcome::Kind::chosen, result->output};
        }
        return ChooserOutcome{result->status == kCancelled ? ChooserOutcome::Kind::cancelled
                                                           : ChooserOutcome::Kind::unavailable,
                              {}};
    }

private:
    ChildProcess process_;
};

bool saves(const FileDialogRequest& request) {
    return request.kind == FileDialogRequest::Kind::save;
}

// A folder ends with "/", which tells these programs that it is one.
std::string startPath(const FileDialogRequest& request) {
    if (request.folder.empty()) {
        return request.fileName;
    }
    return (request.folder / request.fileName).string();
}

void append(std::string& list, char separator, std::string_view part) {
    if (!list.empty()) {
        list += separator;
    }
    list += part;
}

std::string joined(const std::vector<std::string>& patterns) {
    std::string text;
    for (const std::string& pattern : patterns) {
        append(text, ' ', pattern);
    }
    return text;
}

} // namespace

std::unique_ptr<FileChooser> openZenityChooser(const FileDialogRequest& request) {
    if (!programExists("zenity")) {
        return nullptr;
    }
    std::vector<std::string> words{"zenity", "--file-selection", "--title=" + request.title};
    if (saves(request)) {
        words.insert(words.end(), {"--save", "--confirm-overwrite"});
    }
    if (const std::string start = startPath(request); !start.empty()) {
        words.push_back("--filename=" + start);
    }
    for (const FileFilter& filter : request.filters) {
        words.push_back("--file-filter=" + filter.name + " | " + joined(filter.patterns));
    }
    return std::make_unique<ProgramChooser>(words);
}

std::unique_ptr<FileChooser> openKdialogChooser(const FileDialogRequest& request) {
    if (!programExists("kdialog")) {
        return nullptr;
    }
    std::vector<std::string> words{"kdialog", "--title", request.title};
    if (request.parent != 0) {
        words.insert(words.end(), {"--attach", std::to_string(request.parent)});
    }
    const std::string start = startPath(request);
    words.push_back(saves(request) ? "--getsavefilename" : "--getopenfilename");
    words.push_back(start.empty() ? "./" : start);
    std::string filters;
    for (const FileFilter& filter : request.filters) {
        append(filters, '\n', joined(filter.patterns));
        append(filters, '|', filter.name);
    }
    if (!filters.empty()) {
        words.push_back(filters);
    }
    return std::make_unique<ProgramChooser>(words);
}

} // namespace Platform
