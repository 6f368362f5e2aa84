// A floating-point number as the decimal digits that it stands for, exactly. Neither the C library nor the locale has a
// part in it, so the digits are the same everywhere.
#ifndef TESSARY_LIB_STRING_DECIMAL_H
#define TESSARY_LIB_STRING_DECIMAL_H

#include <cstddef>

namespace tsypr
{

class Decimal
{
public:
    // Takes a finite number that is not negative.
    explicit Decimal(double value) noexcept;

    // Keeps that many significant digits, rounded to the nearest and from the middle to the even one. 0 or less asks
    // about the position before the first digit, and further before it.
    void Round(long long digits) noexcept;

    bool IsZero() const noexcept
    {
        return m_count == 0;
    }

    // The number is 0.DIGITS times ten to the power of Point(); neither end of the digits is a zero. A zero has no
    // digits.
    size_t Count() const noexcept
    {
        return m_count;
    }
    int Point() const noexcept
    {
        return m_point;
    }

    // The digit at the index; '0' behind the last one.
    char Digit(size_t index) const noexcept
    {
        return index < m_count ? m_digits[index] : '0';
    }

private:
    void DropZeros() noexcept;

    static constexpr size_t kMaxDigits = 774; // 767 is the most that a double needs; whole groups of nine are written

    size_t m_count = 0;
    int m_point = 0;
    char m_digits[kMaxDigits];
};

} // namespace tsypr

#endif
