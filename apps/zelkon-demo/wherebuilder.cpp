#include "wherebuilder.h"

#include <zelkon/common/conversions.h>
#include <zelkon/common/variants.h>

#include <QDateTime>
#include <QObject>
#include <QStringList>

void WhereBuilder::addCheckList(const QString &column, const QObject *checkCombo, bool byIdentifier)
{
    if (!checkCombo)
        return;
    const QVariant checked = checkCombo->property(byIdentifier ? "ArrayCheckedID" : "ArrayChecked");
    if (!zelkon::IsArray(checked))
        return;
    const QVariantList items = checked.toList();
    if (items.isEmpty()
        || (!byIdentifier && items.size() == 1 && items.first().toString() == QLatin1String("All")))
        return;
    QStringList marks;
    for (const QVariant &item : items) {
        marks.append(QStringLiteral("?"));
        m_values.append(item);
    }
    const bool inverted = checkCombo->property("Inv").toBool();
    m_conditions.append(QStringLiteral("%1 %2 (%3)")
                            .arg(column, inverted ? QStringLiteral("NOT IN") : QStringLiteral("IN"),
                                 marks.join(QStringLiteral(", "))));
}

void WhereBuilder::addDateBound(const QString &column, const QObject *relDate, bool lower)
{
    if (!relDate)
        return;
    const QVariant date = relDate->property("RetDate");
    if (!zelkon::isDateType(date))
        return; // "All": no bound
    m_conditions.append(
        QStringLiteral("%1 %2 ?").arg(column, lower ? QStringLiteral(">=") : QStringLiteral("<=")));
    m_values.append(date.toDateTime().date().toString(Qt::ISODate));
}

void WhereBuilder::addNumberBound(const QString &column, const QObject *numEdit, bool lower)
{
    if (!numEdit)
        return;
    const double value = numEdit->property("Value").toDouble();
    if (value == 0)
        return; // an empty amount field sets no bound
    m_conditions.append(
        QStringLiteral("%1 %2 ?").arg(column, lower ? QStringLiteral(">=") : QStringLiteral("<=")));
    m_values.append(value);
}

void WhereBuilder::addLookup(const QString &idColumn, const QString &nameColumn, QObject *navigator)
{
    if (!navigator)
        return;
    const QString name = navigator->property("Text").toString().trimmed();
    if (name.isEmpty())
        return;
    // The choice goes in as a bound value, never into the SQL text.
    bool isId = false;
    const qint32 id = navigator->property("Text2").toString().toInt(&isId);
    m_conditions.append(QStringLiteral("%1 = ?").arg(isId ? idColumn : nameColumn));
    m_values.append(isId ? QVariant(id) : QVariant(name));
}

QString WhereBuilder::where() const
{
    if (m_conditions.isEmpty())
        return QString();
    return QStringLiteral("WHERE ") + m_conditions.join(QStringLiteral("\n  AND "));
}

QString WhereBuilder::describe() const
{
    QString text = where();
    if (text.isEmpty())
        return QStringLiteral("(no condition: every order)");
    QStringList shown;
    for (const QVariant &v : m_values)
        shown.append(v.typeId() == QMetaType::QString
                         ? QLatin1Char('\'') + v.toString() + QLatin1Char('\'')
                         : zelkon::CStr(v));
    return text + QStringLiteral("\n-- bound values: ") + shown.join(QStringLiteral(", "));
}
