// Platform::Window on Win32. The system calls the window procedure whenever somebody lets messages through:
// the host's loop for a window inside its own, poll() for one on its own.
#pragma once

#include "platform/Window.h"
#include "platform/win32/GdiSurface.h"
#include "platform/win32/WindowClass.h"

#include <windows.h>

#include <bitset>
#include <chrono>
#include <exception>
#include <memory>
#include <string>

namespace Platform {

class WinWindow final : public Window {
public:
    // Without a parent it is a top-level one.
    WinWindow(HWND parent, const std::string& title, Size size, WindowListener& listener);
    ~WinWindow() override;
    WinWindow(const WinWindow&) = delete;
    WinWindow& operator=(const WinWindow&) = delete;

    void poll() override;
    void present(const PixelView& picture, std::span<const Rect> dirty) override;
    Size size() const override { return surface_->size(); }
    void resize(Size size) override;
    void setCursor(Cursor cursor) override;
    void capturePointer() override;
    void releasePointer() override;
    void takeKeyboardFocus() override;
    void releaseKeyboardFocus() override;
    NativeWindow nativeId() const override { return reinterpret_cast<NativeWindow>(window_); }
    bool alive() const override { return window_ != nullptr; }

private:
    using Clock = std::chrono::steady_clock;

    struct Click {
        LONG time = 0;
        MouseButton button = MouseButton::left;
        Point at;
        int count = 0;
    };

    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM narrow) noexcept;
    // True when the message needs nothing else; `result` is its answer.
    bool handle(UINT message, WPARAM wide, LPARAM narrow, LRESULT& result);
    bool handleMouse(UINT message, WPARAM wide, LPARAM narrow, LRESULT& result);
    bool handleKeys(UINT message, WPARAM wide, LPARAM narrow);
    void paint();
    void buttonDown(MouseButton button, Point at);
    void buttonUp(MouseButton button, Point at);
    void pointerMoved(Point at);
    void wheelTurned(double right, double up, LPARAM onScreen);
    void captureLost(HWND taker);
    void keyDown(UINT message, WPARAM wide, LPARAM narrow);
    void keyUp(UINT message, WPARAM wide, LPARAM narrow);
    void sizeChanged(Size size);
    void timeHasPassed();
    int countClicks(MouseButton button, Point at);
    void showCursor() const;
    void lose();

    WindowListener& listener_;
    WindowClass class_;
    std::unique_ptr<GdiSurface> surface_;
    HWND parent_;
    HWND window_ = nullptr;
    Cursor cursor_ = Cursor::arrow;
    std::bitset<8> buttons_;        // held, by MouseButton
    std::bitset<256> handedToHost_; // keys whose press went there, by virtual key
    bool captured_ = false;         // wanted although no button is down
    bool pointerInside_ = false;
    Click lastClick_;
    HWND focusBefore_ = nullptr;
    Clock::time_point lastPoll_ = Clock::now();
    std::exception_ptr thrown_; // by the listener; the system's code cannot be thrown through
    // The listener may destroy the window within any call: who holds a weak pointer to this sees it.
    std::shared_ptr<char> life_ = std::make_shared<char>();
};

} // namespace Platform
