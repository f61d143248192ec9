#include <zelkon/data/connection.h>
#include <zelkon/data/criterion_p.h>
#include <zelkon/data/dataerror.h>
#include <zelkon/data/fields.h>
#include <zelkon/data/recordset.h>

#include <zelkon/common/conversions.h>
#include <zelkon/common/registry.h>

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>
#include <limits>
#include <optional>

namespace zelkon {

namespace {

bool given(const QVariant &v)
{
    return !IsMissing(v) && !IsEmpty(v) && !IsNull(v);
}

// The table's name as the database spells it: servers that fold unquoted names (PostgreSQL to
// lower case) would not find "Customers" once the name is quoted as an identifier.
QString tableSql(const QSqlDatabase &db, const QString &table)
{
    QSqlDriver *driver = db.driver();
    QString name = table.trimmed();
    if (!driver->isIdentifierEscaped(name, QSqlDriver::TableName)) {
        const QStringList tables = db.tables(QSql::AllTables);
        if (!tables.contains(name)) {
            for (const QString &t : tables) {
                if (t.compare(name, Qt::CaseInsensitive) == 0) {
                    name = t;
                    break;
                }
            }
        }
    }
    return QStringLiteral("SELECT * FROM ") + driver->escapeIdentifier(name, QSqlDriver::TableName);
}

} // namespace

// The values of one column, in blocks of a fixed size: one growing array would be copied at
// every growth, and blocks this small come back from the allocator warm when a recordset is
// opened again instead of being faulted in afresh from the system.
struct Recordset::Column
{
    static constexpr int blockBits = 11;
    static constexpr int blockSize = 1 << blockBits;

    std::vector<std::vector<QVariant>> blocks;

    void append(QVariant &&v)
    {
        if (blocks.empty() || blocks.back().size() == blockSize) {
            blocks.emplace_back();
            blocks.back().reserve(blockSize);
        }
        blocks.back().push_back(std::move(v));
    }
    const QVariant &at(int row) const { return blocks[row >> blockBits][row & (blockSize - 1)]; }
};

Recordset::Recordset(QObject *parent)
    : QObject(parent)
{ }

Recordset::~Recordset() = default;

void Recordset::Open(const QVariant &source, const QVariant &activeConnection,
                     const QVariant &cursorType, const QVariant &lockType, const QVariant &options)
{
    Q_UNUSED(cursorType);
    Q_UNUSED(lockType);
    if (m_open)
        throw Error(ObjectOpen, QStringLiteral("The recordset is already open"));
    const QString text = given(source) ? CStr(source).trimmed() : QString();
    if (text.isEmpty())
        throw Error(BadArguments, QStringLiteral("No source to open"));
    const QVariant connectionArg = given(activeConnection) ? activeConnection : m_activeConnection;

    std::optional<Connection> own; // a connection string gets a connection of its own, released
                                   // as soon as the rows are in memory
    Connection *connection = nullptr;
    if (IsObject(connectionArg)) {
        connection = qobject_cast<Connection *>(toObject(connectionArg));
        if (!connection)
            throw Error(ConnectionNotUsable,
                        QStringLiteral("The active connection is not a connection object"));
    } else if (given(connectionArg)) {
        own.emplace();
        own->Open(CStr(connectionArg));
        connection = &*own;
    } else {
        throw Error(ConnectionNotUsable, QStringLiteral("No active connection"));
    }
    const QSqlDatabase db = connection->database();

    qint32 type = 0;
    if (given(options))
        type = CLng(options);
    bool table = false;
    if (type == CommandTable || type == CommandTableDirect)
        table = true;
    else if (type != CommandText)
        table = !std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.isSpace(); });

    load(db, table ? tableSql(db, text) : text);
}

