// While the editor has something modal on the screen, the system lets the host's timer through: the host goes on
// calling, closes the editor or the effect, destroys its window, lets go of the library.
#include "PluginHost.h"
#include "ScreenUser.h"

#include "platform/Clipboard.h"
#include "platform/LoadedLibrary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Vst2;

namespace {

constexpr VstInt32 kPitch = 0; // the host's number
constexpr POINT kMenuButton = {450, 17};
constexpr RECT kPitchKnob = {25, 202, 65, 242};

enum class Modal { menu, fileDialog, question, messageBox };

const std::pair<Modal, const char*> kModals[] = {{Modal::menu, "menu"},
                                                 {Modal::fileDialog, "file dialog"},
                                                 {Modal::question, "question of a file dialog"},
                                                 {Modal::messageBox, "message box"}};

VstIntPtr answer(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    return opcode == audioMasterVersion ? kVstVersion : 0;
}

// A host with an open editor and a timer, as hosts have them.
class TimedHost {
public:
    explicit TimedHost(const std::filesystem::path& plugin)
        : library_(std::make_unique<Platform::LoadedLibrary>(plugin)) {
        effect_ = library_->function<AEffect*(audioMasterCallback)>(kEntryName)(answer);
        call(effOpen);
        openEditor();
        timer_ = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) { current_->tick(); });
        current_ = this;
    }
    ~TimedHost() {
        KillTimer(nullptr, timer_);
        closeEffect();
        DestroyWindow(parent_);
    }
    TimedHost(const TimedHost&) = delete;
    TimedHost& operator=(const TimedHost&) = delete;

    VstIntPtr call(VstInt32 opcode, void* ptr = nullptr) {
        return effect_ ? effect_->dispatcher(effect_, opcode, 0, 0, ptr, 0) : 0;
    }
    void set(VstInt32 parameter, float value) { effect_->setParameter(effect_, parameter, value); }

    void openEditor() {
        ERect* size = nullptr;
        call(effEditGetRect, &size);
        if (!IsWindow(parent_)) {
            parent_ = CreateWindowExW(0, L"STATIC", L"host", WS_POPUP | WS_VISIBLE, 100, 100, size->right, size->bottom,
                                      nullptr, nullptr, nullptr, nullptr);
            SetForegroundWindow(parent_);
        }
        EXPECT_EQ(call(effEditOpen, parent_), 1);
    }
    void closeEditor() { call(effEditClose); }
    void closeEffect() {
        call(effClose);
        effect_ = nullptr;
    }
    void unload() { library_.reset(); }
    void destroyParent() { DestroyWindow(parent_); }
    bool hasEditor() const { return IsWindow(parent_) && GetWindow(parent_, GW_CHILD); }

    // The host's loop, until `done`; `deed` is done once, from the timer, when the modal thing is up.
    void run(const std::function<void()>& deed, const std::function<bool()>& done) {
        deed_ = deed;
        const DWORD start = GetTickCount();
        while (!done() && GetTickCount() - start < 2 * ScreenUser::kPatience) {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
            Sleep(5);
        }
        EXPECT_TRUE(done());
        deed_ = nullptr;
    }

    void tellUp() { up_ = true; }
    int depth() const { return depth_; }

    // In all, of the part that shows the pitch.
    std::vector<COLORREF> pixels() const {
        const HDC context = GetDC(GetWindow(parent_, GW_CHILD));
        std::vector<COLORREF> all;
        for (LONG y = kPitchKnob.top; y < kPitchKnob.bottom; y += 2) {
            for (LONG x = kPitchKnob.left; x < kPitchKnob.right; x += 2) {
                all.push_back(GetPixel(context, x, y));
            }
        }
        ReleaseDC(GetWindow(parent_, GW_CHILD), context);
        return all;
    }
    POINT menuButton() const {
        POINT at = kMenuButton;
        ClientToScreen(parent_, &at);
        return at;
    }

private:
    void tick() {
        ++depth_;
        if (up_ && deed_) {
            const auto deed = std::exchange(deed_, nullptr);
            EXPECT_GT(depth_, 1); // within the plug-in's own call
            deed();
        } else {
            call(effEditIdle);
        }
        --depth_;
    }

    static inline TimedHost* current_ = nullptr;
    std::unique_ptr<Platform::LoadedLibrary> library_;
    AEffect* effect_ = nullptr;
    HWND parent_ = nullptr;
    UINT_PTR timer_ = 0;
    std::function<void()> deed_;
    std::atomic<bool> up_{false};
    int depth_ = 0;
};

