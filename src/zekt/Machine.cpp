#include "zekt/Machine.h"

#include "zekt/Escapes.h"
#include "zekt/Instructions.h"
#include "zekt/Lexical.h"

namespace ZEKT {

namespace {

constexpr std::size_t kMostBlocksSize = 1U << 20; // of the texts whose parsed forms are kept

// One level of nesting, given back however the block ends.
class Level {
public:
    explicit Level(std::uint32_t& left) : left_(left) {
        if (left_ == 0) {
            throw RunTimeException("Recursion limit reached");
        }
        --left_;
    }
    ~Level() { ++left_; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

private:
    std::uint32_t& left_;
};

void fillIn(Exception& error, std::string_view statement) {
    if (error.statement().empty()) {
        error.setStatement(std::string(statement));
    }
}

} // namespace

Machine::Machine(Executor& executor) : globals_(new Frame(*this, executor)) {}

Machine::~Machine() {
    globals_.reset(); // its variables are ours
}

void Machine::failAtTextLimit() {
    throw RunTimeException("Text limit reached");
}

void Machine::runDocument(std::string_view document) {
    statementsLeft_ = kStatementLimit;
    work_ = 0;
    slots_.release();
    const std::shared_ptr<Block> kept = block(document);
    run(*globals_, *kept);
}

void Machine::run(Frame& frame, Block& block) {
    const Level level(frame.levelsLeft_);
    if (!block.parsed) {
        block.parse(variables);
    }
    const Statement* current = nullptr;
    try {
        for (const Statement& statement : block.statements) {
            current = &statement;
            countStatement(frame);
            execute(frame, statement);
        }
        current = nullptr;
        if (block.fault) {
            block.fault->raise();
        }
    } catch (Exception& error) {
        fillIn(error, current != nullptr ? current->text : block.faultText);
        throw;
    }
}

void Machine::runText(Frame& frame, std::string_view statements, std::size_t longest) {
    if (statements.size() > longest) {
        failAtTextLimit();
    }
    work(statements.size());
    const std::shared_ptr<Block> kept = block(statements);
    run(frame, *kept);
}

Block& Machine::body(const Argument& argument, std::shared_ptr<Block>& keep) {
    if (argument.bracketed_ && argument.form_ != nullptr) {
        auto& body = argument.form_->body;
        if (!body) {
            body = std::make_unique<Block>(Lexical::inside(argument.raw_));
        }
        return *body;
    }
    const std::string text =
        argument.bracketed_ ? std::string(Lexical::inside(argument.raw_)) : argument.text();
    if (text.size() > kLongestBody) {
        failAtTextLimit();
    }
    work(text.size());
    keep = block(text);
    return *keep;
}

std::shared_ptr<Block> Machine::block(std::string_view text) {
    if (const auto found = blocks_.find(text); found != blocks_.end()) {
        return found->second;
    }
    auto made = Block::owning(text);
    if (blocksSize_ + text.size() > kMostBlocksSize) {
        blocks_.clear();
        blocksSize_ = 0;
    }
    if (text.size() <= kMostBlocksSize) {
        blocks_.emplace(made->text, made);
        blocksSize_ += text.size() + sizeof(Block);
    }
    return made;
}

void Machine::countStatement(Frame& frame) {
    if (statementsLeft_ == 0) {
        throw RunTimeException("Statements limit reached");
    }
    if (!frame.executor_.progress(frame, statementsLeft_)) {
        throw AbortedException("Aborted");
    }
    --statementsLeft_;
}

void Machine::execute(Frame& frame, const Statement& statement) {
    switch (statement.kind) {
    case Statement::Kind::assignment:
        assign(frame, statement);
        break;
    case Statement::Kind::builtIn:
        statement.builtIn->execute(*this, frame, statement);
        break;
    case Statement::Kind::domain:
        executeDomain(frame, statement);
        break;
    case Statement::Kind::fault:
        statement.fault->raise();
    }
}

void Machine::executeDomain(Frame& frame, const Statement& statement) {
    if (!statement.form) {
        statement.form = std::make_unique<ArgumentsForm>(statement.value.source, variables);
    }
    const std::string& name = statement.symbol->name;
    if (!frame.executor_.execute(frame, name, ArgumentText(statement.value.source, *statement.form)) &&
        name != "meta") {
        throw SyntaxException("Unrecognized instruction: " + name);
    }
}

void Machine::assign(Frame& frame, const Statement& statement) {
    Expansion& value = statement.value;
    if (!value.parsed) {
        parseExpansion(value, variables);
    }
    assigned_.clear();
    const std::vector<Piece>& pieces = value.pieces;
    if (pieces.size() == 1 && pieces[0].kind == Piece::Kind::expression) {
        Evaluation evaluation(*this, frame, *pieces[0].expression);
        Slot& result = evaluation.result();
        Binding& binding = variables.assigned(frame, *statement.symbol);
        if (!result.hasText) {
            variables.setNumber(binding, result.number);
        } else {
            work(result.text.size());
            variables.setText(binding, result.text);
        }
        return;
    }
    // A text that grows at its end is not copied each time.
    const bool grows =
        pieces.size() > 1 && pieces[0].kind == Piece::Kind::variable && pieces[0].symbol == statement.symbol;
    if (grows) {
        Binding& binding = existing(frame, *statement.symbol);
        appendPieces(frame, value, 1, assigned_);
        variables.append(binding, assigned_);
    } else {
        appendPieces(frame, value, 0, assigned_);
        variables.setText(variables.assigned(frame, *statement.symbol), assigned_);
    }
}

std::optional<std::string> Machine::outerVariable(std::string_view name) {
    return globals_->executor_.outerVariable(name);
}

Binding* Machine::find(const Frame& frame, Symbol& symbol) {
    if (Binding* const binding = Variables::find(frame, symbol)) {
        return binding;
    }
    const auto outer = outerVariable(symbol.name);
    if (!outer) {
        return nullptr;
    }
    Binding& binding = variables.local(*globals_, symbol);
    variables.setText(binding, *outer);
    return &binding;
}

Binding& Machine::existing(const Frame& frame, Symbol& symbol) {
    Binding* const binding = find(frame, symbol);
    if (binding == nullptr) {
        throw RunTimeException("Variable " + symbol.name + " does not exist");
    }
    return *binding;
}

void Machine::append(Frame& frame, Expansion& expansion, std::string& text) {
    if (!expansion.parsed) {
        parseExpansion(expansion, variables);
    }
    appendPieces(frame, expansion, 0, text);
}

void Machine::appendPieces(Frame& frame, const Expansion& expansion, std::size_t first, std::string& text) {
    const auto add = [this, &text](std::string_view more) {
        work(more.size() + 1);
        checkLength(text.size() + more.size());
        text.append(more);
    };
    for (std::size_t i = first; i < expansion.pieces.size(); ++i) {
        const Piece& piece = expansion.pieces[i];
        switch (piece.kind) {
        case Piece::Kind::literal:
            add(piece.literal);
            break;
        case Piece::Kind::variable:
            add(variables.text(existing(frame, *piece.symbol)));
            break;
        case Piece::Kind::expression: {
            Evaluation evaluation(*this, frame, *piece.expression);
            add(Evaluation::text(evaluation.result()));
            break;
        }
        case Piece::Kind::fault:
            piece.fault->raise();
        }
    }
}

std::string Machine::expand(Frame& frame, std::string_view text) {
    Expansion expansion(text);
    std::string result;
    append(frame, expansion, result);
    return result;
}

std::string Machine::evaluate(Frame& frame, std::string_view expression) {
    Expression parsed;
    parseWholeExpression(expression, variables, parsed);
    Evaluation evaluation(*this, frame, parsed);
    return std::string(Evaluation::text(evaluation.result()));
}

} // namespace ZEKT
