#include "checkproperties.h"

#include <zelkon/common/conversions.h>
#include <zelkon/numedit/numedit.h>

#include <QCheckBox>
#include <QLineEdit>

namespace zelkon {

class checkPropertiesPrivate
{
public:
    QCheckBox *allSelect = nullptr;
    QCheckBox *inv = nullptr;
    QCheckBox *sorting = nullptr;
    QCheckBox *editEnabled = nullptr;
    QCheckBox *singleCheck = nullptr;
    NumEdit *delay = nullptr;
    NumEdit *maxLine = nullptr;
    QLineEdit *title = nullptr;
};

ZELKON_REGISTER_PROPERTY_PAGE(checkProperties);

checkProperties::checkProperties(QWidget *parent)
    : PropertyPage(parent)
    , d(std::make_unique<checkPropertiesPrivate>())
{
    d->allSelect = addCheckBox(QStringLiteral("chkAllSelect"), QStringLiteral("Enable Select All"));
    d->inv = addCheckBox(QStringLiteral("chkInv"), QStringLiteral("Enable Inverted"));
    d->sorting = addCheckBox(QStringLiteral("chkSorting"), QStringLiteral("Sort List"));
    d->editEnabled = addCheckBox(QStringLiteral("chkEditEnabled"), QStringLiteral("EditEnabled"));
    d->singleCheck
        = addCheckBox(QStringLiteral("chkSingleCheck"), QStringLiteral("Single Check Only"));
    const auto numberField
        = [this](const QString &name, const QString &labelName, const QString &label) {
              auto *field = new NumEdit(this);
              field->setDigNum(0); // both are counts: milliseconds and rows
              connect(field, &NumEdit::ChangeValue, this, [this] { fieldEdited(); });
              addField(field, name, labelName, label);
              return field;
          };
    d->delay = numberField(QStringLiteral("txtDelay"), QStringLiteral("lblDelay"),
                           QStringLiteral("Delay:"));
    d->maxLine = numberField(QStringLiteral("txtMaxLine"), QStringLiteral("lblMaxLine"),
                             QStringLiteral("Line Count:"));
    d->title = addTextBox(QStringLiteral("txtTitle"), QStringLiteral("lblTitle"),
                          QStringLiteral("Title:"));
}

checkProperties::~checkProperties() = default;

void checkProperties::SelectionChanged()
{
    showFlag(d->allSelect, readProperty("AllSelect"));
    showFlag(d->inv, readProperty("Inv"));
    showFlag(d->sorting, readProperty("Sorting"));
    showFlag(d->editEnabled, readProperty("EditEnabled"));
    showFlag(d->singleCheck, readProperty("SingleCheck"));
    d->delay->setValue(readProperty("Delay").toDouble());
    d->maxLine->setValue(readProperty("MaxLine").toDouble());
    d->title->setText(readProperty("Title").toString());
}

void checkProperties::ApplyChanges()
{
    // Only a box that shows a check sets its flag: a grayed box (value 2) writes False.
    const auto flag = [](const QCheckBox *box) { return checkValue(box) == 1; };
    applyInOrder(OnError::Stop,
                 {
                     [&] { writeProperty("AllSelect", flag(d->allSelect)); },
                     [&] { writeProperty("Inv", flag(d->inv)); },
                     [&] { writeProperty("Sorting", flag(d->sorting)); },
                     [&] { writeProperty("Delay", d->delay->Value()); },
                     [&] { writeProperty("EditEnabled", flag(d->editEnabled)); },
                     [&] { writeProperty("MaxLine", d->maxLine->Value()); },
                     [&] { writeProperty("SingleCheck", flag(d->singleCheck)); },
                     [&] { writeProperty("Title", d->title->text()); },
                 });
}

} // namespace zelkon
