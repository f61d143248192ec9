// Values, property bags and form files: what a host saves must come back exactly.
#include <zelkon/common/control.h>
#include <zelkon/common/error.h>
#include <zelkon/common/formfile.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variants.h>

#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <memory>

using namespace zelkon;

namespace {

// A control that persists whatever it was given, to carry every value kind through a form file.
class ProbeControl : public Control
{
    Q_OBJECT
public:
    using Control::Control;
    void ReadProperties(PropertyBag &bag) override
    {
        const MemoryPropertyBag &memory = dynamic_cast<MemoryPropertyBag &>(bag);
        for (const QString &key : memory.keys())
            values.insert(key, bag.ReadProperty(key));
        if (values.contains(QStringLiteral("fail")))
            throw Error(TypeMismatch);
    }
    void WriteProperties(PropertyBag &bag) override
    {
        for (const QString &key : order)
            bag.WriteProperty(key, values.value(key), QStringLiteral("<default>"));
    }
    QStringList order;
    QHash<QString, QVariant> values;
};

[[maybe_unused]] const bool probeRegistered
    = registerControlClass(QStringLiteral("ProbeControl"),
                           [](QWidget *parent) -> Control * { return new ProbeControl(parent); });

QVariantMap everyKind()
{
    VariantArray grid({{0, 1}, {-1, 1}});
    grid.at({0, -1}) = QStringLiteral("north");
    grid.at({1, -1}) = qint32(7);
    grid.at({0, 0}) = nullVariant();
    grid.at({1, 1}) = QDateTime(QDate(2024, 2, 29), QTime(23, 59, 58, 999));
    return {
        {QStringLiteral("empty"), QVariant()},
        {QStringLiteral("null"), nullVariant()},
        {QStringLiteral("missing"), missingVariant()},
        {QStringLiteral("bool"), false},
        {QStringLiteral("int16"), QVariant::fromValue(qint16(-32768))},
        {QStringLiteral("int32"), QVariant::fromValue(qint32(2147483647))},
        {QStringLiteral("colour"), QVariant::fromValue(quint32(0x80000008))},
        {QStringLiteral("single"), QVariant::fromValue(0.1f)},
        {QStringLiteral("double"), 0.1 + 0.2},
        {QStringLiteral("tiny"), 5e-324},
        {QStringLiteral("string"), QStringLiteral("Öl \"quoted\"\nline")},
        {QStringLiteral("date"), QDateTime(QDate(1601, 1, 1), QTime(0, 0, 0, 1))},
        {QStringLiteral("ancient"), QDateTime(QDate(-4713, 1, 1), QTime(12, 0))},
        {QStringLiteral("no date"), QDateTime()},
        {QStringLiteral("far day"), QDate(12000, 6, 1)},
        {QStringLiteral("list"),
         QVariantList{1, QStringLiteral("x"), QVariant(), QVariantList{2.5}}},
        {QStringLiteral("grid"), QVariant::fromValue(grid)},
    };
}

} // namespace

class tst_Values : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void looseEquality_data();
    void looseEquality();
    void propertyBagDefaultRule();
    void formRoundTrip();
    void damagedFiles_data();
    void damagedFiles();
    void failingControlLeavesFormAlone();
    void saveIsAtomic();
    void ignoreErrorsRunsEveryStep();
    void extentKeys_data();
    void extentKeys();

private:
    QTemporaryDir m_dir;
};

void tst_Values::looseEquality_data()
{
    QTest::addColumn<QVariant>("a");
    QTest::addColumn<QVariant>("b");
    QTest::addColumn<bool>("equal");
    QTest::newRow("int widths") << QVariant::fromValue(qint16(5)) << QVariant(5.0) << true;
    QTest::newRow("true is -1") << QVariant(true) << QVariant(-1) << true;
    QTest::newRow("true is not 1") << QVariant(true) << QVariant(1) << false;
    QTest::newRow("empty is zero") << QVariant() << QVariant(0) << true;
    QTest::newRow("empty is empty text") << QVariant() << QVariant(QString()) << true;
    QTest::newRow("text is case-sensitive")
        << QVariant(QStringLiteral("All")) << QVariant(QStringLiteral("all")) << false;
    QTest::newRow("text against date")
        << QVariant(QStringLiteral("All")) << QVariant(QDateTime::currentDateTime()) << false;
    QTest::newRow("date against day")
        << QVariant(QDateTime(QDate(2024, 1, 1), QTime())) << QVariant(QDate(2024, 1, 1)) << true;
    QTest::newRow("null only equals null") << nullVariant() << QVariant() << false;
    QTest::newRow("null and null") << nullVariant() << nullVariant() << true;
}

