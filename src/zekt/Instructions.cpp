#include "zekt/Instructions.h"

#include "zekt/Lexical.h"
#include "zekt/Machine.h"

#include <algorithm>
#include <cmath>

namespace ZEKT {

// A namespace that Argument and Frame can name as their friend.
struct Instructions {
    static Arguments arguments(Machine& machine, Frame& frame, const Statement& statement) {
        if (!statement.form) {
            statement.form = std::make_unique<ArgumentsForm>(statement.value.source, machine.variables);
        }
        return Arguments(frame, ArgumentText(statement.value.source, *statement.form));
    }

    static std::vector<std::string> names(const Argument* list) {
        std::vector<std::string> names;
        if (list != nullptr) {
            names = list->list();
        }
        for (std::string& name : names) {
            name = folded(name);
        }
        std::sort(names.begin(), names.end());
        names.erase(std::unique(names.begin(), names.end()), names.end());
        return names;
    }

    static void format(Machine& machine, Frame& frame, const Statement& statement) {
        Arguments given = arguments(machine, frame, statement);
        FormatStatement format;
        format.name = given.required(0).keyword();
        format.uses = names(given.optional("uses"));
        format.requirements = names(given.optional("requires"));
        given.finish();
        std::erase(format.requirements, "zekt-1");
        if (!frame.executor().supportsFormat(format)) {
            throw FormatException("Unsupported data format");
        }
    }

    static void conditional(Machine& machine, Frame& frame, const Statement& statement) {
        Arguments given = arguments(machine, frame, statement);
        const Argument& condition = given.required(0);
        const Argument& body = given.required(1);
        const Argument* const otherwise = given.optional("else");
        given.finish();
        if (condition.boolean()) {
            frame.run(body);
        } else if (otherwise != nullptr) {
            frame.run(*otherwise);
        }
    }

    // A body that runs again and again. A turn of an empty one counts as a statement: it might never end.
    class Loop {
    public:
        Loop(Machine& machine, Frame& frame, const Argument& body)
            : machine_(machine), frame_(frame), body_(machine.body(body, kept_)) {}

        void turn() {
            machine_.run(frame_, body_);
            if (body_.statements.empty()) {
                machine_.countStatement(frame_);
            }
        }

    private:
        Machine& machine_;
        Frame& frame_;
        std::shared_ptr<Block> kept_;
        Block& body_;
    };

    static void countedLoop(Machine& machine, Frame& frame, Symbol& counter, Loop& loop, double from,
                            double to, double step) {
        const double least = std::min(from, to);
        const double greatest = std::max(from, to);
        for (double value = from; value >= least && value <= greatest; value += step) {
            machine.variables.setNumber(machine.variables.assigned(frame, counter), value);
            loop.turn();
        }
    }

    static void listLoop(Machine& machine, Frame& frame, Symbol& variable, Loop& loop,
                         std::vector<std::string> elements, bool reverse) {
        if (reverse) {
            std::reverse(elements.begin(), elements.end());
        }
        for (const std::string& element : elements) {
            machine.variables.setText(machine.variables.assigned(frame, variable), element);
            loop.turn();
        }
    }

    static void loopFor(Machine& machine, Frame& frame, const Statement& statement) {
        Arguments given = arguments(machine, frame, statement);
        Symbol& variable = machine.variables.symbol(given.required(0).text());
        const Argument& body = given.required(1);
        if (const Argument* const list = given.optional("in")) {
            const Argument* const reverse = given.optional("reverse");
            given.finish();
            auto elements = list->expandedElements();
            const bool backwards = reverse != nullptr && reverse->boolean();
            Loop loop(machine, frame, body);
            listLoop(machine, frame, variable, loop, std::move(elements), backwards);
            return;
        }
        const Argument& first = given.required("from");
        const Argument& last = given.required("to");
        const Argument* const step = given.optional("step");
        given.finish();
        const double from = first.number();
        const double to = last.number();
        const double by = step != nullptr ? step->number() : to > from ? 1.0 : -1.0;
        Loop loop(machine, frame, body);
        countedLoop(machine, frame, variable, loop, from, to, by);
    }

