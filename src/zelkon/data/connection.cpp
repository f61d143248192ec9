#include <zelkon/data/connection.h>
#include <zelkon/data/dataerror.h>

#include <zelkon/common/conversions.h>
#include <zelkon/common/registry.h>

#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>

#include <atomic>

namespace zelkon {

class ConnectionPrivate
{
public:
    void release() noexcept;

    QString connectionString;
    QString name; // QSqlDatabase connection name while open, empty while closed
};

namespace {

// Splits "key=value;key=value" into lower-case keys; braces protect a ';' inside a value.
QHash<QString, QString> parseConnectionString(const QString &text)
{
    QHash<QString, QString> result;
    qsizetype i = 0;
    const qsizetype n = text.size();
    while (i < n) {
        const qsizetype eq = text.indexOf(QLatin1Char('='), i);
        const qsizetype semi = text.indexOf(QLatin1Char(';'), i);
        if (eq < 0 || (semi >= 0 && semi < eq)) {
            const QString rest = text.mid(i, semi < 0 ? -1 : semi - i).trimmed();
            if (!rest.isEmpty())
                throw Error(BadArguments,
                            QStringLiteral("Connection string: \"%1\" is not key=value").arg(rest));
            i = semi < 0 ? n : semi + 1;
            continue;
        }
        const QString key = text.mid(i, eq - i).trimmed().toLower();
        i = eq + 1;
        while (i < n && text.at(i).isSpace())
            ++i;
        QString value;
        if (i < n && text.at(i) == QLatin1Char('{')) {
            const qsizetype close = text.indexOf(QLatin1Char('}'), i + 1);
            if (close < 0)
                throw Error(BadArguments,
                            QStringLiteral("Connection string: unclosed '{' in %1").arg(key));
            value = text.mid(i + 1, close - i - 1);
            i = close + 1;
            const qsizetype next = text.indexOf(QLatin1Char(';'), i);
            if (!text.mid(i, next < 0 ? -1 : next - i).trimmed().isEmpty())
                throw Error(BadArguments,
                            QStringLiteral("Connection string: text after '}' in %1").arg(key));
            i = next < 0 ? n : next + 1;
        } else {
            const qsizetype next = text.indexOf(QLatin1Char(';'), i);
            value = text.mid(i, next < 0 ? -1 : next - i).trimmed();
            i = next < 0 ? n : next + 1;
        }
        result.insert(key, value);
    }
    return result;
}

// The usual spellings of other data-access libraries are read as our own keys.
QString canonicalKey(const QString &key)
{
    static const QHash<QString, QString> aliases = {
        {QStringLiteral("data source"), QStringLiteral("database")},
        {QStringLiteral("server"), QStringLiteral("host")},
        {QStringLiteral("user id"), QStringLiteral("user")},
        {QStringLiteral("uid"), QStringLiteral("user")},
        {QStringLiteral("pwd"), QStringLiteral("password")},
    };
    return aliases.value(key, key);
}

QString nextConnectionName()
{
    static std::atomic<quint64> counter{0};
    return QStringLiteral("zelkon-connection-%1").arg(++counter);
}

bool given(const QVariant &v)
{
    return !IsMissing(v) && !IsEmpty(v) && !IsNull(v);
}

} // namespace

Connection::Connection(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<ConnectionPrivate>())
{ }

Connection::~Connection()
{
    d->release();
}

QString Connection::connectionString() const
{
    return d->connectionString;
}

void Connection::setConnectionString(const QString &text)
{
    if (isOpen())
        throw Error(ObjectOpen, QStringLiteral("The connection is open"));
    d->connectionString = text;
}

qint32 Connection::state() const
{
    return isOpen() ? 1 : 0;
}

bool Connection::isOpen() const
{
    return !d->name.isEmpty();
}

QString Connection::connectionName() const
{
    return d->name;
}

QSqlDatabase Connection::database() const
{
    if (!isOpen())
        throw Error(ConnectionNotUsable, QStringLiteral("The connection is closed"));
    return QSqlDatabase::database(d->name, false);
}

void Connection::Open(const QVariant &connectionString, const QVariant &userId,
                      const QVariant &password, const QVariant &options)
{
    Q_UNUSED(options);
    if (isOpen())
        throw Error(ObjectOpen, QStringLiteral("The connection is already open"));
    const QString text = given(connectionString) ? CStr(connectionString) : d->connectionString;

    QHash<QString, QString> keys;
    const auto parsed = parseConnectionString(text);
    for (auto it = parsed.cbegin(); it != parsed.cend(); ++it) {
        const QString key = canonicalKey(it.key());
        static const QStringList known
            = {QStringLiteral("driver"), QStringLiteral("database"), QStringLiteral("host"),
               QStringLiteral("port"),   QStringLiteral("user"),     QStringLiteral("password"),
               QStringLiteral("options")};
        // A misspelt key must not silently open some other database (an empty SQLite one).
        if (!known.contains(key))
            throw Error(BadArguments,
                        QStringLiteral("Connection string: unknown key \"%1\"").arg(it.key()));
        keys.insert(key, it.value());
    }
    if (given(userId))
        keys.insert(QStringLiteral("user"), CStr(userId));
    if (given(password))
        keys.insert(QStringLiteral("password"), CStr(password));

    const QString driver = keys.value(QStringLiteral("driver"), QStringLiteral("QSQLITE"));
    if (!QSqlDatabase::isDriverAvailable(driver))
        throw Error(ProviderNotFound, QStringLiteral("No database driver \"%1\"").arg(driver));
    int port = -1;
    if (keys.contains(QStringLiteral("port"))) {
        bool ok = false;
        port = keys.value(QStringLiteral("port")).toInt(&ok);
        if (!ok || port <= 0 || port > 65535)
            throw Error(BadArguments,
                        QStringLiteral("Connection string: bad port \"%1\"")
                            .arg(keys.value(QStringLiteral("port"))));
    }

    const QString name = nextConnectionName();
    QString failure;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(driver, name);
        db.setDatabaseName(keys.value(QStringLiteral("database")));
        db.setHostName(keys.value(QStringLiteral("host")));
        db.setPort(port);
        db.setUserName(keys.value(QStringLiteral("user")));
        db.setPassword(keys.value(QStringLiteral("password")));
        db.setConnectOptions(keys.value(QStringLiteral("options")));
        if (!db.open())
            failure = db.lastError().text();
    }
    if (!failure.isNull()) {
        QSqlDatabase::removeDatabase(name);
        throw Error(DatabaseCallFailed,
                    failure.isEmpty() ? QStringLiteral("The database could not be opened")
                                      : failure);
    }
    d->connectionString = text;
    d->name = name;
}

void Connection::Close()
{
    if (!isOpen())
        throw Error(ObjectClosed, QStringLiteral("The connection is closed"));
    d->release();
}

void ConnectionPrivate::release() noexcept
{
    if (name.isEmpty())
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(name, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    name.clear();
}

ZELKON_REGISTER_OBJECT(Connection, "ADODB.Connection");

} // namespace zelkon
