#include "platform/Clipboard.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>
#include <string>

using namespace Platform;

namespace {

// As another program would, in the system's own terms.
void copyElsewhere(UINT format, const void* bytes, std::size_t size) {
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
    std::memcpy(GlobalLock(memory), bytes, size);
    GlobalUnlock(memory);
    SetClipboardData(format, memory);
    CloseClipboard();
}

} // namespace

TEST(Clipboard, exchangesTextWithOtherPrograms) {
    const auto clipboard = Clipboard::open();
    const auto other = Clipboard::open();
    std::string longText;
    while (longText.size() < 1'500'000) {
        longText += "line\n";
    }
    for (const std::string& text : {std::string("Tr\xC3\xA4ume \xE2\x82\xAC \xF0\x9D\x84\x9E"),
                                    std::string("one\ntwo\n"), std::string(), longText}) {
        clipboard->setText(text);
        EXPECT_TRUE(other->text() == text) << text.size() << " bytes";
    }
    clipboard->setText("a\nb");
    ASSERT_TRUE(OpenClipboard(nullptr));
    EXPECT_STREQ(static_cast<const wchar_t*>(GlobalLock(GetClipboardData(CF_UNICODETEXT))), L"a\r\nb");
    CloseClipboard();
}

TEST(Clipboard, pastesWhatOtherProgramsCopy) {
    const auto clipboard = Clipboard::open();
    copyElsewhere(CF_UNICODETEXT, L"one\r\ntwo\rthree", 30); // two bytes a letter and the end
    EXPECT_EQ(clipboard->text(), "one\ntwo\rthree");
    copyElsewhere(CF_TEXT, "plain", 6);
    EXPECT_EQ(clipboard->text(), "plain");
    copyElsewhere(RegisterClipboardFormatW(L"murmelon test"), "not text", 9);
    EXPECT_EQ(clipboard->text(), "");
}
