#include "FactoryBank.h"

asm(R"(
    .pushsection .rodata
    .balign 16
    .hidden murmelon_factory_bank_begin
    .global murmelon_factory_bank_begin
murmelon_factory_bank_begin:
    .incbin ")" MURMELON_FACTORY_BANK R"("
    .hidden murmelon_factory_bank_end
    .global murmelon_factory_bank_end
murmelon_factory_bank_end:
    .popsection
)");

extern "C" const char murmelon_factory_bank_begin[];
extern "C" const char murmelon_factory_bank_end[];

namespace Shell {

std::string_view factoryBank() {
    return {murmelon_factory_bank_begin, murmelon_factory_bank_end};
}

} // namespace Shell
