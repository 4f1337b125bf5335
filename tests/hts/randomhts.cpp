#include "tests/hts/randomhts.h"

#include <algorithm>

namespace {

const QByteArrayList kWords = QByteArray("|Lake A|  leading blanks|a:b|\xc3\x84"
                                         "bfluss \xe2\x82\xac|END_RUN_|\xf0\x9f\x8c\x8a|"
                                         "bad \xff\xfe bytes|1|SeriesSlot|tab\tinside")
                                  .split('|');

const QByteArrayList kOddNumbers =
    QByteArray("|NaN|nan|NAN|inf|-inf|+inf|infinity|1.|.5|1.e5|1E+5|+1|.|1e|e5|+-1|--1|1 2|1,234|"
               "0x10|1d5|1f|+nan|-nan|1e400|1.8e308|4.9e-324|1e-310|1e-400|-0|-0.0|-|+|abc|NaN1|"
               "nan(1)|END_COLUMN|1e22|\xc2\xa0"
               "1|\xd9\xa1|1\xc2\xa0|0x|1e+|-.5|-.|1..2|1e5.5|00012|"
               "1_0|\xef\xbb\xbf"
               "1|123456789012345678901234567890|9007199254740993|"
               "2.2250738585072011e-308|1.7976931348623159e308|0.1e-1000000|1e99999999999")
        .split('|');

// Parts of lines, which are inserted anywhere to break a file.
const QByteArrayList kDictionary =
    QByteArray("name:|number_of_runs:|number_of_runs:3|END_PACKAGE_PREAMBLE|start:|time_steps:|"
               "time_steps:2|timesteps:1|time_steps:-1|END_RUN_PREAMBLE|object_type: |slot_type: |"
               "slot_type: TableSlot|slot_type: ScalarSlot|slot_type: SeriesSlot|rows: |rows: 2|"
               "cols: 3|END_SLOT_PREAMBLE|units: |scale: |scale: 1e|method: |mean|END_COLUMN|"
               "END_SLOT|END_RUN|END_RUN |END_RUN\t|NaN|2000-1-31 24:00|\n|\r\n|\r|\n\n|\t| |:|0|-|"
               "\xef\xbb\xbf|\xc2\xa0|\xff|1e5|.|\v|\f")
        .split('|');

} // namespace

RandomHts::RandomHts(quint32 seed) : m_random(seed) {}

QByteArray RandomHts::pick(const QByteArrayList& texts)
{
    return texts.at(below(texts.size()));
}

QByteArray RandomHts::plainNumber()
{
    QByteArray text = oneIn(3) ? "-" : "";
    text += QByteArray::number(below(oneIn(4) ? 1000000000 : 1000));
    if (!oneIn(5)) {
        text += '.';
        const int digits = oneIn(3) ? below(20) : 12;
        for (int i = 0; i < digits; ++i)
            text += static_cast<char>('0' + below(10));
    }
    if (oneIn(12))
        text += 'e' + QByteArray::number(below(640) - 320);
    return text;
}

QByteArray RandomHts::numberText()
{
    QByteArray text = oneIn(6) ? pick(kOddNumbers) : plainNumber();
    while (oneIn(4)) {
        const int position = below(text.size() + 1);
        static const char kBytes[] = "0123456789+-.eEnaif x \t\0\xa0\xc2_,";
        const char byte = kBytes[below(sizeof kBytes - 1)];
        if (oneIn(2) || position == text.size())
            text.insert(position, byte);
        else if (oneIn(2))
            text.remove(position, 1);
        else
            text[position] = byte;
    }
    return text;
}

QByteArray RandomHts::dateTimeText()
{
    return QByteArray::number(1900 + below(200)) + '-' + QByteArray::number(1 + below(12)) + '-' +
           QByteArray::number(1 + below(31)) + ' ' + QByteArray::number(below(25)) +
           (oneIn(5) ? ":59" : ":00");
}

void RandomHts::addLine(const QByteArray& text)
{
    if (oneIn(40))
        m_text += ' ';
    m_text += text;
    if (oneIn(40))
        m_text += "\t ";
    m_text += m_lineEnd;
}

void RandomHts::addKeywordLines(QByteArrayList lines)
{
    std::shuffle(lines.begin(), lines.end(), m_random);
    for (const QByteArray& line : qAsConst(lines)) {
        if (!oneIn(12))
            addLine(line);
        if (oneIn(20))
            addLine(pick({"comment", "object_type:Reservoir", "Name:x", "END_RUN", "END_SLOT"}));
    }
}

