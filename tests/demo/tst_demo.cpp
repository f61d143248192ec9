// The demo's query: the condition built from real filter controls selects the right orders.
#include "sampledatabase.h"

#include <zelkon/checklist/checkcombo.h>
#include <zelkon/common/control.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variantarray.h>
#include <zelkon/query/filtercondition.h>
#include <zelkon/query/filterquery.h>
#include <zelkon/test/testplatform.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

using namespace zelkon;

class tst_Demo : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void sampleIsDeterministic();
    void conditionSelectsRows_data();
    void conditionSelectsRows();

private:
    int count(const FilterCondition &condition);
    QTemporaryDir m_dir;
    QSqlDatabase m_db;
};

void tst_Demo::initTestCase()
{
    const QString path = m_dir.filePath(QStringLiteral("sample.sqlite"));
    SampleDatabase::create(path);
    m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("tst_demo"));
    m_db.setDatabaseName(path);
    QVERIFY(m_db.open());
}

void tst_Demo::cleanupTestCase()
{
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(QStringLiteral("tst_demo"));
}

int tst_Demo::count(const FilterCondition &condition)
{
    QSqlQuery q(m_db);
    q.prepare(
        QStringLiteral("SELECT COUNT(*) FROM orders o JOIN customers c ON c.id = o.customer_id "
                       "JOIN products p ON p.id = o.product_id ")
        + (condition.isEmpty() ? QString() : QStringLiteral("WHERE ") + condition.where()));
    condition.bindValues(q);
    if (!q.exec() || !q.next())
        return -1;
    return q.value(0).toInt();
}

void tst_Demo::sampleIsDeterministic()
{
    const QString again = m_dir.filePath(QStringLiteral("again.sqlite"));
    SampleDatabase::create(again);
    QSqlDatabase other
        = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("again"));
    other.setDatabaseName(again);
    QVERIFY(other.open());
    const QString digest
        = QStringLiteral("SELECT COUNT(*), SUM(total), SUM(customer_id * quantity) FROM orders");
    QSqlQuery a(digest, m_db), b(digest, other);
    QVERIFY(a.next() && b.next());
    QCOMPARE(a.value(0).toInt(), 5000);
    QCOMPARE(a.value(1), b.value(1));
    QCOMPARE(a.value(2), b.value(2));
    other.close();
    other = QSqlDatabase();
    QSqlDatabase::removeDatabase(QStringLiteral("again"));
}

void tst_Demo::conditionSelectsRows_data()
{
    QTest::addColumn<QVariantList>("checkedRegions");
    QTest::addColumn<bool>("inverted");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("sql");
    QTest::newRow("nothing checked") << QVariantList{} << false << QString() << QString();
    QTest::newRow("two regions") << QVariantList{QStringLiteral("North"), QStringLiteral("East")}
                                 << false << "\"c\".\"region_id\" IN (?, ?)"
                                 << "c.region_id IN (1, 3)";
    QTest::newRow("not in") << QVariantList{QStringLiteral("North")} << true
                            << "\"c\".\"region_id\" NOT IN (?)"
                            << "c.region_id <> 1";
}

void tst_Demo::conditionSelectsRows()
{
    QFETCH(QVariantList, checkedRegions);
    QFETCH(bool, inverted);
    QFETCH(QString, condition);
    QFETCH(QString, sql);
    TestPlatform platform;
    QWidget form;
    Control *regions = createControl(QStringLiteral("CheckCombo"), &form);
    if (!regions)
        QSKIP("CheckCombo is not in this build");
    MemoryPropertyBag defaults;
    regions->ReadProperties(defaults);
    VariantArray rows({{0, 1}, {0, 3}});
    const QStringList names = {QStringLiteral("North"), QStringLiteral("South"),
                               QStringLiteral("East"), QStringLiteral("West")};
    for (qint32 i = 0; i < 4; ++i) {
        rows.at({0, i}) = names.at(i);
        rows.at({1, i}) = i + 1;
    }
    QVERIFY(regions->setProperty("TypeData", 2));
    QVERIFY(regions->setProperty("SArrayData", QVariant::fromValue(rows)));
    QVERIFY(regions->setProperty("ArrayChecked", checkedRegions));
    QVERIFY(regions->setProperty("Inv", inverted));

    FilterQuery query;
    query.bindCheckCombo(qobject_cast<CheckCombo *>(regions), QStringLiteral("c.region_id"));
    const FilterCondition where = query.build(m_db.driver());
    QCOMPARE(where.where(), condition);
    QCOMPARE(where.values().size(), checkedRegions.size());
    QSqlQuery expected(
        QStringLiteral("SELECT COUNT(*) FROM orders o JOIN customers c ON c.id = o.customer_id ")
            + (sql.isEmpty() ? QString() : QStringLiteral("WHERE ") + sql),
        m_db);
    QVERIFY(expected.next());
    QCOMPARE(count(where), expected.value(0).toInt());
}

QTEST_MAIN(tst_Demo)
#include "tst_demo.moc"
