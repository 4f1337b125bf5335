#include "gui/contentwidths.h"

#include <QTreeWidget>

namespace UtilsNS {

ContentWidths::ContentWidths(const QTreeWidget* tree)
    : m_tree(tree), m_widths(tree->columnCount()), m_lengths(tree->columnCount())
{
}

void ContentWidths::clear()
{
    m_rowCount = 0;
    m_isMeasured.clear();
    m_widths.fill(0);
    m_lengths.fill(0);
}

void ContentWidths::addNewRows()
{
    const int rowCount = m_tree->topLevelItemCount();
    for (; m_rowCount < rowCount; ++m_rowCount) {
        if (isLongest(m_rowCount) || m_rowCount >= rowCount - kMaxNewRows)
            measure(m_rowCount);
    }
}

bool ContentWidths::addRowsInView()
{
    const QRect view = m_tree->viewport()->rect();
    // Where the columns start.
    const int x = m_tree->isRightToLeft() ? view.right() : view.left();
    const int first = m_tree->indexAt(QPoint(x, view.top())).row();
    if (first < 0)
        return false;
    const int last = m_tree->indexAt(QPoint(x, view.bottom())).row();
    const int end = last >= 0 ? last + 1 : m_tree->topLevelItemCount();
    const QVector<int> before = m_widths;
    for (int row = first; row < end; ++row)
        measure(row);
    return m_widths != before;
}

bool ContentWidths::isLongest(int row)
{
    bool isLongest = false;
    for (int column = 0; column < m_lengths.size(); ++column) {
        const auto length = static_cast<int>(m_tree->topLevelItem(row)->text(column).size());
        isLongest = isLongest || length > m_lengths.at(column);
        m_lengths[column] = qMax(m_lengths.at(column), length);
    }
    return isLongest;
}

void ContentWidths::measure(int row)
{
    if (m_isMeasured.size() <= row)
        m_isMeasured.resize(m_tree->topLevelItemCount());
    if (m_isMeasured.testBit(row))
        return;
    m_isMeasured.setBit(row);
    for (int column = 0; column < m_widths.size(); ++column) {
        const QModelIndex index = m_tree->model()->index(row, column);
        m_widths[column] = qMax(m_widths.at(column), m_tree->sizeHintForIndex(index).width());
    }
}

} // namespace UtilsNS
