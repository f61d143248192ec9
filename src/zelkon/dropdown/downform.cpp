#include <zelkon/dropdown/downform_p.h>

#include <zelkon/common/error.h>
#include <zelkon/common/keycodes_p.h>

#include <QCursor>
#include <QListWidget>
#include <QTimer>

#include <limits>

namespace zelkon {

namespace {

constexpr int CaptureIntervalMs = 100;

} // namespace

DownForm::DownForm(QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , m_lst(new QListWidget(this))
    , m_tm(new QTimer(this))
{
    setObjectName(QStringLiteral("DownForm"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    m_lst->setObjectName(QStringLiteral("lst"));
    m_lst->setUniformItemSizes(true);
    m_lst->installEventFilter(this);
    connect(m_lst, &QListWidget::itemChanged, this,
            [this](QListWidgetItem *item) { onItemChanged(m_lst->row(item)); });

    m_tm->setObjectName(QStringLiteral("tm"));
    m_tm->setInterval(CaptureIntervalMs);
    connect(m_tm, &QTimer::timeout, this, [this] { onTimer(); });
    m_tm->start();
}

int DownForm::addRow(const QString &text, qint32 row, bool checked)
{
    auto *item = new QListWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    const int at = row >= 0 && row < m_lst->count() ? int(row) : m_lst->count();
    m_lst->insertItem(at, item);
    item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    return at;
}

void DownForm::ShowAtPos(int left, int top, int width, qint32 rows)
{
    // A negative row count (VisibleCount has no range check) opens as an empty list would.
    const qint32 shown = qBound<qint32>(0, rows, m_lst->count());
    const int rowHeight = shown > 0 ? m_lst->sizeHintForRow(0) : 0;
    const int frame = 2 * m_lst->frameWidth();
    qint32 height = 0;
    if (qMulOverflow(shown, rowHeight, &height) || qAddOverflow(height, frame, &height))
        throw Error(Overflow);
    m_lst->setGeometry(0, 0, width, height);
    setGeometry(left, top, width, m_lst->height());
    show();
    raise();
    activateWindow();
    m_lst->setFocus();
    m_tm->start();
}

void DownForm::DoClose()
{
    m_tm->stop();
    if (QWidget::mouseGrabber() == this)
        releaseMouse();
    hide();
    if (m_closed)
        return;
    m_closed = true;
    // Unloaded once the event that closed it is done: the close may come from this form's own
    // mouse press or from a key in its list.
    deleteLater();
    Q_EMIT OnClose();
}

void DownForm::onTimer()
{
    if (!isVisible())
        return;
    // While the cursor is outside, the form holds the mouse, so that the next click anywhere
    // reaches it and closes it; inside, the list takes the mouse as usual.
    const bool inside = frameGeometry().contains(QCursor::pos());
    if (inside) {
        if (QWidget::mouseGrabber() == this)
            releaseMouse();
    } else if (!QWidget::mouseGrabber()) {
        grabMouse();
    }
}

void DownForm::mousePressEvent(QMouseEvent *)
{
    // Reached only while the form holds the mouse: the click was outside the list.
    DoClose();
}

bool DownForm::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_lst && event->type() == QEvent::KeyPress) {
        const int code = keyCode(static_cast<QKeyEvent *>(event));
        if (code == KeyReturn || code == KeyEscape) {
            DoClose();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void DownForm::onItemChanged(int row)
{
    // A row past the 16-bit range cannot be reported; its toggle stays as the user made it.
    if (m_showingVeto || row < 0 || row > std::numeric_limits<qint16>::max())
        return;
    QListWidgetItem *item = m_lst->item(row);
    const bool asked = item->checkState() == Qt::Checked;
    qint16 itemIndex = qint16(row);
    bool checked = asked;
    Q_EMIT OnItemCheck(itemIndex, checked);
    if (checked != asked && m_lst->item(row) == item) {
        m_showingVeto = true;
        item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
        m_showingVeto = false;
    }
}

} // namespace zelkon
