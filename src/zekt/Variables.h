// The variables of all frames of a run. A name is looked up once, where a statement is parsed; from then on
// it is a Symbol, which holds the bindings of that name, the innermost frame's first. So reading a variable
// takes one step however deep the frames are nested.
#pragma once

#include "zekt/NumberText.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace ZEKT {

class Frame;
struct Binding;

// A text. That of a number is made when somebody asks for it; the number of a text, too.
struct Value {
    std::string text;
    double number = 0;
    Numeric numeric = Numeric::unknown;
    bool hasText = true;
};

struct Symbol {
    std::string name;
    bool valid; // may be assigned to
    Binding* innermost = nullptr;
};

struct Binding {
    Symbol* symbol;
    Frame* frame;
    Binding* outer;       // the same symbol in a frame further out
    Binding* nextInFrame; // another symbol
    Value value;
};

class Variables {
public:
    Symbol& symbol(std::string_view name);
    Symbol* known(std::string_view name); // nullptr: no variable ever had the name

    static Binding* find(const Frame& frame, const Symbol& symbol);

    // The binding that an assignment in `frame` writes to, made if there is none. "Could not set variable".
    Binding& assigned(Frame& frame, Symbol& symbol);
    Binding& local(Frame& frame, Symbol& symbol); // always in this frame
    static bool isLocal(const Frame& frame, const Symbol& symbol);

    void setText(Binding& binding, std::string_view text);
    void setNumber(Binding& binding, double number); // rounded as its text
    void setValue(Binding& binding, const Value& value);
    void append(Binding& binding, std::string_view text); // to its text

    std::string_view text(Binding& binding); // makes it

    void drop(Frame& frame); // all of its bindings

private:
    Binding& make(Frame& frame, Symbol& symbol, Binding*& link);
    void account(std::size_t before, std::size_t after);

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };
    std::unordered_map<std::string, std::unique_ptr<Symbol>, Hash, std::equal_to<>> symbols_;
    std::deque<Binding> bindings_;
    Binding* free_ = nullptr; // linked by nextInFrame
    std::size_t textSize_ = 0;
};

} // namespace ZEKT
