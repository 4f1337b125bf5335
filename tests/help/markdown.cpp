#include "tests/help/markdown.h"

#include <QRegularExpression>

QByteArrayList codeBlocks(const QByteArray& markdown)
{
    const QByteArray indentation = "    ";
    QByteArrayList blocks;
    QByteArray block;
    for (const QByteArray& line : QByteArray(markdown + "\nend").split('\n')) {
        if (line.startsWith(indentation)) {
            block += line.mid(indentation.size()) + '\n';
        } else if (line.isEmpty()) {
            if (!block.isEmpty())
                block += '\n';
        } else if (!block.isEmpty()) {
            blocks.append(block.trimmed());
            block.clear();
        }
    }
    return blocks;
}

QByteArray asShown(const QByteArray& text)
{
    QByteArrayList lines = text.split('\n');
    for (QByteArray& line : lines) {
        while (line.endsWith(' ') || line.endsWith('\r'))
            line.chop(1);
    }
    return lines.join('\n').trimmed();
}

QVector<QByteArrayList> tableRows(const QByteArray& markdown, const QByteArray& header)
{
    QVector<QByteArrayList> rows;
    const QByteArrayList lines = markdown.split('\n');
    const int headerLine = lines.indexOf(header);
    for (int i = headerLine + 2; headerLine >= 0 && lines.value(i).startsWith('|'); ++i) {
        QByteArrayList cells = lines.at(i).split('|').mid(1);
        cells.removeLast();
        for (QByteArray& cell : cells)
            cell = cell.trimmed();
        rows.append(cells);
    }
    return rows;
}

QByteArray code(const QByteArray& cell)
{
    const bool isCode = cell.size() > 1 && cell.startsWith('`') && cell.endsWith('`');
    return isCode ? cell.mid(1, cell.size() - 2) : cell;
}

QStringList codes(const QByteArray& markdown)
{
    QStringList found;
    static const QRegularExpression code(QStringLiteral("`([^`\n]+)`"));
    for (auto match = code.globalMatch(QString::fromUtf8(markdown)); match.hasNext();)
        found.append(match.next().captured(1));
    return found;
}
