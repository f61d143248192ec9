#include <zelkon/common/conversions.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/common/variants.h>
#include <zelkon/smallcontrols/combolistbox.h>
#include <zelkon/smallcontrols/inputarray_p.h>

#include <QComboBox>

namespace zelkon {

ZELKON_REGISTER_CONTROL(ComboListBox);

namespace {
constexpr int hintChars = 15;
constexpr int minimumHintChars = 4;
} // namespace

class ComboListBoxPrivate
{
public:
    explicit ComboListBoxPrivate(ComboListBox *q)
        : q(q)
        , list(new QComboBox(q))
    { }

    // The list fills the control.
    void relayout() { list->setGeometry(q->rect()); }

    ComboListBox *const q;
    QComboBox *const list;
    QVariant input;
    QString startValue;
};

ComboListBox::ComboListBox(QWidget *parent)
    : Control(parent)
    , d(std::make_unique<ComboListBoxPrivate>(this))
{
    d->list->setObjectName(QStringLiteral("Combo_List"));
    d->list->setAccessibleName(loadString("list"));
    setFocusProxy(d->list);
    setFocusPolicy(d->list->focusPolicy());
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    // Only a pick by the user counts: rows selected by StartValue or ValueID raise nothing,
    // because the box reports only the user's own picks (activated).
    connect(d->list, &QComboBox::activated, this, [this] { Q_EMIT Change(); });
    resize(sizeHint());
}

ComboListBox::~ComboListBox() = default;

void ComboListBox::ReadProperties(PropertyBag &bag)
{
    readExtent(*this, bag);
}

void ComboListBox::WriteProperties(PropertyBag &bag)
{
    attempt([&] { writeExtent(*this, bag); });
}

QVariant ComboListBox::InputArray() const
{
    return d->input;
}

void ComboListBox::setInputArray(const QVariant &input)
{
    // Empty keeps the list: a host may pass an array it has not filled yet.
    if (IsEmpty(input))
        return;
    d->input = input;
    loadInputArray(d->list, input, Identifiers::Optional);
    notifyPut(QStringLiteral("InputArray"));
}

QString ComboListBox::StartValue() const
{
    return d->startValue;
}

void ComboListBox::setStartValue(const QString &text)
{
    d->startValue = text;
    // Every row is visited, so of equal texts the last one ends up selected.
    for (int row = 0; row < d->list->count(); ++row) {
        if (d->list->itemText(row) == text)
            d->list->setCurrentIndex(row);
    }
    notifyPut(QStringLiteral("StartValue"));
}

QString ComboListBox::Value() const
{
    return d->list->currentText();
}

qint16 ComboListBox::ValueID() const
{
    const int row = d->list->currentIndex();
    qint16 id = 0;
    // An identifier beyond 16 bits reads as 0, like no selection.
    if (row >= 0)
        attempt([&] { id = CInt(rowIdentifier(d->list, row)); });
    return id;
}

void ComboListBox::setValueID(qint16 id)
{
    for (int row = 0; row < d->list->count(); ++row) {
        if (rowIdentifier(d->list, row) == id) {
            d->list->setCurrentIndex(row);
            break;
        }
    }
    notifyPut(QStringLiteral("ValueID"));
}

QSize ComboListBox::sizeHint() const
{
    return lineSizeHint(hintChars);
}

QSize ComboListBox::minimumSizeHint() const
{
    return lineSizeHint(minimumHintChars);
}

void ComboListBox::resizeEvent(QResizeEvent *event)
{
    Control::resizeEvent(event);
    d->relayout();
}

void ComboListBox::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        updateGeometry();
    Control::changeEvent(event);
}

} // namespace zelkon
