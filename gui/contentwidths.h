#ifndef GUI_CONTENTWIDTHS_H
#define GUI_CONTENTWIDTHS_H

#include <QBitArray>
#include <QVector>

class QTreeWidget;

namespace UtilsNS {

// How wide the columns of a tree must be to show its rows uncut. Widths only grow.
//
// The tree's delegate takes about 10 us for the width of a row, twenty times as long as adding it.
// So not every row of a long list is measured: only those that are longer than all before them, the
// last of those that came together, and the others when they come into view.
//
// QHeaderView::resizeSections() is no substitute: it looks at 1,000 rows around the visible ones,
// and measures all of them again for each new row.
//
// For a tree without children and decoration. Only for the tree's thread.
class ContentWidths
{
public:
    // `tree` has all its columns, is not owned and outlives this object.
    explicit ContentWidths(const QTreeWidget* tree);

    // Forgets all rows; call it when the tree was cleared, or its font or style has changed.
    void clear();
    // For the rows that were appended since the last call.
    void addNewRows();
    // Returns whether a column became wider.
    bool addRowsInView();
    // In pixels; 0 without rows. The header is not considered.
    int width(int column) const { return m_widths.at(column); }

private:
    static constexpr int kMaxNewRows = 200; // to be measured at once: some views, in 2 ms

    bool isLongest(int row);
    void measure(int row);

    const QTreeWidget* m_tree;
    int m_rowCount = 0; // that were new once
    QBitArray m_isMeasured;
    QVector<int> m_widths;
    QVector<int> m_lengths; // of the longest text of each column, in characters
};

} // namespace UtilsNS

#endif // GUI_CONTENTWIDTHS_H
