#include <zelkon/data/field.h>
#include <zelkon/data/recordset.h>

namespace zelkon {

Field::Field(Recordset *recordset, int index, QObject *parent)
    : QObject(parent)
    , m_recordset(recordset)
    , m_index(index)
{ }

QVariant Field::value() const
{
    return m_recordset->value(m_index);
}

QString Field::name() const
{
    return m_recordset->fieldName(m_index);
}

} // namespace zelkon
