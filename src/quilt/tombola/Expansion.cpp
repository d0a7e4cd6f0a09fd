#include "tombola/Expansion.h"

#include "platform/LargePages.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Tombola {

namespace {

// What a scope and an include cost beside the bytes in them.
constexpr std::size_t kScopeCost = 32;
constexpr std::size_t kIncludeCost = 16384;

std::string quoted(std::string_view name) {
    return '"' + std::string(name) + '"';
}

// As the string itself would grow, but into pages that cost less.
void append(std::string& output, std::string_view text) {
    if (text.size() > output.capacity() - output.size()) {
        output.reserve(std::max(output.size() + text.size(), 2 * output.capacity()));
        Platform::preferLargePages(output.data() + output.size(), output.capacity() - output.size());
    }
    output.append(text);
}

bool isDirective(std::string_view word) {
    switch (word.empty() ? '\0' : word.front()) {
    case 'b':
        return word == "begin";
    case 'd':
        return word == "define";
    case 'i':
        return word == "if" || word == "include";
    case 'r':
        return word == "redefine";
    default:
        return false;
    }
}

void addStretch(std::vector<Stretch>& stretches, Stretch stretch) {
    if (!stretches.empty() && !stretch.together) {
        const Stretch& last = stretches.back();
        if (last.source == stretch.source && !last.together &&
            stretch.offset - last.offset == stretch.sourceOffset - last.sourceOffset) {
            return; // goes on where the last one ended
        }
    }
    stretches.push_back(std::move(stretch));
}

} // namespace

Expansion::Expansion(const IncludeLoader& loader, std::size_t sourceSize, bool positions)
    : loader_(loader), positions_(positions), readLeft_(Processor::kMostRead + 16 * sourceSize),
      producedLeft_(Processor::kMostProduced + 2 * sourceSize) {}

void Expansion::countRead(const Reader& in, std::size_t bytes) {
    if (bytes > readLeft_) {
        in.fail("Expansion limit reached");
    }
    readLeft_ -= bytes;
}

void Expansion::countProduced(const Reader& in, std::size_t bytes) {
    if (bytes > producedLeft_) {
        in.fail("Expansion limit reached");
    }
    producedLeft_ -= bytes;
}

void Expansion::expand(Reader& in, Scope& scope, Output out) {
    if (scope.remainingDepth() == 0) {
        in.fail("Recursion depth limit reached");
    }
    Frame frame{in, scope, out};
    run(frame);
}

void Expansion::run(Frame& frame) {
    Reader& in = frame.in;
    countRead(in, kScopeCost + static_cast<std::size_t>(in.end() - in.at()));
    for (;;) {
        const char* const from = in.at();
        const auto left = static_cast<std::size_t>(in.end() - from);
        const auto* const sign = static_cast<const char*>(std::memchr(from, '@', left));
        if (sign == nullptr) {
            copy(frame, from, in.end());
            in.moveTo(in.end());
            return;
        }
        in.moveTo(sign + 1);
        if (in.take('@')) {
            copy(frame, from, sign + 1);
            continue;
        }
        const std::string_view word = in.identifier();
        if (isDirective(word)) {
            // Blanks before a directive go with its line.
            const char* end = sign;
            while (end != from && (end[-1] == ' ' || end[-1] == '\t')) {
                --end;
            }
            copy(frame, from, end);
            directive(frame, word);
            in.skipRestOfLine();
        } else {
            copy(frame, from, sign);
            call(frame, word);
        }
    }
}

void Expansion::copy(Frame& frame, const char* begin, const char* end) {
    const auto size = static_cast<std::size_t>(end - begin);
    if (size == 0) {
        return;
    }
    countProduced(frame.in, size);
    if (frame.out.stretches != nullptr) {
        countProduced(frame.in, sizeof(Stretch));
        addStretch(*frame.out.stretches,
                   {frame.out.text.size(), frame.in.source(), frame.in.offsetOf(begin)});
    }
    append(frame.out.text, {begin, size});
}

