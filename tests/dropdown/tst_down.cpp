#include "support/errorof.h"

#include <zelkon/common/error.h>
#include <zelkon/common/formfile.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/dropdown/down.h>
#include <zelkon/dropdown/lbvalue.h>

#include <QComboBox>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <iterator>

using namespace zelkon;
using namespace Qt::StringLiterals;

namespace {

// One AddItem call by name, with as many arguments as the row gives (Text, Key, Value, Checked).
struct Add
{
    QString text;
    QString key;
    bool checked = false;
    int arguments = 4;
};

void addByName(Down &down, const Add &add)
{
    const QVariant value = add.text.toLower();
    QGenericArgument args[] = {Q_ARG(QString, add.text), Q_ARG(QString, add.key),
                               Q_ARG(QVariant, value), Q_ARG(bool, add.checked)};
    std::fill(std::begin(args) + add.arguments, std::end(args), QGenericArgument());
    QVERIFY(QMetaObject::invokeMethod(&down, "AddItem", args[0], args[1], args[2], args[3]));
}

QString shown(const Down &down)
{
    return down.findChild<QComboBox *>(u"txt"_s)->currentText();
}

} // namespace

Q_DECLARE_METATYPE(QList<Add>)

class tst_Down : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addItem_data();
    void addItem();
    void lookupErrors_data();
    void lookupErrors();
    void removeAndClearKeepCaption();
    void redrawAndPuts();
    void persistence();
};

void tst_Down::addItem_data()
{
    QTest::addColumn<QList<Add>>("adds");
    QTest::addColumn<QStringList>("captions"); // shown after each call
    QTest::addColumn<int>("error"); // of the last call
    QTest::addColumn<int>("checkedCount");
    QTest::addColumn<int>("listCount");

    const QString n;
    QTest::newRow("three checked")
        << QList<Add>{{u"A"_s, n, true}, {u"B"_s, n, true}, {u"C"_s, n, true}}
        << QStringList{u"A"_s, u"<List>"_s, u"<List>"_s} << 0 << 3 << 3;
    QTest::newRow("text only") << QList<Add>{{u"A"_s, n, false, 1}} << QStringList{n} << 0 << 0
                               << 1;
    QTest::newRow("unchecked changes nothing")
        << QList<Add>{{u"A"_s, n, true}, {u"B"_s, n, false}, {u"C"_s, n, false, 1}}
        << QStringList{u"A"_s, u"A"_s, u"A"_s} << 0 << 1 << 3;
    QTest::newRow("duplicate key counts the checked item first")
        << QList<Add>{{u"A"_s, u"k"_s, true}, {u"B"_s, u"K"_s, true}}
        << QStringList{u"A"_s, u"<List>"_s} << int(DuplicateKey) << 2 << 1;
    QTest::newRow("duplicate key by name, unchecked")
        << QList<Add>{{u"A"_s, u"key"_s, false}, {u"B"_s, u"KEY"_s, false, 2}} << QStringList{n, n}
        << int(DuplicateKey) << 0 << 1;
    QTest::newRow("blanks around a key make another key")
        << QList<Add>{{u"A"_s, u"k"_s}, {u"B"_s, u" k"_s}, {u"C"_s, u"k "_s}}
        << QStringList{n, n, n} << 0 << 0 << 3;
    QTest::newRow("a key of blanks is no key")
        << QList<Add>{{u"A"_s, u"  "_s}, {u"B"_s, u"  "_s, true}} << QStringList{n, u"B"_s} << 0
        << 1 << 2;
}

void tst_Down::addItem()
{
    // Given a run-mode list, when items are added by name, then each checked one updates the
    // count and the caption before its key is filed.
    QFETCH(QList<Add>, adds);
    QFETCH(QStringList, captions);
    QFETCH(int, error);
    std::unique_ptr<Control> control(createControl(u"Down"_s));
    auto &down = *qobject_cast<Down *>(control.get());
    down.setRedraw(true);
    for (qsizetype i = 0; i < adds.size(); ++i) {
        const int raised = errorOf([&] { addByName(down, adds.at(i)); });
        QCOMPARE(raised, i == adds.size() - 1 ? error : 0);
        QCOMPARE(shown(down), captions.at(i));
    }
    QTEST(down.CheckedCount(), "checkedCount");
    QTEST(down.ListCount(), "listCount");
    LBValue *first = nullptr;
    QVERIFY(QMetaObject::invokeMethod(&down, "ListItem", Q_RETURN_ARG(zelkon::LBValue *, first),
                                      Q_ARG(QVariant, 1)));
    QCOMPARE(first->Text(), adds.first().text);
    const QVariant value = first->Value();
    QVERIFY(adds.first().arguments > 2 ? value == adds.first().text.toLower() : IsMissing(value));
}

void tst_Down::lookupErrors_data()
{
    QTest::addColumn<QVariant>("index");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("text"); // of the item found

    QTest::newRow("first position") << QVariant(1) << 0 << u"A"_s;
    QTest::newRow("position rounds half to even") << QVariant(2.5) << 0 << u"B"_s;
    QTest::newRow("key in other case") << QVariant(u"KEY b"_s) << 0 << u"B"_s;
    QTest::newRow("position 0") << QVariant(0) << int(SubscriptOutOfRange) << QString();
    QTest::newRow("position past the end") << QVariant(4) << int(SubscriptOutOfRange) << QString();
    QTest::newRow("unknown key") << QVariant(u"key"_s) << int(InvalidProcedureCall) << QString();
    QTest::newRow("a number as text is a key")
        << QVariant(u"1"_s) << int(InvalidProcedureCall) << QString();
}

