#include <zelkon/data/connection.h>
#include <zelkon/data/criterion_p.h>
#include <zelkon/data/dataerror.h>
#include <zelkon/data/fields.h>
#include <zelkon/data/recordset.h>

#include <zelkon/common/conversions.h>
#include <zelkon/common/registry.h>

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

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

// The values of one column, in blocks of a fixed size: one growing array would be copied at
// every growth, and blocks this small come back from the allocator warm when a recordset is
// opened again instead of being faulted in afresh from the system.
struct Column
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

} // namespace

class RecordsetPrivate
{
public:
    void load(const QSqlDatabase &db, const QString &sql);
    void requireOpen() const;
    void requireRecord() const;
    int indexOf(const QString &name) const; // -1 when no field has that name (any case)
    int findRow(const QString &criteria, int from, int step) const; // -1 when none

    bool open = false;
    bool noMatch = false;
    int rows = 0;
    int position = 0;
    QStringList names;
    std::vector<Column> columns; // column-major: a Find reads one column, block after block
    QVariant activeConnection;
    zelkon::Fields *fields = nullptr;
};

Recordset::Recordset(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<RecordsetPrivate>())
{ }

Recordset::~Recordset() = default;

void Recordset::Open(const QVariant &source, const QVariant &activeConnection,
                     const QVariant &cursorType, const QVariant &lockType, const QVariant &options)
{
    Q_UNUSED(cursorType);
    Q_UNUSED(lockType);
    if (d->open)
        throw Error(ObjectOpen, QStringLiteral("The recordset is already open"));
    const QString text = given(source) ? CStr(source).trimmed() : QString();
    if (text.isEmpty())
        throw Error(BadArguments, QStringLiteral("No source to open"));
    const QVariant connectionArg = given(activeConnection) ? activeConnection : d->activeConnection;

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

    d->load(db, table ? tableSql(db, text) : text);
}

void RecordsetPrivate::load(const QSqlDatabase &db, const QString &sql)
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
    QStringList loadedNames;
    loadedNames.reserve(n);
    for (int i = 0; i < n; ++i)
        loadedNames.append(record.fieldName(i));
    std::vector<Column> loadedColumns(n);
    const QVariant null = nullVariant();
    int count = 0;
    while (query.next()) {
        if (count == std::numeric_limits<int>::max())
            throw Error(Overflow);
        for (int i = 0; i < n; ++i) {
            QVariant v = query.value(i);
            if (v.isNull())
                v = null;
            else if (v.metaType().id() == QMetaType::QDate)
                v = QDateTime(v.toDate(), QTime(0, 0)); // dates are date-times everywhere here
            loadedColumns[i].append(std::move(v));
        }
        ++count;
    }
    if (query.lastError().isValid())
        throw Error(DatabaseCallFailed, query.lastError().text());

    names = std::move(loadedNames);
    columns = std::move(loadedColumns);
    rows = count;
    position = 0;
    noMatch = false;
    open = true;
}

void Recordset::Close()
{
    d->requireOpen();
    d->open = false;
    d->names.clear();
    d->columns.clear();
    d->rows = 0;
    d->position = 0;
    d->noMatch = false;
}

void RecordsetPrivate::requireOpen() const
{
    if (!open)
        throw Error(ObjectClosed,
                    QStringLiteral("Operation is not allowed when the recordset is closed"));
}

void RecordsetPrivate::requireRecord() const
{
    requireOpen();
    if (position < 0 || position >= rows)
        throw Error(NoCurrentRecord,
                    QStringLiteral("Either BOF or EOF is True: there is no current record"));
}

void Recordset::MoveFirst()
{
    d->requireOpen();
    d->position = 0;
}

void Recordset::MoveLast()
{
    d->requireOpen();
    d->position = d->rows > 0 ? d->rows - 1 : 0;
}

void Recordset::MoveNext()
{
    d->requireOpen();
    if (d->position >= d->rows)
        throw Error(NoCurrentRecord, QStringLiteral("MoveNext past the end of the recordset"));
    ++d->position;
}

void Recordset::MovePrevious()
{
    d->requireOpen();
    if (d->position < 0 || d->rows == 0)
        throw Error(NoCurrentRecord,
                    QStringLiteral("MovePrevious before the start of the recordset"));
    --d->position;
}

bool Recordset::isOpen() const
{
    return d->open;
}

qint32 Recordset::state() const
{
    return d->open ? 1 : 0;
}

bool Recordset::noMatch() const
{
    return d->noMatch;
}

QVariant Recordset::activeConnection() const
{
    return d->activeConnection;
}

bool Recordset::atEOF() const
{
    d->requireOpen();
    return d->position >= d->rows;
}

bool Recordset::atBOF() const
{
    d->requireOpen();
    return d->position < 0 || d->rows == 0;
}

