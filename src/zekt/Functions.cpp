#include "zekt/Functions.h"

#include "zekt/Errors.h"

#include <cerrno>
#include <cmath>
#include <iterator>

namespace ZEKT {

namespace {

// What is too large is an overflow whatever the library says of it; anything else it complains about is an
// error.
double checked(double result, int error) {
    if (std::isinf(result)) {
        throw RunTimeException("Number overflow");
    }
    if (error != 0 || std::isnan(result)) {
        throw RunTimeException("Math error");
    }
    return result;
}

template <double (*function)(double)>
double call(double x) {
    errno = 0;
    const double result = function(x);
    return checked(result, errno);
}

double naturalLogarithm(double x) {
    if (x <= 0) {
        throw RunTimeException("Math error (log of 0 or less)");
    }
    return std::log(x);
}

double commonLogarithm(double x) {
    if (x <= 0) {
        throw RunTimeException("Math error (log10 of 0 or less)");
    }
    return std::log10(x);
}

double squareRoot(double x) {
    if (x < 0) {
        throw RunTimeException("Math error (sqrt of negative)");
    }
    return std::sqrt(x);
}

double absolute(double x) {
    return std::abs(x);
}
double roundUp(double x) {
    return std::ceil(x);
}
double roundDown(double x) {
    return std::floor(x);
}
double roundHalfAway(double x) {
    return std::round(x);
}

struct Row {
    std::string_view name;
    double (*call)(double);
};

constexpr Row kFunctions[] = {
    {"abs", absolute},        {"acos", call<::acos>},    {"asin", call<::asin>},     {"atan", call<::atan>},
    {"ceil", roundUp},        {"cos", call<::cos>},      {"cosh", call<::cosh>},     {"exp", call<::exp>},
    {"floor", roundDown},     {"log", naturalLogarithm}, {"log10", commonLogarithm}, {"sin", call<::sin>},
    {"sinh", call<::sinh>},   {"sqrt", squareRoot},      {"tan", call<::tan>},       {"tanh", call<::tanh>},
    {"round", roundHalfAway},
};

} // namespace

std::optional<std::uint32_t> findFunction(std::string_view name) {
    for (std::uint32_t i = 0; i < std::size(kFunctions); ++i) {
        if (kFunctions[i].name == name) {
            return i;
        }
    }
    return std::nullopt;
}

double callFunction(std::uint32_t index, double x) {
    return kFunctions[index].call(x);
}

double power(double base, double exponent) {
    errno = 0;
    const double result = std::pow(base, exponent);
    return checked(result, errno);
}

} // namespace ZEKT
