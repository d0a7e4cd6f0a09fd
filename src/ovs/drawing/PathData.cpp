#include "drawing/PathData.h"

#include "zekt/NumberText.h"

#include <string>

namespace Drawing {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

class Reader {
public:
    explicit Reader(std::string_view text) : at_(text.data()), end_(text.data() + text.size()) {}

    Path read() {
        skipBlanks();
        while (at_ != end_) {
            letter_ = *at_++;
            command_ = upper(letter_);
            if (path_.isEmpty() && command_ != 'M') {
                throw PathDataError("Invalid command in svg path data");
            }
            readCommand();
            skipBlanks();
        }
        return std::move(path_);
    }

private:
    void readCommand() {
        switch (command_) {
        case 'M':
            return repeat([this] { readMove(); });
        case 'L':
            return repeat([this] { path_.lineTo(point()); });
        case 'H':
            return repeat([this] { path_.lineTo({number() + base().x, path_.current().y}); });
        case 'V':
            return repeat([this] { path_.lineTo({path_.current().x, number() + base().y}); });
        case 'C':
            return repeat([this] { readCubic(false); });
        case 'S':
            return repeat([this] { readCubic(true); });
        case 'Q':
            return repeat([this] { readQuad(false); });
        case 'T':
            return repeat([this] { readQuad(true); });
        case 'A':
            return repeat([this] { readArc(); });
        case 'Z':
            path_.close();
            previous_ = 'Z';
            return;
        default:
            throw PathDataError("Invalid command in svg path data");
        }
    }

    // A command's arguments may come again and again without its letter.
    template <class Read>
    void repeat(const Read& read) {
        char drawn = command_;
        first_ = true;
        do {
            read();
            previous_ = drawn;
            first_ = false;
        } while (another());
    }

    // Further pairs of a move are lines.
    void readMove() {
        const Point p = point();
        first_ ? path_.moveTo(p) : path_.lineTo(p);
    }

    void readCubic(bool smooth) {
        const Point control1 = !smooth ? point() : reflected(previous_ == 'C' || previous_ == 'S');
        if (!smooth) {
            separate();
        }
        const Point control2 = point();
        separate();
        const Point p = point();
        path_.cubicTo(control1, control2, p);
        control_ = control2;
    }

    void readQuad(bool smooth) {
        const Point control = !smooth ? point() : reflected(previous_ == 'Q' || previous_ == 'T');
        if (!smooth) {
            separate();
        }
        const Point p = point();
        path_.quadTo(control, p);
        control_ = control;
    }

    void readArc() {
        const double radiusX = number();
        separate();
        const double radiusY = number();
        separate();
        const double rotation = number();
        separate();
        const bool large = flag();
        separate();
        const bool clockwise = flag();
        separate();
        path_.arcTo(radiusX, radiusY, rotation, large, clockwise, point());
    }

    // The control point of the curve before, mirrored at the pen.
    Point reflected(bool afterSameKind) const {
        const Point at = path_.current();
        return afterSameKind ? Point{2.0 * at.x - control_.x, 2.0 * at.y - control_.y} : at;
    }

    Point base() const { return letter_ >= 'a' ? path_.current() : Point(); }

    Point point() {
        const double x = number();
        separate();
        const double y = number();
        return {x + base().x, y + base().y};
    }

    bool flag() {
        skipBlanks();
        if (at_ == end_ || (*at_ != '0' && *at_ != '1')) {
            fail();
        }
        return *at_++ == '1';
    }

    double number() {
        skipBlanks();
        const auto length = numberLength();
        double value = 0.0;
        if (length == 0) {
            fail();
        }
        const std::string_view text(at_, static_cast<std::size_t>(length));
        if (ZEKT::readNumber(text, value) != ZEKT::Numeric::yes) {
            fail();
        }
        at_ += length;
        return value;
    }

    // The longest number here: sign, digits with or without point, exponent. 0 when there is none.
    std::ptrdiff_t numberLength() const {
        const char* p = at_;
        if (p != end_ && (*p == '+' || *p == '-')) {
            ++p;
        }
        const char* const digits = p;
        while (p != end_ && isDigit(*p)) {
            ++p;
        }
        auto count = p - digits;
        if (p != end_ && *p == '.') {
            const char* const fraction = ++p;
            while (p != end_ && isDigit(*p)) {
                ++p;
            }
            count += p - fraction;
        }
        if (count == 0) {
            return 0;
        }
        if (p != end_ && (*p == 'e' || *p == 'E')) {
            const char* q = p + 1;
            if (q != end_ && (*q == '+' || *q == '-')) {
                ++q;
            }
            if (q != end_ && isDigit(*q)) {
                while (q != end_ && isDigit(*q)) {
                    ++q;
                }
                p = q;
            }
        }
        return p - at_;
    }

    void skipBlanks() {
        while (at_ != end_ && isBlank(*at_)) {
            ++at_;
        }
    }

    // Blanks with at most one comma among them; says whether there was the comma.
    bool separate() {
        skipBlanks();
        if (at_ == end_ || *at_ != ',') {
            return false;
        }
        ++at_;
        skipBlanks();
        return true;
    }

    // A comma promises more; without one, whatever can start a number does.
    bool another() {
        if (separate()) {
            return true;
        }
        return at_ != end_ && (isDigit(*at_) || *at_ == '.' || *at_ == '-' || *at_ == '+');
    }

    [[noreturn]] void fail() const {
        throw PathDataError(std::string("Invalid ") + command_ + " syntax in svg path data");
    }

    const char* at_;
    const char* end_;
    Path path_;
    char letter_ = 0;
    char command_ = 0;
    char previous_ = 0; // the command that drew last, for the smooth curves
    Point control_;     // its last control point
    bool first_ = true;
};

} // namespace

Path parsePathData(std::string_view text) {
    return Reader(text).read();
}

} // namespace Drawing
