#include <zelkon/navigator/lookup_p.h>

#include <zelkon/common/conversions.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/recordset.h>

namespace zelkon {

void Lookup::setSource(const QVariant &source)
{
    m_source = source;
    m_access = RecordsetAccess(toObject(source));
}

QStringList Lookup::column(int field)
{
    // MoveFirst, then one line per record until EOF. A failing move or EOF ends the walk (it
    // could not go on), a failing value only skips its line.
    QStringList lines;
    attempt([&] {
        m_access.moveFirst();
        while (!m_access.atEOF()) {
            attempt([&] { lines.append(CStr(m_access.fieldValue(field))); });
            m_access.moveNext();
        }
    });
    return lines;
}

QString Lookup::fieldName(int field) const
{
    QString name;
    attempt([&] { name = m_access.fieldName(field); });
    return name;
}

std::optional<QString> Lookup::find(const QString &criteria, int valueField)
{
    std::optional<QString> value;
    attempt([&] {
        m_access.moveFirst();
        m_access.find(criteria, 0, Recordset::SearchForward, Recordset::BookmarkFirst);
        if (m_access.atEOF())
            return;
        // A match whose value has no text still is a match, with an empty value.
        value = QString();
        attempt([&] { value = CStr(m_access.fieldValue(valueField)); });
    });
    return value;
}

} // namespace zelkon
