#include "report/axis.h"

#include <algorithm>
#include <cmath>

namespace {

// Beyond it differences would be infinite.
constexpr double kMaxNumber = 1e300;

// The smallest of 1, 2 and 5 times a power of ten that is not less.
double roundedUp(double number)
{
    constexpr double kTolerance = 1.0 + 1e-9; // of log10 and pow
    const double power = std::pow(10.0, std::floor(std::log10(number)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power * kTolerance >= number)
            return factor * power;
    }
    return 10.0 * power;
}

} // namespace

void Axis::include(double value)
{
    if (!std::isfinite(value))
        return;
    value = std::clamp(value, -kMaxNumber, kMaxNumber);
    const bool isFirst = isEmpty();
    m_low = isFirst ? value : std::min(m_low, value);
    m_high = isFirst ? value : std::max(m_high, value);
}

void Axis::round()
{
    Q_ASSERT(!isEmpty());
    constexpr double kNear = 0.4; // of the other end
    constexpr double kSteps = 4.0;
    constexpr double kLeastShare = 1e-9; // of the numbers: below it digits run out
    if (m_low > 0.0 && m_low < kNear * m_high)
        m_low = 0.0;
    if (m_high < 0.0 && m_high > kNear * m_low)
        m_high = 0.0;
    const double largest = std::max(std::fabs(m_low), std::fabs(m_high));
    const double least = largest > 0.0 ? largest * kLeastShare : 1.0;
    if (m_high - m_low < least) {
        const double margin = largest > 0.0 ? largest * 0.05 : 1.0;
        m_low -= margin;
        m_high += margin;
    }
    m_step = roundedUp((m_high - m_low) / kSteps);
    m_low = std::floor(m_low / m_step) * m_step;
    m_high = std::ceil(m_high / m_step) * m_step;
}

double Axis::placeOf(double value) const
{
    return std::clamp((value - m_low) / (m_high - m_low), 0.0, 1.0);
}

std::vector<Axis::Tick> Axis::ticks() const
{
    const double largest = std::max(std::fabs(m_low), std::fabs(m_high));
    const int digits = 1 + static_cast<int>(std::floor(std::log10(largest) + 1e-9)) -
                       static_cast<int>(std::floor(std::log10(m_step) + 1e-9));
    std::vector<Tick> ticks;
    const int count = static_cast<int>(std::lround((m_high - m_low) / m_step));
    for (int i = 0; i <= count; ++i) {
        const double value = (std::round(m_low / m_step) + i) * m_step;
        const bool isShort = largest < 1e6 && m_step >= 1e-4;
        const int decimals = std::max(0, -static_cast<int>(std::floor(std::log10(m_step) + 1e-9)));
        ticks.push_back({value, isShort ? QByteArray::number(value, 'f', decimals)
                                        : QByteArray::number(value, 'g', digits)});
    }
    return ticks;
}

int labelStep(int count, int maxTicks)
{
    Q_ASSERT(count >= 0 && maxTicks > 0);
    int step = 1;
    for (int i = 0; count > static_cast<qint64>(step) * maxTicks; ++i)
        step = i % 3 == 1 ? step / 2 * 5 : step * 2;
    return step;
}
