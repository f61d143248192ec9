#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/dropdown/down.h>
#include <zelkon/dropdown/downform_p.h>
#include <zelkon/dropdown/handlerclass_p.h>
#include <zelkon/dropdown/itemlist_p.h>
#include <zelkon/dropdown/lbvalue_p.h>
#include <zelkon/dropdown/wndmodule_p.h>

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionComboBox>

namespace zelkon {

ZELKON_REGISTER_CONTROL(Down);

namespace {

constexpr qint32 defaultVisibleCount = 8;
// Width of the size hint in average characters.
constexpr int hintChars = 15;
constexpr int minimumHintChars = 4;

// The down arrow of the style's combo boxes, for the face of the drop-down button.
QPixmap arrowFace(const QWidget &face)
{
    const int side = face.style()->pixelMetric(QStyle::PM_SmallIconSize) / 2 + 2;
    const qreal ratio = face.devicePixelRatioF();
    QPixmap pixmap(QSize(side, side) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    QStyleOption option;
    option.initFrom(&face);
    option.rect = QRect(0, 0, side, side);
    face.style()->drawPrimitive(QStyle::PE_IndicatorArrowDown, &option, &painter, &face);
    return pixmap;
}

QString defaultCaptionNothing()
{
    return QStringLiteral("<Nothing>");
}

QString defaultCaptionGroup()
{
    return QStringLiteral("<List>");
}

} // namespace

class DownPrivate
{
public:
    explicit DownPrivate(Down *q);

    // Adds `delta` to the checked count with the platform's 32-bit overflow check (error 6).
    void addToCount(qint32 delta);
    void showCaption(const QString &text);
    void release(std::vector<LBValue *> items);

    int pctWidth() const;
    void layoutChildren();
    // The form whose title keeps its active look while the pop-up is open.
    QWidget *form() const { return parentForm ? parentForm.data() : q->window(); }
    void installHooks();
    void CBSetFocus();
    void cmdClick();
    void openList();
    void fillList();
    void fmDown_OnClose();
    void fmDown_OnItemCheck(qint16 &row, bool &checked);
    // Drops the hooks and the pop-up without raising anything: the control is going.
    void releaseQuietly();