    static void repeat(Machine& machine, Frame& frame, const Statement& statement) {
        Arguments given = arguments(machine, frame, statement);
        const Argument& times = given.required(0);
        const Argument& body = given.required(1);
        const Argument* const condition = given.optional("while");
        given.finish();
        if (condition != nullptr && !condition->isBracketed()) {
            throw SyntaxException("'while:' condition has to be enclosed in [ ]");
        }
        std::int64_t left = times.integer();
        Loop loop(machine, frame, body);
        for (; left > 0 && (condition == nullptr || condition->boolean()); --left) {
            loop.turn();
        }
    }

    static void local(Machine& machine, Frame& frame, const Statement& statement) {
        if (Variables::isLocal(frame, *statement.symbol)) {
            throw RunTimeException("Variable " + statement.symbol->name + " already declared");
        }
        std::string value;
        machine.append(frame, statement.value, value);
        machine.variables.setText(machine.variables.local(frame, *statement.symbol), value);
    }

    static void giveBack(Machine& machine, Frame& frame, const Statement& statement) {
        if (frame.parent() == nullptr) {
            throw RunTimeException("Cannot return in global frame");
        }
        std::string value;
        if (statement.hasValue) {
            machine.append(frame, statement.value, value);
        } else {
            value = machine.variables.text(machine.existing(frame, *statement.symbol));
            machine.work(value.size());
        }
        machine.variables.setText(machine.variables.local(*frame.parent(), *statement.symbol), value);
    }

    // What a called body finds of the arguments behind the first.
    static void pass(Machine& machine, Arguments& given, Frame& callee) {
        std::size_t count = 0;
        for (const Argument* const argument : given.rest(1)) {
            machine.work(argument->raw().size());
            callee.setLocal(std::to_string(count++), argument->raw());
        }
        callee.setLocal("n", static_cast<double>(count));
        for (const auto& [label, argument] : given.labelled()) {
            machine.work(argument->raw().size());
            callee.setLocal(label, argument->raw());
        }
    }

    static void call(Machine& machine, Frame& frame, const Statement& statement) {
        Arguments given = arguments(machine, frame, statement);
        given.requireAny();
        const Argument& body = given.required(0);
        Frame callee(frame);
        pass(machine, given, callee);
        callee.run(body);
    }

    static void include(Machine& machine, Frame& frame, const Statement& statement) {
        Arguments given = arguments(machine, frame, statement);
        given.requireAny();
        const std::string fileName = given.required(0).text();
        const auto text = frame.executor().loadInclude(fileName);
        if (!text) {
            throw RunTimeException("Could not include file: " + fileName);
        }
        Frame callee(frame);
        pass(machine, given, callee);
        callee.run(std::string_view(*text));
    }

    static void stop(Machine& machine, Frame& frame, const Statement& statement) {
        arguments(machine, frame, statement).finish();
        throw AbortedException("Encountered STOP instruction");
    }

    static void trace(Machine& machine, Frame& frame, const Statement& statement) {
        std::string line;
        machine.append(frame, statement.value, line);
        frame.executor().trace(line);
    }

    static void debug(Machine& machine, Frame& frame, const Statement& statement) {
        Arguments given = arguments(machine, frame, statement);
        const Argument* const expand = given.optional("expand");
        given.finish();
        const bool expanded = expand != nullptr && expand->boolean();
        for (const Binding* binding = frame.bindings_; binding != nullptr; binding = binding->nextInFrame) {
            machine.work(64 + binding->value.text.size()); // there may be many
        }
        std::string line;
        for (const Frame::Variable& variable : frame.variables()) {
            line.append(line.empty() ? "" : "|").append(variable.name).append("=");
            line.append(expanded ? machine.expand(frame, variable.text) : variable.text);
            Machine::checkLength(line.size());
        }
        frame.executor().trace(line);
    }
};

namespace {

constexpr BuiltIn kBuiltIns[] = {
    {"format", false, Instructions::format}, {"if", false, Instructions::conditional},
    {"for", false, Instructions::loopFor},   {"repeat", false, Instructions::repeat},
    {"local", true, Instructions::local},    {"return", true, Instructions::giveBack},
    {"call", false, Instructions::call},     {"include", false, Instructions::include},
    {"stop", false, Instructions::stop},     {"trace", false, Instructions::trace},
    {"_debug", false, Instructions::debug},
};

} // namespace

const BuiltIn* findBuiltIn(std::string_view name) {
    const auto* const found = std::find_if(std::begin(kBuiltIns), std::end(kBuiltIns),
                                           [name](const BuiltIn& row) { return row.name == name; });
    return found == std::end(kBuiltIns) ? nullptr : found;
}

} // namespace ZEKT
