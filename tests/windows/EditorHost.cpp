// A host with one window: loads the plug-in, opens the editor, drags a knob with the real pointer, keeps a
// picture of the screen, lets go of everything, and does so again and again.
//   editor_host PLUGIN PICTURE RELOADS
// Exit 0: all was as it should be. 1: the lines say what was not.
#include "ScreenUser.h"

#include "platform/LoadedLibrary.h"
#include "vst2abi/Vst2.h"

#include <windows.h>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

using namespace Vst2;

namespace {

constexpr int kPitch = 0; // the host's number
constexpr POINT kKnob = {45, 222};
constexpr int kDragUp = 45;
constexpr POINT kMenuButton = {450, 17};

int failures = 0;

void expect(bool right, const std::string& what) {
    if (!right) {
        std::printf("FAILED: %s\n", what.c_str());
        ++failures;
    }
}

int begun = 0;
int ended = 0;
int automated = 0;

VstIntPtr answer(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    begun += opcode == audioMasterBeginEdit;
    ended += opcode == audioMasterEndEdit;
    automated += opcode == audioMasterAutomate;
    return opcode == audioMasterVersion ? 2400 : 0;
}

struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    std::size_t colours() const { return std::set(pixels.begin(), pixels.end()).size(); }
};

// The pixels that are really on the screen there.
Picture photograph(HWND window, RECT part) {
    Picture picture{part.right - part.left, part.bottom - part.top, {}};
    picture.pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
    POINT corner{part.left, part.top};
    ClientToScreen(window, &corner);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, picture.width, picture.height, screen, corner.x, corner.y, SRCCOPY);
    GdiFlush();
    std::memcpy(picture.pixels.data(), bits, picture.pixels.size() * sizeof(std::uint32_t));
    SelectObject(memory, before);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return picture;
}

void save(const Picture& picture, const char* file) {
    BITMAPINFOHEADER header{sizeof header, picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    BITMAPFILEHEADER begin{};
    begin.bfType = 0x4D42;
    begin.bfOffBits = sizeof begin + sizeof header;
    const auto bytes = static_cast<DWORD>(picture.pixels.size() * sizeof(std::uint32_t));
    begin.bfSize = begin.bfOffBits + bytes;
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(&begin), sizeof begin);
    stream.write(reinterpret_cast<const char*>(&header), sizeof header);
    stream.write(reinterpret_cast<const char*>(picture.pixels.data()), static_cast<std::streamsize>(bytes));
    expect(stream.good(), std::string("writing ") + file);
}

class Plugin {
public:
    explicit Plugin(const char* file) : library_(file) {
        auto* const entry = library_.function<AEffect*(audioMasterCallback)>("VSTPluginMain");
        expect(entry && entry == library_.function<AEffect*(audioMasterCallback)>("main"),
               "both entries are one");
        effect_ = entry ? entry(answer) : nullptr;
        if (!effect_) {
            throw std::runtime_error("the plug-in made no effect");
        }
        call(effOpen);
    }
    ~Plugin() { call(effClose); }
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    VstIntPtr call(VstInt32 opcode, void* ptr = nullptr) {
        return effect_->dispatcher(effect_, opcode, 0, 0, ptr, 0);
    }
    float get(int parameter) { return effect_->getParameter(effect_, parameter); }
    bool hasEditor() const { return (effect_->flags & effFlagsHasEditor) != 0; }

    SIZE size() {
        ERect* rectangle = nullptr;
        call(effEditGetRect, &rectangle);
        return rectangle ? SIZE{rectangle->right - rectangle->left, rectangle->bottom - rectangle->top}
                         : SIZE{};
    }

    void set(int parameter, float value) { effect_->setParameter(effect_, parameter, value); }

    // The host's loop for a while. Some hosts know no idle time for editors.
    void run(DWORD milliseconds, bool idles = true) {
        const DWORD start = GetTickCount();
        do {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
            if (idles) {
                call(effEditIdle);
            }
            Sleep(5);
        } while (GetTickCount() - start < milliseconds);
    }

private:
    Platform::LoadedLibrary library_;
    AEffect* effect_ = nullptr;
};

HWND openParent(SIZE size) {
    WNDCLASSW kind{};
    kind.lpfnWndProc = DefWindowProcW;
    kind.lpszClassName = L"editor host";
    kind.hInstance = GetModuleHandleW(nullptr);
    RegisterClassW(&kind);
    const HWND window = CreateWindowExW(0, kind.lpszClassName, L"host", WS_POPUP | WS_VISIBLE, 100, 100,
                                        size.cx, size.cy, nullptr, nullptr, kind.hInstance, nullptr);
    SetForegroundWindow(window);
    return window;
}

// A click on the knob gives it the keyboard.
void testKeysAndWheel(Plugin& plugin, POINT knob) {
    ScreenUser::pointer(MOUSEEVENTF_LEFTDOWN, knob);
    plugin.run(50);
    ScreenUser::pointer(MOUSEEVENTF_LEFTUP, knob);
    plugin.run(50);
    const float dragged = plugin.get(kPitch);
    ScreenUser::key(VK_DOWN);
    plugin.run(100);
    const float lowered = plugin.get(kPitch);
    expect(lowered < dragged, "the down key lowers the knob");
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.mouseData = WHEEL_DELTA;
    input.mi.dwFlags = MOUSEEVENTF_WHEEL;
    SendInput(1, &input, sizeof input);
    plugin.run(100);
    expect(plugin.get(kPitch) > lowered, "the wheel raises it");
}

