#ifndef GUI_CONTENTWIDTHS_H
#define GUI_CONTENTWIDTHS_H

#include <QVector>

class QTreeWidget;

namespace UtilsNS {

// How wide the columns of a tree must be to show all of its rows whole, while rows are appended in
// large numbers.
//
// QHeaderView::resizeSections() does not do: it looks at 1,000 rows around the visible ones, always
// leaves out the last one of a longer list, and looks at all those rows again for each new row.
//
// For a tree without children and decoration, and its thread alone.
class ContentWidths
{
public:
    // `tree` has its columns and outlives this object.
    explicit ContentWidths(const QTreeWidget* tree);

    // Forgets all rows; call it when the tree was cleared, or its font or style has changed.
    void clear();
    // Takes in the rows that were appended since the last call.
    void update();
    // In pixels; 0 without rows. The header is not considered.
    int width(int column) const { return m_widths.at(column); }

private:
    QVector<int> rowsToMeasure(int column) const;

    const QTreeWidget* m_tree;
    int m_rowCount = 0; // of the rows taken in
    QVector<int> m_widths;
};

} // namespace UtilsNS

#endif // GUI_CONTENTWIDTHS_H
