#include <zelkon/common/conversions.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/common/variants.h>
#include <zelkon/smallcontrols/boxcombo.h>
#include <zelkon/smallcontrols/inputarray_p.h>

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>

namespace zelkon {

ZELKON_REGISTER_CONTROL(BoxCombo);

namespace {
constexpr int hintChars = 15;
constexpr int minimumHintChars = 4;
} // namespace

class BoxComboPrivate
{
public:
    explicit BoxComboPrivate(BoxCombo *q)
        : q(q)
        , combo(new QComboBox(q))
    { }

    // True when the key is used up here.
    bool keyDown(const QKeyEvent *event);
    void addTypedText();
    void relayout();

    BoxCombo *const q;
    QComboBox *const combo;
    QVariant input;
    QString startValue; // never assigned: StartValue only shows its text
    bool allowAddNew = false;
};

bool BoxComboPrivate::keyDown(const QKeyEvent *event)
{
    if (combo->currentText().isEmpty())
        return false;
    switch (keyCode(event)) {
    case KeyReturn:
        if (!allowAddNew)
            return false;
        addTypedText();
        // Used up, so that Enter that adds a name does not also press a dialog's default button.
        return true;
    case KeyEscape:
        combo->setEditText(QString());
        return true; // a second Escape, on the empty box, reaches the dialog
    default:
        return false;
    }
}

void BoxComboPrivate::addTypedText()
{
    const QString text = combo->currentText();
    for (int row = 0; row < combo->count(); ++row) {
        if (combo->itemText(row) == text) // case-sensitive: "A" is another entry than "a"
            return;
    }
    // Appended without selecting it: the typed text stays as it is and nothing is raised.
    const QSignalBlocker quiet(combo);
    const int selected = combo->currentIndex(); // Qt would select the first row of an empty box
    combo->addItem(text);
    combo->setCurrentIndex(selected);
    combo->setEditText(text);
}

void BoxComboPrivate::relayout()
{
    // The box spans the control's width and the control is exactly as high as the box.
    const int h = q->sizeHint().height();
    if (q->minimumHeight() != h || q->maximumHeight() != h)
        q->setFixedHeight(h);
    combo->setGeometry(0, 0, q->width(), h);
}

BoxCombo::BoxCombo(QWidget *parent)
    : Control(parent)
    , d(std::make_unique<BoxComboPrivate>(this))
{
    d->combo->setObjectName(QStringLiteral("Combo"));
    d->combo->setAccessibleName(loadString("entry"));
    d->combo->setEditable(true);
    // Entries are added by the Enter rule alone, and typing is never completed from the list.
    d->combo->setInsertPolicy(QComboBox::NoInsert);
    d->combo->setCompleter(nullptr);
    // An editable QComboBox selects the row that matches its text when editing finishes (Enter,
    // or the focus leaving) and reports that as a pick. Here a typed text stays typed text:
    // only a pick from the list selects a row and raises Change.
    QObject::disconnect(d->combo->lineEdit(), SIGNAL(editingFinished()), d->combo, nullptr);
    d->combo->installEventFilter(this);
    setFocusProxy(d->combo);
    setFocusPolicy(d->combo->focusPolicy());
    connect(d->combo, &QComboBox::activated, this, [this] { Q_EMIT Change(); });
    resize(sizeHint());
    d->relayout();
}

BoxCombo::~BoxCombo()
{
    d->combo->removeEventFilter(this);
}

void BoxCombo::ReadProperties(PropertyBag &bag)
{
    attempt(
        [&] { d->allowAddNew = CBool(bag.ReadProperty(QStringLiteral("AllowAddNew"), false)); });
    // Kept only: the list stays empty until the host assigns InputArray at run time.
    attempt([&] { d->input = bag.ReadProperty(QStringLiteral("InputArray"), QVariant()); });
    attempt([&] {
        d->combo->setEditText(CStr(bag.ReadProperty(QStringLiteral("StartValue"), QString())));
    });
    readExtent(*this, bag);
}

void BoxCombo::WriteProperties(PropertyBag &bag)
{
    ignoreErrors({
        [&] { bag.WriteProperty(QStringLiteral("AllowAddNew"), d->allowAddNew, false); },
        [&] { bag.WriteProperty(QStringLiteral("InputArray"), d->input, QVariant()); },
        [&] { bag.WriteProperty(QStringLiteral("StartValue"), d->startValue, QString()); },
        [&] { writeExtent(*this, bag); },
    });
}

QVariant BoxCombo::InputArray() const
{
    return d->input;
}

void BoxCombo::setInputArray(const QVariant &input)
{
    if (IsEmpty(input))
        return;
    d->input = input;
    loadInputArray(d->combo, input, Identifiers::Required);
    notifyPut(QStringLiteral("InputArray"));
}

QString BoxCombo::StartValue() const
{
    return d->startValue;
}

void BoxCombo::setStartValue(const QString &text)
{
    d->combo->setEditText(text);
    notifyPut(QStringLiteral("StartValue"));
}

QString BoxCombo::Value() const
{
    return d->combo->currentText();
}

void BoxCombo::setValue(const QString &text)
{
    d->combo->setEditText(text);
    notifyPut(QStringLiteral("Value"));
}

bool BoxCombo::AllowAddNew() const
{
    return d->allowAddNew;
}

void BoxCombo::setAllowAddNew(bool allow)
{
    put(d->allowAddNew, allow, QStringLiteral("AllowAddNew"));
}

QSize BoxCombo::sizeHint() const
{
    return lineSizeHint(hintChars);
}

QSize BoxCombo::minimumSizeHint() const
{
    return lineSizeHint(minimumHintChars);
}

bool BoxCombo::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == d->combo && event->type() == QEvent::KeyPress
        && d->keyDown(static_cast<QKeyEvent *>(event)))
        return true;
    return Control::eventFilter(watched, event);
}

void BoxCombo::resizeEvent(QResizeEvent *event)
{
    Control::resizeEvent(event);
    d->relayout();
}

void BoxCombo::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        updateGeometry();
        d->relayout();
    }
    Control::changeEvent(event);
}

} // namespace zelkon
