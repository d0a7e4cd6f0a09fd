#include "bridge/ChangeParam.h"

#include "bridge/NumberText.h"
#include "notation/Compound.h"
#include "notation/Document.h"
#include "notation/Errors.h"
#include "parameters/ParameterTable.h"

#include <stdexcept>

namespace Bridge {

namespace {

[[noreturn]] void refuse(std::string_view params) {
    throw std::runtime_error("Invalid action params for changeParam: " + std::string(params));
}

float variableNumber(const std::string& name, const Quilt::ActionContext& context) {
    const auto text = context.get(name);
    if (!text) {
        throw std::runtime_error("Unknown variable: " + name);
    }
    if (const auto number = numberOf(*text)) {
        return *number;
    }
    throw std::runtime_error("Invalid number: " + *text);
}

WhenEqual readWhenEqual(const std::string& text, std::string_view params) {
    if (text == "checked") {
        return WhenEqual::checked;
    }
    if (text == "disabled") {
        return WhenEqual::disabled;
    }
    if (text.empty() || text == "nothing") {
        return WhenEqual::nothing;
    }
    refuse(params);
}

// Hosts set the sample rate anywhere within its steps: what sounds the same is the same.
bool sameSetting(int id, float a, float b) {
    return id == Parameters::sampleRate ? Parameters::sampleRateStep(a) == Parameters::sampleRateStep(b) : a == b;
}

// The one entry that says what to do.
struct Instruction {
    std::string_view key;
    Stackbrace::Element value;
};

Instruction readInstruction(const Stackbrace::Structure& structure, std::string_view params) {
    Instruction found;
    for (const auto& [key, value] : structure) {
        if (key == "param" || key == "whenEqual") {
            continue;
        }
        const bool known = key == "toggle" || key == "to" || key == "by" || key == "toVariable" ||
                           key == "byVariable";
        if (!known || !found.key.empty()) {
            refuse(params);
        }
        found = {key, value};
    }
    if (found.key.empty()) {
        refuse(params);
    }
    return found;
}

float readNumber(const Stackbrace::Element& value, std::string_view params) {
    if (const auto number = numberOf(value.string())) {
        return *number;
    }
    refuse(params);
}

ParameterChange changed(int id, const Instruction& instruction, float present, std::string_view params,
                        const Quilt::ActionContext& context) {
    ParameterChange change;
    change.id = id;
    if (instruction.key == "toggle") {
        const std::string text = instruction.value.string();
        if (text != "true" && text != "false") {
            refuse(params);
        }
        const bool toggles = text == "true";
        change.value = !toggles ? present : Parameters::isOn(present) ? 0.0f : 1.0f;
        change.equal = toggles && Parameters::isOn(present);
        return change;
    }
    const bool byVariable = instruction.key.ends_with("Variable");
    const float number = byVariable ? variableNumber(instruction.value.string(), context)
                                    : readNumber(instruction.value, params);
    change.value = Parameters::clampNormalised(instruction.key.starts_with("to") ? number : present + number);
    change.equal = sameSetting(id, change.value, present);
    return change;
}

} // namespace

ParameterChange readParameterChange(std::string_view params, const CurrentValues& current,
                                    const Quilt::ActionContext& context) {
    try {
        const Stackbrace::Document document{std::string(params)};
        const auto structure = document.root().structure();
        const auto* name = structure.find("param");
        if (!name) {
            throw std::runtime_error("Missing param for changeParam");
        }
        const auto id = Parameters::find(name->string());
        if (!id) {
            throw std::runtime_error("Unknown param for changeParam: " + name->string());
        }
        const Instruction instruction = readInstruction(structure, params);
        ParameterChange change = changed(*id, instruction, current.value(*id), params, context);
        if (const auto* whenEqual = structure.find("whenEqual")) {
            change.whenEqual = readWhenEqual(whenEqual->string(), params);
        }
        return change;
    } catch (const Stackbrace::Exception&) {
        refuse(params);
    }
}

} // namespace Bridge
