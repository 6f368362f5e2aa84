#include "lib/string/decimal.h"

#include <bit>
#include <cstdint>

namespace tsypr
{
namespace
{

constexpr uint32_t kGroup = 1'000'000'000; // nine digits in every word
constexpr size_t kGroupDigits = 9;

// A whole number, the least significant group first.
struct BigNumber
{
    explicit BigNumber(uint64_t value) noexcept // NOLINT(cppcoreguidelines-pro-type-member-init)
    {
        for (; value != 0; value /= kGroup)
        {
            groups[count++] = static_cast<uint32_t>(value % kGroup);
        }
    }

    void Multiply(uint32_t factor) noexcept
    {
        uint64_t carry = 0;
        for (size_t i = 0; i < count; ++i)
        {
            carry += static_cast<uint64_t>(groups[i]) * factor;
            groups[i] = static_cast<uint32_t>(carry % kGroup);
            carry /= kGroup;
        }
        for (; carry != 0; carry /= kGroup)
        {
            groups[count++] = static_cast<uint32_t>(carry % kGroup);
        }
    }

    // Multiplies by base to the power of `exponent`; `stepPower` is base to the power of `step`.
    void MultiplyByPower(uint32_t base, int exponent, int step, uint32_t stepPower) noexcept
    {
        for (; exponent >= step; exponent -= step)
        {
            Multiply(stepPower);
        }
        for (; exponent > 0; --exponent)
        {
            Multiply(base);
        }
    }

    uint32_t groups[86];
    size_t count = 0;
};

} // namespace

// With a negative power of two, m / 2^k is m * 5^k / 10^k: only whole numbers are needed.
Decimal::Decimal(double value) noexcept // NOLINT(cppcoreguidelines-pro-type-member-init)
{
    const auto bits = std::bit_cast<uint64_t>(value);
    const int field = static_cast<int>(bits >> 52 & 0x7FF);
    uint64_t mantissa = (bits & 0xFFFFFFFFFFFFF) | (field != 0 ? 1ULL << 52 : 0);
    if (mantissa == 0)
    {
        return;
    }
    const int zeros = std::countr_zero(mantissa);
    mantissa >>= zeros;
    const int exponent = (field != 0 ? field : 1) - 1075 + zeros;
    BigNumber number(mantissa);
    if (exponent >= 0)
    {
        number.MultiplyByPower(2, exponent, 29, 1U << 29);
    }
    else
    {
        number.MultiplyByPower(5, -exponent, 13, 1'220'703'125);
    }
    for (size_t i = number.count; i-- > 0;)
    {
        uint32_t group = number.groups[i];
        for (size_t k = kGroupDigits; k-- > 0; group /= 10)
        {
            m_digits[m_count + k] = static_cast<char>('0' + group % 10);
        }
        m_count += kGroupDigits;
    }
    size_t leading = 0;
    while (m_digits[leading] == '0')
    {
        ++leading;
    }
    for (size_t i = leading; i < m_count; ++i)
    {
        m_digits[i - leading] = m_digits[i];
    }
    m_count -= leading;
    m_point = static_cast<int>(m_count) + (exponent < 0 ? exponent : 0);
    DropZeros();
}

void Decimal::DropZeros() noexcept
{
    while (m_count > 0 && m_digits[m_count - 1] == '0')
    {
        --m_count;
    }
}

void Decimal::Round(long long digits) noexcept
{
    if (digits < 0)
    {
        m_count = 0;
        return;
    }
    auto keep = static_cast<size_t>(digits);
    if (keep >= m_count)
    {
        return;
    }
    const char first = m_digits[keep];
    const bool odd = keep > 0 && (m_digits[keep - 1] - '0') % 2 != 0;
    const bool up = first > '5' || (first == '5' && (m_count > keep + 1 || odd));
    m_count = keep;
    if (!up)
    {
        DropZeros();
        return;
    }
    while (keep > 0 && m_digits[keep - 1] == '9')
    {
        --keep;
    }
    if (keep == 0)
    {
        m_digits[0] = '1';
        m_count = 1;
        ++m_point;
        return;
    }
    ++m_digits[keep - 1];
    m_count = keep;
}

} // namespace tsypr
