#include <zelkon/common/conversions.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/reldate/reldate_p.h>

#include <QScopedValueRollback>

namespace zelkon {

namespace {

QString typeName(const QObject *object)
{
    const QString name = QString::fromLatin1(object->metaObject()->className());
    const qsizetype colon = name.lastIndexOf(QLatin1String("::"));
    return colon < 0 ? name : name.mid(colon + 2);
}

} // namespace

Control *RelDatePrivate::findPartner(const QString &name) const
{
    if (name.isEmpty())
        return nullptr;
    QString base = name;
    bool indexed = false;
    qint16 index = -1;
    const qsizetype open = name.indexOf(QLatin1Char('('));
    if (open >= 0) {
        const qsizetype close = name.indexOf(QLatin1Char(')'));
        const qsizetype length = close - open - 1;
        if (close < 0 || length < 0)
            return nullptr;
        const QString indexText = name.mid(open + 1, length);
        if (!IsNumeric(indexText) || !attempt([&] { index = CInt(indexText); }))
            return nullptr;
        indexed = true;
        base = name.left(open);
    }
    const QList<Control *> controls = Control::formControls(q->parentWidget());
    for (Control *control : controls) {
        if (control->objectName().compare(base, Qt::CaseInsensitive) != 0
            || typeName(control) != QLatin1String("RelDate"))
            continue;
        // The first same-named control ends the walk when no index is asked for, even when it is
        // an array member and a later control would match.
        if (!indexed)
            return control->Index() == -1 ? control : nullptr;
        if (control->Index() == index)
            return control;
    }
    return nullptr;
}

void RelDatePrivate::synchronizeValue()
{
    if (synchronizing || !synchValue)
        return;
    const QScopedValueRollback<bool> guard(synchronizing, true);
    if (model.isAll())
        return;
    // The upper bound first: with crossed bounds the lower one wins.
    if (!topControl.isEmpty()) {
        if (Control *top = findPartner(topControl)) {
            attempt([&] {
                const QVariant bound = top->property("RetDate");
                if (!RelativeDate::isAll(bound) && CDate(model.storedDate()) > CDate(bound))
                    putDate(bound);
            });
        } else {
            q->setTopControl(QString());
        }
    }
    if (!bootControl.isEmpty()) {
        if (Control *bottom = findPartner(bootControl)) {
            attempt([&] {
                const QVariant bound = bottom->property("RetDate");
                if (!RelativeDate::isAll(bound) && CDate(model.storedDate()) < CDate(bound))
                    putDate(bound);
            });
        } else {
            q->setBootControl(QString());
        }
    }
}

void RelDatePrivate::propagateMode()
{
    const bool relative = model.isRelative();
    const QList<Control *> controls = Control::formControls(q->parentWidget());
    for (Control *control : controls) {
        if (typeName(control) != QLatin1String("RelDate"))
            continue;
        // A follower switches in turn and propagates again; the cascade ends at controls that
        // already have the mode, which are not put again.
        attempt([&] {
            if (CLng(control->property("GlobalSynchro")) == srdSynchro
                && control->property("Relative").toBool() != relative)
                control->setProperty("Relative", relative);
        });
    }
}

// A partner name that no longer names a control of the form is forgotten when it is read.
QString RelDatePrivate::livePartnerName(QString &field, const QString &property)
{
    if (!field.isEmpty() && !findPartner(field)) {
        field.clear();
        q->notifyPut(property);
    }
    return field;
}

void RelDatePrivate::putPartnerName(QString &field, const QString &name, const QString &property)
{
    field = findPartner(name) ? name : QString();
    synchronizeValue();
    q->notifyPut(property);
}

} // namespace zelkon