void tst_Values::looseEquality()
{
    QFETCH(QVariant, a);
    QFETCH(QVariant, b);
    QFETCH(bool, equal);
    QCOMPARE(looselyEquals(a, b), equal);
    QCOMPARE(looselyEquals(b, a), equal);
}

void tst_Values::propertyBagDefaultRule()
{
    MemoryPropertyBag bag;
    bag.WriteProperty(QStringLiteral("MaxLine"), qint16(5), qint16(5));
    QVERIFY(!bag.contains(QStringLiteral("MaxLine")));
    bag.WriteProperty(QStringLiteral("MaxLine"), qint16(9), qint16(5));
    QCOMPARE(bag.ReadProperty(QStringLiteral("MaxLine"), qint16(5)).toInt(), 9);
    // Writing the default again forgets the older value.
    bag.WriteProperty(QStringLiteral("MaxLine"), 5.0, qint16(5));
    QVERIFY(!bag.contains(QStringLiteral("MaxLine")));
    QCOMPARE(bag.ReadProperty(QStringLiteral("MaxLine"), qint16(5)).toInt(), 5);
    bag.WriteProperty(QStringLiteral("Title"), QStringLiteral("All"), QStringLiteral("All"));
    bag.WriteProperty(QStringLiteral("Inv"), true, false);
    bag.WriteProperty(QStringLiteral("Left"), 120.0f, 120.0f);
    QCOMPARE(bag.keys(), QStringList{QStringLiteral("Inv")});
}

void tst_Values::formRoundTrip()
{
    QWidget form;
    auto *first = new ProbeControl(&form);
    first->setObjectName(QStringLiteral("DateTo"));
    first->setIndex(2);
    first->setGeometry(10, 2000000, 130, 24); // a host may place a control far out
    const QVariantMap kinds = everyKind();
    for (auto it = kinds.begin(); it != kinds.end(); ++it) {
        first->order.append(it.key());
        first->values.insert(it.key(), it.value());
    }
    auto *second = new ProbeControl(&form);
    second->setObjectName(QStringLiteral("Other"));
    second->order = {QStringLiteral("kept default")};
    second->values.insert(QStringLiteral("kept default"), QStringLiteral("<default>"));

    const QString path = m_dir.filePath(QStringLiteral("round.zform"));
    saveForm(form, path);
    QWidget loaded;
    const QList<Control *> controls = loadForm(loaded, path);
    QCOMPARE(controls.size(), 2);
    auto *copy = dynamic_cast<ProbeControl *>(controls.at(0));
    QVERIFY(copy);
    QCOMPARE(copy->parentWidget(), &loaded);
    QCOMPARE(copy->objectName(), QStringLiteral("DateTo"));
    QCOMPARE(copy->Index(), 2);
    QCOMPARE(copy->geometry(), QRect(10, 2000000, 130, 24));
    for (auto it = kinds.begin(); it != kinds.end(); ++it) {
        QVERIFY2(copy->values.contains(it.key()), qPrintable(it.key()));
        QVERIFY2(identical(copy->values.value(it.key()), it.value()), qPrintable(it.key()));
    }
    // A value equal to its default is not in the file at all.
    QVERIFY(dynamic_cast<ProbeControl *>(controls.at(1))->values.isEmpty());
    QCOMPARE(controls.at(1)->Index(), -1);
}

void tst_Values::damagedFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("place");
    const QByteArray head = R"({"format":"zelkon-form","version":1,"controls":[)";
    QTest::newRow("truncated") << QByteArray(head + R"({"class":"ProbeControl",)") << "line 1";
    QTest::newRow("second line") << QByteArray("{\n \"format\": x}") << "line 2, column";
    QTest::newRow("foreign") << QByteArray(R"({"hello":"world"})") << "not a Zelkon form file";
    QTest::newRow("not json") << QByteArray("\x89PNG\r\n") << "line 1";
    QTest::newRow("future version")
        << QByteArray(R"({"format":"zelkon-form","version":9,"controls":[]})") << "version";
    QTest::newRow("unknown class") << QByteArray(
        head + R"({"class":"Nope","name":"a","index":-1,"geometry":[0,0,1,1],"properties":[]}]})")
                                   << "control 0";
    QTest::newRow("bad value") << QByteArray(
        head
        + R"({"class":"ProbeControl","name":"a","index":-1,"geometry":[0,0,1,1],"properties":[]},)"
          R"({"class":"ProbeControl","name":"b","index":-1,"geometry":[0,0,1,1],"properties":[{"name":"Value","value":{"t":"int16","v":99999}}]}]})")
                               << "control 1.Value";
    QTest::newRow("array size") << QByteArray(
        head
        + R"({"class":"ProbeControl","name":"a","index":-1,"geometry":[0,0,1,1],"properties":[{"name":"A","value":{"t":"array","bounds":[[0,1]],"items":[]}}]}]})")
                                << "control 0.A";
    QTest::newRow("geometry") << QByteArray(
        head
        + R"({"class":"ProbeControl","name":"a","index":-1,"geometry":[0,0],"properties":[]}]})")
                              << "geometry";
}

