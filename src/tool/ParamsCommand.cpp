#include "tool/Commands.h"

#include "parameters/ParameterTable.h"
#include "parameters/ParameterText.h"

#include <fmt/core.h>

namespace Tool {

namespace {

void printParameters() {
    for (int index = 0; index < Parameters::kCount; ++index) {
        const int id = Parameters::kHostOrder[static_cast<std::size_t>(index)];
        const auto& record = Parameters::kTable[static_cast<std::size_t>(id)];
        fmt::print("{}\t{}\t{}\t{}\t{}\t{}\t{}\n", index, id, record.name, record.displayName, record.unit,
                   record.defaultValue, Parameters::shownText(id, record.defaultValue, false));
    }
}

} // namespace

void addParamsCommand(CLI::App& program) {
    program.add_subcommand("params", "Lists the parameters in host order")->callback(printParameters);
}

} // namespace Tool
