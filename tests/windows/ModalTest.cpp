// What the system shows and waits for: message boxes, file dialogs, menus. Another thread is the user.
#include "ScreenUser.h"

#include "platform/FileDialog.h"
#include "platform/MessageDialog.h"
#include "platform/OpenLink.h"
#include "platform/PopupMenu.h"
#include "platform/Window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using namespace Platform;
using testing::ElementsAre;

namespace {

namespace fs = std::filesystem;

constexpr int kMessageText = 0xFFFF; // the static control of message boxes

class NoPainter final : public TextPainter {
    int lineHeight() override { return 0; }
    int width(std::string_view) override { return 0; }
    void draw(const Canvas&, Point, std::string_view, Argb) override {}
};

NoPainter painter;

// Calls `deed` once from this thread's own messages, wherever they are let through.
class Later {
public:
    Later(DWORD milliseconds, std::function<void()> deed) {
        deed_ = std::move(deed);
        timer_ = SetTimer(nullptr, 0, milliseconds, [](HWND, UINT, UINT_PTR timer, DWORD) {
            KillTimer(nullptr, timer);
            if (const auto now = std::exchange(deed_, nullptr)) {
                now();
            }
        });
    }
    ~Later() { KillTimer(nullptr, timer_); }
    Later(const Later&) = delete;
    Later& operator=(const Later&) = delete;

private:
    static inline std::function<void()> deed_;
    UINT_PTR timer_;
};

struct Files : testing::Test {
    const fs::path folder = fs::temp_directory_path() / ("murmelon-files-" + std::to_string(GetCurrentProcessId()));

    Files() { fs::create_directories(folder); }
    ~Files() override {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    FileDialogRequest request(FileDialogRequest::Kind kind) const {
        FileDialogRequest asked;
        asked.kind = kind;
        asked.title = "Tr\xC3\xA4ume";
        asked.folder = folder;
        asked.filters = {{"Patches", {"*.kvmp"}}, {"All", {"*"}}};
        return asked;
    }

    // The question that a file dialog asks: the other dialog.
    static HWND awaitQuestion(HWND dialog) {
        HWND question = nullptr;
        ScreenUser::until([&] {
            question = FindWindowExW(nullptr, nullptr, ScreenUser::kDialog, nullptr);
            while (question && (question == dialog || GetWindow(question, GW_OWNER) != dialog)) {
                question = FindWindowExW(nullptr, question, ScreenUser::kDialog, nullptr);
            }
            return question != nullptr;
        });
        Sleep(100);
        return question;
    }

    std::optional<FileDialogAnswer> ask(const FileDialogRequest& asked, const std::function<void(HWND)>& deeds) {
        std::optional<FileDialogAnswer> given;
        const auto dialog = FileDialog::open(asked, [&](const FileDialogAnswer& answer) { given = answer; });
        const ScreenUser user([&] {
            const HWND shown = ScreenUser::await(ScreenUser::kDialog, L"Tr\u00E4ume");
            deeds(shown);
            const bool answered = ScreenUser::until([&] { return !IsWindow(shown); });
            EXPECT_TRUE(answered);
            while (const HWND left = ScreenUser::find(ScreenUser::kDialog)) {
                ScreenUser::press(left, IDCANCEL);
                Sleep(100);
            }
        });
        EXPECT_FALSE(dialog->poll());
        return given;
    }
};

struct Menus : testing::Test, WindowListener {
    std::unique_ptr<Window> window = Window::openTopLevel("menus", {200, 100}, *this);
    const HWND owner = reinterpret_cast<HWND>(window->nativeId());

    Menus() {
        SetForegroundWindow(owner); // the keyboard comes here
        window->poll();
    }

    static std::vector<MenuEntry> entries() {
        const auto entry = [](const char* caption, int command) {
            MenuEntry made;
            made.caption = caption;
            made.command = command;
            return made;
        };
        std::vector<MenuEntry> all = {entry("&Save", 7), entry("&Fish && Chips\xE2\x80\xA6", 8), entry("", 0),
                                      entry("&Gone", 9), entry("&More", 0)};
        all[1].checked = true;
        all[2].separator = true;
        all[3].enabled = false;
        all[4].submenu = {entry("&Deep", 0), entry("&Wide", -1)};
        return all;
    }

