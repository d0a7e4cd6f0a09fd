#include "platform/win32/WinWindow.h"

#include "platform/win32/SystemText.h"
#include "platform/win32/WinKeys.h"

#include <windowsx.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Platform {

namespace {

using namespace std::chrono_literals;

constexpr int kMostPixelsAcross = 32767;
constexpr UINT_PTR kTimer = 1;
constexpr UINT kTimerMilliseconds = 40;
// A host that lets nobody be called for longer than this does not mean to.
constexpr auto kHostIsSilent = 250ms;
constexpr DWORD kTopLevelStyle = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN;
constexpr DWORD kChildStyle = WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS;

Size bounded(Size size) {
    return {std::clamp(size.width, 1, kMostPixelsAcross), std::clamp(size.height, 1, kMostPixelsAcross)};
}

// Of the window around an area of this size.
Size outerSize(bool topLevel, Size size) {
    RECT area{0, 0, size.width, size.height};
    if (topLevel) {
        AdjustWindowRectEx(&area, kTopLevelStyle, FALSE, 0);
    }
    return {area.right - area.left, area.bottom - area.top};
}

const wchar_t* systemCursor(Cursor cursor) {
    switch (cursor) {
    case Cursor::hand:
        return IDC_HAND;
    case Cursor::text:
        return IDC_IBEAM;
    case Cursor::crosshair:
        return IDC_CROSS;
    case Cursor::move:
        return IDC_SIZEALL;
    case Cursor::resizeHorizontal:
        return IDC_SIZEWE;
    case Cursor::resizeVertical:
        return IDC_SIZENS;
    case Cursor::wait:
        return IDC_WAIT;
    case Cursor::forbidden:
        return IDC_NO;
    case Cursor::hidden:
        return nullptr;
    case Cursor::arrow:
        break;
    }
    return IDC_ARROW;
}

Point pointOf(LPARAM narrow) {
    return {GET_X_LPARAM(narrow), GET_Y_LPARAM(narrow)};
}

MouseEvent mouseEvent(Point at) {
    MouseEvent event;
    event.at = at;
    event.modifiers = modifiersNow();
    return event;
}

} // namespace

WinWindow::WinWindow(HWND parent, const std::string& title, Size wanted, WindowListener& listener)
    : listener_(listener), class_(&WinWindow::procedure),
      surface_(std::make_unique<GdiSurface>(bounded(wanted))), parent_(parent) {
    const Size outer = outerSize(!parent, bounded(wanted));
    const int place = parent ? 0 : CW_USEDEFAULT;
    window_ = CreateWindowExW(0, class_.name(), toWide(title).c_str(), parent ? kChildStyle : kTopLevelStyle,
                              place, place, outer.width, outer.height, parent, nullptr,
                              static_cast<HINSTANCE>(thisModule()), nullptr);
    if (!window_) {
        throw std::runtime_error("The system refused a window: " + systemWords(GetLastError()));
    }
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetTimer(window_, kTimer, kTimerMilliseconds, nullptr);
    ShowWindow(window_, SW_SHOWNA);
    UpdateWindow(window_);
}

WinWindow::~WinWindow() {
    if (window_) {
        releaseKeyboardFocus();
        SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
        DestroyWindow(window_);
    }
}

