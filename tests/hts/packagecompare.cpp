#include "tests/hts/packagecompare.h"

#include <cstddef>

namespace {

// Collects the first difference of a comparison.
class Comparison
{
public:
    void compare(const QString& what, const QString& left, const QString& right)
    {
        if (m_difference.isEmpty() && left != right)
            m_difference = QStringLiteral("%1: \"%2\" \"%3\"").arg(what, left, right);
    }

    void compare(const QString& what, qint64 left, qint64 right)
    {
        if (left != right)
            compare(what, QString::number(left), QString::number(right));
    }

    void compare(const QString& what, const QDateTime& left, const QDateTime& right)
    {
        compare(what, described(left), described(right));
    }

    void compare(const QString& what, const QStringList& left, const QStringList& right)
    {
        if (left == right)
            return;
        compare(what + QStringLiteral(".size"), left.size(), right.size());
        for (int i = 0; i < left.size() && i < right.size(); ++i)
            compare(item(what, i), left.at(i), right.at(i));
    }

    template<typename Numbers>
    void compareNumbers(const QString& what, const Numbers& left, const Numbers& right)
    {
        compare(what + QStringLiteral(".size"), static_cast<qint64>(left.size()),
                static_cast<qint64>(right.size()));
        auto other = right.begin();
        int index = 0;
        for (auto number = left.begin(); number != left.end() && other != right.end();
             ++number, ++other, ++index) {
            if (bitsOf(*number) != bitsOf(*other))
                compare(item(what, index), described(*number), described(*other));
        }
    }

    void compare(const QString& what, const HtsRun& left, const HtsRun& right)
    {
        compare(what + QStringLiteral(".complete"), left.complete, right.complete);
        compare(what + QStringLiteral(".trace"), left.trace, right.trace);
        compare(what + QStringLiteral(".start"), left.start, right.start);
        compare(what + QStringLiteral(".end"), left.end, right.end);
        compare(what + QStringLiteral(".timeStepUnit"), left.timeStepUnit, right.timeStepUnit);
        compare(what + QStringLiteral(".unitQuantity"), left.unitQuantity, right.unitQuantity);
        compare(what + QStringLiteral(".timeStepCount"), left.timeStepCount, right.timeStepCount);
        compare(what + QStringLiteral(".consecutive"), left.consecutive, right.consecutive);
        compare(what + QStringLiteral(".slotSet"), left.slotSet, right.slotSet);
        compare(what + QStringLiteral(".ruleSet"), left.ruleSet, right.ruleSet);
        compare(what + QStringLiteral(".idxSequential"), left.idxSequential, right.idxSequential);
        compare(what + QStringLiteral(".timesteps"), left.timesteps, right.timesteps);
    }

    void compare(const QString& what, const HtsSlot& left, const HtsSlot& right)
    {
        compare(what + QStringLiteral(".preambleRead"), left.preambleRead, right.preambleRead);
        compare(what + QStringLiteral(".objectType"), left.objectType, right.objectType);
        compare(what + QStringLiteral(".objectName"), left.objectName, right.objectName);
        compare(what + QStringLiteral(".slotType"), left.slotType, right.slotType);
        compare(what + QStringLiteral(".slotName"), left.slotName, right.slotName);
        compare(what + QStringLiteral(".rows"), left.rows, right.rows);
        compare(what + QStringLiteral(".cols"), left.cols, right.cols);
        compare(what + QStringLiteral(".tableRows"), left.tableRows, right.tableRows);
        compare(what + QStringLiteral(".units"), left.units, right.units);
        compareNumbers(what + QStringLiteral(".scales"), left.scales, right.scales);
        compare(what + QStringLiteral(".methods"), left.methods, right.methods);
    }

    void compare(const HtsPackage& left, const HtsPackage& right)
    {
        compare(QStringLiteral("preambleRead"), left.preambleRead, right.preambleRead);
        compare(QStringLiteral("name"), left.name, right.name);
        compare(QStringLiteral("owner"), left.owner, right.owner);
        compare(QStringLiteral("description"), left.description, right.description);
        compare(QStringLiteral("createDate"), left.createDate, right.createDate);
        compare(QStringLiteral("numberOfRuns"), left.numberOfRuns, right.numberOfRuns);
        compare(QStringLiteral("runs.size"), left.runs.size(), right.runs.size());
        for (int r = 0; r < left.runs.size() && r < right.runs.size(); ++r)
            compare(item(QStringLiteral("runs"), r), left.runs.at(r), right.runs.at(r));
        compare(QStringLiteral("slots.size"), left.slots.size(), right.slots.size());
        for (int s = 0; s < left.slots.size() && s < right.slots.size(); ++s)
            compare(item(QStringLiteral("slots"), s), left.slots.at(s), right.slots.at(s));
        compareValues(QStringLiteral("values"), left.values, right.values);
    }

    QString result() const { return m_difference; }

private:
    static QString item(const QString& what, int index)
    {
        return QStringLiteral("%1[%2]").arg(what).arg(index);
    }

    static QString described(double number)
    {
        return QStringLiteral("%1 (%2)").arg(number, 0, 'g', 17).arg(bitsOf(number), 16, 16);
    }

    static QString described(const QDateTime& dateTime)
    {
        if (!dateTime.isValid())
            return dateTime.isNull() ? QStringLiteral("null") : QStringLiteral("invalid");
        return QStringLiteral("%1 ms, time spec %2")
            .arg(dateTime.toMSecsSinceEpoch())
            .arg(static_cast<int>(dateTime.timeSpec()));
    }

    void compareValues(const QString& what, const HtsColumn& left, const HtsColumn& right)
    {
        compareNumbers(what, left, right);
    }

    template<typename Element>
    void compareValues(const QString& what, const std::vector<Element>& left,
                       const std::vector<Element>& right)
    {
        compare(what + QStringLiteral(".size"), static_cast<qint64>(left.size()),
                static_cast<qint64>(right.size()));
        for (std::size_t i = 0; i < left.size() && i < right.size(); ++i)
            compareValues(item(what, static_cast<int>(i)), left[i], right[i]);
    }

    QString m_difference;
};

template<typename Model>
QString modelDifference(const QString& what, const Model& left, const Model& right)
{
    Comparison comparison;
    comparison.compare(what, left, right);
    return comparison.result();
}

} // namespace

QString difference(const HtsRun& left, const HtsRun& right)
{
    return modelDifference(QStringLiteral("run"), left, right);
}

QString difference(const HtsSlot& left, const HtsSlot& right)
{
    return modelDifference(QStringLiteral("slot"), left, right);
}

QString difference(const HtsPackage& left, const HtsPackage& right)
{
    Comparison comparison;
    comparison.compare(left, right);
    return comparison.result();
}
