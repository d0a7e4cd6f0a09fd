// What reading saved state throws. The text is for the user as it is.
#pragma once

#include <stdexcept>

namespace Bnk {

class Exception : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The data is not what it should be.
class FormatException : public Exception {
public:
    using Exception::Exception;
};

// The data ends too early.
class StreamException : public Exception {
public:
    StreamException() : Exception("End of file error") {}
    using Exception::Exception;
};

} // namespace Bnk
