// The instructions that the interpreter has itself.
#pragma once

#include <string_view>

namespace ZEKT {

class Frame;
class Machine;
struct Statement;

struct BuiltIn {
    std::string_view name;
    bool declares; // takes a name and a value rather than arguments
    void (*execute)(Machine& machine, Frame& frame, const Statement& statement);
};

const BuiltIn* findBuiltIn(std::string_view name);

} // namespace ZEKT
