// zelkon::Field: one column of a Recordset, read at the recordset's current row.
#pragma once

#include <zelkon/common/global.h>

#include <QObject>
#include <QVariant>

#include <memory>

namespace zelkon {

class FieldPrivate;
class Recordset;

// A Field stands for a column position, not for one result: after the recordset is closed and
// opened again it reads column `index` of the new result (or fails with 3265 when there is none),
// so a host that kept the object never holds a dangling pointer.
class ZELKON_EXPORT Field : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariant Value READ value)
    Q_PROPERTY(QString Name READ name)
public:
    Field(Recordset *recordset, int index, QObject *parent);
    ~Field() override;

    QVariant value() const; // Null as QVariant::fromValue(nullptr); 3021 at BOF/EOF
    QString name() const;
    int index() const;

private:
    std::unique_ptr<FieldPrivate> d;
};

} // namespace zelkon
