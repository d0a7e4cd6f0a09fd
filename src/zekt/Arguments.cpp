#include "zekt/Arguments.h"

#include "zekt/Escapes.h"
#include "zekt/Lexical.h"
#include "zekt/Machine.h"

namespace ZEKT {

namespace {

// The elements of a list; in a text that is not expanded yet, comments are no part of them.
std::vector<std::string_view> split(std::string_view text, bool commasInParentheses) {
    std::vector<std::string_view> elements;
    std::size_t first = 0;
    std::size_t parentheses = 0;
    const auto add = [&](std::size_t end) {
        if (elements.size() == kMostElements) {
            Machine::failAtTextLimit();
        }
        elements.push_back(Lexical::trimmed(text.substr(first, end - first)));
        first = end + 1;
    };
    for (std::size_t at = 0; at < text.size();) {
        switch (text[at]) {
        case '"':
            at = Lexical::quotedEnd(text, at);
            continue;
        case '[':
            at = Lexical::bracketedEnd(text, at);
            continue;
        case '\\':
            at = Lexical::escapeEnd(text, at);
            continue;
        case '(':
            ++parentheses;
            break;
        case ')':
            parentheses -= parentheses > 0 ? 1 : 0;
            break;
        case ',':
            if (commasInParentheses || parentheses == 0) {
                add(at);
            }
            break;
        default:
            break;
        }
        ++at;
    }
    if (!elements.empty() || !Lexical::trimmed(text).empty()) {
        add(text.size());
    }
    return elements;
}

void checkCount(std::size_t count, const ListRules& rules) {
    if (count < rules.atLeast) {
        throw RunTimeException("Too few list elements (got " + std::to_string(count) +
                               ", expected at least " + std::to_string(rules.atLeast) + ")");
    }
    if (count > rules.atMost) {
        throw RunTimeException("Too many list elements (got " + std::to_string(count) +
                               ", expected at most " + std::to_string(rules.atMost) + ")");
    }
}

} // namespace

std::string Argument::expandedInside() const {
    Machine& machine = frame_->machine_;
    if (form_ == nullptr) {
        return machine.expand(*frame_, Lexical::inside(raw_));
    }
    if (!form_->inside) {
        form_->inside = std::make_unique<Expansion>(Lexical::inside(raw_));
    }
    std::string result;
    machine.append(*frame_, *form_->inside, result);
    return result;
}

std::string Argument::text() const {
    if (bracketed_) {
        return withoutEscapes(expandedInside());
    }
    frame_->machine_.work(raw_.size());
    return withoutEscapes(quoted_ ? Lexical::inside(raw_) : raw_);
}

std::u16string Argument::wideText() const {
    if (bracketed_) {
        return wideWithoutEscapes(expandedInside());
    }
    frame_->machine_.work(raw_.size());
    return wideWithoutEscapes(quoted_ ? Lexical::inside(raw_) : raw_);
}

std::string Argument::keyword() const {
    return folded(text());
}

double Argument::number() const {
    return toNumber(text());
}

std::int64_t Argument::integer() const {
    return toInteger(text());
}

bool Argument::boolean() const {
    return toBoolean(text());
}

std::string_view Argument::content() const {
    return bracketed_ || quoted_ ? Lexical::inside(raw_) : raw_;
}

template <typename Take>
void Argument::forElements(const ListRules& rules, Take take) const {
    Machine& machine = frame_->machine_;
    machine.work(raw_.size());
    if (!bracketed_) {
        const auto parts = split(content(), rules.commasInParentheses);
        checkCount(parts.size(), rules);
        for (const std::string_view part : parts) {
            take(part);
        }
        return;
    }
    std::unique_ptr<ElementForms> own;
    auto& forms = form_ != nullptr ? form_->elements : own;
    if (!forms || forms->commasInParentheses != rules.commasInParentheses) {
        auto made = std::make_unique<ElementForms>();
        made->commasInParentheses = rules.commasInParentheses;
        for (const std::string_view part : split(content(), rules.commasInParentheses)) {
            made->elements.emplace_back(part);
        }
        forms = std::move(made);
    }
    checkCount(forms->elements.size(), rules);
    std::string element;
    for (Expansion& expansion : forms->elements) {
        element.clear();
        machine.append(*frame_, expansion, element);
        take(std::string_view(element));
    }
}

std::vector<std::string> Argument::expandedElements() const {
    std::vector<std::string> elements;
    forElements({}, [&elements](std::string_view element) { elements.emplace_back(element); });
    return elements;
}

std::vector<std::string> Argument::list(const ListRules& rules) const {
    std::vector<std::string> elements;
    forElements(rules, [this, &elements](std::string_view element) {
        if (Lexical::isBracketed(element)) {
            elements.push_back(withoutEscapes(frame_->machine_.expand(*frame_, Lexical::inside(element))));
        } else {
            elements.push_back(
                withoutEscapes(Lexical::isQuoted(element) ? Lexical::inside(element) : element));
        }
    });
    return elements;
}

std::vector<double> Argument::numbers(std::size_t atLeast, std::size_t atMost) const {
    std::vector<double> numbers;
    const auto plain = [&numbers](std::string_view element) {
        double value = 0;
        const bool read = readNumber(element, value) == Numeric::yes;
        numbers.push_back(value);
        return read;
    };
    bool all = true;
    forElements({atLeast, atMost}, [&](std::string_view element) { all = plain(element) && all; });
    if (!all) { // quoted, or no numbers at all
        numbers.clear();
        for (const std::string& element : list({atLeast, atMost})) {
            numbers.push_back(toNumber(element));
        }
    }
    return numbers;
}

Arguments Argument::arguments() const {
    const std::string_view source = content();
    if (form_ == nullptr) {
        return Arguments(*frame_, ArgumentText(source));
    }
    if (!form_->arguments) {
        form_->arguments = std::make_unique<ArgumentsForm>(source, frame_->machine_.variables);
    }
    return Arguments(*frame_, ArgumentText(source, *form_->arguments));
}

Arguments::Arguments(Frame& frame, const ArgumentText& text) {
    const ArgumentsForm* form = text.form();
    if (form == nullptr) {
        frame.machine_.work(text.text().size());
        form_ = std::make_unique<ArgumentsForm>(text.text(), frame.machine_.variables);
        form = form_.get();
    }
    frame.machine_.work(form->words.size());
    arguments_ = std::make_unique<Argument[]>(form->words.size());
    for (const WordForm& word : form->words) {
        expand(frame, word, arguments_[count_]);
        ++count_;
    }
}

Arguments::~Arguments() = default;

void Arguments::expand(Frame& frame, const WordForm& word, Argument& argument) {
    Machine& machine = frame.machine_;
    argument.frame_ = &frame;
    if (word.label) {
        machine.appendPieces(frame, *word.label, 0, argument.label_);
        if (argument.label_.empty()) {
            throw SyntaxException("Label cannot be empty");
        }
        machine.work(count_);
        if (find(argument.label_) != nullptr) {
            throw SyntaxException("Duplicate label: " + argument.label_);
        }
        argument.labelled_ = true;
    } else {
        ++indexedCount_;
    }
    if (word.isLiteral()) {
        argument.raw_ = word.value.literal();
        argument.form_ = &word;
        argument.bracketed_ = word.bracketed;
        argument.quoted_ = word.quoted;
    } else {
        machine.appendPieces(frame, word.value, 0, argument.storage_);
        argument.raw_ = argument.storage_;
        argument.bracketed_ = Lexical::isBracketed(argument.raw_);
        argument.quoted_ = Lexical::isQuoted(argument.raw_);
    }
}

void Arguments::requireAny() const {
    if (empty()) {
        throw SyntaxException("Missing argument(s)");
    }
}

Argument* Arguments::find(std::size_t index) {
    for (std::size_t i = 0; i < count_; ++i) {
        if (!arguments_[i].labelled_ && index-- == 0) {
            arguments_[i].used_ = true;
            return &arguments_[i];
        }
    }
    return nullptr;
}

Argument* Arguments::find(std::string_view label) {
    for (std::size_t i = 0; i < count_; ++i) {
        if (arguments_[i].labelled_ && arguments_[i].label_ == label) {
            return &arguments_[i];
        }
    }
    return nullptr;
}

const Argument* Arguments::optional(std::size_t index) {
    return find(index);
}

const Argument* Arguments::optional(std::string_view label) {
    Argument* const found = find(label);
    if (found != nullptr) {
        found->used_ = true;
    }
    return found;
}

const Argument& Arguments::required(std::size_t index) {
    const Argument* const found = optional(index);
    if (found == nullptr) {
        throw SyntaxException("Missing indexed argument " + std::to_string(index));
    }
    return *found;
}

const Argument& Arguments::required(std::string_view label) {
    const Argument* const found = optional(label);
    if (found == nullptr) {
        throw SyntaxException("Missing argument: " + std::string(label));
    }
    return *found;
}

std::vector<const Argument*> Arguments::rest(std::size_t first) {
    std::vector<const Argument*> rest;
    for (std::size_t i = 0; i < count_; ++i) {
        Argument& argument = arguments_[i];
        if (argument.labelled_) {
            continue;
        }
        if (first > 0) {
            --first;
        } else {
            argument.used_ = true;
            rest.push_back(&argument);
        }
    }
    return rest;
}

std::vector<Arguments::Labelled> Arguments::labelled() {
    std::vector<Labelled> labelled;
    for (std::size_t i = 0; i < count_; ++i) {
        if (arguments_[i].labelled_) {
            arguments_[i].used_ = true;
            labelled.push_back({arguments_[i].label_, &arguments_[i]});
        }
    }
    return labelled;
}

void Arguments::finish() const {
    for (std::size_t i = 0; i < count_; ++i) {
        if (!arguments_[i].used_) {
            throw SyntaxException("Unrecognized labels or too many arguments");
        }
    }
}

} // namespace ZEKT
