#ifndef REPORT_PAGETEXT_H
#define REPORT_PAGETEXT_H

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <vector>

#include <QByteArray>
#include <QLatin1String>
#include <QtGlobal>

// Texts and whole numbers one after the other. A page has hundreds of thousands of them: they are
// written to their places, without an object for each.
//
//     PageText html;
//     html.add("<td>", count, "</td>");
class PageText
{
public:
    template<typename... Parts>
    void add(const Parts&... parts)
    {
        (addPart(parts), ...);
    }

    bool isEmpty() const { return m_used == 0; }
    QByteArray bytes() const { return {m_bytes.data(), static_cast<int>(m_used)}; }

private:
    char* room(std::size_t count)
    {
        constexpr std::size_t kLeastRoom = 1000;
        if (m_bytes.size() - m_used < count)
            m_bytes.resize(std::max(2 * m_bytes.size(), m_used + count + kLeastRoom));
        return m_bytes.data() + m_used;
    }
    void addBytes(const char* bytes, std::size_t count)
    {
        std::memcpy(room(count), bytes, count);
        m_used += count;
    }
    void addPart(const char* text) { addBytes(text, std::strlen(text)); }
    void addPart(QLatin1String text)
    {
        addBytes(text.data(), static_cast<std::size_t>(text.size()));
    }
    void addPart(const QByteArray& text)
    {
        addBytes(text.constData(), static_cast<std::size_t>(text.size()));
    }
    void addPart(char character)
    {
        *room(1) = character;
        ++m_used;
    }
    void addPart(qint64 number)
    {
        constexpr std::size_t kMaxDigits = 20; // with the sign
        char* const first = room(kMaxDigits);
        m_used +=
            static_cast<std::size_t>(std::to_chars(first, first + kMaxDigits, number).ptr - first);
    }
    void addPart(int number)
    {
        if (number >= 0 && number < 10) // as most distances of a path
            addPart(static_cast<char>('0' + number));
        else
            addPart(qint64(number));
    }

    std::vector<char> m_bytes;
    std::size_t m_used = 0;
};

#endif // REPORT_PAGETEXT_H
