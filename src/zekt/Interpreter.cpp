#include "zekt/Interpreter.h"

#include "zekt/Machine.h"

namespace ZEKT {

Interpreter::Interpreter(Executor& executor) : machine_(std::make_unique<Machine>(executor)) {}

Interpreter::~Interpreter() = default;

Frame& Interpreter::globals() {
    return machine_->globals();
}

void Interpreter::forgetVariables() {
    machine_->variables.drop(machine_->globals());
}

void Interpreter::run(std::string_view document) {
    machine_->runDocument(document);
}

std::uint32_t Interpreter::statementsLeft() const {
    return machine_->statementsLeft();
}

} // namespace ZEKT
