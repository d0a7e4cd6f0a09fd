// Reads all levels of any text, compares each with the plain rules, and has what was read written and read
// again.
#include "notation/Compound.h"
#include "notation/Document.h"
#include "notation/Errors.h"
#include "notation/Quoting.h"
#include "notation/Writer.h"

#include "NaiveNotation.h"

#include <cstdint>
#include <cstdlib>

using namespace Stackbrace;

namespace {

void check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

template <class Read>
void tryTo(Read read) {
    try {
        read();
    } catch (const Exception& error) {
        check(*error.what() != '\0');
    }
}

void visit(const Element& element, int depth) {
    tryTo([&] { check(unquote(quote(element.string())) == element.string()); });
    tryTo([&] { element.boolean(); });
    tryTo([&] { element.integer(); });
    tryTo([&] { element.float32(); });
    tryTo([&] { element.float64(); });
    if (depth == 0) {
        return;
    }
    const auto [complete, expected] = Naive::list(element.text());
    const List list = readList(element);
    check(list.complete() == complete && list.size() == expected.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        check(list[i].text() == expected[i]);
        visit(list[i], depth - 1);
    }
    Writer writer;
    const Structure structure = readStructure(element);
    for (const auto& [key, value] : structure) {
        writer.string(key, value.raw());
        visit(value, depth - 1);
    }
    const Document again(writer.take());
    const Structure copy = again.root().structure();
    check(copy.size() == structure.size());
    for (const auto& [key, value] : structure) {
        check(copy.at(key).string() == value.raw());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Document document(std::string(reinterpret_cast<const char*>(data), size), "fuzz");
    visit(document.root(), 4);
    return 0;
}
