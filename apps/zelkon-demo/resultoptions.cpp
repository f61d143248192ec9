#include "resultoptions.h"

#include <zelkon/smallcontrols/boxcombo.h>
#include <zelkon/smallcontrols/combolistbox.h>
#include <zelkon/smallcontrols/elapsedbut.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

enum SortColumn { ByDate = 1, ByCustomer, ByTotal };

QVariant inputArray(const QStringList &texts, const QVariantList &ids)
{
    QVariantList t;
    for (const QString &text : texts)
        t << text;
    return QVariantList{t, ids};
}

} // namespace

ResultOptions::ResultOptions(QWidget *parent)
    : QWidget(parent)
    , m_sortBy(new zelkon::ComboListBox(this))
    , m_filterName(new zelkon::BoxCombo(this))
{
    m_sortBy->setObjectName(QStringLiteral("cboSortBy"));
    m_sortBy->setAccessibleName(tr("Sort by"));
    m_sortBy->setInputArray(inputArray({tr("Date"), tr("Customer"), tr("Total, largest first")},
                                       {ByDate, ByCustomer, ByTotal}));
    m_sortBy->setValueID(ByDate);
    connect(m_sortBy, &zelkon::ComboListBox::Change, this, &ResultOptions::sortChanged);

    // A new name typed and confirmed with Enter joins the list.
    m_filterName->setObjectName(QStringLiteral("cboFilterName"));
    m_filterName->setAccessibleName(tr("Saved filter"));
    m_filterName->setInputArray(inputArray({tr("Last year"), tr("Large orders")}, {1, 2}));
    m_filterName->setAllowAddNew(true);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(tr("Sort by:"), this));
    layout->addWidget(m_sortBy);
    layout->addWidget(new QLabel(tr("Saved filter:"), this));
    layout->addWidget(m_filterName);
}

QString ResultOptions::orderBy() const
{
    switch (m_sortBy->ValueID()) {
    case ByCustomer:
        return QStringLiteral("c.name, o.order_date, o.id");
    case ByTotal:
        return QStringLiteral("o.total DESC, o.id");
    default:
        return QStringLiteral("o.order_date, o.id");
    }
}

QString ResultOptions::filterName() const
{
    return m_filterName->Value().trimmed();
}

QWidget *ResultOptions::foldingPanel(QWidget *content, const QString &title)
{
    auto *panel = new QWidget;
    auto *layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *header = new zelkon::ElapsedBut(panel);
    header->setObjectName(QStringLiteral("FilterHeader"));
    header->setTitul(title);
    // The button shows a triangle pointing down for an open panel, right for a folded one; Inv
    // holds whether the panel is folded away.
    auto *button = header->findChild<QPushButton *>(QStringLiteral("btnEllaps"));
    button->setText(QChar(0x25BE));
    QObject::connect(header, &zelkon::ElapsedBut::Click, content, [header, content, button] {
        header->setInv(!header->Inv());
        content->setVisible(!header->Inv());
        button->setText(QChar(header->Inv() ? 0x25B8 : 0x25BE));
    });
    layout->addWidget(header);
    layout->addWidget(content, 1);
    return panel;
}
