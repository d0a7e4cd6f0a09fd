// What the frames of a run share, and what carries parsed forms out.
#pragma once

#include "zekt/Block.h"
#include "zekt/Executor.h"
#include "zekt/Frame.h"
#include "zekt/Interpreter.h"
#include "zekt/Variables.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ZEKT {

// An operand. Its text may belong to a variable, to the expression or to the buffer; nothing changes
// variables while an expression is evaluated.
struct Slot {
    std::string_view text;
    double number = 0;
    Numeric numeric = Numeric::unknown;
    bool hasText = true;
    std::string buffer;
};

// Operands of nested evaluations. They never move: texts point into their buffers.
class SlotStack {
public:
    struct Place {
        std::size_t segment = 0;
        std::size_t used = 0;
    };

    Slot* reserve(std::size_t count);
    Place place() const { return place_; }
    void restore(Place place) { place_ = place; }
    void release() { segments_.clear(); }

private:
    static constexpr std::size_t kSegment = 1024; // more than any expression within kExpressionDepth needs

    std::vector<std::unique_ptr<Slot[]>> segments_;
    Place place_;
};

class Machine {
public:
    explicit Machine(Executor& executor);
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    void runDocument(std::string_view document);

    void run(Frame& frame, Block& block);
    void runText(Frame& frame, std::string_view statements, std::size_t longest);

    // The statements of a body, which `keep` has to hold while they run if they are not the document's own.
    Block& body(const Argument& argument, std::shared_ptr<Block>& keep);

    // A statement, or a turn of a loop that has none, is about to be executed.
    void countStatement(Frame& frame);

    void append(Frame& frame, Expansion& expansion, std::string& text);
    void appendPieces(Frame& frame, const Expansion& expansion, std::size_t first, std::string& text);
    std::string expand(Frame& frame, std::string_view text);
    std::string evaluate(Frame& frame, std::string_view expression);

    // The host's variables are asked for where no frame has the name.
    Binding* find(const Frame& frame, Symbol& symbol);
    Binding& existing(const Frame& frame, Symbol& symbol);
    std::optional<std::string> outerVariable(std::string_view name);

    // "Text limit reached".
    void work(std::size_t amount) {
        work_ += amount;
        if (work_ > kMostWork) {
            failAtTextLimit();
        }
    }
    static void checkLength(std::size_t length) {
        if (length > kLongestText) {
            failAtTextLimit();
        }
    }
    [[noreturn]] static void failAtTextLimit();

    Frame& globals() { return *globals_; }
    std::uint32_t statementsLeft() const { return statementsLeft_; }

    Variables variables;

private:
    friend class Evaluation;

    void execute(Frame& frame, const Statement& statement);
    void executeDomain(Frame& frame, const Statement& statement);
    void assign(Frame& frame, const Statement& statement);
    std::shared_ptr<Block> block(std::string_view text);

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };
    std::unordered_map<std::string_view, std::shared_ptr<Block>, Hash, std::equal_to<>>
        blocks_; // by their texts
    std::size_t blocksSize_ = 0;
    SlotStack slots_;
    std::string assigned_;
    std::unique_ptr<Frame> globals_;
    std::size_t work_ = 0;
    std::uint32_t statementsLeft_ = kStatementLimit;
    int evaluationDepth_ = 0;
};

// The value of an expression, while this lives.
class Evaluation {
public:
    Evaluation(Machine& machine, Frame& frame, const Expression& expression);
    ~Evaluation();
    Evaluation(const Evaluation&) = delete;
    Evaluation& operator=(const Evaluation&) = delete;

    Slot& result() { return *slots_; }
    static std::string_view text(Slot& slot);

private:
    void carryOut(const Expression& expression);
    void load(Slot& slot, Binding& binding);
    double number(Slot& slot);
    Numeric numeric(Slot& slot);
    bool truth(Slot& slot);
    int compare(Slot& left, Slot& right);
    void join(Slot& left, Slot& right, std::string_view between);
    void cut(Slot& slot, double first, double count);

    Machine& machine_;
    Frame& frame_;
    SlotStack::Place place_;
    Slot* slots_ = nullptr;
};

} // namespace ZEKT
