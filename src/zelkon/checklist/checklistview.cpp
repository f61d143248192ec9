#include <zelkon/checklist/checklistview_p.h>

#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionViewItem>

namespace zelkon {

CheckListView::CheckListView(int index, QWidget *parent)
    : QListView(parent)
{
    setObjectName(QStringLiteral("List"));
    setProperty("Index", index);
    // Every row has the same height; without this the view measures each of up to 32767 rows.
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
}

int CheckListView::rowHeight() const
{
    if (model() && model()->rowCount() > 0) {
        const int height = sizeHintForRow(0);
        if (height > 0)
            return height;
    }
    // An empty list measures a check-box row of its own font the way its delegate would.
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.features |= QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    option.checkState = Qt::Unchecked;
    option.text = QStringLiteral("Xg");
    return style()->sizeFromContents(QStyle::CT_ItemViewItem, &option, QSize(), this).height();
}

int CheckListView::topRow() const
{
    const QModelIndex top = indexAt(QPoint(1, 1));
    return top.isValid() ? top.row() : 0;
}

void CheckListView::setTopRow(int row)
{
    if (row == 0) {
        // The first row at the top is both scroll bars at their start; asking the view to
        // scroll to it would lay out every row of a freshly filled list at once.
        verticalScrollBar()->setValue(0);
        horizontalScrollBar()->setValue(0);
        return;
    }
    const QModelIndex index = model() ? model()->index(row, 0) : QModelIndex();
    if (index.isValid())
        scrollTo(index, QAbstractItemView::PositionAtTop);
}

} // namespace zelkon
