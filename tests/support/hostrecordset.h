// A host's own recordset class: it answers by member name only, with argument types of its own
// and the fields reachable only through the Fields collection.
#pragma once

#include <zelkon/data/recordset.h>

#include <QObject>

class HostRecordset : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool EOF READ eof)
    Q_PROPERTY(int AbsolutePosition READ position)
    Q_PROPERTY(bool NoMatch READ noMatch)
    Q_PROPERTY(QObject *Fields READ fields)
public:
    zelkon::Recordset r;
    void Open(const QString &source, const QString &connection) { r.Open(source, connection); }
    Q_INVOKABLE void MoveFirst() { r.MoveFirst(); }
    Q_INVOKABLE void MoveLast() { r.MoveLast(); }
    Q_INVOKABLE void MoveNext() { r.MoveNext(); }
    Q_INVOKABLE void Find(QString c, int skip, int dir, int start) { r.Find(c, skip, dir, start); }
    Q_INVOKABLE void FindFirst(QString c) { r.FindFirst(c); }
    bool eof() const { return r.atEOF(); }
    int position() const { return r.absolutePosition(); }
    bool noMatch() const { return r.noMatch(); }
    QObject *fields() { return r.fieldsObject(); }
};
