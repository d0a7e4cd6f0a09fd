// Between our UTF-8 and the system's UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace Platform {

// What is no UTF-8 becomes U+FFFD, what is no UTF-16 likewise.
std::wstring toWide(std::string_view utf8);
std::string toUtf8(std::wstring_view wide);

// The system's words for one of its error codes, without the line end that it puts there.
std::string systemWords(unsigned long code);

// The module that this code is part of: the plug-in's library, or the command. An HINSTANCE.
void* thisModule();

} // namespace Platform