void Recordset::load(const QSqlDatabase &db, const QString &sql)
{
    QSqlQuery query(db);
    query.setForwardOnly(true);
    // Numeric columns arrive as numbers, not as the driver's exact decimal text.
    query.setNumericalPrecisionPolicy(QSql::LowPrecisionDouble);
    if (!query.exec(sql))
        throw Error(DatabaseCallFailed, query.lastError().text());
    if (!query.isSelect())
        throw Error(BadArguments, QStringLiteral("The source returns no records: %1").arg(sql));
    const QSqlRecord record = query.record();
    const int n = record.count();
    QStringList names;
    names.reserve(n);
    for (int i = 0; i < n; ++i)
        names.append(record.fieldName(i));
    std::vector<Column> columns(n);
    const QVariant null = nullVariant();
    int rows = 0;
    while (query.next()) {
        if (rows == std::numeric_limits<int>::max())
            throw Error(Overflow);
        for (int i = 0; i < n; ++i) {
            QVariant v = query.value(i);
            if (v.isNull())
                v = null;
            else if (v.metaType().id() == QMetaType::QDate)
                v = QDateTime(v.toDate(), QTime(0, 0)); // dates are date-times everywhere here
            columns[i].append(std::move(v));
        }
        ++rows;
    }
    if (query.lastError().isValid())
        throw Error(DatabaseCallFailed, query.lastError().text());

    m_names = std::move(names);
    m_columns = std::move(columns);
    m_rows = rows;
    m_position = 0;
    m_noMatch = false;
    m_open = true;
}

void Recordset::Close()
{
    requireOpen();
    m_open = false;
    m_names.clear();
    m_columns.clear();
    m_rows = 0;
    m_position = 0;
    m_noMatch = false;
}

void Recordset::requireOpen() const
{
    if (!m_open)
        throw Error(ObjectClosed,
                    QStringLiteral("Operation is not allowed when the recordset is closed"));
}

void Recordset::requireRecord() const
{
    requireOpen();
    if (m_position < 0 || m_position >= m_rows)
        throw Error(NoCurrentRecord,
                    QStringLiteral("Either BOF or EOF is True: there is no current record"));
}

void Recordset::MoveFirst()
{
    requireOpen();
    m_position = 0;
}

void Recordset::MoveLast()
{
    requireOpen();
    m_position = m_rows > 0 ? m_rows - 1 : 0;
}

void Recordset::MoveNext()
{
    requireOpen();
    if (m_position >= m_rows)
        throw Error(NoCurrentRecord, QStringLiteral("MoveNext past the end of the recordset"));
    ++m_position;
}

void Recordset::MovePrevious()
{
    requireOpen();
    if (m_position < 0 || m_rows == 0)
        throw Error(NoCurrentRecord,
                    QStringLiteral("MovePrevious before the start of the recordset"));
    --m_position;
}

bool Recordset::atEOF() const
{
    requireOpen();
    return m_position >= m_rows;
}

bool Recordset::atBOF() const
{
    requireOpen();
    return m_position < 0 || m_rows == 0;
}

qint32 Recordset::recordCount() const
{
    requireOpen();
    return m_rows;
}

qint32 Recordset::absolutePosition() const
{
    requireOpen();
    if (m_position >= m_rows)
        return PositionEOF;
    if (m_position < 0)
        return PositionBOF;
    return m_position + 1;
}

void Recordset::setAbsolutePosition(qint32 position)
{
    requireOpen();
    if (position < 1 || position > m_rows)
        throw Error(BadArguments,
                    QStringLiteral("AbsolutePosition %1 is out of range").arg(position));
    m_position = position - 1;
}

void Recordset::setActiveConnection(const QVariant &connection)
{
    if (m_open)
        throw Error(ObjectOpen, QStringLiteral("The recordset is open"));
    m_activeConnection = connection;
}

int Recordset::fieldCount() const
{
    requireOpen();
    return int(m_names.size());
}

QString Recordset::fieldName(int field) const
{
    requireOpen();
    if (field < 0 || field >= m_names.size())
        throw Error(ItemNotFound, QStringLiteral("No field number %1").arg(field));
    return m_names.at(field);
}

