#include <zelkon/data/recordset.h>
#include <zelkon/data/recordsetaccess_p.h>

#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>

#include <QMetaMethod>
#include <QMetaObject>

#include <array>

namespace zelkon {

namespace {

constexpr int maxArguments = 10; // what QMetaMethod::invoke takes

[[noreturn]] void unsupported(const QObject *object, const char *member)
{
    throw Error(MemberNotSupported,
                QStringLiteral("%1 has no member %2")
                    .arg(QLatin1String(object->metaObject()->className()), QLatin1String(member)));
}

// Picks the Q_INVOKABLE method `name` taking exactly the arguments given, else the shortest one
// taking more (its missing arguments left Missing or default), converts each argument to the
// declared type and calls it. Qt's own invokeMethod needs the declared types at the call site,
// which a recordset written elsewhere does not promise.
QVariant call(QObject *object, const char *name, QVariantList args = {})
{
    const QMetaObject *meta = object->metaObject();
    QMetaMethod chosen;
    for (int i = 0; i < meta->methodCount(); ++i) {
        const QMetaMethod m = meta->method(i);
        if (m.name() != name || m.parameterCount() < args.size()
            || m.parameterCount() > maxArguments)
            continue;
        if (!chosen.isValid() || m.parameterCount() < chosen.parameterCount())
            chosen = m;
    }
    if (!chosen.isValid())
        unsupported(object, name);
    while (args.size() < chosen.parameterCount())
        args.append(missingVariant());

    std::array<QGenericArgument, maxArguments> generic{};
    for (int i = 0; i < chosen.parameterCount(); ++i) {
        const QMetaType type = chosen.parameterMetaType(i);
        if (type != QMetaType::fromType<QVariant>() && args[i].metaType() != type) {
            QVariant converted = IsMissing(args[i]) ? QVariant(type) : args[i];
            if (!converted.convert(type))
                throw Error(TypeMismatch,
                            QStringLiteral("Argument %1 of %2 cannot be converted")
                                .arg(i + 1)
                                .arg(QLatin1String(name)));
            args[i] = converted;
        }
        generic[i] = type == QMetaType::fromType<QVariant>()
            ? QGenericArgument("QVariant", &args[i])
            : QGenericArgument(type.name(), args[i].constData());
    }
    QVariant result;
    QGenericReturnArgument ret;
    const QMetaType returnType = chosen.returnMetaType();
    if (returnType == QMetaType::fromType<QVariant>()) {
        ret = QGenericReturnArgument("QVariant", &result);
    } else if (returnType.isValid() && returnType.id() != QMetaType::Void) {
        result = QVariant(returnType);
        ret = QGenericReturnArgument(returnType.name(), result.data());
    }
    const bool ok = chosen.invoke(object, Qt::DirectConnection, ret, generic[0], generic[1],
                                  generic[2], generic[3], generic[4], generic[5], generic[6],
                                  generic[7], generic[8], generic[9]);
    if (!ok)
        unsupported(object, name);
    return result;
}

QVariant read(const QObject *object, const char *name)
{
    if (object->metaObject()->indexOfProperty(name) < 0
        && !object->dynamicPropertyNames().contains(name))
        unsupported(object, name);
    return object->property(name);
}

QObject *asObject(const QObject *owner, const QVariant &value, const char *member)
{
    QObject *object = toObject(value);
    if (!object)
        unsupported(owner, member);
    return object;
}

} // namespace

RecordsetAccess::RecordsetAccess(QObject *recordset)
    : m_object(recordset)
{ }

QObject *RecordsetAccess::target() const
{
    if (m_object.isNull())
        throw Error(ObjectNotSet);
    return m_object.data();
}

Recordset *RecordsetAccess::native() const
{
    return qobject_cast<Recordset *>(target());
}

void RecordsetAccess::open(const QVariant &source, const QVariant &activeConnection,
                           const QVariant &cursorType, const QVariant &lockType,
                           const QVariant &options)
{
    if (Recordset *r = native())
        return r->Open(source, activeConnection, cursorType, lockType, options);
    call(target(), "Open", {source, activeConnection, cursorType, lockType, options});
}

void RecordsetAccess::moveFirst()
{
    if (Recordset *r = native())
        return r->MoveFirst();
    call(target(), "MoveFirst");
}

void RecordsetAccess::moveLast()
{
    if (Recordset *r = native())
        return r->MoveLast();
    call(target(), "MoveLast");
}

void RecordsetAccess::moveNext()
{
    if (Recordset *r = native())
        return r->MoveNext();
    call(target(), "MoveNext");
}

bool RecordsetAccess::atEOF() const
{
    if (const Recordset *r = native())
        return r->atEOF();
    return CBool(read(target(), "EOF"));
}

int RecordsetAccess::fieldCount() const
{
    if (const Recordset *r = native())
        return r->fieldCount();
    QObject *object = target();
    return CLng(read(asObject(object, read(object, "Fields"), "Fields"), "Count"));
}

QObject *RecordsetAccess::fieldObject(int field) const
{
    QObject *object = target();
    // Fields(i) as a method of the recordset, else Fields.Item(i) on the collection.
    const QMetaObject *meta = object->metaObject();
    for (int i = 0; i < meta->methodCount(); ++i) {
        if (meta->method(i).name() == "Fields")
            return asObject(object, call(object, "Fields", {field}), "Fields");
    }
    QObject *fields = asObject(object, read(object, "Fields"), "Fields");
    return asObject(fields, call(fields, "Item", {field}), "Item");
}

QVariant RecordsetAccess::fieldValue(int field) const
{
    if (const Recordset *r = native())
        return r->value(field);
    return read(fieldObject(field), "Value");
}

QString RecordsetAccess::fieldName(int field) const
{
    if (const Recordset *r = native())
        return r->fieldName(field);
    return CStr(read(fieldObject(field), "Name"));
}

void RecordsetAccess::find(const QString &criteria, qint32 skipRecords, qint32 searchDirection,
                           const QVariant &start)
{
    if (Recordset *r = native())
        return r->Find(criteria, skipRecords, searchDirection, start);
    call(target(), "Find", {criteria, skipRecords, searchDirection, start});
}

qint32 RecordsetAccess::absolutePosition() const
{
    if (const Recordset *r = native())
        return r->absolutePosition();
    return CLng(read(target(), "AbsolutePosition"));
}

void RecordsetAccess::findFirst(const QString &criteria)
{
    if (Recordset *r = native())
        return r->FindFirst(criteria);
    call(target(), "FindFirst", {criteria});
}

bool RecordsetAccess::noMatch() const
{
    if (const Recordset *r = native())
        return r->noMatch();
    return CBool(read(target(), "NoMatch"));
}

} // namespace zelkon