    // What the user sees, a line for each entry.
    static std::vector<std::wstring> linesOf(HMENU menu) {
        std::vector<std::wstring> lines;
        for (int i = 0; i < GetMenuItemCount(menu); ++i) {
            wchar_t text[100] = {};
            GetMenuStringW(menu, static_cast<UINT>(i), text, 100, MF_BYPOSITION);
            const UINT state = GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION);
            const HMENU submenu = GetSubMenu(menu, i);
            lines.push_back((state & MF_SEPARATOR) && !submenu ? L"--" : text);
            lines.back() += !submenu && (state & MF_CHECKED) ? L" checked" : L"";
            lines.back() += !submenu && (state & MF_GRAYED) && !(state & MF_SEPARATOR) ? L" grayed" : L"";
            for (const std::wstring& line : submenu ? linesOf(submenu) : std::vector<std::wstring>()) {
                lines.push_back(L"> " + line);
            }
        }
        return lines;
    }

    // nullopt: `chosen` was not called.
    std::optional<std::optional<int>> choose(const std::function<void(HWND)>& deeds) {
        std::optional<std::optional<int>> given;
        menu = PopupMenu::open(*window, {10, 10, 50, 20}, entries(), painter, [&](auto command) { given = command; });
        const ScreenUser user([&] {
            deeds(ScreenUser::await(ScreenUser::kMenu));
            const bool answered = ScreenUser::until([] { return !ScreenUser::find(ScreenUser::kMenu); });
            EXPECT_TRUE(answered);
            PostMessageW(owner, answered ? WM_NULL : WM_CANCELMODE, 0, 0);
        });
        EXPECT_FALSE(menu->poll());
        return given;
    }

    std::unique_ptr<PopupMenu> menu;
};

} // namespace

TEST(ShowError, waitsForTheUserInAmericanEnglish) {
    std::wstring text;
    std::wstring button;
    bool modal = false;
    const HWND other = CreateWindowExW(0, L"STATIC", L"other", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr, nullptr,
                                       nullptr, nullptr);
    {
        const ScreenUser user([&] {
            const HWND box = ScreenUser::await(ScreenUser::kDialog, L"Murm\u00E9lon");
            text = ScreenUser::textOf(GetDlgItem(box, kMessageText));
            button = ScreenUser::textOf(GetDlgItem(box, IDOK));
            modal = !IsWindowEnabled(other);
            ScreenUser::press(box, IDOK);
        });
        showError("Murm\xC3\xA9lon", "Error: no \xE2\x82\xAC\nleft");
    }
    EXPECT_EQ(text, L"Error: no \u20AC\nleft");
    EXPECT_EQ(button, L"OK");
    EXPECT_TRUE(modal);
    EXPECT_TRUE(IsWindowEnabled(other));
    DestroyWindow(other);
}

TEST(MessageBoxes, haveTheirButtonsAndGiveTheirAnswers) {
    struct Row {
        MessageButtons buttons;
        int byReturn;
        std::vector<std::pair<WORD, MessageAnswer>> answers; // in their order
    };
    using enum MessageAnswer;
    const std::vector<WORD> all = {IDOK, IDCANCEL, IDABORT, IDRETRY, IDIGNORE, IDYES, IDNO};
    for (const Row& row : {Row{MessageButtons::ok, 0, {{IDOK, ok}}},
                           Row{MessageButtons::okCancel, 1, {{IDOK, ok}, {IDCANCEL, cancel}}},
                           Row{MessageButtons::retryCancel, 0, {{IDRETRY, retry}, {IDCANCEL, cancel}}},
                           Row{MessageButtons::yesNo, 1, {{IDYES, yes}, {IDNO, no}}},
                           Row{MessageButtons::yesNoCancel, 2, {{IDYES, yes}, {IDNO, no}, {IDCANCEL, cancel}}},
                           Row{MessageButtons::abortRetryIgnore, 0, {{IDABORT, abort}, {IDRETRY, retry}, {IDIGNORE, ignore}}}}) {
        for (const auto& [id, expected] : row.answers) {
            std::vector<WORD> shown;
            WORD byReturn = 0;
            std::optional<MessageAnswer> given;
            const auto dialog = MessageDialog::open(0, "Question", "Well?", row.buttons, painter,
                                                    [&](MessageAnswer answer) { given = answer; }, row.byReturn);
            {
                const ScreenUser user([&, pressed = id] {
                    const HWND box = ScreenUser::await(ScreenUser::kDialog, L"Question");
                    for (const WORD button : all) {
                        if (const HWND there = GetDlgItem(box, button); there && IsWindowVisible(there)) {
                            shown.push_back(button);
                        }
                    }
                    GUITHREADINFO screen{};
                    screen.cbSize = sizeof screen;
                    GetGUIThreadInfo(GetWindowThreadProcessId(box, nullptr), &screen);
                    byReturn = static_cast<WORD>(GetDlgCtrlID(screen.hwndFocus));
                    ScreenUser::press(box, pressed);
                });
                EXPECT_FALSE(dialog->poll());
            }
            EXPECT_EQ(given, expected);
            EXPECT_EQ(byReturn, row.answers[static_cast<std::size_t>(row.byReturn)].first);
            std::vector<WORD> wanted;
            for (const auto& answer : row.answers) {
                wanted.push_back(answer.first);
            }
            EXPECT_THAT(shown, testing::UnorderedElementsAreArray(wanted));
            EXPECT_FALSE(dialog->poll()); // once is enough
        }
    }
}

