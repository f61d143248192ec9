#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/dropdown/down.h>
#include <zelkon/dropdown/itemlist_p.h>
#include <zelkon/dropdown/lbvalue_p.h>

#include <QComboBox>
#include <QMouseEvent>

namespace zelkon {

ZELKON_REGISTER_CONTROL(Down);

namespace {

constexpr qint32 defaultVisibleCount = 8;
// Width of the size hint in average characters.
constexpr int hintChars = 15;
constexpr int minimumHintChars = 4;

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

    Down *const q;
    QComboBox *const txt;
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
{ }

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
    d->txt->setAccessibleName(tr("Selection"));
    d->txt->installEventFilter(this);
    setFocusProxy(d->txt);
    setFocusPolicy(d->txt->focusPolicy());
}

Down::~Down()
{
    d->txt->removeEventFilter(this);
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
    if (UserMode()) {
        d->redraw = true;
        d->showCaption(d->captionNothing);
    }
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
    // The combo box's own list never opens: the check list opens here in a later step.
    if (watched == d->txt
        && (event->type() == QEvent::MouseButtonPress
            || event->type() == QEvent::MouseButtonDblClick))
        return true;
    return Control::eventFilter(watched, event);
}

void Down::resizeEvent(QResizeEvent *event)
{
    Control::resizeEvent(event);
    d->txt->setGeometry(contentsRect());
}

} // namespace zelkon
