#include "tombola/Scope.h"

#include <utility>

namespace Tombola {

bool BlockMacro::addParameter(std::string_view name) {
    if (parameter(name) != kNone) {
        return false;
    }
    parameters.push_back(name);
    if (parameters.size() == kFewParameters + 1) {
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            index_.emplace(parameters[i], i);
        }
    } else if (parameters.size() > kFewParameters) {
        index_.emplace(name, parameters.size() - 1);
    }
    return true;
}

std::size_t BlockMacro::parameter(std::string_view name) const {
    if (parameters.size() > kFewParameters) {
        const auto found = index_.find(name);
        return found == index_.end() ? kNone : found->second;
    }
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (parameters[i] == name) {
            return i;
        }
    }
    return kNone;
}

Value* Scope::argument(std::string_view name) {
    const std::size_t index = macro_ == nullptr ? BlockMacro::kNone : macro_->parameter(name);
    return index == BlockMacro::kNone ? nullptr : &(*values_)[first_ + index];
}

Scope::Meaning Scope::find(std::string_view name) {
    for (Scope* scope = this; scope != nullptr; scope = scope->parent_) {
        const Definition* definition = nullptr;
        if (scope->definitions_ != nullptr) {
            const auto found = scope->definitions_->find(name);
            definition = found == scope->definitions_->end() ? nullptr : &found->second;
        }
        if (definition != nullptr && definition->block != nullptr) {
            return {definition->block.get(), nullptr};
        }
        if (Value* const value = scope->argument(name)) {
            return {nullptr, value};
        }
        if (definition != nullptr) {
            return {nullptr, definition->value.get()};
        }
    }
    return {};
}

Scope::Definition& Scope::definition(std::string_view name) {
    if (definitions_ == nullptr) {
        definitions_ = std::make_unique<Definitions>();
    }
    const auto found = definitions_->find(name);
    return found != definitions_->end() ? found->second : (*definitions_)[std::string(name)];
}

Value* Scope::defineValue(std::string_view name) {
    if (argument(name) != nullptr) {
        return nullptr;
    }
    auto& value = definition(name).value;
    if (value != nullptr) {
        return nullptr;
    }
    value = std::make_unique<Value>();
    return value.get();
}

bool Scope::defineBlock(std::string_view name, std::unique_ptr<BlockMacro> macro) {
    auto& block = definition(name).block;
    if (block != nullptr) {
        return false;
    }
    block = std::move(macro);
    return true;
}

} // namespace Tombola
