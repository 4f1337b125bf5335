#ifndef GUI_CONTENTWIDTHS_H
#define GUI_CONTENTWIDTHS_H

#include <memory>

#include <QVector>

class QTreeWidget;

namespace UtilsNS {

class TextWidthBounds;

// How wide the columns of a tree must be to show the texts of all its rows uncut. Made for rows
// that are appended in large numbers.
//
// The width is computed by the tree's delegate, which takes about 10 us for each row. Rows are only
// measured when an upper bound of their text, which costs a hundredth of that, exceeds the widest
// text so far: few rows of a long list.
//
// QHeaderView::resizeSections() is no substitute: it looks at 1,000 rows around the visible ones,
// always leaves out the last row of a longer list, and measures all those rows again for each new
// row.
//
// For a tree without children and decoration, in a font with separate glyphs (see
// separateGlyphs()). Only for the tree's thread.
class ContentWidths
{
public:
    // `tree` has all its columns, is not owned and outlives this object.
    explicit ContentWidths(const QTreeWidget* tree);
    ~ContentWidths();

    // Forgets all rows; call it when the tree was cleared, or its font or style has changed.
    void clear();
    // Measures the rows that were appended since the last call.
    void update();
    // In pixels; 0 without rows. The header is not considered.
    int width(int column) const { return m_columns.at(column).width; }

private:
    struct Column
    {
        int width = 0;
        qreal textWidth = 0; // of the widest measured text of one line
    };

    void measure(int row, int column);

    const QTreeWidget* m_tree;
    int m_rowCount = 0; // rows measured so far
    QVector<Column> m_columns;
    std::unique_ptr<TextWidthBounds> m_bounds; // in the tree's font; null until they are needed
};

} // namespace UtilsNS

#endif // GUI_CONTENTWIDTHS_H
