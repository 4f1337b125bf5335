#ifndef REPORT_AXIS_H
#define REPORT_AXIS_H

#include <vector>

#include <QByteArray>

// The range of an axis of numbers, which grows with what it is to show, and its ticks.
class Axis
{
public:
    // Numbers that are not finite have no place on the axis.
    void include(double value);
    bool isEmpty() const { return m_low > m_high; }
    // To be called after the last include(), unless isEmpty(): widens the range to whole ticks, and
    // down to 0 if that is near; a single number gets room on both sides.
    void round();

    double low() const { return m_low; }
    double high() const { return m_high; }
    // Where a number is: 0 at the low end, 1 at the high end, and no further.
    double placeOf(double value) const;

    struct Tick
    {
        double value;
        QByteArray label; // as few digits as tell it from its neighbours
    };
    // Round values from the low end to the high end, 3 to 8 of them. After round().
    std::vector<Tick> ticks() const;

private:
    double m_low = 1.0;
    double m_high = 0.0;
    double m_step = 1.0;
};

// The smallest of 1, 2, 5, 10, 20, 50, ... that is not less than `count` / `maxTicks`: one of so
// many years, or other things that are counted, gets a label.
int labelStep(int count, int maxTicks);

#endif // REPORT_AXIS_H
