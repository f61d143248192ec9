#include <zelkon/common/platform.h>
#include <zelkon/common/strings_p.h>

#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

namespace zelkon {

namespace {

using Table = QHash<int, QString>;

Table loadTable(const QString &code)
{
    Table table;
    QFile file(QStringLiteral(":/zelkon/strings/%1.json").arg(code));
    if (!file.open(QIODevice::ReadOnly))
        return table;
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    for (auto it = object.begin(); it != object.end(); ++it) {
        bool ok = false;
        const int id = it.key().toInt(&ok);
        if (ok)
            table.insert(id, it.value().toString());
    }
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

} // namespace

QString loadString(int id)
{
    return loadString(id, Platform::current().uiLanguage());
}

QString loadString(int id, QLocale::Language language)
{
    if (const Table *table = tableFor(language)) {
        const auto it = table->constFind(id);
        if (it != table->constEnd())
            return *it;
    }
    return tableFor(QLocale::English)->value(id);
}

bool hasString(int id, QLocale::Language language)
{
    const Table *table = tableFor(language);
    return table && table->contains(id);
}

} // namespace zelkon
