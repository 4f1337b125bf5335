#ifndef GUI_CONTENTWIDTHS_H
#define GUI_CONTENTWIDTHS_H

#include <memory>

#include <QVector>

class QTreeWidget;

namespace UtilsNS {

class TextWidthBounds;

// How wide the columns of a tree must be to show all of its rows whole, while rows are appended in
// large numbers.
//
// The width is that of the tree's delegate, which takes some 10 us for each row. Rows are only
// measured when an upper bound of their text, which costs a hundredth of that, exceeds the widest
// text so far: few rows of a long list.
//
// QHeaderView::resizeSections() does not do: it looks at 1,000 rows around the visible ones, always
// leaves out the last one of a longer list, and looks at all those rows again for each new row.
//
// For a tree without children and decoration, in a font with separate glyphs, and its thread alone.
class ContentWidths
{
public:
    // `tree` has its columns and outlives this object.
    explicit ContentWidths(const QTreeWidget* tree);
    ~ContentWidths();

    // Forgets all rows; call it when the tree was cleared, or its font or style has changed.
    void clear();
    // Takes in the rows that were appended since the last call.
    void update();
    // In pixels; 0 without rows. The header is not considered.
    int width(int column) const { return m_columns.at(column).width; }

private:
    struct Column
    {
        int width = 0;
        qreal textWidth = 0; // of the widest measured text of one line
    };

    void takeIn(int row, int column);

    const QTreeWidget* m_tree;
    int m_rowCount = 0; // of the rows taken in
    QVector<Column> m_columns;
    std::unique_ptr<TextWidthBounds> m_bounds; // in the tree's font; null until they are needed
};

} // namespace UtilsNS

#endif // GUI_CONTENTWIDTHS_H
