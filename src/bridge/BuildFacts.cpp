#include "bridge/BuildFacts.h"

#include "model/PathText.h"
#include "model/Product.h"
#include "model/PatchMenu.h"
#include "platform/UserFolders.h"

#include <fmt/core.h>
#include <zlib.h>

#include <array>

#if defined(__GLIBC__)
#include <gnu/libc-version.h>
#endif

namespace Bridge {

namespace {

std::string constant(const char* text) {
    return text;
}

std::string compiler() {
#if defined(__clang__)
    return fmt::format("Clang {}.{}.{}", __clang_major__, __clang_minor__, __clang_patchlevel__);
#else
    return fmt::format("GCC {}.{}.{}", __GNUC__, __GNUC_MINOR__, __GNUC_PATCHLEVEL__);
#endif
}

std::string libraries() {
    std::string text;
#if defined(__GLIBC__)
    text += fmt::format("GLIBC {}, ", gnu_get_libc_version());
#elif defined(__MINGW64_VERSION_MAJOR)
    text += fmt::format("MINGW {}.{}, ", __MINGW64_VERSION_MAJOR, __MINGW64_VERSION_MINOR);
#endif
#if defined(__GLIBCXX__)
    text += fmt::format("CPPLIB {}, ", __GLIBCXX__);
#endif
    return text + fmt::format("ZLIB {}", zlibVersion());
}

// The compiler pads the day with a space: "Mar  3 2022".
std::string date() {
    std::string text = __DATE__;
    if (const auto gap = text.find("  "); gap != std::string::npos) {
        text.erase(gap, 1);
    }
    return text;
}

std::string patchesFolder() {
    return Model::toUtf8(Platform::supportFolder() / Model::PatchMenu::folderName(Model::PatchMenu::Folder::user));
}

struct Row {
    std::string_view name;
    std::string (*value)();
};

constexpr std::array kConstants = {
    Row{"MODEL.NAME", [] { return std::string(Model::kProductName); }},
    Row{"MODEL.IDENTIFIER", [] { return constant("Murmelon"); }},
    Row{"MODEL.VERSION", [] { return constant(MURMELON_VERSION); }},
#if defined(_WIN32)
    Row{"PLATFORM.OS", [] { return constant("windows"); }},
#else
    Row{"PLATFORM.OS", [] { return constant("linux"); }},
#endif
    Row{"PLATFORM.CPU", [] { return constant("x86-64"); }},
    Row{"BUILD.TARGET", [] { return constant(MURMELON_BUILD_TYPE); }},
    Row{"BUILD.VERSION", [] { return constant(MURMELON_VERSION); }},
    Row{"BUILD.NUMBER", [] { return constant(MURMELON_BUILD_NUMBER); }},
    Row{"BUILD.DATE", [] { return date(); }},
    Row{"BUILD.TIME", [] { return constant(__TIME__); }},
    Row{"BUILD.COPYRIGHT", [] { return constant("Copyright 2026 Korvanta"); }},
    Row{"BUILD.COMPILER", [] { return compiler(); }},
    Row{"BUILD.LIBS", [] { return libraries(); }},
    Row{"DIRS.BINARY", [] { return Model::toUtf8(Platform::binaryFolder()); }},
    Row{"DIRS.PATCHES", [] { return patchesFolder(); }},
    Row{"DIRS.DOCUMENTATION", [] { return Model::toUtf8(Platform::supportFolder() / "Documentation"); }},
    Row{"DIRS.SUPPORT", [] { return Model::toUtf8(Platform::supportFolder()); }},
};

} // namespace

std::optional<std::string> constantVariable(std::string_view name) {
    for (const Row& row : kConstants) {
        if (row.name == name) {
            return row.value();
        }
    }
    return std::nullopt;
}

} // namespace Bridge
