// The popup side of frmList: showing, the activation timer, keys, mouse and the context menu.
#include <zelkon/checklist/frmlist_p.h>

#include <zelkon/checklist/checklistmodel_p.h>
#include <zelkon/checklist/checklistview_p.h>

#include <zelkon/common/conversions.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/data/recordsetaccess_p.h>

#include <QAction>
#include <QApplication>
#include <QHelpEvent>
#include <QMenu>
#include <QTimer>
#include <QToolTip>

namespace zelkon {

int frmList::heightForRows(int rows) const
{
    const CheckListView *l = List();
    return qMax(1, rows) * l->rowHeight() + 2 * l->frameWidth();
}

void frmList::popUp(const QRect &geometry)
{
    // Placed and sized while still hidden, so its first frame is drawn where it belongs.
    setGeometry(geometry);
    show();
    raise();
    activateWindow();
    List()->setFocus();
    m_beenActive = QApplication::activeWindow() == this;
    m_openedAt.start();
    m_timer->setInterval(qMax<int>(0, m_delay));
    m_timer->start();
}

void frmList::popDown()
{
    m_timer->stop();
    hide();
}

void frmList::onTimer()
{
    // The first tick waits the owner's Delay; from then on the activation is checked at once.
    m_timer->setInterval(1);
    if (QApplication::activeWindow() == this) {
        m_beenActive = true;
        return;
    }
    // A window system activates a new window some time after it asked for it: until the popup
    // has been active once, or its grace time has run out, not being active is not leaving it.
    if (!m_beenActive && m_openedAt.isValid() && m_openedAt.elapsed() < ActivationGraceMs)
        return;
    GetChecked();
    m_timer->stop();
    Q_EMIT Change(false);
}

bool frmList::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate)
        m_beenActive = true;
    return QWidget::event(event);
}

void frmList::keyPressEvent(QKeyEvent *event)
{
    if (!handleKey(event))
        QWidget::keyPressEvent(event);
}

bool frmList::handleKey(QKeyEvent *event)
{
    const int code = keyCode(event);
    const qint16 shift = shiftState(event->modifiers());
    if (code == KeyEscape) {
        GetChecked();
        Q_EMIT Change(true);
        return true;
    }
    if (shift != CtrlKey)
        return false;
    switch (code) {
    case KeyA:
        CheckAllRows();
        return true;
    case KeyA + ('I' - 'A'):
        InvertRows();
        return true;
    case KeyA + ('U' - 'A'):
        UncheckAllRows();
        return true;
    default:
        return false;
    }
}

bool frmList::eventFilter(QObject *watched, QEvent *event)
{
    CheckListView *active = List();
    if (watched == m_views[0] || watched == m_views[1]) {
        if (event->type() == QEvent::KeyPress)
            return handleKey(static_cast<QKeyEvent *>(event));
        return false;
    }
    if (watched != active->viewport())
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonRelease: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouseArgs(mouse).Button == RightButtonCode)
            showContextMenu(mouse->globalPosition().toPoint());
        break;
    }
    case QEvent::MouseMove:
        if (m_fieldTips)
            showRowTip(static_cast<QMouseEvent *>(event)->position().toPoint());
        break;
    case QEvent::ToolTip: {
        // The list's own tool tip is the tip of every row: the row's recordset text, or the
        // hint to check rows.
        auto *help = static_cast<QHelpEvent *>(event);
        if (active->toolTip().isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), active->toolTip(), active->viewport());
        return true;
    }
    default:
        break;
    }
    return false;
}

void frmList::showContextMenu(const QPoint &globalPos)
{
    m_menuItems[0]->setVisible(!m_singleCheck);
    m_menuItems[2]->setVisible(!m_singleCheck);
    // The menu takes the input while it is open; it does not mean that the user left the popup.
    m_timer->stop();
    m_menu->popup(globalPos);
}

void frmList::showRowTip(const QPoint &viewportPos)
{
    CheckListView *l = List();
    l->setToolTip(QString());
    const QModelIndex row = l->indexAt(viewportPos);
    if (!row.isValid())
        return;
    const QString text = m_model->text(row.row());
    attempt([&] {
        RecordsetAccess recordset(m_sourceRecordset);
        const QString criterion
            = recordset.fieldName(0) + QLatin1String(" = '") + text + QLatin1Char('\'');
        if (m_typeData == 0) {
            recordset.moveFirst();
            recordset.find(criterion);
            if (recordset.absolutePosition() == -3)
                return;
        } else if (m_typeData == 1) {
            recordset.findFirst(criterion);
            if (recordset.noMatch())
                return;
        } else {
            return;
        }
        l->setToolTip(Trim(CStr(recordset.fieldValue(1))));
    });
}

} // namespace zelkon
