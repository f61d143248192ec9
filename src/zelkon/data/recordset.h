/// \file
/// zelkon::Recordset: a static client-side cursor over a query or table, read wholly into memory.
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

/// A static client-side cursor over a query or a table, read wholly into memory; created by name as
/// "ADODB.Recordset".
///
/// Positions: -1 is BOF, 0 .. RecordCount-1 a record, RecordCount is EOF. An empty recordset is at
/// BOF and EOF at once. Every member of a closed recordset raises 3704; reading a field or moving
/// past BOF/EOF raises 3021 (see dataerror.h). Members are reachable by name and from C++; the
/// C++ accessors below skip the meta-object for controls that hold a real Recordset.
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
    /// Values of absolutePosition() off a record: unknown, BOF, EOF.
    enum Position : qint32 { PositionUnknown = -1, PositionBOF = -2, PositionEOF = -3 };
    /// The direction of Find().
    enum SearchDirection : qint32 { SearchForward = 1, SearchBackward = -1 };
    /// Where Find() starts: the current, the first or the last record.
    enum Bookmark : qint32 { BookmarkCurrent = 0, BookmarkFirst = 1, BookmarkLast = 2 };
    /// The options of Open(): run the text, or read a table.
    enum CommandType : qint32 { CommandText = 1, CommandTable = 2, CommandTableDirect = 512 };

    /// A closed recordset.
    Q_INVOKABLE explicit Recordset(QObject *parent = nullptr);
    ~Recordset() override;

    /// Reads the rows of `source` into memory and stands on the first one. source: SQL text or a
    /// table name. activeConnection: a Connection (as QObject*) or a
    /// connection string; missing takes ActiveConnection. options: CommandText (1) runs the text,
    /// CommandTable (2) / CommandTableDirect (512) reads the table; anything else reads a source
    /// without blanks as a table name. The cursor and lock types are accepted and ignored: the
    /// cursor is always static. On any error the recordset stays closed.
    Q_INVOKABLE void Open(const QVariant &source,
                          const QVariant &activeConnection = missingVariant(),
                          const QVariant &cursorType = missingVariant(),
                          const QVariant &lockType = missingVariant(),
                          const QVariant &options = missingVariant());
    /// Forgets the rows; 3704 when not open.
    Q_INVOKABLE void Close();
    ///@{
    /// To the first or the last record; nothing happens on an empty recordset.
    Q_INVOKABLE void MoveFirst();
    Q_INVOKABLE void MoveLast(); // no-op on an empty recordset
    ///@}
    /// To the next record, or to EOF after the last one; 3021 at EOF.
    Q_INVOKABLE void MoveNext();
    /// To the previous record, or to BOF before the first one; 3021 at BOF.
    Q_INVOKABLE void MovePrevious();

    /// Searches from `start` (0 current record, 1 first, 2 last) moved by skipRecords in the
    /// search direction (1 forward, -1 backward). Stands on the match, else at EOF (forward) or
    /// BOF (backward). 3001 for a criterion that cannot be read or names no column.
    Q_INVOKABLE void Find(const QString &criteria, qint32 skipRecords = 0,
                          qint32 searchDirection = SearchForward,
                          const QVariant &start = missingVariant());
    ///@{
    /// The other dialect: stands on the match and clears NoMatch, or sets NoMatch and stays put.
    Q_INVOKABLE void FindFirst(const QString &criteria);
    Q_INVOKABLE void FindLast(const QString &criteria);
    Q_INVOKABLE void FindNext(const QString &criteria);
    Q_INVOKABLE void FindPrevious(const QString &criteria);
    ///@}

    /// A column of the current record, Fields(i) by name: ordinal from 0 or column name. The C++
    /// name `Fields` is this member; the collection's type is spelt zelkon::Fields.
    Q_INVOKABLE QObject *Fields(const QVariant &index);
    /// The Fields collection as an object, for the property of that name.
    QObject *fieldsObject();
    /// The field collection.
    zelkon::Fields *fields();

    /// Whether state() is 1.
    bool isOpen() const;
    /// 0 closed, 1 open.
    qint32 state() const;
    /// Past the last record (EOF); true on an empty recordset.
    bool atEOF() const;
    /// Before the first record (BOF); true on an empty recordset.
    bool atBOF() const;
    /// The number of records.
    qint32 recordCount() const;
    ///@{
    /// The current record, 1-based: -2 at BOF, -3 at EOF; a put takes 1 .. RecordCount, else 3001.
    qint32 absolutePosition() const;
    void setAbsolutePosition(qint32 position);
    ///@}
    /// Whether the last FindFirst, FindLast, FindNext or FindPrevious found nothing.
    bool noMatch() const;
    ///@{
    /// The connection Open() uses when given none: a Connection (as a QObject pointer) or a
    /// connection string.
    QVariant activeConnection() const;
    void setActiveConnection(const QVariant &connection);
    ///@}

    /// The number of columns.
    int fieldCount() const;
    /// The name of column `field` (from 0); 3265 out of range.
    QString fieldName(int field) const;
    /// The column with this name (any case); -1 when none has it.
    int fieldIndex(const QString &name) const;
    /// The current record's value of column `field`; Null as nullptr.
    QVariant value(int field) const;
    /// The value of column `field` in record `row` (from 0), wherever the cursor stands.
    QVariant value(int field, int row) const;

private:
    std::unique_ptr<RecordsetPrivate> d;
};

} // namespace zelkon