void WinWindow::poll() {
    const std::weak_ptr<char> life = life_;
    lastPoll_ = Clock::now();
    MSG message;
    while (!parent_ && window_ && PeekMessageW(&message, window_, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
        if (life.expired()) {
            return;
        }
    }
    if (thrown_) {
        std::rethrow_exception(std::exchange(thrown_, nullptr));
    }
}

void WinWindow::present(const PixelView& picture, std::span<const Rect> dirty) {
    if (!window_) {
        return;
    }
    const HDC context = GetDC(window_);
    for (const Rect& part : dirty) {
        surface_->take(picture, part);
        surface_->show(context, part);
    }
    ReleaseDC(window_, context);
}

void WinWindow::resize(Size wanted) {
    const Size size = bounded(wanted);
    if (!window_ || size == surface_->size()) {
        return;
    }
    surface_ =
        std::make_unique<GdiSurface>(size); // first, so that the change is not taken for somebody else's
    const Size outer = outerSize(!parent_, size);
    SetWindowPos(window_, nullptr, 0, 0, outer.width, outer.height,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void WinWindow::setCursor(Cursor cursor) {
    if (window_ && cursor != cursor_) {
        cursor_ = cursor;
        if (pointerInside_ || GetCapture() == window_) {
            showCursor();
        }
    }
}

void WinWindow::showCursor() const {
    const wchar_t* const name = systemCursor(cursor_);
    SetCursor(name ? LoadCursorW(nullptr, name) : nullptr);
}

void WinWindow::capturePointer() {
    if (window_) {
        captured_ = true;
        SetCapture(window_);
    }
}

void WinWindow::releasePointer() {
    captured_ = false;
    if (window_ && buttons_.none() && GetCapture() == window_) {
        ReleaseCapture();
    }
}

void WinWindow::takeKeyboardFocus() {
    if (window_ && GetFocus() != window_) {
        focusBefore_ = GetFocus();
        SetFocus(window_);
    }
}

void WinWindow::releaseKeyboardFocus() {
    const HWND before = std::exchange(focusBefore_, nullptr);
    if (window_ && GetFocus() == window_) { // else the user has gone elsewhere since
        SetFocus(IsWindow(before) ? before : parent_);
    }
}

LRESULT CALLBACK WinWindow::procedure(HWND window, UINT message, WPARAM wide, LPARAM narrow) noexcept {
    auto* const self = reinterpret_cast<WinWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self) {
        const std::weak_ptr<char> life = self->life_;
        try {
            LRESULT result = 0;
            if (self->handle(message, wide, narrow, result)) {
                return result;
            }
        } catch (...) {
            if (!life.expired()) {
                self->thrown_ = std::current_exception();
            }
            return 0;
        }
    }
    return DefWindowProcW(window, message, wide, narrow);
}

bool WinWindow::handle(UINT message, WPARAM wide, LPARAM narrow, LRESULT& result) {
    switch (message) {
    case WM_PAINT:
        paint();
        return true;
    case WM_ERASEBKGND:
        result = 1;
        return true;
    case WM_SIZE:
        if (wide != SIZE_MINIMIZED) {
            sizeChanged({LOWORD(narrow), HIWORD(narrow)});
        }
        return true;
    case WM_TIMER:
        timeHasPassed();
        return true;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        handedToHost_.reset();
        listener_.focusChanged(message == WM_SETFOCUS);
        return true;
    case WM_GETDLGCODE: // a dialog around us would keep the arrows and the tabulator for itself
        result = DLGC_WANTALLKEYS | DLGC_WANTCHARS;
        return true;
    case WM_CLOSE:
        listener_.closeRequested();
        return true;
    case WM_DESTROY:
        lose();
        return true;
    default:
        return handleMouse(message, wide, narrow, result) || handleKeys(message, wide, narrow);
    }
}

bool WinWindow::handleMouse(UINT message, WPARAM wide, LPARAM narrow, LRESULT& result) {
    const auto sideButton = [&] {
        return GET_XBUTTON_WPARAM(wide) == XBUTTON1 ? MouseButton::back : MouseButton::forward;
    };
    switch (message) {
    case WM_LBUTTONDOWN:
        buttonDown(MouseButton::left, pointOf(narrow));
        return true;
    case WM_MBUTTONDOWN:
        buttonDown(MouseButton::middle, pointOf(narrow));
        return true;
    case WM_RBUTTONDOWN:
        buttonDown(MouseButton::right, pointOf(narrow));
        return true;
    case WM_XBUTTONDOWN:
        result = TRUE;
        buttonDown(sideButton(), pointOf(narrow));
        return true;
    case WM_LBUTTONUP:
        buttonUp(MouseButton::left, pointOf(narrow));
        return true;
    case WM_MBUTTONUP:
        buttonUp(MouseButton::middle, pointOf(narrow));
        return true;
    case WM_RBUTTONUP:
        buttonUp(MouseButton::right, pointOf(narrow));
        return true;
    case WM_XBUTTONUP:
        result = TRUE;
        buttonUp(sideButton(), pointOf(narrow));
        return true;
    case WM_MOUSEMOVE:
        pointerMoved(pointOf(narrow));
        return true;
    case WM_MOUSELEAVE:
        pointerInside_ = false;
        if (buttons_.none()) { // else the release tells
            listener_.mouseLeft();
        }
        return true;
    case WM_MOUSEWHEEL:
        wheelTurned(0, static_cast<double>(GET_WHEEL_DELTA_WPARAM(wide)) / WHEEL_DELTA, narrow);
        return true;
    case WM_MOUSEHWHEEL:
        wheelTurned(static_cast<double>(GET_WHEEL_DELTA_WPARAM(wide)) / WHEEL_DELTA, 0, narrow);
        return true;
    case WM_CAPTURECHANGED:
        captureLost(reinterpret_cast<HWND>(narrow));
        return true;
    case WM_SETCURSOR:
        if (LOWORD(narrow) != HTCLIENT) {
            return false;
        }
        showCursor();
        result = TRUE;
        return true;
    default:
        return false;
    }
}

bool WinWindow::handleKeys(UINT message, WPARAM wide, LPARAM narrow) {
    switch (message) {
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        keyDown(message, wide, narrow);
        return true;
    case WM_KEYUP:
    case WM_SYSKEYUP:
        keyUp(message, wide, narrow);
        return true;
    case WM_CHAR: { // without a key before it: from an input method
        KeyEvent key;
        const auto letter = static_cast<wchar_t>(wide);
        if (letter >= 0x20) {
            key.text = toUtf8({&letter, 1});
            listener_.keyDown(key);
        }
        return true;
    }
    default:
        return false;
    }
}

void WinWindow::paint() {
    PAINTSTRUCT painting;
    const HDC context = BeginPaint(window_, &painting);
    const RECT& part = painting.rcPaint;
    surface_->show(context, {part.left, part.top, part.right - part.left, part.bottom - part.top});
    EndPaint(window_, &painting);
}

int WinWindow::countClicks(MouseButton button, Point at) {
    const LONG time = GetMessageTime();
    const bool again = lastClick_.count > 0 && button == lastClick_.button &&
                       static_cast<UINT>(time - lastClick_.time) <= GetDoubleClickTime() &&
                       std::abs(at.x - lastClick_.at.x) <= GetSystemMetrics(SM_CXDOUBLECLK) &&
                       std::abs(at.y - lastClick_.at.y) <= GetSystemMetrics(SM_CYDOUBLECLK);
    lastClick_ = {time, button, at, again ? lastClick_.count + 1 : 1};
    return lastClick_.count;
}

void WinWindow::buttonDown(MouseButton button, Point at) {
    buttons_.set(static_cast<std::size_t>(button));
    SetCapture(window_);
    MouseEvent event = mouseEvent(at);
    event.button = button;
    event.clicks = countClicks(button, at);
    listener_.mouseDown(event);
}

void WinWindow::buttonUp(MouseButton button, Point at) {
    if (!buttons_[static_cast<std::size_t>(button)]) { // a press that another window had
        return;
    }
    buttons_.reset(static_cast<std::size_t>(button));
    if (buttons_.none() && !captured_ && GetCapture() == window_) {
        ReleaseCapture();
    }
    const std::weak_ptr<char> life = life_;
    MouseEvent event = mouseEvent(at);
    event.button = button;
    event.clicks = lastClick_.count;
    listener_.mouseUp(event);
    if (life.expired()) {
        return;
    }
    const Size area = size();
    if (buttons_.none() && !Rect{0, 0, area.width, area.height}.contains(at)) {
        pointerInside_ = false;
        listener_.mouseLeft();
    }
}

void WinWindow::pointerMoved(Point at) {
    if (!pointerInside_) {
        TRACKMOUSEEVENT wish{};
        wish.cbSize = sizeof wish;
        wish.dwFlags = TME_LEAVE;
        wish.hwndTrack = window_;
        pointerInside_ = TrackMouseEvent(&wish) != 0;
    }
    listener_.mouseMoved(mouseEvent(at));
}

void WinWindow::wheelTurned(double right, double up, LPARAM onScreen) {
    POINT place{GET_X_LPARAM(onScreen), GET_Y_LPARAM(onScreen)};
    ScreenToClient(window_, &place);
    WheelEvent event;
    event.at = {place.x, place.y};
    event.modifiers = modifiersNow();
    event.right = right;
    event.up = up;
    listener_.mouseWheel(event);
}

void WinWindow::captureLost(HWND taker) {
    if (taker != window_ && (buttons_.any() || captured_)) {
        buttons_.reset();
        captured_ = false;
        listener_.mouseCaptureLost();
    }
}

// The host's loop has translated the key already: its characters wait behind it.
void WinWindow::keyDown(UINT message, WPARAM wide, LPARAM narrow) {
    const bool system = message == WM_SYSKEYDOWN;
    const UINT first = system ? WM_SYSCHAR : WM_CHAR;
    const UINT last = system ? WM_SYSDEADCHAR : WM_DEADCHAR;
    std::vector<MSG> characters;
    std::wstring text;
    for (MSG character; PeekMessageW(&character, window_, first, last, PM_REMOVE);) {
        characters.push_back(character);
        if (character.message == WM_CHAR) {
            text += static_cast<wchar_t>(character.wParam);
        }
    }
    const std::weak_ptr<char> life = life_;
    const HWND parent = parent_;
    const bool used = listener_.keyDown(keyOf(wide, narrow, text));
    if (!life.expired()) {
        handedToHost_.set(wide & 0xFF, !used);
    }
    if (!used && parent) {
        PostMessageW(parent, message, wide, narrow);
        for (const MSG& character : characters) {
            PostMessageW(parent, character.message, character.wParam, character.lParam);
        }
    }
}

// The one who had the press gets the release.
void WinWindow::keyUp(UINT message, WPARAM wide, LPARAM narrow) {
    if (!handedToHost_[wide & 0xFF]) {
        listener_.keyUp(keyOf(wide, narrow, {}));
        return;
    }
    handedToHost_.reset(wide & 0xFF);
    if (parent_) {
        PostMessageW(parent_, message, wide, narrow);
    }
}

void WinWindow::sizeChanged(Size wanted) {
    const Size size = bounded(wanted);
    if (size != surface_->size()) {
        surface_ = std::make_unique<GdiSurface>(size);
        listener_.resized(size);
    }
}

void WinWindow::timeHasPassed() {
    if (Clock::now() - lastPoll_ > kHostIsSilent) {
        listener_.hostIsSilent();
    }
}

void WinWindow::lose() {
    if (const HWND window = std::exchange(window_, nullptr)) {
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        listener_.windowLost();
    }
}

std::unique_ptr<Window> Window::openInside(NativeWindow parent, Size size, WindowListener& listener) {
    const HWND window = reinterpret_cast<HWND>(parent);
    if (!window) {
        throw std::runtime_error("The host gave no window");
    }
    if (!IsWindow(window)) {
        throw std::runtime_error("The host's window does not exist");
    }
    return std::make_unique<WinWindow>(window, std::string(), size, listener);
}

std::unique_ptr<Window> Window::openTopLevel(const std::string& title, Size size, WindowListener& listener) {
    return std::make_unique<WinWindow>(nullptr, title, size, listener);
}

} // namespace Platform