qint32 Recordset::recordCount() const
{
    d->requireOpen();
    return d->rows;
}

qint32 Recordset::absolutePosition() const
{
    d->requireOpen();
    if (d->position >= d->rows)
        return PositionEOF;
    if (d->position < 0)
        return PositionBOF;
    return d->position + 1;
}

void Recordset::setAbsolutePosition(qint32 position)
{
    d->requireOpen();
    if (position < 1 || position > d->rows)
        throw Error(BadArguments,
                    QStringLiteral("AbsolutePosition %1 is out of range").arg(position));
    d->position = position - 1;
}

void Recordset::setActiveConnection(const QVariant &connection)
{
    if (d->open)
        throw Error(ObjectOpen, QStringLiteral("The recordset is open"));
    d->activeConnection = connection;
}

int Recordset::fieldCount() const
{
    d->requireOpen();
    return int(d->names.size());
}

QString Recordset::fieldName(int field) const
{
    d->requireOpen();
    if (field < 0 || field >= d->names.size())
        throw Error(ItemNotFound, QStringLiteral("No field number %1").arg(field));
    return d->names.at(field);
}

int Recordset::fieldIndex(const QString &name) const
{
    d->requireOpen();
    return d->indexOf(name);
}

int RecordsetPrivate::indexOf(const QString &name) const
{
    for (int i = 0; i < names.size(); ++i) {
        if (names.at(i).compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

QVariant Recordset::value(int field) const
{
    d->requireRecord();
    return value(field, d->position);
}

QVariant Recordset::value(int field, int row) const
{
    d->requireOpen();
    if (field < 0 || field >= int(d->columns.size()))
        throw Error(ItemNotFound, QStringLiteral("No field number %1").arg(field));
    if (row < 0 || row >= d->rows)
        throw Error(NoCurrentRecord, QStringLiteral("No record number %1").arg(row));
    return d->columns[field].at(row);
}

zelkon::Fields *Recordset::fields()
{
    if (!d->fields)
        d->fields = new zelkon::Fields(this);
    return d->fields;
}

QObject *Recordset::fieldsObject()
{
    return fields();
}

QObject *Recordset::Fields(const QVariant &index)
{
    return fields()->Item(index);
}

int RecordsetPrivate::findRow(const QString &criteria, int from, int step) const
{
    const Criterion criterion(criteria);
    const int column = indexOf(criterion.columnName());
    if (column < 0)
        throw Error(
            BadArguments,
            QStringLiteral("The criterion \"%1\" names no field of the recordset").arg(criteria));
    const Column &values = columns[column];
    for (int row = from; row >= 0 && row < rows; row += step) {
        if (criterion.matches(values.at(row)))
            return row;
    }
    return -1;
}

void Recordset::Find(const QString &criteria, qint32 skipRecords, qint32 searchDirection,
                     const QVariant &start)
{
    d->requireOpen();
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
        from = d->position;
        if (searchDirection == SearchForward && from < 0)
            from = 0;
        if (searchDirection == SearchBackward && from >= d->rows)
            from = d->rows - 1;
        break;
    case BookmarkFirst:
        from = 0;
        break;
    case BookmarkLast:
        from = d->rows - 1;
        break;
    default:
        throw Error(BadArguments, QStringLiteral("Start %1 is not a known bookmark").arg(bookmark));
    }
    from += qint64(skipRecords) * searchDirection;
    // An empty range still parses the criterion, so that a bad one is refused everywhere.
    const int row
        = d->findRow(criteria, (from >= 0 && from < d->rows) ? int(from) : -1, searchDirection);
    d->noMatch = row < 0;
    d->position = row >= 0 ? row : (searchDirection == SearchForward ? d->rows : -1);
}

void Recordset::FindFirst(const QString &criteria)
{
    d->requireOpen();
    const int row = d->findRow(criteria, 0, 1);
    d->noMatch = row < 0;
    if (row >= 0)
        d->position = row;
}

void Recordset::FindLast(const QString &criteria)
{
    d->requireOpen();
    const int row = d->findRow(criteria, d->rows - 1, -1);
    d->noMatch = row < 0;
    if (row >= 0)
        d->position = row;
}

void Recordset::FindNext(const QString &criteria)
{
    d->requireOpen();
    const int row = d->findRow(criteria, std::max(d->position + 1, 0), 1);
    d->noMatch = row < 0;
    if (row >= 0)
        d->position = row;
}

void Recordset::FindPrevious(const QString &criteria)
{
    d->requireOpen();
    const int row = d->findRow(criteria, std::min(d->position, d->rows) - 1, -1);
    d->noMatch = row < 0;
    if (row >= 0)
        d->position = row;
}

ZELKON_REGISTER_OBJECT(Recordset, "ADODB.Recordset");

} // namespace zelkon
