#ifndef REPORT_SVGPATH_H
#define REPORT_SVGPATH_H

#include <QByteArray>

#include "report/pagetext.h"

// The data of an SVG path of whole numbers, in the shortest form.
class SvgPath
{
public:
    bool isEmpty() const { return m_data.isEmpty(); }

    void moveTo(int x, int y);
    void lineTo(int x, int y);
    // A rectangle from one corner to the opposite one.
    void addBox(int left, int top, int right, int bottom);
    // A dot, where nothing else is drawn.
    void addDot() { m_data.add("h0"); }

    int x() const { return m_x; }
    int y() const { return m_y; }

    // The element, or nothing for an empty path. `style` is its class.
    QByteArray element(const char* style) const;

private:
    void add(char letter, int number, int second);

    PageText m_data;
    int m_x = 0;
    int m_y = 0;
};

#endif // REPORT_SVGPATH_H
