#include <zelkon/common/datepicker.h>
#include <zelkon/common/ignoreerrors.h>
#include <zelkon/common/keycodes.h>
#include <zelkon/common/platform.h>
#include <zelkon/common/updown.h>
#include <zelkon/common/variants.h>
#include <zelkon/reldate/reldate_p.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
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
    refreshView();
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

bool RelDatePrivate::mouseEvent(QWidget *child, QWidget *watched, QMouseEvent *event)
{
    const MouseArgs args = mouseArgs(event);
    const QPointF at = watched->mapTo(child, event->position());
    // By reference: the host may change them, and what follows sees the change.
    qint16 button = args.Button;
    qint16 shift = args.Shift;
    float x = float(at.x());
    float y = float(at.y());
    switch (event->type()) {
    case QEvent::MouseMove:
        if (child == dateLong) {
            Q_EMIT q->MouseMove();
            Q_EMIT q->MouseMoveXY(button, shift, x, y);
        } else if (child == chRel) {
            Q_EMIT q->MouseMoveXY(button, shift, x, y);
        } else {
            Q_EMIT q->MouseMoveXY(button, shift, x, y);
            Q_EMIT q->MouseMove();
        }
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        Q_EMIT q->MouseDown(button, shift, x, y);
        if (child == dateLong && button == RightButtonCode) {
            popUpMenu(event->globalPosition().toPoint(), false);
            return true;
        }
        if (child == dateLongUD && model.isAll()) {
            attempt([&] { dateView->setCustomFormat(customFormat); });
            if (const auto days = RelativeDate::daysFromToday(dateView->Value(), today()))
                setDateLongText(QString::number(*days));
        }
        return false;
    case QEvent::MouseButtonRelease:
        Q_EMIT q->MouseUp(button, shift, x, y);
        if ((child == dateLongUD || child == dateView) && button == RightButtonCode) {
            popUpMenu(event->globalPosition().toPoint(), true);
            return true;
        }
        return false;
    default:
        return false;
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
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        // A mouse event that a widget ignores travels on to its parents: report it once.
        if (lastMouseType == event->type() && lastMouseTime == mouse->timestamp()
            && lastMousePos == mouse->globalPosition())
            return false;
        lastMouseType = event->type();
        lastMouseTime = mouse->timestamp();
        lastMousePos = mouse->globalPosition();
        return mouseEvent(child, static_cast<QWidget *>(watched), mouse);
    }
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

void RelDatePrivate::watchChild(QWidget *child)
{
    QList<QWidget *> widgets = child->findChildren<QWidget *>();
    widgets.prepend(child);
    for (QWidget *widget : widgets) {
        if (widget->window() != child->window())
            continue; // the picker's calendar is a window of its own
        widget->installEventFilter(this);
        widget->setMouseTracking(true);
    }
}

} // namespace zelkon