QByteArray RandomHts::file(int steps)
{
    m_text.clear();
    m_lineEnd = oneIn(2) ? "\n" : "\r\n";
    const int runs = below(4);
    addKeywordLines({"name:" + pick(kWords), "owner:" + pick(kWords), "description:" + pick(kWords),
                     "create_date:" + dateTimeText()});
    addLine("number_of_runs:" + QByteArray::number(runs));
    addLine("END_PACKAGE_PREAMBLE");

    QByteArrayList slotKinds;
    for (int slot = below(5); slot > 0; --slot)
        slotKinds.append(pick(
            {"SeriesSlot", "SeriesSlot", "", "ScalarSlot", "Other", "TableSlot", "rows first"}));
    for (int run = 0; run < runs; ++run) {
        addRun(slotKinds, steps);
        if (oneIn(4))
            std::shuffle(slotKinds.begin(), slotKinds.end(), m_random);
    }
    if (oneIn(6))
        addLine("after the last run");
    if (oneIn(4))
        m_text.chop(m_lineEnd.size());
    return m_text;
}

void RandomHts::addRun(const QByteArrayList& slotKinds, int steps)
{
    const int count = below(steps + 1);
    addKeywordLines({"trace:" + QByteArray::number(below(5) - 1), "start:" + dateTimeText(),
                     "end:" + dateTimeText(), "time_step_unit:" + pick({"month", "week", "day"}),
                     "unit_quantity:" + pick({"1", " 2 ", "+3", "4.0", "x"}), "consecutive:1",
                     "slot_set:" + pick(kWords), "rule_set:" + pick(kWords),
                     "idx_sequential:" + QByteArray::number(below(9))});
    if (oneIn(8))
        addLine("time_steps:7");
    addLine(pick({"time_steps:", "timesteps:"}) +
            QByteArray::number(count == 0 ? -below(2) : count));
    addLine("END_RUN_PREAMBLE");
    for (int step = 0; step < count; ++step)
        addLine(dateTimeText());
    for (const QByteArray& kind : slotKinds)
        addSlot(kind, count);
    m_text += "END_RUN" + m_lineEnd;
}

void RandomHts::addSlot(const QByteArray& kind, int steps)
{
    addKeywordLines({"object_type: " + pick(kWords), "object_name: " + pick(kWords),
                     "slot_name: " + pick(kWords)});
    if (kind == "TableSlot" || kind == "rows first") {
        if (kind == "TableSlot")
            addLine("slot_type: TableSlot");
        addTable();
        return;
    }
    if (!kind.isEmpty())
        addLine("slot_type: " + kind);
    addLine("END_SLOT_PREAMBLE");
    addColumn(kind.isEmpty() || kind == "SeriesSlot" ? steps : 1);
    addLine(oneIn(10) ? "anything" : "END_SLOT");
}

void RandomHts::addTable()
{
    const int rows = below(4);
    addLine("rows: " + QByteArray::number(rows));
    addLine("cols: " + QByteArray::number(below(3)));
    addLine("END_SLOT_PREAMBLE");
    for (int row = 0; row < rows; ++row)
        addLine(pick(kWords));
    for (int line = below(3); line > 0; --line)
        addLine(pick({"units: x", "", "1.0", "END_COLUMN", "END_RUN"}));
    addLine("END_SLOT");
}

void RandomHts::addColumn(int rows)
{
    addLine("units: " + pick({"cms", "m", "x y"}));
    addLine("scale: " + pick({"1", "0.001", "1e-05", "NaN", "many", "-2.5"}));
    if (oneIn(2))
        m_text += pick({"method: Average", "mean: X", "m", "method: ", "method:  x"}) + m_lineEnd;
    const bool isTidy = oneIn(2);
    for (int row = 0; row < rows; ++row) {
        QByteArray number = isTidy ? plainNumber() : numberText();
        // A line that begins with m would be taken for a method line, and a line end is none here.
        number.replace('\n', ' ').replace('\r', ' ');
        addLine(number);
    }
    addLine(oneIn(10) ? "anything" : "END_COLUMN");
}

QByteArray RandomHts::changedLines(const QByteArray& file)
{
    QByteArrayList lines = file.split('\n');
    const int line = below(lines.size());
    switch (below(3)) {
    case 0:
        lines.removeAt(line);
        break;
    case 1:
        lines.insert(below(lines.size()), lines.at(line));
        break;
    default:
        lines.swapItemsAt(line, below(lines.size()));
    }
    return lines.join('\n');
}

QByteArray RandomHts::broken(const QByteArray& file)
{
    QByteArray text = file;
    for (int change = 1 + below(4); change > 0; --change) {
        const int position = below(text.size() + 1);
        switch (below(8)) {
        case 0:
            text.truncate(position);
            break;
        case 1:
            text.remove(position, 1 + below(20));
            break;
        case 2:
        case 3:
            if (position < text.size())
                text[position] =
                    static_cast<char>(oneIn(2) ? text.at(position) ^ (1 << below(8)) : below(256));
            break;
        case 4:
        case 5:
            text.insert(position, pick(kDictionary));
            break;
        default:
            text = changedLines(text);
        }
    }
    return text;
}

QByteArray withoutLoneCarriageReturns(const QByteArray& text)
{
    QByteArray result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const bool isLone = text.at(i) == '\r' && (i + 1 == text.size() || text.at(i + 1) != '\n');
        if (!isLone)
            result += text.at(i);
    }
    return result;
}
