#include <zelkon/data/dataerror.h>
#include <zelkon/data/field.h>
#include <zelkon/data/fields.h>
#include <zelkon/data/recordset.h>

#include <zelkon/common/conversions.h>

namespace zelkon {

Fields::Fields(Recordset *recordset)
    : QObject(recordset)
    , m_recordset(recordset)
{ }

qint32 Fields::count() const
{
    return m_recordset->fieldCount();
}

zelkon::Field *Fields::item(int index)
{
    if (index < 0 || index >= m_recordset->fieldCount())
        throw Error(ItemNotFound, QStringLiteral("No field number %1").arg(index));
    while (m_fields.size() <= index)
        m_fields.append(new zelkon::Field(m_recordset, int(m_fields.size()), this));
    return m_fields.at(index);
}

QObject *Fields::Item(const QVariant &index)
{
    if (index.metaType().id() == QMetaType::QString) {
        const QString name = index.toString();
        const int i = m_recordset->fieldIndex(name);
        if (i < 0)
            throw Error(ItemNotFound, QStringLiteral("No field named \"%1\"").arg(name));
        return item(i);
    }
    return item(CLng(index));
}

} // namespace zelkon
