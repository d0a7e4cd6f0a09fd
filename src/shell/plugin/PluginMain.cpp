// The plug-in binary's one export.
#include "editor/PluginEditor.h"
#include "platform/MessageDialog.h"
#include "resources/Resources.h"
#include "vst2/Vst2Effect.h"

#include <cstdio>
#include <exception>
#include <new>

#if defined(_WIN32)
#define MURMELON_EXPORT __declspec(dllexport)
#else
#define MURMELON_EXPORT __attribute__((visibility("default")))
#endif

extern "C" MURMELON_EXPORT Vst2::AEffect* VSTPluginMain(Vst2::audioMasterCallback host) {
    try {
        const auto bank = Resources::find(Resources::Type::fxb, Shell::kDescriptor.factoryBank);
        return Shell::createVst2Effect(host, {.factoryBank = bank.value_or(""),
                                               .makeEditor = Shell::makePluginEditor,
                                               .showError = Platform::showError});
    } catch (const std::bad_alloc&) {
        std::fputs("Murmelon: bad allocation\n", stderr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "Murmelon: %s\n", error.what());
    } catch (...) {
        std::fputs("Murmelon: unknown error\n", stderr);
    }
    return nullptr;
}