void tst_Down::lookupErrors()
{
    // Given three items, when one is looked up or removed, then a bad index raises the
    // collection's error and changes nothing; a good one finds the item itself.
    QFETCH(QVariant, index);
    QFETCH(int, error);
    QFETCH(QString, text);
    Down down;
    down.AddItem(u"A"_s, u"key a"_s, 1, true);
    down.AddItem(u"B"_s, u"key b"_s, 2, true);
    down.AddItem(u"C"_s);
    LBValue *found = nullptr;
    QCOMPARE(errorOf([&] { found = down.ListItem(index); }), error);
    QCOMPARE(errorOf([&] { down.RemoveItem(index); }), error);
    QCOMPARE(down.ListCount(), error ? 3 : 2);
    QCOMPARE(down.CheckedCount(), error ? 2 : 1);
    if (!error)
        QCOMPARE(found->Text(), text);
}

void tst_Down::removeAndClearKeepCaption()
{
    // Given a run-mode list with one checked item, when items are changed through ListItem and
    // removed, then the count moves by the removed items' own checks and is never recounted, and
    // the caption stays as it was.
    Down down;
    down.setRedraw(true);
    down.AddItem(u"Only"_s, u"o"_s, {}, true);
    down.AddItem(u"Later"_s, u"l"_s);
    LBValue *later = down.ListItem(u"L"_s);
    QCOMPARE(later, down.ListItem(2)); // the item itself, not a copy
    QVERIFY(later->setProperty("Checked", true)); // not counted: the list did not see it
    QVERIFY(later->setProperty("Text", u"Renamed"_s));
    QCOMPARE(down.ListItem(2)->Text(), u"Renamed"_s);
    QVERIFY(!later->setProperty("Key", u"x"_s)); // read-only
    QCOMPARE(down.CheckedCount(), 1);

    down.RemoveItem(u"O"_s);
    QCOMPARE(down.CheckedCount(), 0);
    QCOMPARE(shown(down), u"Only"_s);
    down.RemoveItem(1);
    QCOMPARE(down.CheckedCount(), -1);
    QCOMPARE(down.ListCount(), 0);
    down.AddItem(u"Again"_s, u"o"_s); // a removed key is free again
    down.Clear();
    QCOMPARE(down.CheckedCount(), 0);
    QCOMPARE(down.ListCount(), 0);
    QCOMPARE(shown(down), u"Only"_s);

    QObject *item = createObject(u"lbvalue"_s);
    QVERIFY(qobject_cast<LBValue *>(item));
    QCOMPARE(item->property("Key").toString(), QString());
    delete item;
}

void tst_Down::redrawAndPuts()
{
    // Given a list that does not redraw, when captions change, then the screen keeps its text
    // until Redraw is switched on; caption puts report themselves and refresh nothing.
    Down down;
    QSignalSpy changed(&down, &Control::PropertyChanged);
    down.AddItem(u"A"_s, {}, {}, true);
    down.AddItem(u"B"_s, {}, {}, true);
    QCOMPARE(shown(down), QString());
    QVERIFY(down.setProperty("Redraw", true));
    QCOMPARE(shown(down), u"<List>"_s);
    QVERIFY(down.setProperty("CaptionGroup", u"Several"_s));
    QVERIFY(down.setProperty("CaptionGroup", u"Several"_s));
    QVERIFY(down.setProperty("CaptionNothing", u"None"_s));
    QVERIFY(down.setProperty("VisibleCount", -3)); // no range check
    QCOMPARE(shown(down), u"<List>"_s);
    down.AddItem(u"C"_s, {}, {}, true);
    QCOMPARE(shown(down), u"Several"_s);
    QStringList names;
    for (const QList<QVariant> &call : std::as_const(changed))
        names << call.at(0).toString();
    QCOMPARE(names,
             (QStringList{u"Redraw"_s, u"CaptionGroup"_s, u"CaptionGroup"_s, u"CaptionNothing"_s,
                          u"VisibleCount"_s}));
    QCOMPARE(down.VisibleCount(), -3);
}

void tst_Down::persistence()
{
    // Given changed captions and row count, when the form is saved and opened in run mode, then
    // they come back, the caption shows CaptionNothing, and defaults store nothing.
    QWidget form;
    auto *down = qobject_cast<Down *>(createControl(u"Down"_s, &form));
    down->InitProperties();
    down->setVisibleCount(12);
    down->setCaptionNothing(u"none"_s);
    down->setCaptionGroup(u"some"_s);
    QTemporaryDir dir;
    const QString path = dir.filePath(u"form.zelkon"_s);
    saveForm(form, path);
    QWidget loadedForm;
    const QList<Control *> loaded = loadForm(loadedForm, path);
    QCOMPARE(loaded.size(), 1);
    auto *copy = qobject_cast<Down *>(loaded.first());
    QVERIFY(copy);
    QCOMPARE(copy->VisibleCount(), 12);
    QCOMPARE(copy->CaptionGroup(), u"some"_s);
    QCOMPARE(copy->CaptionNothing(), u"none"_s);
    QVERIFY(copy->Redraw());
    QCOMPARE(shown(*copy), u"none"_s);

    MemoryPropertyBag defaults;
    Down fresh;
    fresh.InitProperties();
    fresh.WriteProperties(defaults);
    QCOMPARE(defaults.keys(), QStringList());
}

QTEST_MAIN(tst_Down)
#include "tst_down.moc"