int Recordset::fieldIndex(const QString &name) const
{
    requireOpen();
    for (int i = 0; i < m_names.size(); ++i) {
        if (m_names.at(i).compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

QVariant Recordset::value(int field) const
{
    requireRecord();
    return value(field, m_position);
}

QVariant Recordset::value(int field, int row) const
{
    requireOpen();
    if (field < 0 || field >= int(m_columns.size()))
        throw Error(ItemNotFound, QStringLiteral("No field number %1").arg(field));
    if (row < 0 || row >= m_rows)
        throw Error(NoCurrentRecord, QStringLiteral("No record number %1").arg(row));
    return m_columns[field].at(row);
}

zelkon::Fields *Recordset::fields()
{
    if (!m_fields)
        m_fields = new zelkon::Fields(this);
    return m_fields;
}

QObject *Recordset::fieldsObject()
{
    return fields();
}

QObject *Recordset::Fields(const QVariant &index)
{
    return fields()->Item(index);
}

int Recordset::findRow(const QString &criteria, int from, int step) const
{
    const Criterion criterion(criteria);
    const int column = fieldIndex(criterion.columnName());
    if (column < 0)
        throw Error(
            BadArguments,
            QStringLiteral("The criterion \"%1\" names no field of the recordset").arg(criteria));
    const Column &values = m_columns[column];
    for (int row = from; row >= 0 && row < m_rows; row += step) {
        if (criterion.matches(values.at(row)))
            return row;
    }
    return -1;
}

void Recordset::Find(const QString &criteria, qint32 skipRecords, qint32 searchDirection,
                     const QVariant &start)
{
    requireOpen();
    if (searchDirection != SearchForward && searchDirection != SearchBackward)
        throw Error(BadArguments,
                    QStringLiteral("Search direction %1 is neither 1 nor -1").arg(searchDirection));
    qint32 bookmark = BookmarkCurrent;
    if (given(start))
        bookmark = CLng(start);
    qint64 from = 0;
    switch (bookmark) {
    case BookmarkCurrent:
        // From BOF a forward search starts at the first record, from EOF a backward one at the
        // last: the search goes on from where the cursor stands.
        from = m_position;
        if (searchDirection == SearchForward && from < 0)
            from = 0;
        if (searchDirection == SearchBackward && from >= m_rows)
            from = m_rows - 1;
        break;
    case BookmarkFirst:
        from = 0;
        break;
    case BookmarkLast:
        from = m_rows - 1;
        break;
    default:
        throw Error(BadArguments, QStringLiteral("Start %1 is not a known bookmark").arg(bookmark));
    }
    from += qint64(skipRecords) * searchDirection;
    // An empty range still parses the criterion, so that a bad one is refused everywhere.
    const int row
        = findRow(criteria, (from >= 0 && from < m_rows) ? int(from) : -1, searchDirection);
    m_noMatch = row < 0;
    m_position = row >= 0 ? row : (searchDirection == SearchForward ? m_rows : -1);
}

void Recordset::FindFirst(const QString &criteria)
{
    requireOpen();
    const int row = findRow(criteria, 0, 1);
    m_noMatch = row < 0;
    if (row >= 0)
        m_position = row;
}

void Recordset::FindLast(const QString &criteria)
{
    requireOpen();
    const int row = findRow(criteria, m_rows - 1, -1);
    m_noMatch = row < 0;
    if (row >= 0)
        m_position = row;
}

void Recordset::FindNext(const QString &criteria)
{
    requireOpen();
    const int row = findRow(criteria, std::max(m_position + 1, 0), 1);
    m_noMatch = row < 0;
    if (row >= 0)
        m_position = row;
}

void Recordset::FindPrevious(const QString &criteria)
{
    requireOpen();
    const int row = findRow(criteria, std::min(m_position, m_rows) - 1, -1);
    m_noMatch = row < 0;
    if (row >= 0)
        m_position = row;
}

ZELKON_REGISTER_OBJECT(Recordset, "ADODB.Recordset");

} // namespace zelkon
