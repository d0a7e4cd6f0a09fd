// The user's own dialogs for choosing a file. For the main thread only.
#pragma once

#include "platform/Window.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Platform {

struct FileFilter {
    std::string name;                  // "Patches"
    std::vector<std::string> patterns; // "*.kvmp"
};

struct FileDialogRequest {
    enum class Kind { open, save };

    Kind kind = Kind::open;
    std::string title;
    std::filesystem::path folder; // where to start; empty: where the user was last
    std::string fileName;         // proposed, for saving
    std::vector<FileFilter> filters;
    NativeWindow parent = 0; // stays behind the dialog; 0: none
};

struct FileDialogAnswer {
    std::filesystem::path file; // empty: the user has cancelled, or there is an error
    std::string error;          // no dialog could be shown: what to install, or what went wrong
};

class FileDialog {
public:
    using Answered = std::function<void(const FileDialogAnswer&)>;

    // Shows the dialog. `answered` is called once, from within poll() and never from here, unless the dialog
    // is destroyed before, which takes it off the screen. `answered` may destroy the dialog.
    static std::unique_ptr<FileDialog> open(const FileDialogRequest& request, Answered answered);

    virtual ~FileDialog() = default;

    // False when the answer has been given. Returns at once, but on Windows when the user has answered: the
    // system's dialog lets messages through meanwhile, so the host may call whatever it likes.
    virtual bool poll() = 0;
};

} // namespace Platform