TEST_F(Files, areOpened) {
    std::ofstream(folder / L"\u00E4.kvmp") << "x";
    std::vector<std::wstring> kinds;
    const auto opened = ask(request(FileDialogRequest::Kind::open), [&](HWND dialog) {
        constexpr int kFilters = 0x470;
        const HWND filters = GetDlgItem(dialog, kFilters);
        const auto count = SendMessageW(filters, CB_GETCOUNT, 0, 0);
        for (WPARAM i = 0; i < static_cast<WPARAM>(count); ++i) {
            wchar_t text[100] = {};
            SendMessageW(filters, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(text));
            kinds.push_back(text);
        }
        ScreenUser::typeFile(dialog, L"none.kvmp"); // which must exist
        ScreenUser::press(awaitQuestion(dialog), IDOK);
        Sleep(200);
        ScreenUser::typeFile(dialog, L"\u00E4.kvmp");
    });
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->error, "");
    EXPECT_TRUE(fs::equivalent(opened->file, folder / L"\u00E4.kvmp")) << opened->file;
    EXPECT_THAT(kinds, ElementsAre(L"Patches", L"All"));
}

TEST_F(Files, areSavedAndReplacedOnlyWhenTheUserSaysSo) {
    std::ofstream(folder / "old.kvmp") << "x";
    auto asked = request(FileDialogRequest::Kind::save);
    asked.fileName = "a/b:c.kvmp";
    std::wstring proposed;
    const auto saved = ask(asked, [&](HWND dialog) {
        proposed = ScreenUser::textOf(ScreenUser::fileName(dialog));
        ScreenUser::typeFile(dialog, L"old");
        ScreenUser::press(awaitQuestion(dialog), IDNO);
        Sleep(200);
        ScreenUser::typeFile(dialog, L"new");
    });
    EXPECT_EQ(proposed, L"a_b_c.kvmp");
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->file.filename(), "new.kvmp");
    EXPECT_TRUE(fs::equivalent(saved->file.parent_path(), folder));
    const auto replaced = ask(asked, [&](HWND dialog) {
        ScreenUser::typeFile(dialog, L"old.kvmp");
        ScreenUser::press(awaitQuestion(dialog), IDYES);
    });
    ASSERT_TRUE(replaced);
    EXPECT_EQ(replaced->file.filename(), "old.kvmp");
    const auto cancelled = ask(asked, [&](HWND dialog) { ScreenUser::press(dialog, IDCANCEL); });
    ASSERT_TRUE(cancelled);
    EXPECT_EQ(cancelled->file, fs::path());
    EXPECT_EQ(cancelled->error, "");
}

