// zelkon::CheckListView: a view of check-list rows, one of the two "List" widgets of the popup.
#pragma once

#include <QListView>

namespace zelkon {

class CheckListView : public QListView
{
    Q_OBJECT

public:
    // Named "List" with its Index, as hosts find the two lists of the popup.
    CheckListView(int index, QWidget *parent = nullptr);

    // The height of one row as the style draws it, also while the list is empty.
    int rowHeight() const;
    // The row shown at the top (the scroll position).
    int topRow() const;
    void setTopRow(int row);
};

} // namespace zelkon
