// Captions, hints and parameters of actions as layouts write them, with tags in square brackets:
//
//   [var]NAME[/var]             a variable's value; between quotes it is escaped as a string literal is
//   [xlate]TEXT[/xlate]         its translation
//   [uppercase] [lowercase]     ASCII letters changed
//   [trim]                      white space at both ends removed
//   [windows] [mac]             the one kept, the other dropped
//
// Tags nest, and a tag left open ends with the text. Whatever else is in brackets is no tag. In a text with
// any bracket, a backslash before a quote, a bracket or a backslash yields that byte.
#pragma once

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Tombola {
class Processor;
}

namespace Quilt {

class MetaTextError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What texts are expanded with. Either may throw; that ends the expansion.
struct MetaTextSources {
    std::function<std::string(const std::string& name)> variable;
    std::function<std::string(const std::string& text)> translate;
};

// Tags inside one another. Each level passes over its text once more.
inline constexpr std::size_t kMostMetaTags = 1000;

// Throws MetaTextError "Unexpected meta tag [/x]" for a closing tag that does not fit, and "Too many meta
// tags inside one another".
std::string expandMetaText(std::string_view text, const MetaTextSources& sources);

// Whether the text depends on variables.
bool containsVariableReference(std::string_view text);

using ErrorReport = std::function<void(const std::string& title, const std::string& message)>;

// The two operations as documents offer them to views and actions: a fault is reported, and the text is
// empty.
std::string expandMetaText(std::string_view text, const MetaTextSources& sources, const ErrorReport& report);
std::string expandMacros(std::string_view text, Tombola::Processor& processor, const ErrorReport& report);

} // namespace Quilt
