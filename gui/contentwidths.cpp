#include "gui/contentwidths.h"

#include <algorithm>
#include <array>
#include <numeric>

#include <QFontMetrics>
#include <QTreeWidget>

namespace UtilsNS {

namespace {

// A measured row takes some 10 us, an estimated one less than a tenth of that.
constexpr int kMaxMeasuredRows = 30;

// Adds up the advances of single characters. That passes over kerning, so it ranks rows and does
// not measure them.
class WidthEstimate
{
public:
    explicit WidthEstimate(const QFont& font)
    {
        const QFontMetrics metrics(font);
        for (std::size_t i = 0; i < m_latin1Advances.size(); ++i)
            m_latin1Advances[i] = metrics.horizontalAdvance(QChar(static_cast<ushort>(i)));
        m_otherAdvance = metrics.height();
    }

    int width(const QString& text) const
    {
        int width = 0;
        for (const QChar c : text) {
            const bool isLatin1 = c.unicode() < m_latin1Advances.size();
            width += isLatin1 ? m_latin1Advances[c.unicode()] : m_otherAdvance;
        }
        return width;
    }

private:
    std::array<int, 256> m_latin1Advances;
    int m_otherAdvance;
};

} // namespace

ContentWidths::ContentWidths(const QTreeWidget* tree) : m_tree(tree), m_widths(tree->columnCount())
{
}

void ContentWidths::clear()
{
    m_rowCount = 0;
    m_widths.fill(0);
}

void ContentWidths::update()
{
    for (int column = 0; column < m_widths.size(); ++column) {
        const QVector<int> rows = rowsToMeasure(column);
        for (const int row : rows) {
            const QSize size = m_tree->sizeHintForIndex(m_tree->model()->index(row, column));
            m_widths[column] = qMax(m_widths.at(column), size.width());
        }
    }
    m_rowCount = m_tree->topLevelItemCount();
}

// All new rows when they are few, else those that look widest.
QVector<int> ContentWidths::rowsToMeasure(int column) const
{
    QVector<int> rows(m_tree->topLevelItemCount() - m_rowCount);
    std::iota(rows.begin(), rows.end(), m_rowCount);
    if (rows.size() <= kMaxMeasuredRows)
        return rows;

    const WidthEstimate estimate(m_tree->font());
    QVector<int> widths(rows.size());
    std::transform(rows.cbegin(), rows.cend(), widths.begin(), [&](int row) {
        return estimate.width(m_tree->topLevelItem(row)->text(column));
    });
    std::nth_element(rows.begin(), rows.begin() + kMaxMeasuredRows, rows.end(),
                     [&widths, first = m_rowCount](int row, int otherRow) {
                         return widths.at(row - first) > widths.at(otherRow - first);
                     });
    rows.resize(kMaxMeasuredRows);
    return rows;
}

} // namespace UtilsNS
