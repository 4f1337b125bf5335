#include "report/svgpath.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr int kMaxNumber = 11;                  // characters of a number, with its sign
constexpr int kMaxCommand = 2 * kMaxNumber + 2; // with a letter and a blank

char* addNumber(char* out, int number)
{
    if (number >= 0 && number < 10) { // as most distances from one point to the next
        *out = static_cast<char>('0' + number);
        return out + 1;
    }
    return std::to_chars(out, out + kMaxNumber, number).ptr;
}

} // namespace

// A path has thousands of commands: each is written to its place, for which there is room.
char* SvgPath::room()
{
    constexpr int kFirstSize = 1000;
    if (m_data.size() - m_size < kMaxCommand)
        m_data.resize(std::max(2 * m_size, kFirstSize));
    return m_data.data() + m_size;
}

void SvgPath::add(char letter, int number)
{
    char* out = room();
    *out++ = letter;
    m_size = static_cast<int>(addNumber(out, number) - m_data.constData());
}

// A number after another: a sign separates them as well as a blank.
void SvgPath::add(char letter, int number, int second)
{
    char* out = room();
    *out++ = letter;
    out = addNumber(out, number);
    if (second >= 0)
        *out++ = ' ';
    m_size = static_cast<int>(addNumber(out, second) - m_data.constData());
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
        add('h', x - m_x);
    else if (x == m_x)
        add('v', y - m_y);
    else
        add('l', x - m_x, y - m_y);
    m_x = x;
    m_y = y;
}

void SvgPath::addBox(int left, int top, int right, int bottom)
{
    moveTo(left, top);
    add('h', right - left);
    add('v', bottom - top);
    add('h', left - right);
    *room() = 'z';
    ++m_size;
}

QByteArray SvgPath::element(const char* style) const
{
    if (isEmpty())
        return {};
    return QByteArray("<path class=\"") + style + "\" d=\"" +
           QByteArray::fromRawData(m_data.constData(), m_size) + "\"/>\n";
}
