// Strings as literals of the notation: printable ASCII, everything else escaped.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Stackbrace {

// The content of a quoted string; a text that does not begin with a quote is returned as it stands. A NUL or
// SUB byte ends the text. Throws ParsingError, counted from the start of `element`, for a string that is not
// valid.
std::string unquote(std::string_view element);

// The same for elements of documents, whose callers know more about the place: the offset of the fault, or
// nullopt when all went well.
std::optional<std::size_t> unquoteInto(std::string_view element, std::string& content);

// Always in double quotes. Bytes outside printable ASCII become \t, \n, \r or \x with two lower-case digits.
std::string quote(std::string_view content);
void appendQuoted(std::string& text, std::string_view content);

} // namespace Stackbrace
