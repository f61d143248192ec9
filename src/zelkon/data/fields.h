/// \file
/// zelkon::Fields: the field collection of a Recordset.
#pragma once

#include <zelkon/common/global.h>

#include <QObject>
#include <QVariant>

#include <memory>

namespace zelkon {

class Field;
class FieldsPrivate;
class Recordset;

/// The field collection of a Recordset, one Field per column.
class ZELKON_EXPORT Fields : public QObject
{
    Q_OBJECT
    Q_PROPERTY(qint32 Count READ count)
public:
    /// The collection of `recordset`; made by the recordset, not by hosts.
    explicit Fields(Recordset *recordset);
    ~Fields() override;

    /// The number of columns; 3704 while the recordset is closed.
    qint32 count() const;
    /// By ordinal (from 0) or by name (without regard to case); 3265 for neither.
    Q_INVOKABLE QObject *Item(const QVariant &index);
    /// The field at ordinal `index` (from 0); 3265 out of range.
    zelkon::Field *item(int index);

private:
    std::unique_ptr<FieldsPrivate> d;
};

} // namespace zelkon
