// zelkon::Lookup: the recordset side of the Navigator: the column walk and the first match.
#pragma once

#include <zelkon/data/recordsetaccess_p.h>

#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace zelkon {

// Talks to the data source by member name only, so a host's own recordset object serves as well
// as a zelkon::Recordset. No member ever raises: a lookup must never disturb the host's form, so
// a missing source, a closed recordset, a bad field index or a refused criterion all read as
// "nothing there".
class Lookup
{
public:
    // An invalid QVariant clears the source; anything else is kept (a value that is no object
    // behaves as an object without the members).
    void setSource(const QVariant &source);
    QVariant source() const { return m_source; }
    bool hasSource() const { return m_source.isValid(); }

    // The column's values as text, in recordset order. A value that has no text (Null) gives no
    // line, as the platform's text conversion refuses it.
    QStringList column(int field);
    // The name of column `field`; empty when there is none.
    QString fieldName(int field) const;
    // Moves to the first record, finds forward from there, and returns the matching record's value
    // of column `valueField` as text; nothing when no record matches or the search fails.
    std::optional<QString> find(const QString &criteria, int valueField);

private:
    QVariant m_source;
    RecordsetAccess m_access;
};

} // namespace zelkon