void tst_Values::damagedFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, place);
    const QString path = m_dir.filePath(QStringLiteral("damaged.zform"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
    file.close();
    QWidget form;
    auto *existing = new ProbeControl(&form);
    try {
        loadForm(form, path);
        QFAIL("a damaged file was accepted");
    } catch (const Error &e) {
        QVERIFY2(e.message().contains(path), qPrintable(e.message()));
        QVERIFY2(e.message().contains(place), qPrintable(e.message()));
    }
    QCOMPARE(Control::formControls(&form), QList<Control *>{existing});
}

void tst_Values::failingControlLeavesFormAlone()
{
    QWidget source;
    for (const char *name : {"good", "bad"}) {
        auto *c = new ProbeControl(&source);
        c->setObjectName(QLatin1String(name));
        c->order = {QLatin1String(name) == QLatin1String("bad") ? QStringLiteral("fail")
                                                                : QStringLiteral("x")};
        c->values.insert(c->order.first(), 1);
    }
    const QString path = m_dir.filePath(QStringLiteral("failing.zform"));
    saveForm(source, path);
    QWidget form;
    QVERIFY_THROWS_EXCEPTION(Error, loadForm(form, path));
    QVERIFY(Control::formControls(&form).isEmpty());
    QVERIFY_THROWS_EXCEPTION(Error, loadForm(form, m_dir.filePath(QStringLiteral("absent.zform"))));
}

void tst_Values::saveIsAtomic()
{
    QWidget form;
    auto *c = new ProbeControl(&form);
    c->order = {QStringLiteral("object")};
    c->values.insert(QStringLiteral("object"), QVariant::fromValue<QObject *>(c));
    const QString path = m_dir.filePath(QStringLiteral("atomic.zform"));
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("previous");
    }
    QVERIFY_THROWS_EXCEPTION(Error, saveForm(form, path)); // an object cannot be stored
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("previous"));
}

void tst_Values::ignoreErrorsRunsEveryStep()
{
    QStringList ran;
    const int failed = ignoreErrors({
        [&] { ran << QStringLiteral("a"); },
        [&] { throw Error(TypeMismatch); },
        [&] { ran << QStringLiteral("c"); },
    });
    QCOMPARE(failed, 1);
    QCOMPARE(ran, (QStringList{QStringLiteral("a"), QStringLiteral("c")}));
    QVERIFY(!attempt([] { throw Error(Overflow); }));
    // Only the platform's run-time errors are swallowed: a bug or an exhausted memory goes on.
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc, attempt([] { throw std::bad_alloc(); }));
    QVERIFY_THROWS_EXCEPTION(std::runtime_error,
                             ignoreErrors({[] { throw std::runtime_error("bug"); }}));
}

void tst_Values::extentKeys_data()
{
    QTest::addColumn<QVariant>("left");
    QTest::addColumn<QVariant>("width");
    QTest::addColumn<QRect>("expected");
    const QRect start(10, 20, 100, 30);
    QTest::newRow("nothing stored") << QVariant() << QVariant() << start;
    QTest::newRow("both stored") << QVariant(5.4f) << QVariant(80.0) << QRect(5, 20, 80, 30);
    QTest::newRow("damaged left alone")
        << QVariant(QStringLiteral("abc")) << QVariant(80) << QRect(10, 20, 80, 30);
    QTest::newRow("not finite") << QVariant(std::nan("")) << QVariant(1e30) << start;
    QTest::newRow("null") << nullVariant() << QVariant(-1e9) << start;
}

void tst_Values::extentKeys()
{
    QFETCH(QVariant, left);
    QFETCH(QVariant, width);
    QFETCH(QRect, expected);
    QWidget form;
    std::unique_ptr<Control> control(createControl(QStringLiteral("CheckCombo"), &form));
    control->setGeometry(10, 20, 100, 30);
    MemoryPropertyBag bag;
    control->WriteProperties(bag);
    for (const char *key : {"Left", "Top", "Height", "Width"})
        QVERIFY2(!bag.contains(QLatin1String(key)), key); // written with themselves as default
    if (left.isValid())
        bag.insert(QStringLiteral("Left"), left);
    if (width.isValid())
        bag.insert(QStringLiteral("Width"), width);
    control->ReadProperties(bag);
    QCOMPARE(control->geometry(), expected);
}

QTEST_MAIN(tst_Values)
#include "tst_values.moc"
