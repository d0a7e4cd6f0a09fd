// Statements a second, parsed forms kept as a host keeps them; see bench/zekt-vs-tcl for whole processes.
#include "zekt/Interpreter.h"

#include <benchmark/benchmark.h>

namespace {

class Host : public ZEKT::Executor {
public:
    bool supportsFormat(const ZEKT::FormatStatement&) override { return true; }
    bool execute(ZEKT::Frame& frame, std::string_view, const ZEKT::ArgumentText& text) override {
        ZEKT::Arguments arguments(frame, text);
        benchmark::DoNotOptimize(arguments.required(0).numbers(4, 4));
        arguments.finish();
        return true;
    }
};

void statements(benchmark::State& state, const char* script) {
    Host host;
    ZEKT::Interpreter interpreter(host);
    std::int64_t count = 0;
    for (auto _ : state) {
        interpreter.forgetVariables();
        interpreter.run(script);
        count += ZEKT::kStatementLimit - interpreter.statementsLeft();
    }
    state.SetItemsProcessed(count);
}

} // namespace

BENCHMARK_CAPTURE(statements, counting, "n=0; for i from:1 to:10000 [ n={$n + 1} ]");
BENCHMARK_CAPTURE(
    statements, functions,
    "y=0; for i from:1 to:10000 [ y={floor(1000 * abs(sin($i * 0.01) * cos($y)) + sqrt($i)) / 7} ]");
BENCHMARK_CAPTURE(statements, path, "p=M; for i from:1 to:10000 [ p=$p {$i * 0.25} {100 - $i / 7} ]");
BENCHMARK_CAPTURE(statements, branches,
                  "n=0; for i from:1 to:10000 [ if [{$i % 2 == 0}] [ n={$n + 1} ] else:[ n=0 ] ]");
BENCHMARK_CAPTURE(statements, calls, "f=[ return r={$0 * 2} ]; for i from:1 to:10000 [ call $f $i ]");
BENCHMARK_CAPTURE(statements, instructions, "for i from:1 to:10000 [ rect $i,{$i * 2},20,30 ]");
