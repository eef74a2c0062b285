/// Money with four decimals.
#pragma once

#include <QString>

#include <compare>

/// An amount of money as a 64-bit count of ten-thousandths. Arithmetic that leaves the range fails with 6.
class Currency {
  public:
    constexpr Currency() = default;
    /// The nearest amount, half a ten-thousandth going to the even neighbour. Fails with 6 beyond the range.
    static Currency fromDouble(double amount);
    static constexpr Currency fromScaled(qint64 tenThousandths) { return Currency(tenThousandths); }

    [[nodiscard]] constexpr qint64 scaled() const { return m_scaled; }
    [[nodiscard]] double toDouble() const { return static_cast<double>(m_scaled) / 10000.0; }

    friend constexpr auto operator<=>(const Currency &, const Currency &) = default;

  private:
    constexpr explicit Currency(qint64 scaled) : m_scaled(scaled) {}

    qint64 m_scaled = 0;
};
