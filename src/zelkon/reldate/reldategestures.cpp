#include <zelkon/common/datepicker.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/platform.h>
#include <zelkon/common/updown.h>
#include <zelkon/common/variants.h>
#include <zelkon/reldate/reldate_p.h>

#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QScopedValueRollback>

namespace zelkon {

void RelDatePrivate::chRelClicked()
{
    // Switching the mode raises Change itself; a box that agrees with the mode changes nothing.
    switch (chRel->checkState()) {
    case Qt::Unchecked:
        if (model.isRelative())
            switchMode(false);
        break;
    case Qt::Checked:
        if (!model.isRelative())
            switchMode(true);
        break;
    default:
        Q_EMIT q->Change();
        break;
    }
}

void RelDatePrivate::menuRelChosen()
{
    chRel->setCheckState(chRel->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
    // A second Change for the same toggle: hosts written against this control count on it.
    Q_EMIT q->Change();
}

void RelDatePrivate::menuCurrentDateChosen()
{
    ignoreErrors({
        [&] { dateLongUD->setValue(0); },
        [&] { dateView->setCustomFormat(customFormat); },
        [&] { dateView->setValue(QDateTime(today(), QTime(0, 0))); },
        [&] { model.setDayCount(0); },
        [&] { model.setStoredDate(QDateTime(today(), QTime(0, 0))); },
    });
    refreshView(today());
    synchronizeValue();
    Q_EMIT q->Change();
}

void RelDatePrivate::menuDateAllChosen()
{
    ignoreErrors({
        [&] { model.setStoredDate(allText()); },
        [&] { dateView->setCustomFormat(allText()); },
        [&] { setDateLongText(allText()); },
    });
    synchronizeValue();
    Q_EMIT q->Change();
}

void RelDatePrivate::dateLongChanged()
{
    if (dateLongGuard)
        return;
    const QScopedValueRollback<bool> guard(dateLongGuard, true);
    const QString text = dateLong->text();
    if (text == allText())
        return;
    const auto days = RelativeDate::typedDayCount(text, today(), dateView->MinDate().date(),
                                                  dateView->MaxDate().date());
    if (!days) {
        dateLong->setText(QString::number(model.storedDayCount()));
        return;
    }
    attempt([&] { dateLongUD->setValue(*days); });
    Q_EMIT q->Change();
    // Rewritten from the count, so "+5" or " 5" reads "5".
    dateLong->setText(QString::number(model.storedDayCount()));
}

void RelDatePrivate::dateLongUDChanged()
{
    if (dateLongUDGuard)
        return;
    const QScopedValueRollback<bool> guard(dateLongUDGuard, true);
    const qint32 days = dateLongUD->Value();
    // The count lands on a day at midnight; the bounds count by calendar day, as the picker
    // clamps, so a bound with a time of day still admits its own day.
    const auto date = RelativeDate::dateFromToday(days, today());
    if (!date || !dateView->inRange(*date)) {
        attempt([&] { dateLongUD->setValue(model.storedDayCount()); });
        return;
    }
    model.setDayCount(days);
    // The day-count field follows its spinner, as a buddy field does.
    setDateLongText(QString::number(days));
    if (loading || !model.isRelative())
        return;
    ignoreErrors({
        [&] { dateView->setCustomFormat(customFormat); },
        [&] { model.setStoredDate(*date); },
        [&] { dateView->setValue(*date); },
    });
    synchronizeValue();
    Q_EMIT q->Change();
}

void RelDatePrivate::dateViewChanged()
{
    // While a saved form is being opened its partners may not exist yet, so nothing is taken
    // from the picker then: the restore step sets the value itself.
    if (loading || model.isRelative())
        return;
    ignoreErrors({
        [&] { dateView->setCustomFormat(customFormat); },
        [&] { model.setStoredDate(dateView->Value()); },
        [&] { showDaysOf(dateView->Value()); },
        [&] { model.setDayCount(dateLongUD->Value()); },
    });
    synchronizeValue();
    Q_EMIT q->Change();
}

void RelDatePrivate::dateViewAdopted()
{
    if (loading)
        return;
    const QDateTime shown = dateView->Value();
    const QVariant stored = model.storedDate();
    if (stored.metaType().id() == QMetaType::QDateTime && stored.toDateTime() == shown)
        return;
    model.setStoredDate(shown);
    synchronizeValue();
    Q_EMIT q->Change();
}

void RelDatePrivate::dateViewLeftAll()
{
    if (loading || !model.isAll())
        return;
    ignoreErrors({
        [&] { dateView->setCustomFormat(customFormat); },
        [&] { model.setStoredDate(dateView->Value()); },
        [&] { showDaysOf(dateView->Value()); },
    });
    synchronizeValue();
    Q_EMIT q->Change();
}

void RelDatePrivate::popUpMenu(const QPoint &globalPos, bool changeAfter)
{
    if (popUpDate->isVisible())
        return;
    currentDate[1]->setVisible(true);
    currentDate[0]->setVisible(false);
    dateAll->setVisible(model.allowAll());
    changeAfterMenu = changeAfter;
    popUpDate->popup(globalPos);
}

// The parts' own arguments reach the host, with coordinates in the named part's own.
void RelDate::childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args)
{
    QWidget *part = d->namedChildOf(child);
    if (!part)
        return;
    const QPointF inChild(args.X, args.Y);
    const QPoint global = child->mapToGlobal(inChild).toPoint();
    const QPointF at = child->mapTo(part, inChild);
    args.X = float(at.x());
    args.Y = float(at.y());
    switch (action) {
    case MouseAction::Move:
        // The order of the two move events differs by part, as hosts have always seen it.
        if (part == d->dateLong)
            Q_EMIT MouseMove();
        Q_EMIT MouseMoveXY(args.Button, args.Shift, args.X, args.Y);
        if (part == d->dateView || part == d->dateLongUD)
            Q_EMIT MouseMove();
        break;
    case MouseAction::Down:
        Q_EMIT MouseDown(args.Button, args.Shift, args.X, args.Y);
        if (part == d->dateLong && args.Button == RightButtonCode)
            d->popUpMenu(global, false);
        if (part == d->dateLongUD && d->model.isAll()) {
            attempt([&] { d->dateView->setCustomFormat(d->customFormat); });
            if (const auto days = RelativeDate::daysFromToday(d->dateView->Value(), d->today()))
                d->setDateLongText(QString::number(*days));
        }
        break;
    case MouseAction::Up:
        Q_EMIT MouseUp(args.Button, args.Shift, args.X, args.Y);
        if ((part == d->dateLongUD || part == d->dateView) && args.Button == RightButtonCode)
            d->popUpMenu(global, true);
        break;
    }
}

bool RelDatePrivate::keyPressed(QKeyEvent *event)
{
    const int code = keyCode(event);
    if (code == KeyReturn) {
        Platform::current().sendKeys(QStringLiteral("{TAB}"));
        return true;
    }
    // Exactly Ctrl: Ctrl+Shift+R and the like are left to the widget.
    if (shiftState(event->modifiers()) != CtrlKey)
        return false;
    switch (code) {
    case KeyA:
        if (!model.allowAll())
            return false;
        menuDateAllChosen();
        return true;
    case KeyA + ('R' - 'A'):
        menuRelChosen();
        return true;
    case Key0:
        menuCurrentDateChosen();
        return true;
    default:
        return false;
    }
}

bool RelDatePrivate::eventFilter(QObject *watched, QEvent *event)
{
    QWidget *child = namedChildOf(watched);
    if (!child)
        return false;
    switch (event->type()) {
    case QEvent::FocusIn:
        // A name the host gave after the form was shown is read when a part takes the focus.
        updateAccessibleNames();
        break;
    case QEvent::ContextMenu:
        // The widgets' own edit menus would cover the control's menu.
        return true;
    case QEvent::KeyPress:
        if (watched == QApplication::focusWidget())
            return keyPressed(static_cast<QKeyEvent *>(event));
        break;
    default:
        break;
    }
    return false;
}

QWidget *RelDatePrivate::namedChildOf(QObject *watched) const
{
    for (auto *widget = qobject_cast<QWidget *>(watched); widget && widget != q;
         widget = widget->parentWidget()) {
        if (widget == dateView || widget == dateLong || widget == dateLongUD || widget == chRel)
            return widget;
        if (widget->isWindow())
            return nullptr;
    }
    return nullptr;
}

// Keys and focus reach the control from every widget of a part; the mouse only from the widgets
// that take it, since a mouse event that a widget ignores travels on to its parent and would be
// reported twice.
void RelDatePrivate::watchChild(QWidget *child)
{
    QList<QWidget *> widgets = child->findChildren<QWidget *>();
    widgets.prepend(child);
    for (QWidget *widget : widgets) {
        if (widget->window() != child->window())
            continue; // the picker's calendar is a window of its own
        widget->installEventFilter(this);
        if (!widget->findChild<QWidget *>() || widget == chRel
            || qobject_cast<QAbstractSpinBox *>(widget)) {
            widget->setMouseTracking(true);
            q->forwardMouse(widget);
        }
    }
}

} // namespace zelkon
