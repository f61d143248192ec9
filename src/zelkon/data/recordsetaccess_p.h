// zelkon::RecordsetAccess: the one place where controls talk to any recordset object by name.
#pragma once

#include <zelkon/common/global.h>
#include <zelkon/common/variants.h>

#include <QPointer>
#include <QVariant>

namespace zelkon {

class Recordset;

// Wraps any QObject*. A zelkon::Recordset is driven through its C++ members; any other object by
// member name (properties and Q_INVOKABLE methods, arguments converted to the declared types).
// A member the object does not answer raises zelkon::Error 438; a null (or destroyed) object 91.
// Errors raised by the recordset itself reach the caller unchanged.
class RecordsetAccess
{
public:
    explicit RecordsetAccess(QObject *recordset = nullptr);

    QObject *object() const { return m_object; }
    bool isNull() const { return m_object.isNull(); }

    void open(const QVariant &source, const QVariant &activeConnection = missingVariant(),
              const QVariant &cursorType = missingVariant(),
              const QVariant &lockType = missingVariant(),
              const QVariant &options = missingVariant()); // Open(5 args)
    void moveFirst(); // MoveFirst()
    void moveLast(); // MoveLast()
    void moveNext(); // MoveNext()
    bool atEOF() const; // property EOF
    int fieldCount() const; // Fields.Count
    QVariant fieldValue(int field) const; // Fields(field).Value
    QString fieldName(int field) const; // Fields(field).Name
    void find(const QString &criteria, qint32 skipRecords = 0, qint32 searchDirection = 1,
              const QVariant &start = missingVariant()); // Find(4 args)
    qint32 absolutePosition() const; // property AbsolutePosition
    void findFirst(const QString &criteria); // FindFirst(criteria)
    bool noMatch() const; // property NoMatch

private:
    QObject *target() const; // 91 when null
    Recordset *native() const; // the object when it is a zelkon::Recordset, else nullptr
    QObject *fieldObject(int field) const; // Fields(field), by name

    QPointer<QObject> m_object;
};

} // namespace zelkon
