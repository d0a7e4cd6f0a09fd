#include "zekt/Frame.h"
#include "zekt/Interpreter.h"

namespace ZEKT {

std::string folded(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return result;
}

} // namespace ZEKT