struct Interruption : testing::Test {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("murmelon-modal-" + std::to_string(GetCurrentProcessId()));
    const std::filesystem::path plugin = folder / "interrupted.dll"; // that nobody else holds
    const std::filesystem::path existing = folder / "existing.kvmp";

    Interruption() {
        std::filesystem::create_directories(folder);
        std::filesystem::copy_file(MURMELON_PLUGIN, plugin, std::filesystem::copy_options::overwrite_existing);
        std::ofstream(existing) << "x";
        Platform::Clipboard::open()->setText("no patch");
    }
    ~Interruption() override {
        std::error_code ignored; // a library that is kept cannot be removed
        std::filesystem::remove_all(folder, ignored);
    }

    // As a user, with the mouse and the keyboard.
    void bringUp(TimedHost& host, Modal modal) const {
        ScreenUser::pointer(0, host.menuButton());
        Sleep(200);
        ScreenUser::pointer(MOUSEEVENTF_LEFTDOWN, host.menuButton());
        ScreenUser::pointer(MOUSEEVENTF_LEFTUP, host.menuButton());
        HWND up = ScreenUser::await(ScreenUser::kMenu);
        if (modal == Modal::messageBox) {
            ScreenUser::key('P'); // paste what is no patch
            up = ScreenUser::await(ScreenUser::kDialog, L"Murmelon");
        } else if (modal != Modal::menu) {
            ScreenUser::key('S');
            up = ScreenUser::await(ScreenUser::kDialog);
        }
        if (modal == Modal::question) {
            const HWND dialog = up;
            ScreenUser::typeFile(dialog, existing.wstring());
            EXPECT_TRUE(ScreenUser::until([&] { return !IsWindowEnabled(dialog); }));
            Sleep(100);
            EXPECT_TRUE(IsWindow(dialog));
        }
        EXPECT_TRUE(up);
        host.tellUp();
    }

    static bool nothingIsUp() { return !ScreenUser::find(ScreenUser::kMenu) && !ScreenUser::find(ScreenUser::kDialog); }
};

} // namespace

TEST_F(Interruption, theHostGoesOnCalling) {
    for (const auto& [modal, name] : kModals) {
        SCOPED_TRACE(name);
        TimedHost host(plugin);
        bool lived = false;
        bool answered = false;
        const ScreenUser user([&, wanted = modal] { bringUp(host, wanted); });
        host.run(
            [&] {
                const auto before = host.pixels();
                host.set(kPitch, 0.9f);
                for (int i = 0; i < 20; ++i) {
                    host.call(effEditIdle);
                    Sleep(10);
                }
                lived = host.pixels() != before;
                EXPECT_FALSE(nothingIsUp());
                if (const HWND question = ScreenUser::find(ScreenUser::kDialog)) {
                    EnumThreadWindows(GetCurrentThreadId(), [](HWND window, LPARAM) -> BOOL {
                        ScreenUser::press(window, IDNO);
                        ScreenUser::press(window, IDCANCEL);
                        return TRUE;
                    }, 0);
                } else {
                    EndMenu();
                }
                answered = true;
            },
            [&] { return answered && nothingIsUp() && host.depth() == 0; });
        EXPECT_TRUE(lived);
        EXPECT_TRUE(host.hasEditor());
    }
}

TEST_F(Interruption, theHostClosesWhatItLikes) {
    struct Deed {
        const char* name;
        std::function<void(TimedHost&)> deed;
        bool editorLeft = false;
    };
    const Deed deeds[] = {
        {"the editor", [](TimedHost& host) { host.closeEditor(); }},
        {"its window", [](TimedHost& host) { host.destroyParent(); }},
        {"its window, then the editor",
         [](TimedHost& host) {
             host.destroyParent();
             host.call(effEditIdle);
             host.closeEditor();
         }},
        {"the editor, for another",
         [](TimedHost& host) {
             host.closeEditor();
             host.openEditor();
             host.call(effEditIdle);
         },
         true},
        {"the effect", [](TimedHost& host) { host.closeEffect(); }},
        {"everything",
         [](TimedHost& host) {
             host.closeEditor();
             host.closeEffect();
             host.destroyParent();
             host.unload();
         }},
    };
    for (const auto& [modal, name] : kModals) {
        for (const Deed& deed : deeds) {
            SCOPED_TRACE(std::string(name) + ", the host closes " + deed.name);
            TimedHost host(plugin);
            bool done = false;
            const ScreenUser user([&, wanted = modal] { bringUp(host, wanted); });
            host.run(
                [&] {
                    deed.deed(host);
                    done = true;
                },
                [&] { return done && nothingIsUp() && host.depth() == 0; });
            EXPECT_EQ(host.hasEditor(), deed.editorLeft);
        }
    }
}
