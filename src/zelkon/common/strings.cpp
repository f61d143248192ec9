#include <zelkon/common/platform.h>
#include <zelkon/common/strings_p.h>

#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

namespace zelkon {

namespace {

// Keyed by the JSON key as written: an id's decimal digits or a name.
using Table = QHash<QString, QString>;

Table loadTable(const QString &code)
{
    Table table;
    QFile file(QStringLiteral(":/zelkon/strings/%1.json").arg(code));
    if (!file.open(QIODevice::ReadOnly))
        return table;
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    for (auto it = object.begin(); it != object.end(); ++it)
        table.insert(it.key(), it.value().toString());
    return table;
}

const Table *tableFor(QLocale::Language language)
{
    static const Table english = loadTable(QStringLiteral("en"));
    static const Table russian = loadTable(QStringLiteral("ru"));
    static const Table german = loadTable(QStringLiteral("de"));
    switch (language) {
    case QLocale::English:
        return &english;
    case QLocale::Russian:
        return &russian;
    case QLocale::German:
        return &german;
    default:
        return nullptr;
    }
}

QString lookup(const QString &key, QLocale::Language language)
{
    if (const Table *table = tableFor(language)) {
        const auto it = table->constFind(key);
        if (it != table->constEnd())
            return *it;
    }
    return tableFor(QLocale::English)->value(key);
}

bool contains(const QString &key, QLocale::Language language)
{
    const Table *table = tableFor(language);
    return table && table->contains(key);
}

} // namespace

QString loadString(int id)
{
    return lookup(QString::number(id), Platform::current().uiLanguage());
}

QString loadString(int id, QLocale::Language language)
{
    return lookup(QString::number(id), language);
}

bool hasString(int id, QLocale::Language language)
{
    return contains(QString::number(id), language);
}

QString loadString(const char *name)
{
    return lookup(QLatin1String(name), Platform::current().uiLanguage());
}

QString loadString(const char *name, QLocale::Language language)
{
    return lookup(QLatin1String(name), language);
}

bool hasString(const char *name, QLocale::Language language)
{
    return contains(QLatin1String(name), language);
}

} // namespace zelkon
