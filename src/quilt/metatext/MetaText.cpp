#include "metatext/MetaText.h"

#include "notation/Quoting.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Quilt {

namespace {

bool isWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The value as it stands in a quoted stretch. Literals are in double quotes; in single ones the other quote
// has to be escaped too.
std::string escaped(const std::string& value, char quote) {
    const std::string literal = Stackbrace::quote(value);
    std::string text;
    for (const char c : std::string_view(literal).substr(1, literal.size() - 2)) {
        if (c == '\'' && quote == '\'') {
            text += '\\';
        }
        text += c;
    }
    return text;
}

// What a tag makes of the text in it, the quote state being that before the tag.
using Effect = void (*)(std::string& text, char quote, const MetaTextSources& sources);

void readVariable(std::string& text, char quote, const MetaTextSources& sources) {
    const std::string value = sources.variable(text);
    text = quote == 0 ? value : escaped(value, quote);
}

void translate(std::string& text, char, const MetaTextSources& sources) {
    text = sources.translate(text);
}

void trim(std::string& text, char, const MetaTextSources&) {
    text.erase(text.begin(), std::ranges::find_if_not(text, isWhiteSpace));
    while (!text.empty() && isWhiteSpace(text.back())) {
        text.pop_back();
    }
}

struct Tag {
    std::string_view opening;
    std::string_view closing;
    Effect effect;
};

constexpr Tag kTags[] = {
    {"[var]", "[/var]", readVariable},
    {"[windows]", "[/windows]", [](std::string&, char, const MetaTextSources&) {}},
    {"[mac]", "[/mac]", [](std::string& text, char, const MetaTextSources&) { text.clear(); }},
    {"[xlate]", "[/xlate]", translate},
    {"[uppercase]", "[/uppercase]",
     [](std::string& text, char, const MetaTextSources&) {
         std::ranges::transform(text, text.begin(), upper);
     }},
    {"[lowercase]", "[/lowercase]",
     [](std::string& text, char, const MetaTextSources&) {
         std::ranges::transform(text, text.begin(), lower);
     }},
    {"[trim]", "[/trim]", trim},
};

class Scanner {
public:
    Scanner(std::string_view text, const MetaTextSources& sources) : text_(text), sources_(sources) {}

    std::string run() {
        while (at_ < text_.size()) {
            const std::size_t plainEnd = std::min(text_.find_first_of("[\"'\\", at_), text_.size());
            copyTo(plainEnd);
            if (at_ == text_.size()) {
                break;
            }
            switch (text_[at_]) {
            case '[':
                bracket();
                break;
            case '\\':
                backslash();
                break;
            default:
                quote();
            }
        }
        while (!open_.empty()) {
            close();
        }
        return std::move(result_);
    }

private:
    struct Open {
        const Tag* tag;
        std::size_t begin; // in the result
        char quote;        // the state before the tag
    };

    void copyTo(std::size_t end) {
        result_.append(text_, at_, end - at_);
        at_ = end;
    }

    void quote() {
        const char c = text_[at_];
        if (quote_ == 0) {
            quote_ = c;
        } else if (quote_ == c) {
            quote_ = 0;
        }
        copyTo(at_ + 1);
    }

    void backslash() {
        constexpr std::string_view kEscapable = "\"'[\\]";
        if (at_ + 1 < text_.size() && kEscapable.find(text_[at_ + 1]) != std::string_view::npos) {
            ++at_;
        }
        copyTo(at_ + 1);
    }

    void bracket() {
        const std::size_t next = std::min(text_.find_first_of("[]", at_ + 1), text_.size());
        if (next == text_.size() || text_[next] == '[') {
            return copyTo(next);
        }
        const std::string_view candidate = text_.substr(at_, next + 1 - at_);
        for (const Tag& tag : kTags) {
            if (candidate == tag.opening) {
                if (open_.size() == kMostMetaTags) {
                    throw MetaTextError("Too many meta tags inside one another");
                }
                open_.push_back({&tag, result_.size(), quote_});
                at_ = next + 1;
                return;
            }
            if (candidate == tag.closing) {
                if (open_.empty() || open_.back().tag != &tag) {
                    throw MetaTextError("Unexpected meta tag " + std::string(candidate));
                }
                close();
                at_ = next + 1;
                return;
            }
        }
        copyTo(next + 1);
    }

    void close() {
        const Open open = open_.back();
        open_.pop_back();
        std::string text = result_.substr(open.begin);
        result_.resize(open.begin);
        open.tag->effect(text, open.quote, sources_);
        result_ += text;
    }

    std::string_view text_;
    const MetaTextSources& sources_;
    std::size_t at_ = 0;
    std::string result_;
    std::vector<Open> open_;
    char quote_ = 0; // of the quoted stretch the scanner is in; tags do not end it
};

} // namespace

std::string expandMetaText(std::string_view text, const MetaTextSources& sources) {
    if (text.find('[') == std::string_view::npos) {
        return std::string(text);
    }
    return Scanner(text, sources).run();
}

bool containsVariableReference(std::string_view text) {
    return text.find(kTags[0].opening) != std::string_view::npos;
}

} // namespace Quilt
