#include "support/backends.h"
#include "support/errorof.h"

#include <zelkon/checklist/checkcombo.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variantarray.h>
#include <zelkon/data/connection.h>
#include <zelkon/dropdown/down.h>
#include <zelkon/dropdown/lbvalue.h>
#include <zelkon/navigator/navigator.h>
#include <zelkon/numedit/numedit.h>
#include <zelkon/query/filtercondition.h>
#include <zelkon/query/filterproxymodel.h>
#include <zelkon/query/filterquery.h>
#include <zelkon/reldate/reldate.h>
#include <zelkon/smallcontrols/combolistbox.h>
#include <zelkon/test/testplatform.h>

#include <QRandomGenerator>
#include <QScopeGuard>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlQueryModel>
#include <QTemporaryDir>
#include <QTest>

using namespace zelkon;
using namespace Qt::StringLiterals;

namespace {

const QStringList products = {u"Apple"_s, u"Bread"_s, u"Cheese"_s, u"Dates"_s, u"Eggs"_s};
const QStringList customers = {u"Ann"_s, u"Bob"_s, u"O'Neil"_s, u"Zoë"_s};
constexpr int regionCount = 6;

template<typename T>
T *make(QWidget *form, const QString &className)
{
    auto *control = qobject_cast<T *>(createControl(className, form));
    MemoryPropertyBag defaults; // opened as a saved form: every property at its default
    control->ReadProperties(defaults);
    control->setObjectName(className + QString::number(form->children().size()));
    return control;
}

// A filter form over the orders table with one control of every kind bound to a column.
struct Form
{
    QWidget widget;
    CheckCombo *regions = make<CheckCombo>(&widget, u"CheckCombo"_s);
    CheckCombo *products = make<CheckCombo>(&widget, u"CheckCombo"_s);
    RelDate *dayFrom = make<RelDate>(&widget, u"RelDate"_s);
    RelDate *dayTo = make<RelDate>(&widget, u"RelDate"_s);
    RelDate *stampFrom = make<RelDate>(&widget, u"RelDate"_s);
    RelDate *stampTo = make<RelDate>(&widget, u"RelDate"_s);
    NumEdit *min = make<NumEdit>(&widget, u"NumEdit"_s);
    NumEdit *max = make<NumEdit>(&widget, u"NumEdit"_s);
    Navigator *customer = make<Navigator>(&widget, u"Navigator"_s);
    ComboListBox *status = make<ComboListBox>(&widget, u"ComboListBox"_s);
    Down *category = make<Down>(&widget, u"Down"_s);
    FilterQuery query;

    Form()
    {
        VariantArray block({{0, 1}, {0, regionCount - 1}});
        for (qint32 i = 0; i < regionCount; ++i) {
            block.at({0, i}) = u"Region %1"_s.arg(i + 1);
            block.at({1, i}) = i + 1;
        }
        regions->setTypeData(CheckCombo::ArData);
        regions->setSArrayData(QVariant::fromValue(block));
        products->setTypeData(CheckCombo::ArData);
        products->setSArrayData(QVariantList(::products.cbegin(), ::products.cend()));
        status->setInputArray(
            QVariantList{QVariantList{u"new"_s, u"paid"_s, u"sent"_s}, QVariantList{1, 2, 3}});
        for (int value : {10, 20, 30})
            category->AddItem(u"Category %1"_s.arg(value), {}, value);
        category->AddItem(u"No value"_s);

        query.bindCheckCombo(regions, u"region_id"_s);
        query.bindCheckCombo(products, u"product"_s, FilterQuery::Match::ByText);
        query.bindDateRange(dayFrom, dayTo, u"day"_s);
        query.bindDateRange(stampFrom, stampTo, u"stamp"_s, FilterQuery::DateColumn::DateTime);
        query.bindNumberRange(min, max, u"amount"_s, FilterQuery::Zero::MeansUnset);
        query.bindNavigator(customer, u"customer"_s);
        query.bindComboListBox(status, u"status"_s);
        query.bindDown(category, u"category"_s);
    }
    ~Form()
    {
        // Down wants Free before it goes, where its popup has it.
        if (category->metaObject()->indexOfMethod("Free()") >= 0)
            QMetaObject::invokeMethod(category, "Free");
    }
};

// A date bound as the seed draws it: a day count from today or a day of its own.
void drawDate(QRandomGenerator &random, RelDate *field)
{
    field->setRelative(random.bounded(2) == 0);
    if (field->Relative())
        field->setRetNum(random.bounded(-60, 20));
    else
        field->setRetDate(QDate(2024, 3, 1).addDays(random.bounded(100)).startOfDay());
}

// The checks of a list as the seed draws them: none, every row, or some, and Inv.
QVariantList drawChecks(QRandomGenerator &random, const QVariantList &rows)
{
    const int mode = random.bounded(4);
    QVariantList checked;
    for (const QVariant &row : rows) {
        if (mode == 1 || (mode > 1 && random.bounded(2)))
            checked.append(row);
    }
    return checked;
}

} // namespace

