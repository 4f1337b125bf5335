// Any bytes as a method control file, against a plain reading of its rules: the same message, or
// the same method for every slot.

#include <algorithm>
#include <cctype>

#include <QBuffer>
#include <QVector>

#include "QsLog.h"
#include "annualize/annualizehts.h"
#include "annualize/methodcontrol.h"
#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"

namespace {

const char* const kWords[] = {"Sum",    "SumNaN",   "Average", "AverageNaN", "Max",
                              "MaxNaN", "Min",      "MinNaN",  "End",        "EndNaN",
                              "Begin",  "BeginNaN", "Salinity"};

struct Rule
{
    QString object;
    QString slot;
    QString word;
};

// What a control file says: its rules, or the message for its first bad line.
struct Rules
{
    QVector<Rule> list;
    QString message;
};

QString trimmed(const QString& text)
{
    const auto isSpace = [](QChar c) {
        return c.unicode() < 128 && std::isspace(c.unicode()) != 0;
    };
    int first = 0;
    int last = static_cast<int>(text.size());
    while (first < last && isSpace(text.at(first)))
        ++first;
    while (last > first && isSpace(text.at(last - 1)))
        --last;
    return text.mid(first, last - first);
}

QString canonicalWord(const QString& given)
{
    for (const char* word : kWords) {
        if (QString::fromLatin1(word).toLower() == given.toLower())
            return QString::fromLatin1(word);
    }
    return {};
}

// Appends the rule that `line` is and returns an empty text, or returns what is wrong with it.
QString takeRule(const QString& line, QVector<Rule>& rules)
{
    const auto colon = line.lastIndexOf(QLatin1Char(':'));
    if (colon < 0)
        return QStringLiteral("Colon not found");
    const QString given = trimmed(line.mid(colon + 1));
    if (given.isEmpty())
        return QStringLiteral("Method is blank");
    const QString word = canonicalWord(given);
    if (word.isEmpty())
        return QStringLiteral("Unknown method specified");
    const auto dot = line.indexOf(QLatin1Char('.'));
    if (dot < 0)
        return QStringLiteral("Dot separator not found");
    const QString slot = trimmed(line.mid(dot + 1, colon - dot - 1));
    if (slot.isEmpty())
        return QStringLiteral("Slot name is blank");
    const QString object = trimmed(line.left(dot));
    if (object.isEmpty())
        return QStringLiteral("Object name is blank");
    rules.append({object, slot, word});
    return {};
}

Rules rulesOf(const QByteArray& text)
{
    Rules rules;
    const QList<QByteArray> lines = text.split('\n');
    for (const QByteArray& bytes : lines) {
        const QString line = trimmed(QString::fromUtf8(bytes.trimmed().constData()));
        if (line.isEmpty())
            continue;
        const QString fault = takeRule(line, rules.list);
        if (!fault.isEmpty()) {
            rules.message =
                QStringLiteral("Method Control File Error: %1 in line \n\"").arg(fault) + line +
                QLatin1Char('"');
            break;
        }
    }
    return rules;
}

HtsSlot makeSlot(const QString& type, const QString& object, const QString& slot)
{
    HtsSlot result;
    result.objectType = type;
    result.objectName = object;
    result.slotName = slot;
    return result;
}

// Slots that rules of the file match, in all the ways in which a rule can match, and some that few
// rules match.
QVector<HtsSlot> slotsFor(const QVector<Rule>& rules)
{
    QVector<HtsSlot> result = {
        makeSlot(QStringLiteral("Reservoir"), QStringLiteral("Lake A"), QStringLiteral("Outflow")),
        makeSlot(QStringLiteral("Reach"), QStringLiteral("Lake A"), QStringLiteral("Outflow.Max")),
        makeSlot(QString(), QString(), QString()),
        makeSlot(QStringLiteral("*"), QStringLiteral("*"), QStringLiteral("*"))};
    for (int i = 0; i < std::min<qint64>(rules.size(), 12); ++i) {
        const Rule& rule = rules.at(i);
        const Rule& next = rules.at((i + 1) % rules.size());
        result.append(makeSlot(QStringLiteral("Reservoir"), rule.object, rule.slot));
        result.append(makeSlot(rule.object, next.object, rule.slot));
        result.append(makeSlot(next.object, rule.object, next.slot));
        result.append(makeSlot(rule.slot, rule.object + QLatin1Char('.') + rule.slot, next.slot));
    }
    return result;
}

QString methodFor(const HtsSlot& slot, const QVector<Rule>& rules)
{
    const QString any = QStringLiteral("*");
    for (const Rule& rule : rules) {
        const bool fitsObject =
            rule.object == slot.objectName || rule.object == slot.objectType || rule.object == any;
        const bool fitsSlot = rule.slot == slot.slotName || rule.slot == any;
        if (fitsObject && fitsSlot)
            return rule.word;
    }
    return {};
}

void checkMethods(const Rules& rules, const QVector<HtsSlot>& slots, const QStringList& methods)
{
    fuzz::require(methods.size() == slots.size(),
                  QStringLiteral("%1 methods for %2 slots")
                      .arg(QString::number(methods.size()), QString::number(slots.size())));
    for (int i = 0; i < slots.size(); ++i) {
        const QString name = slots.at(i).objectName + QLatin1Char('.') + slots.at(i).slotName;
        fuzz::requireEqual(QStringLiteral("method of ") + name, methods.at(i),
                           methodFor(slots.at(i), rules.list));
    }
}

// The rules as read from another device than a file.
void checkBinary(const QByteArray& input, const Rules& rules, const QVector<HtsSlot>& slots)
{
    QBuffer device;
    device.setData(input);
    fuzz::require(device.open(QIODevice::ReadOnly), QStringLiteral("cannot open the buffer"));
    MethodControl control;
    fuzz::requireEqual(QStringLiteral("message in binary mode"), control.read(device).message,
                       rules.message);
    if (!rules.message.isEmpty())
        return;
    QStringList methods;
    for (const HtsSlot& slot : slots)
        methods.append(control.methodFor(slot));
    checkMethods(rules, slots, methods);
}

} // namespace

FUZZ_TARGET(control)
{
    static const fuzz::ScratchFile kFile;
    QsLogging::Logger::instance().setLoggingLevel(QsLogging::OffLevel);
    kFile.write(input);
    const Rules rules = rulesOf(input);
    const QVector<HtsSlot> slots = slotsFor(rules.list);

    AnnualizeHts engine;
    fuzz::require(engine.setControlFile(kFile.path()).ok(), QStringLiteral("path is refused"));
    const QStringList before{QStringLiteral("before")};
    QStringList methods = before;
    const Status status = engine.assignMethods(slots, methods);
    fuzz::requireEqual(QStringLiteral("message"), status.message, rules.message);
    fuzz::require(!status.flag, QStringLiteral("the flag is set"));
    if (status.ok())
        checkMethods(rules, slots, methods);
    else
        fuzz::require(methods == before, QStringLiteral("a failure has changed the methods"));
    checkBinary(input, rules, slots);
}
