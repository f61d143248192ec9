#include <zelkon/data/dataerror.h>
#include <zelkon/data/field.h>
#include <zelkon/data/fields.h>
#include <zelkon/data/recordset.h>

#include <zelkon/common/conversions.h>

#include <QList>

namespace zelkon {

class FieldsPrivate
{
public:
    Recordset *recordset;
    QList<zelkon::Field *> fields; // created on first use, kept for the recordset's life
};

Fields::Fields(Recordset *recordset)
    : QObject(recordset)
    , d(std::make_unique<FieldsPrivate>(FieldsPrivate{recordset, {}}))
{ }

Fields::~Fields() = default;

qint32 Fields::count() const
{
    return d->recordset->fieldCount();
}

zelkon::Field *Fields::item(int index)
{
    if (index < 0 || index >= d->recordset->fieldCount())
        throw Error(ItemNotFound, QStringLiteral("No field number %1").arg(index));
    while (d->fields.size() <= index)
        d->fields.append(new zelkon::Field(d->recordset, int(d->fields.size()), this));
    return d->fields.at(index);
}

QObject *Fields::Item(const QVariant &index)
{
    if (index.metaType().id() == QMetaType::QString) {
        const QString name = index.toString();
        const int i = d->recordset->fieldIndex(name);
        if (i < 0)
            throw Error(ItemNotFound, QStringLiteral("No field named \"%1\"").arg(name));
        return item(i);
    }
    return item(CLng(index));
}

} // namespace zelkon
