#include "zekt/Functions.h"
#include "zekt/Machine.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>

namespace ZEKT {

namespace {

constexpr int kEvaluationDepth = 100; // of brackets in expressions in brackets
constexpr double kEqualityTolerance = 1e-13;

void setNumber(Slot& slot, double number) {
    slot.number = number;
    slot.numeric = Numeric::yes;
    slot.hasText = false;
}

void setText(Slot& slot, std::string_view text) {
    slot.text = text;
    slot.numeric = Numeric::unknown;
    slot.hasText = true;
}

void setBoolean(Slot& slot, bool value) {
    slot.text = booleanText(value);
    slot.numeric = Numeric::no;
    slot.hasText = true;
}

void setResult(Slot& slot, double number) {
    if (std::isinf(number)) {
        throw RunTimeException("Number overflow");
    }
    setNumber(slot, number);
}

double quotient(double left, double right) {
    if (right == 0) {
        throw RunTimeException("Division by zero");
    }
    return left / right;
}

double remainder(double left, double right) {
    if (right == 0) {
        throw RunTimeException("Modulo by zero");
    }
    return std::fmod(left, right);
}

} // namespace

Slot* SlotStack::reserve(std::size_t count) {
    assert(count <= kSegment);
    if (!segments_.empty() && place_.used + count > kSegment) {
        ++place_.segment;
        place_.used = 0;
    }
    if (place_.segment == segments_.size()) {
        segments_.push_back(std::make_unique<Slot[]>(kSegment));
    }
    Slot* const first = &segments_[place_.segment][place_.used];
    place_.used += count;
    return first;
}

Evaluation::Evaluation(Machine& machine, Frame& frame, const Expression& expression)
    : machine_(machine), frame_(frame), place_(machine.slots_.place()) {
    if (machine_.evaluationDepth_ == kEvaluationDepth) {
        throw RunTimeException("Recursion limit reached");
    }
    machine_.work(expression.steps.size());
    slots_ = machine_.slots_.reserve(expression.stackSize);
    ++machine_.evaluationDepth_;
    try {
        carryOut(expression);
    } catch (...) {
        --machine_.evaluationDepth_;
        machine_.slots_.restore(place_);
        throw;
    }
}

Evaluation::~Evaluation() {
    --machine_.evaluationDepth_;
    machine_.slots_.restore(place_);
}

std::string_view Evaluation::text(Slot& slot) {
    if (!slot.hasText) {
        char digits[kLongestNumberText];
        slot.buffer.assign(numberText(slot.number, digits));
        slot.text = slot.buffer;
        slot.hasText = true;
    }
    return slot.text;
}

void Evaluation::load(Slot& slot, Binding& binding) {
    Value& value = binding.value;
    if (value.numeric == Numeric::unknown) {
        machine_.work(value.text.size());
        value.numeric = readNumber(value.text, value.number);
    }
    slot.number = value.number;
    slot.numeric = value.numeric;
    slot.hasText = value.hasText;
    slot.text = value.text;
}

Numeric Evaluation::numeric(Slot& slot) {
    if (slot.numeric == Numeric::unknown) {
        machine_.work(slot.text.size());
        slot.numeric = readNumber(slot.text, slot.number);
    }
    if (slot.numeric == Numeric::overflow) {
        throw RunTimeException("Number overflow");
    }
    return slot.numeric;
}

double Evaluation::number(Slot& slot) {
    if (slot.numeric == Numeric::yes || numeric(slot) == Numeric::yes) {
        return slot.number;
    }
    throw RunTimeException("Invalid number: " + std::string(slot.text));
}

bool Evaluation::truth(Slot& slot) {
    if (slot.hasText && (slot.text == "yes" || slot.text == "no")) {
        return slot.text == "yes";
    }
    return numeric(slot) == Numeric::yes ? slot.number != 0 : toBoolean(slot.text);
}

int Evaluation::compare(Slot& left, Slot& right) {
    const bool leftIsNumber = numeric(left) == Numeric::yes;
    const bool rightIsNumber = numeric(right) == Numeric::yes;
    if (leftIsNumber && rightIsNumber) {
        const double largest = std::max(std::abs(left.number), std::abs(right.number));
        if (std::abs(left.number - right.number) <= kEqualityTolerance * largest) {
            return 0;
        }
        return left.number < right.number ? -1 : 1;
    }
    if (leftIsNumber != rightIsNumber) {
        return leftIsNumber ? -1 : 1;
    }
    machine_.work(std::min(left.text.size(), right.text.size()));
    return left.text.compare(right.text);
}

void Evaluation::join(Slot& left, Slot& right, std::string_view between) {
    const std::string_view head = text(left);
    const std::string_view tail = text(right);
    const std::size_t size = head.size() + between.size() + tail.size();
    Machine::checkLength(size);
    if (head.data() == left.buffer.data()) {
        left.buffer.resize(head.size());
        machine_.work(between.size() + tail.size());
    } else {
        left.buffer.assign(head);
        machine_.work(size);
    }
    left.buffer.append(between).append(tail);
    setText(left, left.buffer);
}

// Positions beyond the text are brought to its ends.
void Evaluation::cut(Slot& slot, double first, double count) {
    const std::string_view whole = text(slot);
    const auto within = [](double position, std::size_t end) {
        return static_cast<std::size_t>(std::clamp(std::floor(position), 0.0, static_cast<double>(end)));
    };
    const std::size_t begin = within(first, whole.size());
    setText(slot, whole.substr(begin, within(count, whole.size() - begin)));
}

void Evaluation::carryOut(const Expression& expression) {
    Slot* top = slots_ - 1;
    const Step* const steps = expression.steps.data();
    const std::size_t count = expression.steps.size();
    for (std::size_t at = 0; at < count; ++at) {
        const Step& step = steps[at];
        switch (step.operation) {
        case Operation::pushNumber:
            setNumber(*++top, step.number);
            break;
        case Operation::pushString:
            setText(*++top, *expression.strings[step.index]);
            break;
        case Operation::load:
            load(*++top, machine_.existing(frame_, *step.symbol));
            break;
        case Operation::loadNamed: {
            const std::string_view name = text(*top);
            machine_.work(name.size());
            Symbol* const symbol = machine_.variables.known(name);
            Binding* const binding = symbol == nullptr ? nullptr : Variables::find(frame_, *symbol);
            if (binding != nullptr) {
                load(*top, *binding);
                break;
            }
            // Kept here and not as a variable: a document can compute any number of names.
            auto outer = machine_.outerVariable(name);
            if (!outer) {
                throw RunTimeException("Variable " + std::string(name) + " does not exist");
            }
            machine_.work(outer->size());
            top->buffer = *std::move(outer);
            setText(*top, top->buffer);
            break;
        }
        case Operation::expand: {
            ++top;
            std::string expanded;
            machine_.append(frame_, *expression.expansions[step.index], expanded);
            top->buffer = std::move(expanded);
            setText(*top, top->buffer);
            break;
        }
        case Operation::power: {
            --top;
            const double base = number(*top);
            setResult(*top, power(base, number(top[1])));
            break;
        }
        case Operation::modulo: {
            --top;
            const double left = number(*top);
            setResult(*top, remainder(left, number(top[1])));
            break;
        }
        case Operation::logicalNot:
            setBoolean(*top, !truth(*top));
            break;
        case Operation::identity:
            setNumber(*top, number(*top));
            break;
        case Operation::negate:
            setNumber(*top, -number(*top));
            break;
        case Operation::multiply: {
            --top;
            const double left = number(*top);
            setResult(*top, left * number(top[1]));
            break;
        }
        case Operation::divide: {
            --top;
            const double left = number(*top);
            setResult(*top, quotient(left, number(top[1])));
            break;
        }
        case Operation::add: {
            --top;
            const double left = number(*top);
            setResult(*top, left + number(top[1]));
            break;
        }
        case Operation::subtract: {
            --top;
            const double left = number(*top);
            setResult(*top, left - number(top[1]));
            break;
        }
        case Operation::equal:
            --top;
            setBoolean(*top, compare(*top, top[1]) == 0);
            break;
        case Operation::notEqual:
            --top;
            setBoolean(*top, compare(*top, top[1]) != 0);
            break;
        case Operation::less:
            --top;
            setBoolean(*top, compare(*top, top[1]) < 0);
            break;
        case Operation::lessOrEqual:
            --top;
            setBoolean(*top, compare(*top, top[1]) <= 0);
            break;
        case Operation::greater:
            --top;
            setBoolean(*top, compare(*top, top[1]) > 0);
            break;
        case Operation::greaterOrEqual:
            --top;
            setBoolean(*top, compare(*top, top[1]) >= 0);
            break;
        case Operation::logicalAnd: {
            --top;
            const bool left = truth(*top);
            setBoolean(*top, truth(top[1]) && left);
            break;
        }
        case Operation::logicalOr: {
            --top;
            const bool left = truth(*top);
            setBoolean(*top, truth(top[1]) || left);
            break;
        }
        case Operation::join:
            --top;
            join(*top, top[1], "");
            break;
        case Operation::joinWithSpace:
            --top;
            join(*top, top[1], " ");
            break;
        case Operation::jump:
            at = step.index - 1;
            break;
        case Operation::jumpUnless:
            if (!truth(*top--)) {
                at = step.index - 1;
            }
            break;
        case Operation::characterAt: {
            --top;
            const double position = number(top[1]);
            cut(*top, position, 1);
            break;
        }
        case Operation::slice: {
            top -= 2;
            const double first = number(top[1]);
            cut(*top, first, number(top[2]));
            break;
        }
        case Operation::firstOnes:
            --top;
            cut(*top, 0, number(top[1]));
            break;
        case Operation::tail:
            --top;
            cut(*top, number(top[1]), std::numeric_limits<double>::max());
            break;
        case Operation::function:
            setResult(*top, callFunction(step.index, number(*top)));
            break;
        case Operation::length:
            setNumber(*top, static_cast<double>(text(*top).size()));
            break;
        case Operation::defined: {
            const std::string_view name = text(*top);
            machine_.work(name.size());
            const Symbol* const symbol = machine_.variables.known(name);
            setBoolean(*top, (symbol != nullptr && Variables::find(frame_, *symbol) != nullptr) ||
                                 machine_.outerVariable(name).has_value());
            break;
        }
        case Operation::raise:
            expression.faults[step.index].raise();
        }
    }
}

} // namespace ZEKT
