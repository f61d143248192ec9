#include "reldateproperties.h"

#include <zelkon/common/conversions.h>
#include <zelkon/common/datepicker.h>
#include <zelkon/common/ignoreerrors_p.h>

#include <QCheckBox>
#include <QLineEdit>

namespace zelkon {

class RelDatePropertiesPrivate
{
public:
    QLineEdit *retDate = nullptr;
    QLineEdit *retNum = nullptr;
    QLineEdit *customFormat = nullptr;
    QCheckBox *relative = nullptr;
    QCheckBox *menuStateVisible = nullptr;
    QLineEdit *bootControl = nullptr;
    QLineEdit *topControl = nullptr;
    QCheckBox *synchValue = nullptr;
    QCheckBox *allowAll = nullptr;
    QCheckBox *upDown = nullptr;
    DatePicker *maxDate = nullptr;
    DatePicker *minDate = nullptr;
};

ZELKON_REGISTER_PROPERTY_PAGE(RelDateProperties);

RelDateProperties::RelDateProperties(QWidget *parent)
    : PropertyPage(parent)
    , d(std::make_unique<RelDatePropertiesPrivate>())
{
    d->retDate = addTextBox(QStringLiteral("txtRetDate"), QStringLiteral("lblRetDate"),
                            QStringLiteral("Date:"));
    d->retNum = addTextBox(QStringLiteral("txtRetNum"), QStringLiteral("lblRetNum"),
                           QStringLiteral("Number Of Day:"));
    d->customFormat
        = addTextBox(QStringLiteral("txtCustomFormat"), QStringLiteral("lblCustomFormat"),
                     QStringLiteral("Custom Date Format:"));
    d->relative = addCheckBox(QStringLiteral("chkRelative"), QStringLiteral("Relative Date"));
    d->menuStateVisible = addCheckBox(QStringLiteral("chkMenuStateVisible"),
                                      QStringLiteral("Allow Change State From PopUp Menu"));
    // "Botoom" is the caption designers have always seen on this page; it stays as it is.
    d->bootControl = addTextBox(QStringLiteral("txtBootControl"), QStringLiteral("lblBootControl"),
                                QStringLiteral("Botoom Bound Control Name:"));
    d->topControl = addTextBox(QStringLiteral("txtTopControl"), QStringLiteral("lblTopControl"),
                               QStringLiteral("Top Bound Control Name:"));
    d->synchValue = addCheckBox(QStringLiteral("chkSynchValue"),
                                QStringLiteral("Synchronisation Value All Controls"));
    d->allowAll = addCheckBox(QStringLiteral("chkAllowAll"), QStringLiteral("Allow All Dates"));
    d->upDown = addCheckBox(QStringLiteral("UpDown"), QStringLiteral("UpDown"));
    const auto dateField = [this](const QString &name, const QString &label) {
        auto *picker = new DatePicker(this);
        connect(picker, &DatePicker::Change, this, [this] { fieldEdited(); });
        addField(picker, name, QStringLiteral("lbl") + name, label);
        return picker;
    };
    d->maxDate = dateField(QStringLiteral("MaxDate"), QStringLiteral("Max Date"));
    d->minDate = dateField(QStringLiteral("MinDate"), QStringLiteral("Min Date"));
}

RelDateProperties::~RelDateProperties() = default;

void RelDateProperties::SelectionChanged()
{
    d->customFormat->setText(CStr(readProperty("CustomFormat")));
    d->retNum->setText(CStr(readProperty("RetNum")));
    d->retDate->setText(CStr(readProperty("RetDate")));
    showFlag(d->relative, readProperty("Relative"));
    showFlag(d->menuStateVisible, readProperty("MenuStateVisible"));
    d->bootControl->setText(CStr(readProperty("BootControl")));
    d->topControl->setText(CStr(readProperty("TopControl")));
    showFlag(d->synchValue, readProperty("SynchValue"));
    showFlag(d->allowAll, readProperty("AllowAll"));
    attempt([&] { d->maxDate->setValue(readProperty("MaxDate").toDateTime()); });
    attempt([&] { d->minDate->setValue(readProperty("MinDate").toDateTime()); });
    showFlag(d->upDown, readProperty("UpDown"));
}

void RelDateProperties::ApplyChanges()
{
    // The mode goes first so that the mode just chosen decides whether the date or the day count
    // is applied; the date text goes before AllowAll, so "All" typed together with a first check
    // of "Allow All Dates" is refused until the next apply.
    applyInOrder(OnError::Continue,
                 {
                     [&] { writeProperty("Relative", checkValue(d->relative)); },
                     [&] { writeProperty("CustomFormat", d->customFormat->text()); },
                     [&] {
                         if (CBool(readProperty("Relative")))
                             writeProperty("RetNum", d->retNum->text());
                         else
                             writeProperty("RetDate", d->retDate->text());
                     },
                     [&] { writeProperty("MenuStateVisible", checkValue(d->menuStateVisible)); },
                     [&] { writeProperty("BootControl", d->bootControl->text()); },
                     [&] { writeProperty("TopControl", d->topControl->text()); },
                     [&] { writeProperty("SynchValue", checkValue(d->synchValue)); },
                     [&] { writeProperty("AllowAll", checkValue(d->allowAll)); },
                     [&] { writeProperty("UpDown", checkValue(d->upDown)); },
                     [&] { writeProperty("MaxDate", d->maxDate->Value()); },
                     [&] { writeProperty("MinDate", d->minDate->Value()); },
                 });
}

} // namespace zelkon