class tst_Query : public QObject
{
    Q_OBJECT

    TestPlatform m_platform; // today is 2024-05-10
    QTemporaryDir m_dir;
    const QString m_sqlite = u"Driver=QSQLITE;Database="_s + m_dir.filePath(u"orders.db"_s);
    const QString m_pg = qEnvironmentVariable("ZELKON_TEST_PG");
    // One table per test process, so that two runs against one server do not meet.
    const QString m_table = u"zelkon_orders_%1"_s.arg(QCoreApplication::applicationPid());
    QString m_cs;

    // Orders with every kind of value, NULLs among them, and times at midnight and late on the
    // days the bounds fall on.
    void createOrders(const QString &connectionString, bool create)
    {
        Connection connection;
        connection.Open(connectionString);
        QSqlQuery q(connection.database());
        QVERIFY(q.exec(u"DROP TABLE IF EXISTS "_s + m_table));
        if (!create)
            return;
        QVERIFY(q.exec(u"CREATE TABLE %1 (id INTEGER, region_id INTEGER, product VARCHAR(20), "
                       "day DATE, stamp TIMESTAMP, amount DOUBLE PRECISION, customer VARCHAR(20), "
                       "status INTEGER, category INTEGER)"_s.arg(m_table)));
        QVERIFY(connection.database().transaction()); // one commit, not one per row
        QVERIFY(q.prepare(u"INSERT INTO %1 VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"_s.arg(m_table)));
        QRandomGenerator random(14);
        const auto maybe = [&random](const QVariant &value, QMetaType type) {
            return random.bounded(12) == 0 ? QVariant(type) : value;
        };
        const QTime times[] = {QTime(0, 0), QTime(12, 30), QTime(23, 59, 59)};
        for (int id = 1; id <= 600; ++id) {
            const QDate day = QDate(2024, 3, 1).addDays(random.bounded(110));
            const QVariantList row = {
                id,
                maybe(random.bounded(1, regionCount + 1), QMetaType::fromType<int>()),
                maybe(products.at(random.bounded(products.size())), QMetaType::fromType<QString>()),
                maybe(day, QMetaType::fromType<QDate>()),
                maybe(QDateTime(day, times[random.bounded(3)]), QMetaType::fromType<QDateTime>()),
                maybe(random.bounded(5) ? random.bounded(-5000, 50000) / 100.0 : 0.0,
                      QMetaType::fromType<double>()),
                maybe(customers.at(random.bounded(customers.size())),
                      QMetaType::fromType<QString>()),
                random.bounded(1, 4),
                maybe(10 * random.bounded(1, 4), QMetaType::fromType<int>())};
            for (const QVariant &value : row)
                q.addBindValue(value);
            QVERIFY2(q.exec(), qPrintable(q.lastError().text()));
        }
        QVERIFY(connection.database().commit());
    }

