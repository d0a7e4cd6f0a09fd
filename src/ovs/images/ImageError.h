// What a specification, a picture or a font can fail with. The message is complete: whoever asked for the
// image shows it. Scripts of vector images fail with the exceptions of their language instead.
#pragma once

#include <stdexcept>

namespace Images {

class ImageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Images
