#include "tests/evaluator/json_line_check.h"

#include <cctype>
#include <cstdint>

namespace felthawk::testing {
namespace {

constexpr int kMaxDepth = 64;

class Reader {
  public:
    explicit Reader(std::string_view text) : text_(text) {}

    std::string Check() {
        SkipBlanks();
        if (Peek() != '{') return Fail("expected an object");
        if (!Value(0)) return problem_;
        SkipBlanks();
        if (at_ != text_.size()) return Fail("text after the object");
        return "";
    }

  private:
    char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    bool AtEnd() const { return at_ >= text_.size(); }

    std::string Fail(const std::string& what) {
        problem_ = what + " at byte " + std::to_string(at_);
        return problem_;
    }
    bool Bad(const std::string& what) {
        Fail(what);
        return false;
    }

    void SkipBlanks() {
        while (!AtEnd() && (Peek() == ' ' || Peek() == '\t' || Peek() == '\n' || Peek() == '\r'))
            ++at_;
    }

    bool Value(int depth) {
        if (depth > kMaxDepth) return Bad("nested too deep");
        SkipBlanks();
        switch (Peek()) {
            case '{':
                return Container(depth, '}', true);
            case '[':
                return Container(depth, ']', false);
            case '"':
                return String();
            case 't':
                return Word("true");
            case 'f':
                return Word("false");
            case 'n':
                return Word("null");
            default:
                return Number();
        }
    }

    bool Container(int depth, char close, bool keyed) {
        ++at_;
        SkipBlanks();
        if (Peek() == close) {
            ++at_;
            return true;
        }
        while (true) {
            SkipBlanks();
            if (keyed) {
                if (Peek() != '"' || !String())
                    return problem_.empty() ? Bad("expected a key") : false;
                SkipBlanks();
                if (Peek() != ':') return Bad("expected ':'");
                ++at_;
            }
            if (!Value(depth + 1)) return false;
            SkipBlanks();
            if (Peek() == ',') {
                ++at_;
                continue;
            }
            if (Peek() == close) {
                ++at_;
                return true;
            }
            return Bad("expected ',' or the end of a container");
        }
    }

    bool Word(std::string_view word) {
        if (text_.substr(at_, word.size()) != word) return Bad("unknown word");
        at_ += word.size();
        return true;
    }

    bool Digits() {
        const std::size_t start = at_;
        while (Peek() >= '0' && Peek() <= '9') ++at_;
        return at_ > start;
    }

    bool Number() {
        if (Peek() == '-') ++at_;
        if (Peek() == '0') {
            ++at_;
        } else if (!Digits()) {
            return Bad("expected a value");
        }
        if (Peek() == '.') {
            ++at_;
            if (!Digits()) return Bad("expected digits after '.'");
        }
        if (Peek() == 'e' || Peek() == 'E') {
            ++at_;
            if (Peek() == '+' || Peek() == '-') ++at_;
            if (!Digits()) return Bad("expected an exponent");
        }
        return true;
    }

    // One UTF-8 sequence: shortest form, no surrogates, at most U+10FFFF.
    bool Utf8() {
        const auto lead = static_cast<unsigned char>(text_[at_]);
        int length;
        uint32_t point;
        if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            point = lead & 0x07;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            point = lead & 0x0F;
        } else if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
            point = lead & 0x1F;
        } else {
            return Bad("invalid UTF-8 lead byte");
        }
        if (at_ + length > text_.size()) return Bad("truncated UTF-8 sequence");
        for (int i = 1; i < length; ++i) {
            const auto next = static_cast<unsigned char>(text_[at_ + i]);
            if ((next & 0xC0) != 0x80) return Bad("invalid UTF-8 continuation byte");
            point = point << 6 | (next & 0x3F);
        }
        const uint32_t least = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
        if (point < least || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF))
            return Bad("overlong or out-of-range UTF-8");
        at_ += length;
        return true;
    }

    bool Escape() {
        ++at_;  // the backslash
        const char c = Peek();
        if (c == 'u') {
            for (int i = 1; i <= 4; ++i) {
                const char hex = at_ + i < text_.size() ? text_[at_ + i] : '\0';
                if (!std::isxdigit(static_cast<unsigned char>(hex))) return Bad("bad \\u escape");
            }
            at_ += 5;
            return true;
        }
        if (std::string_view("\"\\/bfnrt").find(c) == std::string_view::npos || AtEnd())
            return Bad("unknown escape");
        ++at_;
        return true;
    }

    bool String() {
        ++at_;  // the opening quote
        while (true) {
            if (AtEnd()) return Bad("unterminated string");
            const auto c = static_cast<unsigned char>(Peek());
            if (c == '"') {
                ++at_;
                return true;
            }
            if (c < 0x20) return Bad("raw control character in a string");
            if (c == '\\') {
                if (!Escape()) return false;
            } else if (c >= 0x80) {
                if (!Utf8()) return false;
            } else {
                ++at_;
            }
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::string problem_;
};

}  // namespace

std::string JsonObjectProblem(std::string_view text) {
    return Reader(text).Check();
}

}  // namespace felthawk::testing
