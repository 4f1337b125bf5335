#include "report/svgpath.h"

#include <charconv>
#include <iterator>

#include <QString>

// A path has thousands of numbers: no text is made of each.
void SvgPath::add(char letter, int number)
{
    char text[16];
    text[0] = letter;
    const auto result = std::to_chars(text + 1, std::end(text), number);
    m_data.append(text, static_cast<int>(result.ptr - text));
}

// A number after another: a sign separates them as well as a blank.
void SvgPath::addSecond(int number)
{
    char text[16];
    text[0] = ' ';
    const auto result = std::to_chars(text + 1, std::end(text), number);
    const char* const begin = number < 0 ? text + 1 : text;
    m_data.append(begin, static_cast<int>(result.ptr - begin));
}

void SvgPath::moveTo(int x, int y)
{
    add('M', x);
    addSecond(y);
    m_x = x;
    m_y = y;
}

void SvgPath::lineTo(int x, int y)
{
    if (y == m_y) {
        add('h', x - m_x);
    } else if (x == m_x) {
        add('v', y - m_y);
    } else {
        add('l', x - m_x);
        addSecond(y - m_y);
    }
    m_x = x;
    m_y = y;
}

void SvgPath::addBox(int left, int top, int right, int bottom)
{
    moveTo(left, top);
    add('h', right - left);
    add('v', bottom - top);
    add('h', left - right);
    m_data += 'z';
}

QByteArray SvgPath::element(const char* style) const
{
    if (isEmpty())
        return {};
    return QByteArray("<path class=\"") + style + "\" d=\"" + m_data + "\"/>\n";
}