    // Given random control states, the ids of the rows the database returns and those the
    // proxy model shows over the whole table.
    void compareOnBackend(Form &form)
    {
        Connection connection;
        connection.Open(m_cs);
        QSqlQuery sql(connection.database());
        QVERIFY(form.query.prepare(sql, u"SELECT id FROM "_s + m_table, u"ORDER BY id"_s));
        QVERIFY2(sql.exec(), qPrintable(sql.lastError().text()));
        QList<int> fromSql;
        while (sql.next())
            fromSql.append(sql.value(0).toInt());

        QSqlQueryModel all;
        all.setQuery(u"SELECT * FROM %1 ORDER BY id"_s.arg(m_table), connection.database());
        while (all.canFetchMore())
            all.fetchMore();
        FilterProxyModel proxy;
        proxy.setSourceModel(&all);
        proxy.setCondition(form.query.build(connection.database().driver()));
        QList<int> inMemory;
        for (int row = 0; row < proxy.rowCount(); ++row)
            inMemory.append(proxy.index(row, 0).data().toInt());

        QCOMPARE(inMemory, fromSql);
        all.clear();
    }

private Q_SLOTS:
    void initTestCase_data() { addBackends(m_sqlite); }
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        for (const QString &cs : availableBackends(m_sqlite))
            createOrders(cs, true);
    }
    void cleanupTestCase()
    {
        if (!m_pg.isEmpty())
            createOrders(m_pg, false);
    }
    void init() { ZELKON_USE_BACKEND(m_cs); }

    void sameRowsAsTheDatabase_data()
    {
        QTest::addColumn<int>("seed");
        for (int seed = 1; seed <= 24; ++seed)
            QTest::addRow("seed %d", seed) << seed;
    }
    void sameRowsAsTheDatabase()
    {
        QFETCH(int, seed);
        QRandomGenerator random{quint32(seed)};
        // Each control restricts in about half the cases, so that the rows left vary.
        const auto draw = [&random] { return random.bounded(2) == 0; };
        Form form;
        QVariantList ids;
        for (int i = 1; i <= regionCount; ++i)
            ids.append(i);
        if (draw())
            form.regions->setArrayCheckedID(drawChecks(random, ids));
        form.regions->setInv(draw());
        if (draw())
            form.products->setArrayChecked(
                drawChecks(random, QVariantList(products.cbegin(), products.cend())));
        form.products->setInv(draw());
        for (RelDate *field : {form.dayFrom, form.dayTo, form.stampFrom, form.stampTo}) {
            if (draw())
                drawDate(random, field);
            else
                field->setRetDate(u"All"_s);
        }
        form.min->setValue(draw() ? random.bounded(-50, 300) : 0);
        form.max->setValue(draw() ? random.bounded(0, 500) : 0);
        form.customer->setText(draw() ? customers.at(random.bounded(customers.size())) : u" "_s);
        if (draw())
            form.status->setValueID(qint16(random.bounded(1, 4)));
        for (int position = 1; position <= 4; ++position)
            form.category->ListItem(position)->setChecked(random.bounded(4) == 0);

        compareOnBackend(form);
    }

    // The condition's text and values for the states a host meets; no database needed.
    void condition_data()
    {
        QTest::addColumn<QVariantList>("checked");
        QTest::addColumn<bool>("inv");
        QTest::addColumn<QVariant>("from"); // a day count, a date, or nothing for "All"
        QTest::addColumn<QVariant>("to");
        QTest::addColumn<bool>("dateTime");
        QTest::addColumn<double>("min");
        QTest::addColumn<double>("max");
        QTest::addColumn<bool>("zeroIsValue");
        QTest::addColumn<QString>("where");
        QTest::addColumn<QVariantList>("values");
        const QVariantList none;
        const QDate june(2024, 6, 1);
        QTest::newRow("nothing restricts") << none << true << QVariant() << QVariant() << false
                                           << 0.0 << 0.0 << false << QString() << none;
        QTest::newRow("every row checked is All")
            << QVariantList{1, 2, 3, 4, 5, 6} << false << QVariant() << QVariant() << false << 0.0
            << 0.0 << false << QString() << none;
        QTest::newRow("Inv") << QVariantList{2, 5} << true << QVariant() << QVariant() << false
                             << 0.0 << 0.0 << false << u"\"region_id\" NOT IN (?, ?)"_s
                             << QVariantList{2, 5};
        QTest::newRow("relative from, absolute to")
            << none << false << QVariant(-7) << QVariant(june) << false << 0.0 << 0.0 << false
            << u"\"day\" >= ? AND \"day\" <= ?"_s << QVariantList{QDate(2024, 5, 3), june};
        QTest::newRow("to day inclusive for date-times")
            << none << false << QVariant() << QVariant(0) << true << 0.0 << 0.0 << false
            << u"\"stamp\" < ?"_s << QVariantList{u"2024-05-11T00:00:00.000"_s};
        QTest::newRow("zero is a value")
            << none << false << QVariant() << QVariant() << false << 0.0 << 12.5 << true
            << u"\"amount\" >= ? AND \"amount\" <= ?"_s << QVariantList{0.0, 12.5};
        QTest::newRow("zero means unset")
            << none << false << QVariant() << QVariant() << false << 0.0 << 12.5 << false
            << u"\"amount\" <= ?"_s << QVariantList{12.5};
    }
    void condition()
    {
        QFETCH(QVariantList, checked);
        QFETCH(bool, inv);
        QFETCH(QVariant, from);
        QFETCH(QVariant, to);
        QFETCH(bool, dateTime);
        QFETCH(double, min);
        QFETCH(double, max);
        QFETCH(bool, zeroIsValue);
        Form form;
        FilterQuery query;
        query.bindCheckCombo(form.regions, u"region_id"_s);
        query.bindDateRange(form.dayFrom, form.dayTo, dateTime ? u"stamp"_s : u"day"_s,
                            dateTime ? FilterQuery::DateColumn::DateTime
                                     : FilterQuery::DateColumn::Date);
        query.bindNumberRange(form.min, form.max, u"amount"_s,
                              zeroIsValue ? FilterQuery::Zero::IsValue
                                          : FilterQuery::Zero::MeansUnset);
        form.regions->setArrayCheckedID(checked);
        form.regions->setInv(inv);
        for (auto [field, bound] : {std::pair{form.dayFrom, from}, std::pair{form.dayTo, to}}) {
            if (!bound.isValid())
                field->setRetDate(u"All"_s);
            else if (bound.typeId() == QMetaType::Int)
                field->setRetNum(bound.toInt()); // relative, as a new field is
            else
                field->setRelative(false), field->setRetDate(bound.toDate().startOfDay());
        }
        form.min->setValue(min);
        form.max->setValue(max);

        QTEST(query.where(), "where");
        QTEST(query.values(), "values");
    }

    // The driver quotes names; a name it would leave alone because it looks quoted at one end
    // is quoted all the same.
    void identifiersQuotedByTheDriver_data()
    {
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("where");
        QTest::newRow("quote inside") << u"we\"ird"_s << u"\"we\"\"ird\" = ?"_s;
        QTest::newRow("table and column") << u"o.day"_s << u"\"o\".\"day\" = ?"_s;
        QTest::newRow("quoted already") << u"\"Order\""_s << u"\"Order\" = ?"_s;
        QTest::newRow("quoted at the ends only")
            << u"\"a\" OR \"b\""_s << u"\"\"\"a\"\" OR \"\"b\"\"\" = ?"_s;
    }
    void identifiersQuotedByTheDriver()
    {
        QFETCH(QString, column);
        Form form;
        FilterQuery query;
        QCOMPARE(errorOf([&] { query.bindNavigator(nullptr, column); }), 91);
        QCOMPARE(errorOf([&] { query.bindNavigator(form.customer, QString()); }), 5);
        query.bindNavigator(form.customer, column);
        form.customer->setText(u"x') OR 1=1 --"_s);
        Connection connection;
        connection.Open(m_cs);
        QTEST(query.where(connection.database().driver()), "where");
        QCOMPARE(query.values(), QVariantList{u"x') OR 1=1 --"_s});
    }

    // A user keeps "my regions, the last 30 days" and gets it back on another day.
    void presets()
    {
        // Given a filled form saved as a preset
        Form form;
        form.regions->setArrayCheckedID(QVariantList{2, 3});
        form.regions->setInv(true);
        form.products->setArrayChecked(QVariantList{u"Bread"_s});
        form.dayFrom->setRetNum(-30);
        form.dayTo->setRelative(false);
        form.dayTo->setRetDate(QDate(2024, 5, 10).startOfDay()); // today: the bag leaves it out
        form.stampFrom->setRetDate(u"All"_s);
        form.stampTo->setRetDate(u"All"_s);
        form.min->setValue(5);
        form.customer->setText(u"Bob"_s);
        form.status->setValueID(2);
        form.category->ListItem(2)->setChecked(true);
        const QString where = form.query.where();
        QVariantList values = form.query.values();
        form.query.savePreset(u"mine"_s);
        QSettings settings(m_dir.filePath(u"presets.ini"_s), QSettings::IniFormat);
        form.query.writePresets(settings);

        // When everything changes, a day passes and the preset comes back from the settings
        form.regions->ClearAll();
        form.regions->setInv(false);
        form.products->ClearAll();
        form.dayFrom->setRetDate(u"All"_s);
        form.dayTo->setRetDate(u"All"_s);
        form.min->setValue(0);
        form.customer->setText(u" "_s);
        form.status->setValueID(3);
        form.category->ListItem(2)->setChecked(false);
        form.query.removePreset(u"mine"_s);
        QVERIFY(!form.query.restorePreset(u"mine"_s));
        form.query.readPresets(settings);
        const auto backToToday = qScopeGuard([this] { m_platform.setToday(QDate(2024, 5, 10)); });
        m_platform.setToday(QDate(2024, 5, 11));
        QVERIFY(form.query.restorePreset(u"mine"_s));

        // Then the form filters as before, with the relative day one day later
        QCOMPARE(form.query.presetNames(), QStringList{u"mine"_s});
        QCOMPARE(form.query.where(), where);
        values[3] = QDate(2024, 4, 11);
        QCOMPARE(form.query.values(), values);
    }
};

QTEST_MAIN(tst_Query)
#include "tst_query.moc"
