#include "quilt/Unicode.h"

#include <gtest/gtest.h>

namespace {

struct Case {
    const char* utf8;
    std::u16string characters;
    bool valid = true;
};

TEST(Unicode, ReadsUtf8AndTakesOtherBytesAsTheyAre) {
    const Case cases[] = {
        {"", u""},
        {"abc", u"abc"},
        {"\xC3\xBC\xE2\x82\xAC", u"ü€"},
        {"\xF0\x9D\x84\x9E", u"\xD834\xDD1E"},
        {"\xFC"
         "b",
         u"\x00FC"
         u"b",
         false},                                        // Latin-1
        {"\xC3", u"\x00C3", false},                     // cut off
        {"\xC0\xAF", u"\x00C0\x00AF", false},           // longer than need be
        {"\xED\xA0\x80", u"\x00ED\x00A0\x0080", false}, // half of a pair
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Quilt::toUtf16(c.utf8), c.characters) << c.utf8;
        if (c.valid) {
            EXPECT_EQ(Quilt::toUtf8(c.characters), c.utf8);
        }
    }
}

} // namespace
