// A scope of variables during a run. Frames nest as blocks do: a child is made on the stack of the
// instruction that opens it and is gone before its parent is used for anything but what the child's body
// does. Only the innermost frame may be a parent.
//
// A name is looked for from a frame outwards. Assigning writes to the nearest frame that has the name, else
// to this one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ZEKT {

class Argument;
class Executor;
class Machine; // what all frames of a run share
struct Binding;

class Frame {
public:
    explicit Frame(Frame& parent);
    Frame(Frame& parent, Executor& executor); // whose instructions the child's body runs
    ~Frame();
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    Executor& executor() const { return executor_; }
    Frame* parent() const { return parent_; } // nullptr: the global frame

    // Runs a body in this frame. One more level of nesting: "Recursion limit reached".
    void run(const Argument& body);
    void run(std::string_view statements);

    // What a text or the inside of { } stands for, in this frame.
    std::string expand(std::string_view text);
    std::string evaluate(std::string_view expression);

    // "Variable NAME does not exist".
    std::string get(std::string_view name);
    bool has(std::string_view name) const;

    // A name that is empty or has other characters than letters, digits, "_", "." and "-" is "Could not set
    // variable".
    void set(std::string_view name, std::string_view text);
    void set(std::string_view name, double number);

    // The same, always in this frame.
    void setLocal(std::string_view name, std::string_view text);
    void setLocal(std::string_view name, double number);

    struct Variable {
        std::string name;
        std::string text;
    };
    std::vector<Variable> variables() const; // of this frame alone, sorted by name

private:
    friend class Machine;
    friend class Argument;
    friend class Arguments;
    friend class Variables;
    friend struct Instructions;
    friend struct FrameAccess;

    Frame(Machine& machine, Executor& executor); // the global frame

    Machine& machine_;
    Executor& executor_;
    Frame* parent_ = nullptr;
    Binding* bindings_ = nullptr;
    std::uint32_t depth_ = 0;
    std::uint32_t levelsLeft_;
};

// Letters A to Z in lower case, as instruction names and keywords are compared.
std::string folded(std::string_view text);

} // namespace ZEKT
