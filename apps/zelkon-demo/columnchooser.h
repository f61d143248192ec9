// ColumnChooser: a Down in the corner of the menu bar whose checks choose the columns of the
// result table; the last shown column cannot be unchecked.
#pragma once

#include <QObject>
#include <QPointer>

class QMenuBar;
class QTableView;
namespace zelkon {
class Down;
class LBValue;
} // namespace zelkon

class ColumnChooser : public QObject
{
    Q_OBJECT
public:
    // One item per column the table's model has now, all shown.
    ColumnChooser(QMenuBar *bar, QTableView *table);
    ~ColumnChooser() override;

private:
    void itemChecked(zelkon::LBValue *item);
    void apply();

    QPointer<QTableView> m_table;
    zelkon::Down *m_down;
};
