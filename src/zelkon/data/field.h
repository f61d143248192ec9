/// \file
/// zelkon::Field: one column of a Recordset, read at the recordset's current row.
#pragma once

#include <zelkon/common/global.h>

#include <QObject>
#include <QVariant>

#include <memory>

namespace zelkon {

class FieldPrivate;
class Recordset;

/// One column of a Recordset, read at the recordset's current row; reached as `Fields(i)`.
///
/// A Field stands for a column position, not for one result: after the recordset is closed and
/// opened again it reads column `index` of the new result (or fails with 3265 when there is none),
/// so a host that kept the object never holds a dangling pointer.
class ZELKON_EXPORT Field : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariant Value READ value)
    Q_PROPERTY(QString Name READ name)
public:
    /// The column at `index` (from 0) of `recordset`; made by Recordset::Fields(), not by hosts.
    Field(Recordset *recordset, int index, QObject *parent);
    ~Field() override;

    /// The current record's value; Null as QVariant::fromValue(nullptr); 3021 at BOF or EOF.
    QVariant value() const;
    /// The column's name; 3265 when the result has no such column.
    QString name() const;
    /// The column's position, from 0.
    int index() const;

private:
    std::unique_ptr<FieldPrivate> d;
};

} // namespace zelkon