TEST_F(Menus, showTheirEntriesAndAreChosenByLetters) {
    std::vector<std::wstring> lines;
    struct Row {
        std::vector<WORD> keys;
        std::optional<int> chosen;
    };
    for (const Row& row : {Row{{'S'}, 7},
                           Row{{'F'}, 8},
                           Row{{'M', 'D'}, 0},
                           Row{{'M', 'W'}, -1},
                           Row{{'M', VK_ESCAPE, 'S'}, 7},
                           Row{{VK_DOWN, VK_DOWN, VK_RETURN}, 8},
                           Row{{VK_ESCAPE}, std::nullopt}}) {
        const auto chosen = choose([&](HWND shown) {
            constexpr UINT kGetMenu = 0x01E1;
            lines = linesOf(reinterpret_cast<HMENU>(SendMessageW(shown, kGetMenu, 0, 0)));
            for (const WORD code : row.keys) {
                ScreenUser::key(code);
                Sleep(100);
            }
        });
        ASSERT_TRUE(chosen);
        EXPECT_EQ(*chosen, row.chosen) << static_cast<char>(row.keys.front());
        EXPECT_FALSE(menu->poll());
    }
    EXPECT_THAT(lines, ElementsAre(L"&Save", L"&Fish && Chips\u2026 checked", L"--", L"&Gone grayed", L"&More",
                                   L"> &Deep", L"> &Wide"));
}

TEST(OpenLink, refusesWhatIsNoLink) {
    for (const char* link : {"", "notepad", "C:\\windows\\notepad.exe", "file:///C:/windows/notepad.exe",
                             "javascript:alert(1)", "https://a\nb", ".", "HTTPS", "\\\\nowhere\\share\\run.exe"}) {
        try {
            openLink(link);
            ADD_FAILURE() << link;
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), std::string("Not a link: ") + link);
        }
    }
}

// The system's messages go on while something is up, and with them may come the end of whoever waits for it.
TEST(Modal, aMessageBoxGoesWithItsOwner) {
    const HWND host = CreateWindowExW(0, L"STATIC", L"host", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr, nullptr,
                                      nullptr, nullptr);
    for (const bool windowGoes : {false, true}) {
        for (const auto buttons : {MessageButtons::ok, MessageButtons::yesNo}) {
            bool answered = false;
            auto dialog = MessageDialog::open(reinterpret_cast<NativeWindow>(host), "Question", "Well?", buttons, painter,
                                              [&](MessageAnswer) { answered = true; });
            const Later end(300, [&] {
                EXPECT_TRUE(ScreenUser::find(ScreenUser::kDialog, L"Question"));
                EXPECT_TRUE(dialog->poll()); // it is still open
                if (windowGoes && buttons == MessageButtons::yesNo) {
                    DestroyWindow(host);
                }
                dialog.reset();
            });
            MessageDialog& polled = *dialog;
            EXPECT_FALSE(polled.poll());
            EXPECT_FALSE(answered);
            EXPECT_FALSE(ScreenUser::find(ScreenUser::kDialog, L"Question"));
            EXPECT_TRUE(!IsWindow(host) || IsWindowEnabled(host));
        }
    }
}

TEST_F(Files, goWithTheirOwner) {
    std::ofstream(folder / "old.kvmp") << "x";
    for (const bool questioning : {false, true}) {
        bool answered = false;
        auto dialog = FileDialog::open(request(FileDialogRequest::Kind::save),
                                       [&](const FileDialogAnswer&) { answered = true; });
        const ScreenUser user([&] {
            const HWND shown = ScreenUser::await(ScreenUser::kDialog, L"Tr\u00E4ume");
            if (questioning) {
                ScreenUser::typeFile(shown, L"old.kvmp");
                EXPECT_TRUE(awaitQuestion(shown));
            }
        });
        const Later end(3000, [&] {
            EXPECT_TRUE(ScreenUser::find(ScreenUser::kDialog, L"Tr\u00E4ume"));
            dialog.reset();
        });
        FileDialog& polled = *dialog;
        EXPECT_FALSE(polled.poll());
        EXPECT_FALSE(answered);
        EXPECT_FALSE(ScreenUser::find(ScreenUser::kDialog));
    }
}

TEST_F(Menus, goWithTheirOwner) {
    for (const bool windowGoes : {false, true}) {
        bool answered = false;
        menu = PopupMenu::open(*window, {10, 10, 0, 0}, entries(), painter, [&](auto) { answered = true; });
        const Later end(500, [&] {
            EXPECT_TRUE(ScreenUser::find(ScreenUser::kMenu));
            menu.reset();
            if (windowGoes) {
                window.reset();
            }
        });
        PopupMenu& polled = *menu;
        EXPECT_FALSE(polled.poll());
        EXPECT_FALSE(answered);
        EXPECT_FALSE(ScreenUser::find(ScreenUser::kMenu));
    }
}
