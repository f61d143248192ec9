#include <zelkon/common/conversions.h>
#include <zelkon/common/datepicker.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/common/updown.h>
#include <zelkon/common/variants.h>
#include <zelkon/reldate/reldate_p.h>

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QStyle>

namespace zelkon {

namespace {

const QDateTime defaultMinDate(QDate(1601, 1, 1), QTime(0, 0));
const QDateTime defaultMaxDate(QDate(9999, 12, 31), QTime(0, 0));

} // namespace

// ---- showing the value ----------------------------------------------------------------------

void RelDatePrivate::showMode()
{
    const bool relative = model.isRelative();
    dateLong->setVisible(relative);
    dateLongUD->setVisible(relative);
    dateView->setVisible(!relative);
    q->setFocusProxy(relative ? static_cast<QWidget *>(dateLong) : dateView);
}

// The box and the menu item follow the mode; the menu item names the mode it switches to.
void RelDatePrivate::showCheckBox()
{
    const Qt::CheckState state = model.isRelative() ? Qt::Checked : Qt::Unchecked;
    if (chRel->checkState() != state)
        chRel->setCheckState(state);
    mnuRel->setText(loadString(model.isRelative() ? 206 : 205));
}

void RelDatePrivate::setDateLongText(const QString &text)
{
    if (dateLong->text() == text)
        return;
    // The control's own writes are no typing.
    const QScopedValueRollback<bool> guard(dateLongGuard, true);
    dateLong->setText(text);
}

void RelDatePrivate::showDaysOf(const QDateTime &date)
{
    if (const auto days = RelativeDate::daysFromToday(date, today()))
        dateLongUD->setValue(*days);
}

void RelDatePrivate::refreshView(const QDate &now)
{
    if (model.isAll()) {
        setDateLongText(allText());
        attempt([&] { dateView->setCustomFormat(allText()); });
        return;
    }
    // Only what the parts show: the model already holds the value.
    const bool relative = model.isRelative();
    const qint32 days = relative ? model.storedDayCount() : model.dayCount(now);
    setDateLongText(QString::number(days));
    attempt([&] {
        if (dateView->showsAll())
            dateView->setCustomFormat(customFormat);
        const QDate shown = relative ? now.addDays(days) : CDate(model.storedDate()).date();
        if (dateView->Value().date() != shown) {
            const QSignalBlocker blocker(dateView);
            // An invalid date (a count past the platform's dates) is refused by the picker.
            dateView->setValue(relative
                                   ? RelativeDate::dateFromToday(days, now).value_or(QDateTime())
                                   : CDate(model.storedDate()));
        }
    });
    q->update();
}

// ---- layout ---------------------------------------------------------------------------------

void RelDatePrivate::layoutWidgets()
{
    // The frame of Border and Appearance lies around the contents rectangle.
    surface->setGeometry(q->contentsRect());
    const QRect client = surface->rect();
    // The box takes the style's indicator size, centred in a slot with half the style's label
    // spacing on either side, so that it scales with the style and the screen.
    const int slotWidth = qMin(checkBoxSlotWidth(), client.width() / 2);
    const QStyle *boxStyle = chRel->style();
    const QSize boxSize(
        qMin(boxStyle->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, chRel), slotWidth),
        qMin(boxStyle->pixelMetric(QStyle::PM_IndicatorHeight, nullptr, chRel), client.height()));
    const auto placeBox = [&](int slotLeft) {
        chRel->setGeometry(QRect(QPoint(slotLeft + (slotWidth - boxSize.width()) / 2,
                                        client.top() + (client.height() - boxSize.height()) / 2),
                                 boxSize));
        chRel->show();
    };
    QRect area = client;
    int overLeft = 2;
    int overRight = 2;
    switch (checkBoxState) {
    case rbsRight:
        placeBox(client.right() - slotWidth + 1);
        area.setRight(client.right() - slotWidth);
        overRight = 0;
        break;
    case rbsLeft:
        placeBox(client.left());
        area.setLeft(client.left() + slotWidth);
        overLeft = 0;
        break;
    default:
        chRel->hide();
        break;
    }
    // The date widgets reach under the control's edge, so that their own borders do not double
    // the control's.
    const QRect over = area.adjusted(-overLeft, -2, overRight, 2);
    dateView->setGeometry(over);
    // The spinner's own size hint follows the style's scroll bar width.
    const int spinWidth = qMin(dateLongUD->sizeHint().width(), area.width() / 2);
    const int spinLeft = area.right() - spinWidth + 1;
    dateLongUD->setGeometry(spinLeft, area.top(), spinWidth, area.height());
    dateLong->setGeometry(over.left(), over.top(), spinLeft - over.left(), over.height());
    q->update();
}

