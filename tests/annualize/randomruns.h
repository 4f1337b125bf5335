#ifndef TESTS_ANNUALIZE_RANDOMRUNS_H
#define TESTS_ANNUALIZE_RANDOMRUNS_H

#include <random>
#include <vector>

#include <QByteArray>
#include <QByteArrayList>
#include <QtGlobal>

// Random conversions in which the runs of a file don't match, the same one for the same seed: runs
// of other timing or without a complete year, with fewer, more or other slots than the first, more
// or fewer of them than announced; rules for some of the slots, or a control file that can't be
// read. The timesteps are few, so that a conversion takes no time. For conversions that succeed see
// randomcase.h.
struct RandomRuns
{
    explicit RandomRuns(quint32 seed);

    enum class Control { File, Missing, Folder, Unreadable };

    QByteArray fileText;
    Control control = Control::File;
    QByteArray controlText; // of a file
    int endMonth = 12;

private:
    struct Slot
    {
        QByteArray name;
        QByteArray kind;
    };

    int below(qint64 limit) { return static_cast<int>(m_random() % static_cast<quint32>(limit)); }
    bool oneIn(int chances) { return below(chances) == 0; }
    QByteArray pick(const QByteArrayList& texts) { return texts.at(below(texts.size())); }

    void addControl();
    void addRun(int timing, const std::vector<Slot>& slotList);
    void addSlot(const Slot& slot, int steps);
    Slot randomSlot();
    std::vector<Slot> varied(std::vector<Slot> slotList);

    std::mt19937 m_random; // whose numbers are the same everywhere
};

#endif // TESTS_ANNUALIZE_RANDOMRUNS_H
