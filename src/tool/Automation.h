// A parameter moved along break points while sound is rendered.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tool {

class Automation {
public:
    // "NAME=T0:V0,T1:V1,...": times in seconds, not falling, and normalised values. Throws
    // std::runtime_error for an unknown name, a point that is none, or times that fall.
    explicit Automation(std::string_view text);

    int parameter() const { return parameter_; }

    // Linear between the points, and level before the first and behind the last.
    float valueAt(double seconds) const;

private:
    struct Point {
        double seconds;
        double value;
    };

    int parameter_;
    std::vector<Point> points_;
};

} // namespace Tool
