// The system's own dialogs. They are modal: poll() shows one and comes back with the answer.
#include "platform/FileDialog.h"

#include "platform/win32/ModalCall.h"
#include "platform/win32/SystemText.h"

#include <windows.h>

#include <commdlg.h>

#include <algorithm>
#include <cwchar>
#include <utility>

namespace Platform {

namespace {

// "Patches\0*.a;*.b\0...\0", as the dialog wants it.
std::wstring filterText(const std::vector<FileFilter>& filters) {
    std::wstring text;
    for (const FileFilter& filter : filters) {
        text += toWide(filter.name);
        text += L'\0';
        for (std::size_t i = 0; i < filter.patterns.size(); ++i) {
            text += i > 0 ? L";" : L"";
            text += toWide(filter.patterns[i]);
        }
        text += L'\0';
    }
    return text;
}

// What a name without an extension gets: that of the first pattern.
std::wstring defaultExtension(const std::vector<FileFilter>& filters) {
    if (filters.empty() || filters.front().patterns.empty()) {
        return {};
    }
    const std::string& pattern = filters.front().patterns.front();
    const std::size_t dot = pattern.rfind('.');
    const std::string extension = dot == std::string::npos ? std::string() : pattern.substr(dot + 1);
    return extension.find_first_of("*?") == std::string::npos ? toWide(extension) : std::wstring();
}

FileDialogAnswer ask(const FileDialogRequest& request) {
    constexpr std::size_t kLongestPath = 32768;
    std::wstring file = toWide(request.fileName);
    // The dialog fails for names that no file can have.
    std::replace_if(
        file.begin(), file.end(), [](wchar_t c) { return c < 32 || std::wcschr(L"<>:\"/\\|?*", c); }, L'_');
    file.resize(kLongestPath, L'\0');
    const std::wstring title = toWide(request.title);
    const std::wstring filters = filterText(request.filters);
    const std::wstring extension = defaultExtension(request.filters);

    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = reinterpret_cast<HWND>(request.parent);
    dialog.lpstrFilter = filters.empty() ? nullptr : filters.c_str();
    dialog.lpstrFile = file.data();
    dialog.nMaxFile = static_cast<DWORD>(file.size());
    dialog.lpstrInitialDir = request.folder.empty() ? nullptr : request.folder.c_str();
    dialog.lpstrTitle = title.empty() ? nullptr : title.c_str();
    dialog.lpstrDefExt = extension.empty() ? nullptr : extension.c_str();
    dialog.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST | OFN_ENABLESIZING;
    const bool saving = request.kind == FileDialogRequest::Kind::save;
    dialog.Flags |= saving ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST;

    FileDialogAnswer answer;
    if (saving ? GetSaveFileNameW(&dialog) : GetOpenFileNameW(&dialog)) {
        answer.file = file.c_str();
    } else if (const DWORD error = CommDlgExtendedError()) {
        answer.error = "The file dialog failed: error " + std::to_string(error);
    }
    return answer;
}

class SystemFileDialog final : public FileDialog {
public:
    SystemFileDialog(FileDialogRequest request, Answered answered)
        : request_(std::move(request)), answered_(std::move(answered)) {}

    ~SystemFileDialog() override {
        if (call_) {
            call_->cancel();
        }
    }
    SystemFileDialog(const SystemFileDialog&) = delete;
    SystemFileDialog& operator=(const SystemFileDialog&) = delete;

    bool poll() override {
        const Answered answered = std::exchange(answered_, nullptr);
        if (!answered) {
            return call_ != nullptr; // from within the call below
        }
        const FileDialogRequest request = std::move(request_);
        FileDialogAnswer answer;
        {
            const ModalCall call(call_, reinterpret_cast<HWND>(request.parent), ModalCall::Way::cancelCommand);
            answer = ask(request);
            if (call.cancelled()) {
                return false; // this dialog is no more
            }
        }
        answered(answer); // may destroy this dialog
        return false;
    }

private:
    FileDialogRequest request_;
    Answered answered_;
    ModalCall* call_ = nullptr; // while the dialog is on the screen
};

} // namespace

std::unique_ptr<FileDialog> FileDialog::open(const FileDialogRequest& request, Answered answered) {
    return std::make_unique<SystemFileDialog>(request, std::move(answered));
}

} // namespace Platform
