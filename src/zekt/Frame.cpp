#include "zekt/Frame.h"

#include "zekt/Machine.h"

#include <algorithm>
#include <cmath>

namespace ZEKT {

Frame::Frame(Machine& machine, Executor& executor)
    : machine_(machine), executor_(executor), levelsLeft_(kNestingLimit) {}

Frame::Frame(Frame& parent) : Frame(parent, parent.executor_) {}

Frame::Frame(Frame& parent, Executor& executor)
    : machine_(parent.machine_), executor_(executor), parent_(&parent), depth_(parent.depth_ + 1),
      levelsLeft_(parent.levelsLeft_) {}

Frame::~Frame() {
    machine_.variables.drop(*this);
}

void Frame::run(const Argument& body) {
    std::shared_ptr<Block> kept;
    machine_.run(*this, machine_.body(body, kept));
}

void Frame::run(std::string_view statements) {
    machine_.runText(*this, statements, kLongestText);
}

std::string Frame::expand(std::string_view text) {
    return machine_.expand(*this, text);
}

std::string Frame::evaluate(std::string_view expression) {
    return machine_.evaluate(*this, expression);
}

std::string Frame::get(std::string_view name) {
    return std::string(machine_.variables.text(machine_.existing(*this, machine_.variables.symbol(name))));
}

bool Frame::has(std::string_view name) const {
    const Symbol* const symbol = machine_.variables.known(name);
    return (symbol != nullptr && Variables::find(*this, *symbol) != nullptr) ||
           machine_.outerVariable(name).has_value();
}

void Frame::set(std::string_view name, std::string_view text) {
    Variables& variables = machine_.variables;
    variables.setText(variables.assigned(*this, variables.symbol(name)), text);
}

void Frame::set(std::string_view name, double number) {
    Variables& variables = machine_.variables;
    variables.setNumber(variables.assigned(*this, variables.symbol(name)), number);
}

void Frame::setLocal(std::string_view name, std::string_view text) {
    Variables& variables = machine_.variables;
    variables.setText(variables.local(*this, variables.symbol(name)), text);
}

void Frame::setLocal(std::string_view name, double number) {
    Variables& variables = machine_.variables;
    variables.setNumber(variables.local(*this, variables.symbol(name)), number);
}

std::vector<Frame::Variable> Frame::variables() const {
    std::vector<Variable> result;
    for (Binding* binding = bindings_; binding != nullptr; binding = binding->nextInFrame) {
        result.push_back({binding->symbol->name, std::string(machine_.variables.text(*binding))});
    }
    std::sort(result.begin(), result.end(),
              [](const Variable& left, const Variable& right) { return left.name < right.name; });
    return result;
}

std::string folded(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return result;
}

} // namespace ZEKT
