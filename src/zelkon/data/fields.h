// zelkon::Fields: the field collection of a Recordset.
#pragma once

#include <zelkon/common/global.h>

#include <QObject>
#include <QVariant>

#include <memory>

namespace zelkon {

class Field;
class FieldsPrivate;
class Recordset;

class ZELKON_EXPORT Fields : public QObject
{
    Q_OBJECT
    Q_PROPERTY(qint32 Count READ count)
public:
    explicit Fields(Recordset *recordset);
    ~Fields() override;

    qint32 count() const; // 3704 while the recordset is closed
    // By ordinal (from 0) or by name (without regard to case); 3265 for neither.
    Q_INVOKABLE QObject *Item(const QVariant &index);
    zelkon::Field *item(int index);

private:
    std::unique_ptr<FieldsPrivate> d;
};

} // namespace zelkon
