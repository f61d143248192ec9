#include "columnchooser.h"

#include <zelkon/common/memorypropertybag.h>
#include <zelkon/dropdown/down.h>
#include <zelkon/dropdown/lbvalue.h>

#include <QAbstractItemModel>
#include <QMenuBar>
#include <QTableView>

ColumnChooser::ColumnChooser(QMenuBar *bar, QTableView *table)
    // A child of the bar made before the Down: it goes, and frees the Down, before the Down goes.
    : QObject(bar)
    , m_table(table)
    , m_down(new zelkon::Down(bar))
{
    m_down->setObjectName(QStringLiteral("dnColumns"));
    m_down->setToolTip(tr("Columns of the result table"));
    // The menu bar starts at the window's corner, so the pop-up opens right under the control.
    bar->setCornerWidget(m_down, Qt::TopRightCorner);
    zelkon::MemoryPropertyBag saved; // run mode: hooks the combo box, shows CaptionNothing
    m_down->ReadProperties(saved);
    m_down->setCaptionNothing(tr("No columns"));
    m_down->setCaptionGroup(tr("Columns"));
    const QAbstractItemModel *model = table->model();
    for (int column = 0; column < model->columnCount(); ++column) {
        const QString name = model->headerData(column, Qt::Horizontal).toString();
        m_down->AddItem(name, name, column, true);
    }
    connect(m_down, &zelkon::Down::OnItemCheck, this,
            [this](qint16 &, zelkon::LBValue *&item) { itemChecked(item); });
    // A new query resets the header, and with it the hidden columns.
    connect(model, &QAbstractItemModel::modelReset, this, &ColumnChooser::apply);
}

ColumnChooser::~ColumnChooser()
{
    m_down->Free();
}

void ColumnChooser::itemChecked(zelkon::LBValue *item)
{
    // The count is that of before this toggle: unchecking the one shown column is refused.
    if (!item->Checked() && m_down->CheckedCount() <= 1)
        item->setChecked(true);
    apply();
}

void ColumnChooser::apply()
{
    if (!m_table)
        return;
    for (qint32 position = 1; position <= m_down->ListCount(); ++position) {
        const zelkon::LBValue *item = m_down->ListItem(position);
        m_table->setColumnHidden(item->Value().toInt(), !item->Checked());
    }
}
