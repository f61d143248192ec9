#include "sampledatabase.h"

#include <zelkon/common/error.h>

#include <QDate>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QStringList>
#include <QVariant>

namespace {

// A small linear congruential generator: the sample is the same on every machine.
class Sequence
{
public:
    quint32 next()
    {
        m_state = m_state * 1664525u + 1013904223u;
        return m_state >> 8;
    }
    int below(int n) { return int(next() % quint32(n)); }

private:
    quint32 m_state = 20240510u;
};

void exec(QSqlQuery &query, const QString &sql)
{
    if (!query.exec(sql))
        throw zelkon::Error(zelkon::DatabaseError, query.lastError().text());
}

} // namespace

QString SampleDatabase::ensure()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(folder);
    const QString path = QDir(folder).filePath(QStringLiteral("sample.sqlite"));
    if (!QFile::exists(path)) {
        const QString partial = path + QStringLiteral(".part");
        QFile::remove(partial);
        create(partial);
        QFile::rename(partial, path);
    }
    return path;
}

void SampleDatabase::create(const QString &path)
{
    const QString name = QStringLiteral("zelkon-demo-create");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (!db.open())
            throw zelkon::Error(zelkon::DatabaseError, db.lastError().text());
        QSqlQuery q(db);
        exec(q,
             QStringLiteral("CREATE TABLE regions (id INTEGER PRIMARY KEY, name TEXT NOT NULL)"));
        exec(q,
             QStringLiteral("CREATE TABLE customers (id INTEGER PRIMARY KEY, name TEXT NOT NULL, "
                            "region_id INTEGER REFERENCES regions(id), city TEXT)"));
        exec(q,
             QStringLiteral("CREATE TABLE products (id INTEGER PRIMARY KEY, name TEXT NOT NULL, "
                            "price REAL NOT NULL)"));
        exec(q,
             QStringLiteral(
                 "CREATE TABLE orders (id INTEGER PRIMARY KEY, customer_id INTEGER "
                 "REFERENCES customers(id), product_id INTEGER REFERENCES products(id), "
                 "order_date TEXT NOT NULL, quantity INTEGER NOT NULL, total REAL NOT NULL)"));
        db.transaction();
        const QStringList regions
            = {QStringLiteral("North"),     QStringLiteral("South"),   QStringLiteral("East"),
               QStringLiteral("West"),      QStringLiteral("Central"), QStringLiteral("Coast"),
               QStringLiteral("Highlands"), QStringLiteral("Islands")};
        q.prepare(QStringLiteral("INSERT INTO regions (id, name) VALUES (?, ?)"));
        for (int i = 0; i < regions.size(); ++i) {
            q.addBindValue(i + 1);
            q.addBindValue(regions.at(i));
            q.exec();
        }
        Sequence seq;
        const QStringList first
            = {QStringLiteral("Alder"),   QStringLiteral("Birch"),  QStringLiteral("Cedar"),
               QStringLiteral("Dogwood"), QStringLiteral("Elm"),    QStringLiteral("Fir"),
               QStringLiteral("Ginkgo"),  QStringLiteral("Hazel"),  QStringLiteral("Ivy"),
               QStringLiteral("Juniper"), QStringLiteral("Kapok"),  QStringLiteral("Larch"),
               QStringLiteral("Maple"),   QStringLiteral("Nutmeg"), QStringLiteral("Oak"),
               QStringLiteral("Poplar"),  QStringLiteral("Quince"), QStringLiteral("Rowan"),
               QStringLiteral("Spruce"),  QStringLiteral("Teak"),   QStringLiteral("Willow"),
               QStringLiteral("Yew"),     QStringLiteral("Zelkova")};
        const QStringList second
            = {QStringLiteral("Trading"), QStringLiteral("Supplies"), QStringLiteral("Foods"),
               QStringLiteral("Works"),   QStringLiteral("Partners"), QStringLiteral("Logistics"),
               QStringLiteral("Retail"),  QStringLiteral("Systems")};
        const QStringList cities
            = {QStringLiteral("Aston"), QStringLiteral("Bury"), QStringLiteral("Crewe"),
               QStringLiteral("Derby"), QStringLiteral("Ely"),  QStringLiteral("Frome")};
        q.prepare(QStringLiteral(
            "INSERT INTO customers (id, name, region_id, city) VALUES (?, ?, ?, ?)"));
        for (int i = 1; i <= 400; ++i) {
            q.addBindValue(i);
            q.addBindValue(QStringLiteral("%1 %2 %3")
                               .arg(first.at(seq.below(int(first.size()))),
                                    second.at(seq.below(int(second.size()))))
                               .arg(i));
            q.addBindValue(1 + seq.below(int(regions.size())));
            q.addBindValue(cities.at(seq.below(int(cities.size()))));
            q.exec();
        }
        const QStringList goods
            = {QStringLiteral("Bolts"),  QStringLiteral("Cable"),  QStringLiteral("Drill"),
               QStringLiteral("Gloves"), QStringLiteral("Hammer"), QStringLiteral("Ladder"),
               QStringLiteral("Paint"),  QStringLiteral("Rope"),   QStringLiteral("Saw"),
               QStringLiteral("Tape")};
        q.prepare(QStringLiteral("INSERT INTO products (id, name, price) VALUES (?, ?, ?)"));
        QList<double> prices;
        for (int i = 1; i <= 120; ++i) {
            const double price = (100 + seq.below(99900)) / 100.0;
            prices.append(price);
            q.addBindValue(i);
            q.addBindValue(
                QStringLiteral("%1 No. %2").arg(goods.at(seq.below(int(goods.size())))).arg(i));
            q.addBindValue(price);
            q.exec();
        }
        q.prepare(QStringLiteral("INSERT INTO orders (id, customer_id, product_id, order_date, "
                                 "quantity, total) VALUES (?, ?, ?, ?, ?, ?)"));
        const QDate start(2024, 1, 1);
        for (int i = 1; i <= 5000; ++i) {
            const int product = 1 + seq.below(int(prices.size()));
            const int quantity = 1 + seq.below(20);
            q.addBindValue(i);
            q.addBindValue(1 + seq.below(400));
            q.addBindValue(product);
            q.addBindValue(start.addDays(seq.below(1100)).toString(Qt::ISODate));
            q.addBindValue(quantity);
            q.addBindValue(qRound(prices.at(product - 1) * quantity * 100) / 100.0);
            q.exec();
        }
        db.commit();
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}
