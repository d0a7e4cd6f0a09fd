#include "zekt/Variables.h"

#include "zekt/Errors.h"
#include "zekt/Frame.h"
#include "zekt/Interpreter.h"
#include "zekt/Lexical.h"

namespace ZEKT {

Symbol& Variables::symbol(std::string_view name) {
    if (Symbol* const found = known(name)) {
        return *found;
    }
    auto made = std::make_unique<Symbol>(Symbol{std::string(name), Lexical::isVariableName(name)});
    return *symbols_.emplace(made->name, std::move(made)).first->second;
}

Symbol* Variables::known(std::string_view name) {
    const auto found = symbols_.find(name);
    return found == symbols_.end() ? nullptr : found->second.get();
}

Binding* Variables::find(const Frame& frame, const Symbol& symbol) {
    Binding* binding = symbol.innermost;
    while (binding != nullptr && binding->frame->depth_ > frame.depth_) {
        binding = binding->outer;
    }
    return binding;
}

bool Variables::isLocal(const Frame& frame, const Symbol& symbol) {
    const Binding* const binding = find(frame, symbol);
    return binding != nullptr && binding->frame == &frame;
}

Binding& Variables::assigned(Frame& frame, Symbol& symbol) {
    Binding* const binding = find(frame, symbol);
    return binding != nullptr ? *binding : local(frame, symbol);
}

Binding& Variables::local(Frame& frame, Symbol& symbol) {
    if (!symbol.valid) {
        throw RunTimeException("Could not set variable");
    }
    Binding** link = &symbol.innermost;
    while (*link != nullptr && (*link)->frame->depth_ > frame.depth_) {
        link = &(*link)->outer;
    }
    return *link != nullptr && (*link)->frame == &frame ? **link : make(frame, symbol, *link);
}

Binding& Variables::make(Frame& frame, Symbol& symbol, Binding*& link) {
    Binding* binding = free_;
    if (binding != nullptr) {
        free_ = binding->nextInFrame;
    } else {
        binding = &bindings_.emplace_back();
    }
    binding->symbol = &symbol;
    binding->frame = &frame;
    binding->outer = link;
    binding->nextInFrame = frame.bindings_;
    frame.bindings_ = binding;
    link = binding;
    return *binding;
}

void Variables::drop(Frame& frame) {
    while (Binding* const binding = frame.bindings_) {
        frame.bindings_ = binding->nextInFrame;
        Binding** link = &binding->symbol->innermost;
        while (*link != binding) {
            link = &(*link)->outer;
        }
        *link = binding->outer;
        textSize_ -= binding->value.text.size();
        binding->value = {};
        binding->nextInFrame = free_;
        free_ = binding;
    }
}

void Variables::account(std::size_t before, std::size_t after) {
    if (after > kLongestText || textSize_ - before + after > kMostVariableText) {
        throw RunTimeException("Text limit reached");
    }
    textSize_ = textSize_ - before + after;
}

void Variables::setText(Binding& binding, std::string_view text) {
    Value& value = binding.value;
    account(value.text.size(), text.size());
    value.text.assign(text);
    value.hasText = true;
    value.numeric = Numeric::unknown;
}

void Variables::setNumber(Binding& binding, double number) {
    Value& value = binding.value;
    textSize_ -= value.text.size();
    value.text.clear();
    value.hasText = false;
    value.numeric = Numeric::yes;
    value.number = roundedAsText(number);
}

void Variables::setValue(Binding& binding, const Value& value) {
    account(binding.value.text.size(), value.text.size());
    binding.value = value;
}

void Variables::append(Binding& binding, std::string_view text) {
    Value& value = binding.value;
    this->text(binding);
    account(value.text.size(), value.text.size() + text.size());
    value.text.append(text);
    value.numeric = Numeric::unknown;
}

std::string_view Variables::text(Binding& binding) {
    Value& value = binding.value;
    if (!value.hasText) {
        char buffer[kLongestNumberText];
        value.text.assign(numberText(value.number, buffer));
        value.hasText = true;
        textSize_ += value.text.size();
    }
    return value.text;
}

} // namespace ZEKT