// The system's menu keeps the host's thread until it is answered, so the user is another one.
void testMenu(Plugin& plugin, HWND parent) {
    POINT at = kMenuButton;
    ClientToScreen(parent, &at);
    std::atomic<bool> seen{false};
    std::thread user([&] {
        ScreenUser::pointer(0, at);
        Sleep(200);
        ScreenUser::pointer(MOUSEEVENTF_LEFTDOWN, at);
        ScreenUser::pointer(MOUSEEVENTF_LEFTUP, at);
        for (int i = 0; i < 100 && !seen; ++i) {
            Sleep(100);
            seen = FindWindowW(ScreenUser::kMenu, nullptr) != nullptr;
        }
        Sleep(200);
        ScreenUser::key(VK_ESCAPE);
    });
    const DWORD start = GetTickCount();
    while (!seen && GetTickCount() - start < 12'000) {
        plugin.run(20);
    }
    user.join();
    plugin.run(100);
    expect(seen, "the menu is the system's");
    expect(FindWindowW(ScreenUser::kMenu, nullptr) == nullptr, "escape closes the menu");
}

void testEditor(const char* file, const char* pictureFile) {
    Plugin plugin(file);
    expect(plugin.hasEditor(), "there is an editor");
    const SIZE size = plugin.size();
    expect(size.cx > 100 && size.cy > 100, "the editor says how large it is");
    const HWND parent = openParent(size);
    expect(plugin.call(effEditOpen, parent) == 1, "the editor opens");
    plugin.run(300);
    const RECT all{0, 0, size.cx, size.cy};
    const RECT knob{kKnob.x - 20, kKnob.y - 20, kKnob.x + 20, kKnob.y + 20};
    const Picture before = photograph(parent, knob);
    expect(photograph(parent, all).colours() > 100, "the editor is drawn");

    POINT at = kKnob;
    ClientToScreen(parent, &at);
    ScreenUser::pointer(0, at);
    plugin.run(50);
    ScreenUser::pointer(MOUSEEVENTF_LEFTDOWN, at);
    plugin.run(50);
    for (int step = 1; step <= 9; ++step) {
        ScreenUser::pointer(0, {at.x, at.y - kDragUp * step / 9});
        plugin.run(20);
    }
    ScreenUser::pointer(MOUSEEVENTF_LEFTUP, {at.x, at.y - kDragUp});
    plugin.run(100);
    expect(std::abs(plugin.get(kPitch) - 0.8f) < 0.1f,
           "the knob was dragged: " + std::to_string(plugin.get(kPitch)));
    expect(begun == 1 && ended == 1 && automated >= 3,
           "the host was told of one edit: " + std::to_string(begun) + ", " + std::to_string(ended) + ", " +
               std::to_string(automated));
    const Picture after = photograph(parent, all);
    expect(photograph(parent, knob).pixels != before.pixels, "the knob was drawn anew");
    save(after, pictureFile);

    // Covered and shown again, without a word from the plug-in.
    ShowWindow(parent, SW_HIDE);
    ShowWindow(parent, SW_SHOW);
    plugin.run(100);
    expect(photograph(parent, all).pixels == after.pixels, "exposed parts are repaired");

    const Picture knobBefore = photograph(parent, knob);
    plugin.set(kPitch, 0.1f);
    plugin.run(1500, false);
    expect(photograph(parent, knob).pixels != knobBefore.pixels, "the editor lives without idle calls");

    testMenu(plugin, parent);
    testKeysAndWheel(plugin, at);

    plugin.call(effEditClose);
    expect(GetWindow(parent, GW_CHILD) == nullptr, "closing leaves no window");
    expect(plugin.call(effEditOpen, parent) == 1, "the editor opens again");
    DestroyWindow(parent); // before the editor is told
    plugin.run(50);
    plugin.call(effEditClose);
}

void testReloading(const char* file, int times) {
    constexpr int kSettled = 5; // the system keeps some things from the first times
    DWORD handlesThen = 0;
    DWORD handles = 0;
    for (int i = 0; i < times; ++i) {
        {
            Plugin plugin(file);
            const HWND parent = openParent(plugin.size());
            expect(plugin.call(effEditOpen, parent) == 1, "the editor opens once more");
            plugin.run(0);
            plugin.call(effEditClose);
            DestroyWindow(parent);
        }
        expect(GetModuleHandleW(L"murmelon.dll") == nullptr, "the library is let go of");
        GetProcessHandleCount(GetCurrentProcess(), &handles);
        handlesThen = i == kSettled ? handles : handlesThen;
    }
    expect(times <= kSettled || handles <= handlesThen + 2,
           "handles are given back: " + std::to_string(handlesThen) + ", then " + std::to_string(handles));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::puts("usage: editor_host PLUGIN PICTURE RELOADS");
        return 2;
    }
    try {
        testEditor(argv[1], argv[2]);
        testReloading(argv[1], std::atoi(argv[3]));
    } catch (const std::exception& error) {
        expect(false, error.what());
    }
    std::puts(failures == 0 ? "the editor works" : "the editor does not work");
    return failures == 0 ? 0 : 1;
}