int RelDatePrivate::checkBoxSlotWidth() const
{
    const QStyle *boxStyle = chRel->style();
    const int gap
        = qMax(0, boxStyle->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, chRel)) / 2;
    return boxStyle->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, chRel) + 2 * gap;
}

void RelDate::resizeEvent(QResizeEvent *)
{
    d->layoutWidgets();
}

void RelDate::showEvent(QShowEvent *event)
{
    d->updateAccessibleNames();
    Control::showEvent(event);
}

void RelDatePrivate::updateAccessibleNames()
{
    // The host's name for the control names the date itself and leads the names of the other
    // parts, so that a screen reader tells apart the "from" and "to" fields of one form.
    const QString host = q->accessibleName();
    const auto named = [&host](const QString &part) {
        return host.isEmpty() ? part : loadString("namedPart").arg(host, part);
    };
    dateView->setAccessibleName(host.isEmpty() ? loadString("date") : host);
    dateView->setAccessibleDescription(loadString(201));
    dateView->updateAccessibleNames();
    dateLong->setAccessibleName(named(loadString("daysFromToday")));
    dateLong->setAccessibleDescription(loadString(202));
    dateLongUD->setAccessibleName(named(loadString("stepDaysFromToday")));
    dateLongUD->setAccessibleDescription(loadString(202));
    chRel->setAccessibleName(named(loadString(207)));
}

// ---- persistence ----------------------------------------------------------------------------

void RelDatePrivate::writeProperties(PropertyBag &bag)
{
    const QDateTime now(today(), QTime(0, 0));
    ignoreErrors({
        [&] { bag.WriteProperty(QStringLiteral("AllowAll"), model.allowAll(), true); },
        [&] { bag.WriteProperty(QStringLiteral("Relative"), q->Relative(), true); },
        [&] { bag.WriteProperty(QStringLiteral("RetNum"), q->RetNum(), qint32(0)); },
        // A date equal to the day of saving is not kept and comes back as the day of loading.
        [&] { bag.WriteProperty(QStringLiteral("RetDate"), q->RetDate(), now); },
        [&] {
            bag.WriteProperty(QStringLiteral("CheckBoxState"), checkBoxState,
                              qint32(rbsNotVisible));
        },
        [&] { bag.WriteProperty(QStringLiteral("Enabled"), q->Enabled(), true); },
        [&] {
            bag.WriteProperty(QStringLiteral("GlobalSynchro"), globalSynchro,
                              qint32(srdNotSynchro));
        },
        [&] { bag.WriteProperty(QStringLiteral("TopControl"), q->TopControl(), QString()); },
        [&] { bag.WriteProperty(QStringLiteral("BootControl"), q->BootControl(), QString()); },
        [&] { bag.WriteProperty(QStringLiteral("CustomFormat"), customFormat, QString()); },
        [&] { bag.WriteProperty(QStringLiteral("SynchValue"), synchValue, false); },
        [&] { bag.WriteProperty(QStringLiteral("MenuStateVisible"), menuStateVisible, false); },
        [&] { bag.WriteProperty(QStringLiteral("MaxDate"), q->MaxDate(), defaultMaxDate); },
        [&] { bag.WriteProperty(QStringLiteral("MinDate"), q->MinDate(), defaultMinDate); },
        [&] { bag.WriteProperty(QStringLiteral("UpDown"), q->UpDown(), false); },
        [&] { writeExtent(*q, bag); },
        [&] { bag.WriteProperty(QStringLiteral("Border"), q->Border(), qint32(1)); },
        [&] { bag.WriteProperty(QStringLiteral("Appearance"), q->Appearance(), qint32(1)); },
    });
}

