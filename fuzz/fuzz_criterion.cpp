// Criteria typed by anyone: a search either runs or raises zelkon::Error, and a criterion that
// reads is matched against every kind of value that a database returns.
#include <zelkon/common/error.h>
#include <zelkon/data/recordset.h>

#include <QString>

#include <cstdint>

namespace {

// Text, whole and fractional numbers, Null, date texts with and without a time, and a text
// holding wildcards, under the column names of the corpus. The recordset opens its own
// connection and lets it go once the rows are read, so nothing of the database outlives the run.
zelkon::Recordset &recordset()
{
    static zelkon::Recordset rs;
    if (!rs.isOpen()) {
        rs.Open(
            QStringLiteral("SELECT 'abc' AS name, 42 AS id, '2024-05-10' AS [order date] UNION ALL "
                           "SELECT 'Ab%', 3.5, '2024-05-10 12:00' UNION ALL "
                           "SELECT NULL, NULL, NULL UNION ALL "
                           "SELECT 'North', -1e300, 45422 UNION ALL "
                           "SELECT 'Иванов', '017', 'not a date'"),
            QStringLiteral("Driver=QSQLITE;Database=:memory:"));
    }
    return rs;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    zelkon::Recordset &rs = recordset();
    try {
        rs.Find(text, 0, zelkon::Recordset::SearchForward, zelkon::Recordset::BookmarkFirst);
        rs.FindLast(text);
    } catch (const zelkon::Error &) { }
    return 0;
}