void Expansion::insert(Frame& frame, const Value& value) {
    const std::string_view text = value.text();
    if (text.empty()) {
        return;
    }
    countProduced(frame.in, text.size());
    std::vector<Stretch>* const stretches = frame.out.stretches;
    const std::size_t offset = frame.out.text.size();
    if (stretches != nullptr) {
        countProduced(frame.in, (value.stretches.size() + 1) * sizeof(Stretch));
        for (const Stretch& stretch : value.stretches) {
            addStretch(*stretches,
                       {offset + stretch.offset, stretch.source, stretch.sourceOffset, stretch.together});
        }
        if (value.stretches.empty()) {
            addStretch(*stretches, {offset, frame.in.source(), frame.in.offsetOf(frame.in.at()) - 1, true});
        }
    }
    append(frame.out.text, text);
}

void Expansion::directive(Frame& frame, std::string_view word) {
    switch (word.front()) {
    case 'd':
        return define(frame);
    case 'r':
        return redefine(frame);
    case 'b':
        return beginMacro(frame);
    default:
        return word == "if" ? conditional(frame) : include(frame);
    }
}

std::string_view Expansion::definedName(Frame& frame) {
    frame.in.skipWhitespace();
    const std::string_view name = frame.in.name();
    if (name.empty()) {
        frame.in.fail("Missing / invalid name");
    }
    return name;
}

void Expansion::definedText(Frame& frame, Value& value) {
    frame.in.skipBlanks();
    if (!frame.in.take('=')) {
        frame.in.fail("Expected =");
    }
    frame.in.skipBlanks();
    argument(frame, '\n', '\r', value);
}

void Expansion::define(Frame& frame) {
    const std::string_view name = definedName(frame);
    const std::size_t base = values_.size();
    Value& text = values_.push();
    definedText(frame, text);
    Value* const value = frame.scope.defineValue(name);
    if (value == nullptr) {
        frame.in.fail(quoted(name) + " is already defined");
    }
    value->keep(text);
    values_.shrink(base);
}

void Expansion::redefine(Frame& frame) {
    const std::string_view name = definedName(frame);
    const std::size_t base = values_.size();
    Value& text = values_.push();
    definedText(frame, text);
    const auto [block, value] = frame.scope.find(name);
    if (block != nullptr) {
        frame.in.fail("Cannot redefine macro " + quoted(name));
    }
    if (value == nullptr) {
        frame.in.fail("Cannot redefine undefined " + quoted(name));
    }
    value->keep(text);
    values_.shrink(base);
}

void Expansion::parameters(Reader& in, BlockMacro& macro) {
    in.skipWhitespace();
    for (std::string_view name = in.name(); !name.empty();) {
        if (!macro.addParameter(name)) {
            in.fail("Duplicate parameter name " + quoted(name));
        }
        if (!in.take(',')) {
            break;
        }
        in.skipWhitespace();
        name = in.name();
        if (name.empty()) {
            in.fail("Expected parameter name");
        }
    }
    if (!in.take(')')) {
        in.fail("Expected parameter name or )");
    }
}

void Expansion::beginMacro(Frame& frame) {
    Reader& in = frame.in;
    const std::string_view name = definedName(frame);
    auto macro = std::make_unique<BlockMacro>();
    macro->source = in.source();
    macro->scope = &frame.scope;
    if (in.take('(')) {
        parameters(in, *macro);
    }
    in.skipRestOfLine();
    macro->body = in.macroBody();
    if (!frame.scope.defineBlock(name, std::move(macro))) {
        in.fail(quoted(name) + " is already defined");
    }
}

// Expanded in a scope of its own, which may be one too many even where there is nothing to expand.
void Expansion::argument(Frame& frame, char stop, char otherStop, Value& value) {
    const std::string_view text = frame.in.argument(stop, otherStop);
    Reader in = frame.in.within(text);
    const unsigned depth = frame.scope.remainingDepth() - 1;
    if (depth != 0 && text.find('@') == std::string_view::npos) {
        countRead(in, kScopeCost + text.size());
        value.borrow(text);
        if (positions_) {
            value.stretches.push_back({0, in.source(), in.offsetOf(text.data())});
        }
        return;
    }
    Scope scope(&frame.scope, depth);
    std::string& own = value.ownText();
    expand(in, scope, {own, positions_ ? &value.stretches : nullptr});
}

