// The engine's run-time fault model.
//
// The calculation rules were written for a runtime that raised an error on an
// array subscript outside its declared bounds, on a byte argument outside
// 0..255 and on a 16-bit overflow. Several rules depend on that: a rank of 15
// read from a counter array ends the stage, a negative chance argument ends
// the hand search. We model exactly that runtime here: the fixed arrays are
// bounds-checked, the narrowing conversions are checked, and all of them throw
// one exception type, RuntimeFault. The recalculation driver catches it per
// statement, so a fault never escapes the engine.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace felthawk {

class RuntimeFault : public std::runtime_error {
  public:
    enum class Kind { Subscript, Overflow, DivisionByZero };

    RuntimeFault(Kind kind, const std::string& what) : std::runtime_error(what), kind_(kind) {}
    Kind kind() const { return kind_; }

  private:
    Kind kind_;
};

[[noreturn]] void RaiseSubscriptFault(long index, long lower, long upper);
[[noreturn]] void RaiseOverflowFault(const char* target, double value);

// Whole-number conversion of the runtime: nearest, an exact half to the even
// neighbour (12.5 -> 12, 13.5 -> 14).
// The program never changes the floating-point rounding mode, so nearbyint
// rounds to nearest with ties to even.
inline double RoundHalfEven(double value) {
    return std::nearbyint(value);
}

// Assignment to a signed 16-bit variable.
inline int16_t ToInt16(double value) {
    double r = RoundHalfEven(value);
    if (!(r >= -32768.0 && r <= 32767.0)) RaiseOverflowFault("Integer", value);
    return static_cast<int16_t>(r);
}
inline int16_t ToInt16(long value) {
    if (value < -32768 || value > 32767) RaiseOverflowFault("Integer", static_cast<double>(value));
    return static_cast<int16_t>(value);
}
inline int16_t ToInt16(int value) {
    return ToInt16(static_cast<long>(value));
}

// Passing a value to an unsigned byte parameter.
inline uint8_t ToByte(double value) {
    double r = RoundHalfEven(value);
    if (!(r >= 0.0 && r <= 255.0)) RaiseOverflowFault("Byte", value);
    return static_cast<uint8_t>(r);
}
inline uint8_t ToByte(long value) {
    if (value < 0 || value > 255) RaiseOverflowFault("Byte", static_cast<double>(value));
    return static_cast<uint8_t>(value);
}
inline uint8_t ToByte(int value) {
    return ToByte(static_cast<long>(value));
}

// A fixed array with declared bounds Lower..Upper, both inclusive, as the
// rules declare them ("0 To 14"). Reading or writing outside raises a
// subscript fault.
template <class T, int Lower, int Upper>
class FixedArray {
    static_assert(Lower <= Upper);

  public:
    static constexpr int kLower = Lower;
    static constexpr int kUpper = Upper;
    static constexpr int kSize = Upper - Lower + 1;

    T& operator[](long index) {
        if (index < Lower || index > Upper) RaiseSubscriptFault(index, Lower, Upper);
        return items_[static_cast<std::size_t>(index - Lower)];
    }
    const T& operator[](long index) const {
        if (index < Lower || index > Upper) RaiseSubscriptFault(index, Lower, Upper);
        return items_[static_cast<std::size_t>(index - Lower)];
    }

    // Erase: every element back to its empty value.
    void Erase() { items_.fill(T{}); }
    void Fill(const T& value) { items_.fill(value); }

    auto begin() { return items_.begin(); }
    auto end() { return items_.end(); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

  private:
    std::array<T, kSize> items_{};
};

// A growing list indexed from 0 (ReDim Preserve style). Reads outside the
// current size raise a subscript fault.
template <class T>
class GrowingList {
  public:
    T& operator[](long index) {
        if (index < 0 || index >= Size()) RaiseSubscriptFault(index, 0, Size() - 1);
        return items_[static_cast<std::size_t>(index)];
    }
    const T& operator[](long index) const {
        if (index < 0 || index >= Size()) RaiseSubscriptFault(index, 0, Size() - 1);
        return items_[static_cast<std::size_t>(index)];
    }
    long Size() const { return static_cast<long>(items_.size()); }
    long UpperBound() const { return Size() - 1; }
    void Append(const T& value) { items_.push_back(value); }
    // Recreated with the given elements; the storage is kept for speed.
    void Reset(std::initializer_list<T> values) { items_.assign(values); }

    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

  private:
    std::vector<T> items_;
};

}  // namespace felthawk
