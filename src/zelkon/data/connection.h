/// \file
/// zelkon::Connection: a database connection opened from a "key=value;" connection string.
#pragma once

#include <zelkon/common/global.h>
#include <zelkon/common/variants.h>

#include <QObject>

#include <memory>

class QSqlDatabase;

namespace zelkon {

class ConnectionPrivate;

/// A database connection opened from a "key=value;" connection string, created by name as
/// "ADODB.Connection".
///
/// Keys (case-insensitive): Driver (a QtSql driver, QSQLITE when none is named), Database, Host,
/// Port, User, Password, Options. A value may be wrapped in braces to hold a ';', e.g.
/// Password={a;b}. Every connection has its own QSqlDatabase connection name, so any number of
/// them live side by side; the name is released when the connection closes or is destroyed.
class ZELKON_EXPORT Connection : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString ConnectionString READ connectionString WRITE setConnectionString)
    Q_PROPERTY(qint32 State READ state) // 0 closed, 1 open
public:
    /// A closed connection with an empty connection string.
    Q_INVOKABLE explicit Connection(QObject *parent = nullptr);
    ~Connection() override;

    /// Opens the database; the arguments override the connection string's User and Password.
    /// Errors: 3705 already open, 3001 unreadable connection string, 3706 unknown driver,
    /// 3146 the driver's refusal (with its message). A failed Open leaves the connection closed.
    Q_INVOKABLE void Open(const QVariant &connectionString = missingVariant(),
                          const QVariant &userId = missingVariant(),
                          const QVariant &password = missingVariant(),
                          const QVariant &options = missingVariant());
    /// Closes the database and releases its connection name; error 3704 when not open.
    Q_INVOKABLE void Close();

    ///@{
    /// The "key=value;" text Open() reads when given none; error 3705 when put while open.
    QString connectionString() const;
    void setConnectionString(const QString &text); // 3705 while open
    ///@}
    /// 0 closed, 1 open.
    qint32 state() const;

    /// Whether state() is 1.
    bool isOpen() const;
    /// The open database; error 3709 when the connection is closed.
    QSqlDatabase database() const;
    /// The QSqlDatabase connection name of this connection, unique while it lives.
    QString connectionName() const;

private:
    std::unique_ptr<ConnectionPrivate> d;
};

} // namespace zelkon
