#include "report/svgpath.h"

// A number after another: a sign separates them as well as a blank.
void SvgPath::add(char letter, int number, int second)
{
    if (second >= 0)
        m_data.add(letter, number, ' ', second);
    else
        m_data.add(letter, number, second);
}

void SvgPath::moveTo(int x, int y)
{
    add('M', x, y);
    m_x = x;
    m_y = y;
}

void SvgPath::lineTo(int x, int y)
{
    if (y == m_y)
        m_data.add('h', x - m_x);
    else if (x == m_x)
        m_data.add('v', y - m_y);
    else
        add('l', x - m_x, y - m_y);
    m_x = x;
    m_y = y;
}

void SvgPath::addBox(int left, int top, int right, int bottom)
{
    moveTo(left, top);
    m_data.add('h', right - left, 'v', bottom - top, 'h', left - right, 'z');
}

QByteArray SvgPath::element(const char* style) const
{
    if (isEmpty())
        return {};
    return QByteArray("<path class=\"") + style + "\" d=\"" + m_data.bytes() + "\"/>\n";
}
