#include "propertypage.h"

#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/platform.h>

#include <QCheckBox>
#include <QDateTime>
#include <QFormLayout>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QMetaProperty>
#include <QPointer>

namespace zelkon {

class PropertyPagePrivate
{
public:
    // Guarded: a designer may delete a selected control while its page is open.
    QList<QPointer<QObject>> selection;
    bool changed = false;
    bool filling = false;
    QFormLayout *layout = nullptr;
};

namespace {

QHash<QString, PropertyPageFactory> &pages()
{
    static QHash<QString, PropertyPageFactory> registered;
    return registered;
}

// The value a late-bound assignment would hand to a property of this type.
QVariant convertedFor(const QMetaProperty &property, const QVariant &value)
{
    switch (property.userType()) {
    case QMetaType::Bool:
        return CBool(value);
    case QMetaType::Short:
        return QVariant::fromValue(CInt(value));
    case QMetaType::Int:
        return CLng(value);
    case QMetaType::Float:
        return QVariant::fromValue(float(CDbl(value)));
    case QMetaType::Double:
        return CDbl(value);
    case QMetaType::QString:
        return CStr(value);
    case QMetaType::QDateTime:
        return CDate(value);
    default:
        return value;
    }
}

} // namespace

PropertyPage::PropertyPage(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<PropertyPagePrivate>())
{
    d->layout = new QFormLayout(this);
}

PropertyPage::~PropertyPage() = default;

void PropertyPage::setSelectedControls(const QList<QObject *> &controls)
{
    d->selection.clear();
    for (QObject *c : controls)
        d->selection.append(c);
    // Filling the fields runs their change handlers too; what is read is no edit.
    d->filling = true;
    SelectionChanged();
    d->filling = false;
    setChanged(false);
}

QList<QObject *> PropertyPage::SelectedControls() const
{
    QList<QObject *> controls;
    for (const QPointer<QObject> &c : d->selection) {
        if (c)
            controls.append(c.data());
    }
    return controls;
}

bool PropertyPage::Changed() const
{
    return d->changed;
}

void PropertyPage::setChanged(bool changed)
{
    if (d->changed == changed)
        return;
    d->changed = changed;
    Q_EMIT ChangedChanged(changed);
}

void PropertyPage::SelectionChanged() { }

void PropertyPage::ApplyChanges() { }

QObject *PropertyPage::control() const
{
    const QList<QObject *> controls = SelectedControls();
    return controls.isEmpty() ? nullptr : controls.first();
}

QVariant PropertyPage::readProperty(const char *name) const
{
    const QObject *c = control();
    return c ? c->property(name) : QVariant();
}

void PropertyPage::writeProperty(const char *name, const QVariant &value)
{
    QObject *c = control();
    if (!c)
        throw Error(ObjectNotSet);
    const QMetaObject *meta = c->metaObject();
    const int index = meta->indexOfProperty(name);
    if (index < 0 || !meta->property(index).isWritable())
        throw Error(MemberNotSupported);
    const QMetaProperty property = meta->property(index);
    try {
        if (!property.write(c, convertedFor(property, value)))
            throw Error(TypeMismatch);
    } catch (const Error &error) {
        // The designer sees which of the page's fields the control refused.
        throw Error(error.number(),
                    QStringLiteral("%1: %2").arg(QLatin1String(name), error.message()));
    }
}

void PropertyPage::applyInOrder(OnError onError,
                                std::initializer_list<std::function<void()>> writes)
{
    if (!control())
        return;
    for (const auto &write : writes) {
        try {
            write();
        } catch (const Error &error) {
            if (onError == OnError::Continue)
                continue;
            Platform::current().messageBox(error.message());
            return;
        }
    }
    setChanged(false);
}

void PropertyPage::fieldEdited()
{
    if (!d->filling)
        setChanged(true);
}

QCheckBox *PropertyPage::addCheckBox(const QString &name, const QString &caption)
{
    auto *box = new QCheckBox(caption, this);
    box->setObjectName(name);
    connect(box, &QCheckBox::stateChanged, this, &PropertyPage::fieldEdited);
    d->layout->addRow(box);
    return box;
}

QLineEdit *PropertyPage::addTextBox(const QString &name, const QString &labelName,
                                    const QString &label)
{
    auto *box = new QLineEdit(this);
    connect(box, &QLineEdit::textChanged, this, &PropertyPage::fieldEdited);
    addField(box, name, labelName, label);
    return box;
}

void PropertyPage::addField(QWidget *field, const QString &name, const QString &labelName,
                            const QString &label)
{
    field->setObjectName(name);
    auto *caption = new QLabel(label, this);
    caption->setObjectName(labelName);
    caption->setBuddy(field);
    d->layout->addRow(caption, field);
}

void PropertyPage::showFlag(QCheckBox *box, const QVariant &value)
{
    bool set = false;
    attempt([&] { set = (CLng(value) & 1) != 0; });
    box->setCheckState(set ? Qt::Checked : Qt::Unchecked);
}

int PropertyPage::checkValue(const QCheckBox *box)
{
    switch (box->checkState()) {
    case Qt::Checked:
        return 1;
    case Qt::PartiallyChecked:
        return 2;
    default:
        return 0;
    }
}

bool registerPropertyPage(const QString &name, PropertyPageFactory factory)
{
    if (!factory || pages().contains(name))
        return false;
    pages().insert(name, factory);
    return true;
}

PropertyPage *createPropertyPage(const QString &name, QWidget *parent)
{
    const PropertyPageFactory factory = pages().value(name);
    return factory ? factory(parent) : nullptr;
}

} // namespace zelkon