    Down *const q;
    QComboBox *const txt;
    QLabel *const pct; // the face of the drop-down button, over the combo box's own arrow
    QLabel *const lbl; // lies over pct and takes its clicks
    // Carries the pressed state of the face while lbl is held down. Never shown: lbl is where
    // the user clicks.
    QPushButton *const cmd;
    QPointer<QWidget> parentForm;
    HandlerClass *MHandler = nullptr;
    qint32 handlerId = 0;
    QPointer<DownForm> fmDown;
    bool hooked = false;
    bool filling = false;
    ItemList list;
    qint32 checkedCount = 0;
    QString caption;
    QString captionNothing = defaultCaptionNothing();
    QString captionGroup = defaultCaptionGroup();
    qint32 visibleCount = defaultVisibleCount;
    bool redraw = false;
};

DownPrivate::DownPrivate(Down *q)
    : q(q)
    , txt(new QComboBox(q))
    , pct(new QLabel(q))
    , lbl(new QLabel(q))
    , cmd(new QPushButton(q))
{ }

int DownPrivate::pctWidth() const
{
    QStyleOptionComboBox option;
    option.initFrom(txt);
    option.rect = QRect(0, 0, 200, qMax(1, txt->height()));
    option.subControls = QStyle::SC_All;
    const int arrow
        = txt->style()
              ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, txt)
              .width();
    return arrow > 0 ? arrow : txt->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
}

void DownPrivate::layoutChildren()
{
    const QRect area = q->contentsRect();
    txt->setGeometry(area);
    const int face = pctWidth();
    // Narrower than two faces the control is widened to exactly that.
    q->setMinimumWidth(2 * face);
    const QRect faceRect(area.right() + 1 - face, area.top(), face, area.height());
    pct->setGeometry(faceRect);
    lbl->setGeometry(faceRect);
    cmd->setGeometry(faceRect);
}

void DownPrivate::installHooks()
{
    if (hooked)
        return;
    redraw = true;
    parentForm = q->window();
    showCaption(captionNothing);
    MHandler = new HandlerClass(q);
    QObject::connect(MHandler, &HandlerClass::CBSetFocus, q, [this] { CBSetFocus(); });
    handlerId = WndModule::RegisterHandler(MHandler);
    WndModule::Subclass(handlerId, txt, QStringLiteral("ComboBox"));
    hooked = true;
}

void DownPrivate::CBSetFocus()
{
    // Frozen, so that the combo box does not flash its focus look before the pop-up covers it.
    q->setUpdatesEnabled(false);
    q->setFocus(Qt::MouseFocusReason);
    attempt([&] { openList(); });
    q->setUpdatesEnabled(true);
}

void DownPrivate::cmdClick()
{
    if (cmd->isDown())
        attempt([&] { openList(); });
}

void DownPrivate::openList()
{
    if (!fmDown) {
        fmDown = new DownForm(q);
        QObject::connect(fmDown, &DownForm::OnClose, q, [this] { fmDown_OnClose(); });
        QObject::connect(fmDown, &DownForm::OnItemCheck, q,
                         [this](qint16 &row, bool &checked) { fmDown_OnItemCheck(row, checked); });
    }
    WndModule::Subclass(handlerId, form(), QStringLiteral("ParentForm"));
    if (fmDown->isVisible())
        return;
    // The control's place in its own container read as a place on the form: a Down inside
    // another container on the form opens off by that container's offset, as hosts know it.
    const QPoint at = form()->mapToGlobal(q->pos());
    fillList();
    fmDown->ShowAtPos(at.x(), at.y() + q->height(), q->width(), visibleCount);
}

void DownPrivate::fillList()
{
    filling = true;
    for (LBValue *item : list.items()) {
        const LBValuePrivate *state = LBValuePrivate::get(item);
        attempt([&] { fmDown->addRow(state->text, state->itemIndex, state->checked); });
    }
    filling = false;
}

void DownPrivate::fmDown_OnClose()
{
    WndModule::Unsubclass(form());
    fmDown = nullptr;
    Q_EMIT q->OnClose();
}

void DownPrivate::fmDown_OnItemCheck(qint16 &row, bool &checked)
{
    if (filling)
        return;
    // The row is mapped to a position by its number alone, also when items were placed at a
    // wanted row and the pop-up's order differs from the list's: hosts count on that order.
    attempt([&] {
        LBValue *item = list.item(qint32(row) + 1);
        LBValuePrivate::get(item)->checked = checked;
        LBValue *handed = item;
        Q_EMIT q->OnItemCheck(row, handed);
        const bool now = item->Checked();
        if (now != checked) {
            checked = now; // vetoed: the row shows it, the count and caption stay
            return;
        }
        addToCount(checked ? 1 : -1);
        if (checkedCount == 0) {
            showCaption(captionNothing);
        } else if (checkedCount == 1) {
            for (LBValue *candidate : list.items()) {
                if (candidate->Checked()) {
                    showCaption(candidate->Text());
                    break;
                }
            }
        } else {
            showCaption(captionGroup);
        }
    });
}

void DownPrivate::releaseQuietly()
{
    if (fmDown) {
        QObject::disconnect(fmDown, nullptr, q, nullptr);
        fmDown->DoClose();
        fmDown = nullptr;
        WndModule::Unsubclass(form());
    }
    if (hooked) {
        WndModule::Unsubclass(txt);
        WndModule::UnregisterHandler(handlerId);
    }
    delete MHandler;
    MHandler = nullptr;
}

void DownPrivate::addToCount(qint32 delta)
{
    qint32 sum = 0;
    if (qAddOverflow(checkedCount, delta, &sum))
        throw Error(Overflow);
    checkedCount = sum;
}

void DownPrivate::showCaption(const QString &text)
{
    // The caption is remembered even while the screen is not redrawn, so that switching Redraw
    // on brings it up to date.
    if (redraw) {
        txt->clear();
        txt->addItem(text);
        txt->setCurrentIndex(0);
    }
    caption = text;
}

void DownPrivate::release(std::vector<LBValue *> items)
{
    // A host may still hold a removed item it read just before: it goes at the next turn of the
    // event loop, not under the caller's hands.
    for (LBValue *item : items)
        item->deleteLater();
}

// ---- Down

Down::Down(QWidget *parent)
    : Control(parent)
    , d(std::make_unique<DownPrivate>(this))
{
    d->txt->setObjectName(QStringLiteral("txt"));
    d->txt->setAccessibleName(loadString("selection"));
    setFocusProxy(d->txt);
    setFocusPolicy(d->txt->focusPolicy());

    d->pct->setObjectName(QStringLiteral("pct"));
    d->pct->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    d->pct->setAutoFillBackground(true);
    d->pct->setBackgroundRole(QPalette::Button);
    d->pct->setAlignment(Qt::AlignCenter);
    d->pct->setPixmap(arrowFace(*d->pct));
    d->lbl->setObjectName(QStringLiteral("lbl"));
    d->lbl->installEventFilter(this);
    d->cmd->setObjectName(QStringLiteral("cmd"));
    d->cmd->setFocusPolicy(Qt::NoFocus);
    d->cmd->hide();
    connect(d->cmd, &QPushButton::clicked, this, [this] { d->cmdClick(); });
    d->lbl->raise();
    d->layoutChildren();
}

Down::~Down()
{
    d->releaseQuietly();
}

// ---- persistence

void Down::InitProperties()
{
    d->visibleCount = defaultVisibleCount;
    d->captionNothing = defaultCaptionNothing();
    d->captionGroup = defaultCaptionGroup();
}

void Down::ReadProperties(PropertyBag &bag)
{
    readExtent(*this, bag);
    attempt([&] {
        d->visibleCount
            = CLng(bag.ReadProperty(QStringLiteral("VisibleCount"), defaultVisibleCount));
    });
    attempt([&] {
        d->captionNothing
            = CStr(bag.ReadProperty(QStringLiteral("CaptionNothing"), defaultCaptionNothing()));
    });
    attempt([&] {
        d->captionGroup
            = CStr(bag.ReadProperty(QStringLiteral("CaptionGroup"), defaultCaptionGroup()));
    });
    if (UserMode())
        d->installHooks();
}

void Down::WriteProperties(PropertyBag &bag)
{
    ignoreErrors({
        [&] { writeExtent(*this, bag); },
        [&] {
            bag.WriteProperty(QStringLiteral("VisibleCount"), d->visibleCount, defaultVisibleCount);
        },
        [&] {
            bag.WriteProperty(QStringLiteral("CaptionNothing"), d->captionNothing,
                              defaultCaptionNothing());
        },
        [&] {
            bag.WriteProperty(QStringLiteral("CaptionGroup"), d->captionGroup,
                              defaultCaptionGroup());
        },
    });
}

// ---- list operations

void Down::AddItem(const QString &Text, const QString &Key, const QVariant &Value, bool Checked,
                   const QVariant &ItemIndex)
{
    auto *item = new LBValue(this);
    LBValuePrivate *const state = LBValuePrivate::get(item);
    state->text = Text;
    state->key = Key;
    state->value = Value;
    state->checked = Checked;
    state->itemIndex = -1;
    try {
        if (!IsMissing(ItemIndex)) {
            const qint32 wanted = CLng(ItemIndex);
            if (wanted >= 0)
                state->itemIndex = wanted;
        }
        if (Checked) {
            d->addToCount(1);
            d->showCaption(d->checkedCount == 0       ? d->captionNothing
                               : d->checkedCount == 1 ? Text
                                                      : d->captionGroup);
        }
        // A key of blanks only is no key; any other key is kept exactly as given.
        d->list.append(item, Key.trimmed().isEmpty() ? QString() : Key);
    } catch (...) {
        delete item;
        throw;
    }
}

void Down::RemoveItem(const QVariant &Index)
{
    LBValue *item = d->list.item(Index);
    if (item->Checked())
        d->addToCount(-1);
    d->release({d->list.take(Index)});
}

void Down::Clear()
{
    d->checkedCount = 0;
    d->release(d->list.takeAll());
}

LBValue *Down::ListItem(const QVariant &Index) const
{
    return d->list.item(Index);
}

void Down::Free()
{
    // The hooked flag stays set: the hooks are never installed again for this control.
    if (d->hooked)
        WndModule::Unsubclass(d->txt);
    if (d->fmDown)
        d->fmDown->DoClose();
    if (d->hooked)
        WndModule::UnregisterHandler(d->handlerId);
    delete d->MHandler;
    d->MHandler = nullptr;
}

// ---- properties

qint32 Down::CheckedCount() const
{
    return d->checkedCount;
}

qint32 Down::ListCount() const
{
    return d->list.count();
}

qint32 Down::VisibleCount() const
{
    return d->visibleCount;
}

void Down::setVisibleCount(qint32 count)
{
    put(d->visibleCount, count, QStringLiteral("VisibleCount"));
}

QString Down::CaptionNothing() const
{
    return d->captionNothing;
}

void Down::setCaptionNothing(const QString &caption)
{
    put(d->captionNothing, caption, QStringLiteral("CaptionNothing"));
}

QString Down::CaptionGroup() const
{
    return d->captionGroup;
}

void Down::setCaptionGroup(const QString &caption)
{
    put(d->captionGroup, caption, QStringLiteral("CaptionGroup"));
}

bool Down::Redraw() const
{
    return d->redraw;
}

void Down::setRedraw(bool redraw)
{
    d->redraw = redraw;
    d->showCaption(d->caption);
    notifyPut(QStringLiteral("Redraw"));
}

QSize Down::sizeHint() const
{
    return lineSizeHint(hintChars);
}

QSize Down::minimumSizeHint() const
{
    return lineSizeHint(minimumHintChars);
}

// ---- events

bool Down::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == d->lbl) {
        // Holding the face down presses cmd, and pressing it is its click.
        if (event->type() == QEvent::MouseButtonPress
            || event->type() == QEvent::MouseButtonDblClick) {
            d->cmd->setDown(true);
            d->pct->setFrameShadow(QFrame::Sunken);
            d->cmdClick();
            return true;
        }
        if (event->type() == QEvent::MouseButtonRelease) {
            d->cmd->setDown(false);
            d->pct->setFrameShadow(QFrame::Raised);
            return true;
        }
    }
    return Control::eventFilter(watched, event);
}

void Down::resizeEvent(QResizeEvent *event)
{
    Control::resizeEvent(event);
    d->layoutChildren();
}

void Down::applyEnabled(bool enabled)
{
    Control::applyEnabled(enabled);
    for (QWidget *child : {static_cast<QWidget *>(d->txt), static_cast<QWidget *>(d->cmd),
                           static_cast<QWidget *>(d->lbl)})
        child->setEnabled(enabled);
}

} // namespace zelkon
