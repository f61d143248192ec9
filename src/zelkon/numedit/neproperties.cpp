#include "neproperties.h"

#include <zelkon/common/conversions.h>

#include <QCheckBox>
#include <QLineEdit>

namespace zelkon {

class nePropertiesPrivate
{
public:
    QCheckBox *enabled = nullptr;
    QLineEdit *maxValue = nullptr;
    QLineEdit *minValue = nullptr;
    QLineEdit *border = nullptr;
    QLineEdit *fontSize = nullptr;
    QLineEdit *fontName = nullptr;
    QCheckBox *lockEdits = nullptr;
    QLineEdit *digNum = nullptr;
    QLineEdit *value = nullptr;
};

ZELKON_REGISTER_PROPERTY_PAGE(neProperties);

neProperties::neProperties(QWidget *parent)
    : PropertyPage(parent)
    , d(std::make_unique<nePropertiesPrivate>())
{
    d->enabled = addCheckBox(QStringLiteral("chkEnabled"), QStringLiteral("Enabled"));
    // The two range labels carry each other's caption, as designers have always seen them on
    // this page; the pairing stays as it is.
    d->maxValue = addTextBox(QStringLiteral("txtMaxValue"), QStringLiteral("lblMaxValue"),
                             QStringLiteral("Min Value:"));
    d->minValue = addTextBox(QStringLiteral("txtMinValue"), QStringLiteral("lblMinValue"),
                             QStringLiteral("Max Value:"));
    d->border = addTextBox(QStringLiteral("txtBorder"), QStringLiteral("lblBorder"),
                           QStringLiteral("Borders:"));
    d->fontSize = addTextBox(QStringLiteral("txtFontSize"), QStringLiteral("lblFontSize"),
                             QStringLiteral("Font Size:"));
    d->fontName = addTextBox(QStringLiteral("txtFontName"), QStringLiteral("lblFontName"),
                             QStringLiteral("Font Name:"));
    d->lockEdits = addCheckBox(QStringLiteral("chkLockEdits"), QStringLiteral("Lock Edits"));
    d->digNum = addTextBox(QStringLiteral("txtDigNum"), QStringLiteral("lblDigNum"),
                           QStringLiteral("Number Of Digits:"));
    d->value = addTextBox(QStringLiteral("txtValue"), QStringLiteral("lblValue"),
                          QStringLiteral("Value:"));
}

neProperties::~neProperties() = default;

void neProperties::SelectionChanged()
{
    showFlag(d->enabled, readProperty("Enabled"));
    d->maxValue->setText(CStr(readProperty("MaxValue")));
    d->minValue->setText(CStr(readProperty("MinValue")));
    d->border->setText(CStr(readProperty("Border")));
    d->fontSize->setText(CStr(readProperty("FontSize")));
    d->fontName->setText(CStr(readProperty("FontName")));
    showFlag(d->lockEdits, readProperty("LockEdits"));
    d->digNum->setText(CStr(readProperty("DigNum")));
    d->value->setText(CStr(readProperty("Value")));
}

void neProperties::ApplyChanges()
{
    // The value goes last: the range applied before it clamps it.
    applyInOrder(OnError::Stop,
                 {
                     [&] { writeProperty("Enabled", checkValue(d->enabled)); },
                     [&] { writeProperty("MaxValue", d->maxValue->text()); },
                     [&] { writeProperty("MinValue", d->minValue->text()); },
                     [&] { writeProperty("Border", d->border->text()); },
                     [&] { writeProperty("FontSize", d->fontSize->text()); },
                     [&] { writeProperty("FontName", d->fontName->text()); },
                     [&] { writeProperty("LockEdits", checkValue(d->lockEdits)); },
                     [&] { writeProperty("DigNum", d->digNum->text()); },
                     [&] { writeProperty("Value", d->value->text()); },
                 });
}

} // namespace zelkon
