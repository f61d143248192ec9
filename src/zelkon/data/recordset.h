// zelkon::Recordset: a static client-side cursor over a query or table, read wholly into memory.
#pragma once

#include <zelkon/common/global.h>
#include <zelkon/common/variants.h>

#include <QObject>
#include <QVariant>

#include <memory>

// The C library's EOF macro would turn the property's name into "(-1)" for moc; only moc's own
// view of this header loses it, C++ code keeps the macro.
#ifdef Q_MOC_RUN
#undef EOF
#endif

namespace zelkon {

class Fields;
class RecordsetPrivate;

// Positions: -1 is BOF, 0 .. RecordCount-1 a record, RecordCount is EOF. An empty recordset is at
// BOF and EOF at once. Every member of a closed recordset raises 3704; reading a field or moving
// past BOF/EOF raises 3021 (see dataerror.h). Members are reachable by name and from C++; the
// C++ accessors below skip the meta-object for controls that hold a real Recordset.
class ZELKON_EXPORT Recordset : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool EOF READ atEOF)
    Q_PROPERTY(bool BOF READ atBOF)
    Q_PROPERTY(qint32 RecordCount READ recordCount)
    Q_PROPERTY(qint32 AbsolutePosition READ absolutePosition WRITE setAbsolutePosition)
    Q_PROPERTY(bool NoMatch READ noMatch)
    Q_PROPERTY(qint32 State READ state) // 0 closed, 1 open
    Q_PROPERTY(QObject *Fields READ fieldsObject)
    Q_PROPERTY(QVariant ActiveConnection READ activeConnection WRITE setActiveConnection)
public:
    enum Position : qint32 { PositionUnknown = -1, PositionBOF = -2, PositionEOF = -3 };
    enum SearchDirection : qint32 { SearchForward = 1, SearchBackward = -1 };
    enum Bookmark : qint32 { BookmarkCurrent = 0, BookmarkFirst = 1, BookmarkLast = 2 };
    enum CommandType : qint32 { CommandText = 1, CommandTable = 2, CommandTableDirect = 512 };

    Q_INVOKABLE explicit Recordset(QObject *parent = nullptr);
    ~Recordset() override;

    // source: SQL text or a table name. activeConnection: a Connection (as QObject*) or a
    // connection string; missing takes ActiveConnection. options: CommandText (1) runs the text,
    // CommandTable (2) / CommandTableDirect (512) reads the table; anything else reads a source
    // without blanks as a table name. The cursor and lock types are accepted and ignored: the
    // cursor is always static. On any error the recordset stays closed.
    Q_INVOKABLE void Open(const QVariant &source,
                          const QVariant &activeConnection = missingVariant(),
                          const QVariant &cursorType = missingVariant(),
                          const QVariant &lockType = missingVariant(),
                          const QVariant &options = missingVariant());
    Q_INVOKABLE void Close();
    Q_INVOKABLE void MoveFirst(); // no-op on an empty recordset
    Q_INVOKABLE void MoveLast(); // no-op on an empty recordset
    Q_INVOKABLE void MoveNext(); // 3021 at EOF
    Q_INVOKABLE void MovePrevious(); // 3021 at BOF

    // Searches from `start` (0 current record, 1 first, 2 last) moved by skipRecords in the
    // search direction (1 forward, -1 backward). Stands on the match, else at EOF (forward) or
    // BOF (backward). 3001 for a criterion that cannot be read or names no column.
    Q_INVOKABLE void Find(const QString &criteria, qint32 skipRecords = 0,
                          qint32 searchDirection = SearchForward,
                          const QVariant &start = missingVariant());
    // The other dialect: stands on the match and clears NoMatch, or sets NoMatch and stays put.
    Q_INVOKABLE void FindFirst(const QString &criteria);
    Q_INVOKABLE void FindLast(const QString &criteria);
    Q_INVOKABLE void FindNext(const QString &criteria);
    Q_INVOKABLE void FindPrevious(const QString &criteria);

    // Fields(i) by name: ordinal from 0 or column name. The C++ name `Fields` is this member;
    // the collection's type is spelt zelkon::Fields.
    Q_INVOKABLE QObject *Fields(const QVariant &index);
    QObject *fieldsObject();
    zelkon::Fields *fields();

    bool isOpen() const;
    qint32 state() const;
    bool atEOF() const;
    bool atBOF() const;
    qint32 recordCount() const;
    qint32 absolutePosition() const; // 1-based; -2 at BOF, -3 at EOF
    void setAbsolutePosition(qint32 position); // 1 .. RecordCount, else 3001
    bool noMatch() const;
    QVariant activeConnection() const;
    void setActiveConnection(const QVariant &connection);

    int fieldCount() const;
    QString fieldName(int field) const; // 3265 out of range
    int fieldIndex(const QString &name) const; // -1 when no field has that name (any case)
    QVariant value(int field) const; // the current record's value; Null as nullptr
    QVariant value(int field, int row) const; // any record's value, row from 0

private:
    std::unique_ptr<RecordsetPrivate> d;
};

} // namespace zelkon
