#ifndef TESTS_HTS_RANDOMHTS_H
#define TESTS_HTS_RANDOMHTS_H

#include <QByteArray>
#include <QByteArrayList>
#include <QRandomGenerator>

// Makes random HTS files, the same ones for the same seed: several runs, slots of all kinds,
// missing values, methods, tables, both line ends, lines that begin with no key. All of them can be
// read. Then breaks them.
class RandomHts
{
public:
    explicit RandomHts(quint32 seed);

    // A whole file. A run has `steps` timesteps at most.
    QByteArray file(int steps);
    // `file` with a few bytes or lines changed, lost, moved or inserted.
    QByteArray broken(const QByteArray& file);

    // The text of a number in a value line, or of something close to one.
    QByteArray numberText();

private:
    int below(qint64 limit) { return m_random.bounded(static_cast<int>(limit)); }
    bool oneIn(int chances) { return below(chances) == 0; }
    QByteArray pick(const QByteArrayList& texts);
    QByteArray plainNumber();
    QByteArray dateTimeText();

    void addLine(const QByteArray& text);
    // The lines in any order, some of them left out, with lines that begin with no key between
    // them.
    void addKeywordLines(QByteArrayList lines);
    void addRun(const QByteArrayList& slotKinds, int steps);
    void addSlot(const QByteArray& kind, int steps);
    void addTable();
    void addColumn(int rows);

    QByteArray changedLines(const QByteArray& file);

    QRandomGenerator m_random;
    QByteArray m_text;
    QByteArray m_lineEnd;
};

// `text` without the "\r"s that no "\n" follows. How a device in text mode reads such a "\r"
// depends on how full its buffer is.
QByteArray withoutLoneCarriageReturns(const QByteArray& text);

#endif // TESTS_HTS_RANDOMHTS_H
