#include <zelkon/data/field.h>
#include <zelkon/data/recordset.h>

namespace zelkon {

class FieldPrivate
{
public:
    Recordset *recordset;
    int index;
};

Field::Field(Recordset *recordset, int index, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<FieldPrivate>(FieldPrivate{recordset, index}))
{ }

Field::~Field() = default;

QVariant Field::value() const
{
    return d->recordset->value(d->index);
}

QString Field::name() const
{
    return d->recordset->fieldName(d->index);
}

int Field::index() const
{
    return d->index;
}

} // namespace zelkon