void RelDatePrivate::readProperties(PropertyBag &bag)
{
    const QScopedValueRollback<bool> restoring(loading, true);
    const QDateTime now(today(), QTime(0, 0));
    const auto read = [&bag](const char *key, const QVariant &defaultValue) {
        return bag.ReadProperty(QString::fromLatin1(key), defaultValue);
    };
    bool allowAll = model.allowAll();
    bool relative = model.isRelative();
    qint32 days = model.storedDayCount();
    QVariant date = model.storedDate();
    ignoreErrors({
        [&] { allowAll = CBool(read("AllowAll", true)); },
        [&] { relative = CBool(read("Relative", true)); },
        [&] { days = CLng(read("RetNum", qint32(0))); },
        [&] {
            const QVariant saved = read("RetDate", now);
            date = RelativeDate::isAll(saved) ? saved : QVariant(CDate(saved));
        },
        [&] { checkBoxState = CLng(read("CheckBoxState", qint32(rbsNotVisible))); },
        [&] { q->setFrameLook(q->frameAppearance(), CLng(read("Border", qint32(1)))); },
        [&] { q->setFrameLook(CLng(read("Appearance", qint32(1))), q->frameBorder()); },
        [&] { q->applyEnabled(CBool(read("Enabled", true))); },
        [&] { globalSynchro = CLng(read("GlobalSynchro", qint32(srdNotSynchro))); },
        // Partners may not be loaded yet: the names are checked when they are next read.
        [&] { topControl = CStr(read("TopControl", QString())); },
        [&] { bootControl = CStr(read("BootControl", QString())); },
        [&] {
            customFormat = CStr(read("CustomFormat", QString()));
            dateView->setCustomFormat(customFormat);
        },
        [&] { synchValue = CBool(read("SynchValue", false)); },
        [&] {
            menuStateVisible = CBool(read("MenuStateVisible", false));
            mnuRel->setVisible(menuStateVisible);
        },
        [&] { dateView->setMaxDate(CDate(read("MaxDate", defaultMaxDate))); },
        [&] { dateView->setMinDate(CDate(read("MinDate", defaultMinDate))); },
        [&] { dateView->setUpDown(CBool(read("UpDown", false))); },
        [&] { readExtent(*q, bag); },
    });
    model.setAllowAll(allowAll);
    model.restore(relative, days, date, today());
    showMode();

    if (model.isAll()) {
        ignoreErrors({
            [&] { dateView->setValue(now); },
            [&] { dateLongUD->setValue(0); },
            [&] { dateView->setCustomFormat(allText()); },
        });
        setDateLongText(allText());
    } else {
        ignoreErrors({
            [&] { dateLongUD->setValue(model.storedDayCount()); },
            [&] { dateView->setValue(CDate(model.storedDate())); },
        });
        setDateLongText(QString::number(model.storedDayCount()));
    }
    showCheckBox();
    layoutWidgets();
}

// As high as a one-line field, so that it lines up with the others in a form layout, and wide
// enough for the picker's date and the box.
QSize RelDate::sizeHint() const
{
    QSize hint = lineSizeHint(12);
    const QMargins frame = contentsMargins();
    hint.setWidth(
        qMax(hint.width(), d->dateView->sizeHint().width() + frame.left() + frame.right()));
    if (d->checkBoxState == rbsLeft || d->checkBoxState == rbsRight)
        hint.rwidth() += d->checkBoxSlotWidth();
    return hint;
}

QSize RelDate::minimumSizeHint() const
{
    return QSize(lineSizeHint(4).width() + d->checkBoxSlotWidth(), lineSizeHint(4).height());
}

} // namespace zelkon
