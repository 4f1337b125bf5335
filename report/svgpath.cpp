#include "report/svgpath.h"

#include <QString>

namespace {

// A number after another: a sign separates them as well as a blank.
QByteArray following(int number)
{
    return (number < 0 ? "" : " ") + QByteArray::number(number);
}

} // namespace

void SvgPath::moveTo(int x, int y)
{
    m_data += 'M' + QByteArray::number(x) + following(y);
    m_x = x;
    m_y = y;
}

void SvgPath::lineTo(int x, int y)
{
    const QByteArray right = QByteArray::number(x - m_x);
    if (y == m_y)
        m_data += 'h' + right;
    else if (x == m_x)
        m_data += 'v' + QByteArray::number(y - m_y);
    else
        m_data += 'l' + right + following(y - m_y);
    m_x = x;
    m_y = y;
}

void SvgPath::addBox(int left, int top, int right, int bottom)
{
    moveTo(left, top);
    m_data += 'h' + QByteArray::number(right - left) + 'v' + QByteArray::number(bottom - top) +
              'h' + QByteArray::number(left - right) + 'z';
}

QByteArray SvgPath::element(const char* style) const
{
    if (isEmpty())
        return {};
    return QByteArray("<path class=\"") + style + "\" d=\"" + m_data + "\"/>\n";
}
