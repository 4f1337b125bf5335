#ifndef CHECK_PREAMBLELINES_H
#define CHECK_PREAMBLELINES_H

#include <string>
#include <string_view>
#include <vector>

#include <QLatin1String>
#include <QtGlobal>

// Where the keyword lines of one preamble are. One entry for each key, however often it occurs.
class PreambleLines
{
public:
    struct Line
    {
        QLatin1String key;
        std::string value; // of the last line with this key
        qint64 number = 0;
        bool isRepeated = false; // it is not the first line with this key
    };

    // A new preamble, whose first line is `firstLine`.
    void begin(qint64 firstLine);
    // Notes a keyword line. Returns the line before it with the same key, or null; it is valid
    // until the next call.
    const Line* note(QLatin1String key, std::string_view value, qint64 number);
    // Notes a line that is nearly one with this key.
    void noteNear(QLatin1String key);
    void setEndLine(qint64 number) { m_endLine = number; }

    qint64 firstLine() const { return m_firstLine; }
    // Of the preamble of a run that was read.
    qint64 endLine() const { return m_endLine; }
    // 0 if there is no line with the key.
    qint64 lineOf(QLatin1String key) const;
    bool hasNear(QLatin1String key) const;
    bool isEmpty() const { return m_count == 0; }

private:
    std::size_t indexOf(QLatin1String key) const;

    qint64 m_firstLine = 0;
    qint64 m_endLine = 0;
    // Entries after the first m_count are kept only for reuse of their memory.
    std::vector<Line> m_lines;
    std::size_t m_count = 0;
    Line m_previous;
    std::vector<QLatin1String> m_nearKeys; // each once
};

#endif // CHECK_PREAMBLELINES_H
