// WhereBuilder: the SQL condition of the demo's orders query, built from the filter controls.
#pragma once

#include <QString>
#include <QVariantList>

class QObject;

class WhereBuilder
{
public:
    // "column IN (?, ...)" or "column NOT IN (...)" from a check list's checked identifiers (or
    // texts) and its Inv flag; nothing when the list stands for "All".
    void addCheckList(const QString &column, const QObject *checkCombo, bool byIdentifier);
    // "column >= ?" / "column <= ?" from a date field unless it holds "All".
    void addDateBound(const QString &column, const QObject *relDate, bool lower);
    // "column >= ?" / "column <= ?" from a numeric field; 0 means no bound.
    void addNumberBound(const QString &column, const QObject *numEdit, bool lower);

    // "idColumn = ?" with the identifier of the customer a lookup names (its Text2), or
    // "nameColumn = ?" with the typed name when no record has it; nothing for an empty lookup.
    void addLookup(const QString &idColumn, const QString &nameColumn, QObject *navigator);

    QString where() const; // "" when no condition, else "WHERE ..."
    QVariantList values() const { return m_values; }
    // The condition with its values written in, for showing to the user.
    QString describe() const;

private:
    QStringList m_conditions;
    QVariantList m_values;
};
