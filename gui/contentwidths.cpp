#include "gui/contentwidths.h"

#include <cmath>

#include <QFontMetricsF>
#include <QTreeWidget>

#include "gui/textwidthbounds.h"

namespace UtilsNS {

namespace {

// A layout leaves out blanks at the end of a line.
QString withoutBlanksAtEnd(QString text)
{
    while (!text.isEmpty() && text.back().isSpace())
        text.chop(1);
    return text;
}

} // namespace

ContentWidths::ContentWidths(const QTreeWidget* tree) : m_tree(tree), m_columns(tree->columnCount())
{
}

ContentWidths::~ContentWidths() = default;

void ContentWidths::clear()
{
    m_rowCount = 0;
    m_columns.fill(Column());
    m_bounds.reset();
}

void ContentWidths::update()
{
    if (m_bounds == nullptr)
        m_bounds = std::make_unique<TextWidthBounds>(m_tree->font());
    for (; m_rowCount < m_tree->topLevelItemCount(); ++m_rowCount) {
        for (int column = 0; column < m_columns.size(); ++column)
            measure(m_rowCount, column);
    }
}

void ContentWidths::measure(int row, int column)
{
    Column& widest = m_columns[column];
    const QString text = m_tree->topLevelItem(row)->text(column);
    // The delegate rounds up. An infinite bound says nothing about later texts.
    const qreal bound = std::ceil(m_bounds->bound(text));
    if (bound <= widest.textWidth)
        return;
    const QModelIndex index = m_tree->model()->index(row, column);
    widest.width = qMax(widest.width, m_tree->sizeHintForIndex(index).width());
    if (std::isfinite(bound)) {
        const QFontMetricsF metrics(m_tree->font());
        const qreal textWidth = std::ceil(metrics.horizontalAdvance(withoutBlanksAtEnd(text)));
        widest.textWidth = qMax(widest.textWidth, textWidth);
    }
}

} // namespace UtilsNS
