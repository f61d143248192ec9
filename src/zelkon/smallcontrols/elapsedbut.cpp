#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/smallcontrols/elapsedbut.h>

#include <QLabel>
#include <QPushButton>

#include <optional>

namespace zelkon {

ZELKON_REGISTER_CONTROL(ElapsedBut);

namespace {
// Space between the button and the caption.
constexpr int captionGap = 4;
} // namespace

class ElapsedButPrivate
{
public:
    explicit ElapsedButPrivate(ElapsedBut *q)
        : q(q)
        , button(new QPushButton(q))
        , title(new QLabel(q))
    { }

    QStringList &names(qint16 index);
    void relayout();

    ElapsedBut *const q;
    QPushButton *const button;
    QLabel *const title;
    bool inv = false;
    qint16 level = 0;
    qint16 namesCount = -1;
    std::optional<QStringList> nodeNames; // none until Names is first set
    QString ocxId;
};

QStringList &ElapsedButPrivate::names(qint16 index)
{
    if (!nodeNames || index < 0 || index >= nodeNames->size())
        throw Error(SubscriptOutOfRange,
                    QStringLiteral("NodeNames(%1): %2")
                        .arg(index)
                        .arg(nodeNames
                                 ? QStringLiteral("outside 0 to %1").arg(nodeNames->size() - 1)
                                 : QStringLiteral("Names is not set")));
    return *nodeNames;
}

void ElapsedButPrivate::relayout()
{
    // A square button at the left, as high as the control, and the caption in the rest. The
    // caption is cut off rather than overlap the button; its tool tip shows it whole.
    const int h = q->height();
    const int side = qMin(h, q->width());
    button->setGeometry(0, 0, side, h);
    const int x = qMin(side + captionGap, q->width());
    title->setGeometry(x, 0, q->width() - x, h);
}

ElapsedBut::ElapsedBut(QWidget *parent)
    : Control(parent)
    , d(std::make_unique<ElapsedButPrivate>(this))
{
    d->button->setObjectName(QStringLiteral("btnEllaps"));
    d->button->setAccessibleName(loadString("titleButton"));
    d->title->setObjectName(QStringLiteral("Title"));
    // Only the family is set, so size and style still follow the control's font.
    QFont arial;
    arial.setFamily(QStringLiteral("Arial"));
    d->title->setFont(arial);
    d->title->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    for (QWidget *child : {static_cast<QWidget *>(d->button), static_cast<QWidget *>(d->title)}) {
        child->setMouseTracking(true); // moves are reported without a button held
        forwardMouse(child);
    }
    setFocusProxy(d->button);
    setFocusPolicy(d->button->focusPolicy());
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(d->button, &QPushButton::clicked, this, [this] { Q_EMIT Click(); });
    resize(sizeHint());
    d->relayout();
}

ElapsedBut::~ElapsedBut() = default;

void ElapsedBut::ReadProperties(PropertyBag &bag)
{
    readExtent(*this, bag);
}

void ElapsedBut::WriteProperties(PropertyBag &bag)
{
    attempt([&] { writeExtent(*this, bag); });
}

QString ElapsedBut::Titul() const
{
    return d->title->text();
}

void ElapsedBut::setTitul(const QString &caption)
{
    d->title->setText(caption);
    updateGeometry();
    d->relayout();
}

bool ElapsedBut::Inv() const
{
    return d->inv;
}

void ElapsedBut::setInv(bool inv)
{
    d->inv = inv;
}

qint16 ElapsedBut::Level() const
{
    return d->level;
}

void ElapsedBut::setLevel(qint16 level)
{
    d->level = level;
}

void ElapsedBut::setLevel(int level)
{
    setLevel(CInt(level));
}

qint16 ElapsedBut::Names() const
{
    return d->namesCount;
}

void ElapsedBut::setNames(qint16 count)
{
    if (count < 0)
        throw Error(SubscriptOutOfRange,
                    QStringLiteral("Names: %1 is no upper bound of the node names").arg(count));
    d->namesCount = count;
    // 0 starts the names afresh with one empty name: hosts use it to clear the list.
    if (count == 0 || !d->nodeNames)
        d->nodeNames.emplace();
    d->nodeNames->resize(count + 1);
}

QString ElapsedBut::NodeNames(qint16 Index) const
{
    return d->names(Index).at(Index);
}

void ElapsedBut::setNodeNames(qint16 Index, const QString &value)
{
    d->names(Index)[Index] = value;
}

QString ElapsedBut::OCXID() const
{
    return d->ocxId;
}

void ElapsedBut::setOCXID(const QString &id)
{
    d->ocxId = id;
}

void ElapsedBut::setEnabledState(bool enabled)
{
    applyEnabled(enabled);
}

QSize ElapsedBut::sizeHint() const
{
    const int h = lineSizeHint(1).height();
    const int caption = d->title->fontMetrics().horizontalAdvance(d->title->text());
    return {h + captionGap + qMax(caption, h), h};
}

QSize ElapsedBut::minimumSizeHint() const
{
    const int h = lineSizeHint(1).height();
    return {h, h};
}

bool ElapsedBut::enabledState() const
{
    return d->title->isEnabled();
}

void ElapsedBut::applyEnabled(bool enabled)
{
    d->button->setEnabled(enabled);
    d->title->setEnabled(enabled);
}

void ElapsedBut::childMouseEvent(QWidget *child, MouseAction action, MouseArgs &args)
{
    switch (action) {
    case MouseAction::Down:
        Q_EMIT MouseDown(args.Button, args.Shift, args.X, args.Y);
        break;
    case MouseAction::Up:
        Q_EMIT MouseUp(args.Button, args.Shift, args.X, args.Y);
        break;
    case MouseAction::Move:
        Q_EMIT MouseMoveXY(args.Button, args.Shift, args.X, args.Y);
        // A caption cut off by the layout can be read in full in its tool tip.
        if (child == d->title)
            d->title->setToolTip(d->title->text());
        Q_EMIT MouseMove();
        break;
    }
}

void ElapsedBut::resizeEvent(QResizeEvent *event)
{
    Control::resizeEvent(event);
    d->relayout();
}

void ElapsedBut::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        updateGeometry();
    Control::changeEvent(event);
}

} // namespace zelkon