bool Expansion::condition(Frame& frame) {
    Reader& in = frame.in;
    in.skipWhitespace();
    if (!in.take('(')) {
        in.fail("Expected (");
    }
    in.skipWhitespace();
    const std::size_t base = values_.size();
    Value& left = values_.push();
    argument(frame, '=', '!', left);
    in.skipWhitespace();
    const bool equal = in.isAt('=');
    if (in.end() - in.at() < 2 || !(equal || in.isAt('!')) || in.at()[1] != '=') {
        in.fail("Expected == or !=");
    }
    in.moveTo(in.at() + 2);
    in.skipWhitespace();
    Value& right = values_.push();
    argument(frame, ')', ')', right);
    in.skipWhitespace();
    if (!in.take(')')) {
        in.fail("Expected )");
    }
    in.skipRestOfLine();
    const bool holds = (left.text() == right.text()) == equal;
    values_.shrink(base);
    return holds;
}

// The end is found first: a conditional that is not closed is reported before anything in its branches.
void Expansion::conditional(Frame& frame) {
    Reader& in = frame.in;
    bool holds = condition(frame);
    bool decided = false;
    bool otherwise = false;
    std::string_view taken;
    for (;;) {
        const char* const branch = in.at();
        const auto marker = in.nextMarker();
        if (holds && !decided) {
            taken = {branch, static_cast<std::size_t>(marker.begin - branch)};
            decided = true;
        }
        if (marker.kind == Reader::Marker::endif) {
            break;
        }
        if (marker.kind == Reader::Marker::otherwise) {
            otherwise = true;
            holds = true;
            in.skipRestOfLine();
        } else if (otherwise) {
            in.fail("Illegal use of \"elif\"");
        } else {
            holds = !decided && condition(frame);
        }
    }
    if (decided) {
        Reader branch = in.within(taken);
        Scope scope(&frame.scope, frame.scope.remainingDepth() - 1);
        expand(branch, scope, frame.out);
    }
}

// Same scope, same depth: what the included text defines stays.
void Expansion::include(Frame& frame) {
    Reader& in = frame.in;
    in.skipBlanks();
    const std::size_t base = values_.size();
    Value& value = values_.push();
    argument(frame, '\n', '\r', value);
    const std::string name(value.text());
    values_.shrink(base);
    in.skipRestOfLine();
    if (includes_ == Processor::kMostIncludes) {
        in.fail("Include limit reached: " + name);
    }
    countRead(in, kIncludeCost);
    auto text = loader_ ? loader_(name) : std::nullopt;
    if (!text) {
        in.fail("Could not load include file: " + name);
    }
    countProduced(in, text->size());
    const SourcePointer source = std::make_shared<const Source>(Source{name, std::move(*text)});
    Reader included(source, source->text);
    Frame inside{included, frame.scope, frame.out};
    ++includes_;
    run(inside);
    --includes_;
}

void Expansion::arguments(Frame& frame) {
    do {
        frame.in.skipWhitespace();
        argument(frame, ',', ')', values_.push());
        frame.in.skipWhitespace(); // behind @>
    } while (frame.in.take(','));
    if (!frame.in.take(')')) {
        frame.in.fail("Expected , or )");
    }
}

void Expansion::call(Frame& frame, std::string_view word) {
    Reader& in = frame.in;
    const std::size_t base = values_.size();
    std::string_view name = word;
    if (word.empty() && in.take('(')) {
        in.skipWhitespace();
        Value& value = values_.push();
        argument(frame, ')', ')', value);
        in.skipWhitespace();
        if (!in.take(')')) {
            in.fail("Expected )");
        }
        name = value.text();
    } else {
        in.refuseReserved(name);
    }
    if (name.empty()) {
        in.fail("Missing / invalid name");
    }
    const std::size_t first = values_.size();
    if (in.take('(')) {
        arguments(frame);
    }
    const auto [block, value] = frame.scope.find(name);
    if (block == nullptr && value == nullptr) {
        in.fail(quoted(name) + " is undefined");
    }
    if (values_.size() - first != (block == nullptr ? 0 : block->parameters.size())) {
        in.fail("Incorrect number of arguments for " + std::string(name));
    }
    if (block == nullptr) {
        insert(frame, *value);
    } else {
        callMacro(frame, *block, first);
    }
    values_.shrink(base);
}

// The scope hangs on the macro's own, not on the caller's: a macro means the same wherever it is used.
void Expansion::callMacro(Frame& frame, const BlockMacro& macro, std::size_t firstArgument) {
    Scope scope(macro.scope, frame.scope.remainingDepth() - 1, macro, values_, firstArgument);
    Reader body(macro.source, macro.body);
    expand(body, scope, frame.out);
}

} // namespace Tombola
