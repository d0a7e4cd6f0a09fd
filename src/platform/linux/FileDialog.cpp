// Tries one way after another, for a desktop may offer a way that then fails.
#include "platform/FileDialog.h"

#include "platform/linux/FileChooser.h"

#include <array>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <utility>

namespace Platform {

namespace {

constexpr const char* kNoDialog =
    "No file dialog can be shown: install zenity or kdialog, or a desktop portal (xdg-desktop-portal)";

using Opener = std::unique_ptr<FileChooser> (*)(const FileDialogRequest&);

std::array<Opener, 3> waysOfThisDesktop() {
    const char* const desktop = std::getenv("XDG_CURRENT_DESKTOP");
    if (desktop && std::string_view(desktop).find("KDE") != std::string_view::npos) {
        return {openPortalChooser, openKdialogChooser, openZenityChooser};
    }
    return {openPortalChooser, openZenityChooser, openKdialogChooser};
}

class DesktopFileDialog final : public FileDialog {
public:
    DesktopFileDialog(FileDialogRequest request, Answered answered)
        : request_(std::move(request)), answered_(std::move(answered)) {
        openNext();
    }

    bool poll() override {
        if (!answered_) {
            return false;
        }
        FileDialogAnswer answer;
        if (chooser_) {
            const auto outcome = chooser_->poll();
            if (!outcome) {
                return true;
            }
            if (outcome->kind == ChooserOutcome::Kind::unavailable) {
                openNext();
                return true;
            }
            answer.file = outcome->file;
        } else {
            answer.error = kNoDialog;
        }
        chooser_.reset();
        std::exchange(answered_, nullptr)(answer); // may destroy this dialog
        return false;
    }

private:
    void openNext() {
        chooser_.reset();
        while (!chooser_ && next_ < ways_.size()) {
            try {
                chooser_ = ways_[next_++](request_);
            } catch (const std::exception&) { // a way that does not work here is as good as none
                chooser_.reset();
            }
        }
    }

    FileDialogRequest request_;
    Answered answered_;
    std::array<Opener, 3> ways_ = waysOfThisDesktop();
    std::size_t next_ = 0;
    std::unique_ptr<FileChooser> chooser_;
};

} // namespace

std::unique_ptr<FileDialog> FileDialog::open(const FileDialogRequest& request, Answered answered) {
    return std::make_unique<DesktopFileDialog>(request, std::move(answered));
}

} // namespace Platform
