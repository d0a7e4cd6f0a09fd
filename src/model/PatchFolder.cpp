#include "model/PatchFolder.h"

#include "model/PathText.h"
#include "model/Product.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>

namespace Model {

namespace fs = std::filesystem;

namespace {

std::string withoutCase(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

bool isPatchFile(const fs::directory_entry& entry) {
    const std::string name = toUtf8(entry.path().filename());
    std::error_code error;
    return !name.starts_with('.') && withoutCase(toUtf8(entry.path().extension())) == kPatchExtension &&
           entry.is_regular_file(error);
}

} // namespace

std::vector<fs::path> patchFilesIn(const fs::path& folder) {
    std::vector<std::pair<std::string, fs::path>> found;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (isPatchFile(*entry)) {
            found.emplace_back(withoutCase(toUtf8(entry->path().filename())), entry->path());
        }
    }
    std::ranges::sort(found);
    std::vector<fs::path> files;
    for (auto& [key, path] : found) {
        files.push_back(std::move(path));
    }
    return files;
}

fs::path neighbour(const std::vector<fs::path>& files, const fs::path& current, int step, bool wrap) {
    if (files.empty()) {
        return {};
    }
    const auto count = static_cast<std::ptrdiff_t>(files.size());
    const auto found = std::ranges::find(files, current) - files.begin();
    if (found == count) {
        return step > 0 ? files.front() : files.back();
    }
    const auto next = found + step;
    if (next < 0 || next >= count) {
        return wrap ? files[static_cast<std::size_t>((next + count) % count)] : current;
    }
    return files[static_cast<std::size_t>(next)];
}

} // namespace Model
