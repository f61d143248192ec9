#include "support/errorof.h"
#include "support/part.h"

#include <zelkon/checklist/checkcombo.h>
#include <zelkon/common/error.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>
#include <zelkon/test/testplatform.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QTestEventList>
#include <QTimer>

#include <algorithm>
#include <memory>

using namespace zelkon;

namespace {

constexpr int MaxRows = 32767; // the list's row counters are 16-bit

QStringList sl(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *text : texts)
        list.append(QString::fromUtf8(text));
    return list;
}

QVariant list1(const QStringList &texts)
{
    return QVariantList(texts.cbegin(), texts.cend());
}

QVariant list1(std::initializer_list<const char *> texts)
{
    return list1(sl(texts));
}

// A recordset's row block: a(0, i) the text, a(1, i) the identifier.
QVariant array2(std::initializer_list<std::pair<const char *, QVariant>> rows)
{
    VariantArray a({{0, 1}, {0, qint32(rows.size()) - 1}});
    qint32 i = 0;
    for (const auto &[text, id] : rows) {
        a.at({0, i}) = QString::fromUtf8(text);
        a.at({1, i++}) = id;
    }
    return QVariant::fromValue(a);
}

QStringList strings(const QVariant &value)
{
    QStringList texts;
    for (const QVariant &v : value.toList())
        texts.append(v.toString());
    return texts;
}

QWidget *formOf(const CheckCombo *combo)
{
    return part(combo, "frmList");
}

// The first child named `name` whose Index is `index`.
template<typename T>
T *indexed(const QObject *parent, const char *name, int index)
{
    for (T *child : parent->findChildren<T *>(QString::fromLatin1(name))) {
        if (child->property("Index") == index)
            return child;
    }
    return nullptr;
}

// The list in use: the "List" whose Index is the popup's ActiveList.
QAbstractItemView *listOf(const CheckCombo *combo)
{
    return indexed<QAbstractItemView>(formOf(combo), "List",
                                      formOf(combo)->property("ActiveList").toInt());
}

QAction *menuItem(const CheckCombo *combo, int index)
{
    return indexed<QAction>(formOf(combo), "mnuPopup", index);
}

QStringList rowTexts(const QAbstractItemView *list, bool checkedOnly = false)
{
    QStringList texts;
    for (int i = 0; list->model() && i < list->model()->rowCount(); ++i) {
        const QModelIndex row = list->model()->index(i, 0);
        if (!checkedOnly || row.data(Qt::CheckStateRole).toInt() == Qt::Checked)
            texts.append(row.data().toString());
    }
    return texts;
}

int snapshotRows(const CheckCombo *combo)
{
    const QVariant all = formOf(combo)->property("AllItems");
    return IsEmpty(all) ? 0 : all.value<VariantArray>().UBound(1) + 1;
}

// The check box of a row, where a click toggles it.
QPoint checkBoxOf(const QAbstractItemView *list, int row)
{
    const QRect r = list->visualRect(list->model()->index(row, 0));
    return QPoint(r.left() + r.height() / 2, r.center().y());
}

// An SQLite database at `database` holding the statements' tables.
void openDatabase(Connection &connection, const QString &database, const QStringList &statements)
{
    connection.Open(QString(QStringLiteral("Driver=QSQLITE;Database=") + database));
    QSqlQuery q(connection.database());
    for (const QString &statement : statements)
        QVERIFY2(q.exec(statement), qPrintable(statement));
}

// How checks are given to a loaded list; the S variants with single check on.
enum class Via { Texts, Ids, Reload, Rebuild, SelectAll, ClearAll, STexts, SIds, SRebuild };

} // namespace

Q_DECLARE_METATYPE(Via)

class tst_CheckList : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestPlatform> m_platform;
    std::unique_ptr<QWidget> m_host;
    QTemporaryDir m_dir;

    CheckCombo *showCombo(std::initializer_list<const char *> rows = {})
    {
        auto *combo = new CheckCombo(m_host.get());
        combo->setGeometry(20, 40, 160, 22);
        combo->setSorting(false);
        if (rows.size() > 0)
            combo->setSArrayData(list1(rows));
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        m_host->move(screen.left() + 50, screen.top() + 50);
        m_host->show();
        m_host->activateWindow();
        if (!QTest::qWaitForWindowActive(m_host.get()))
            qWarning("host window not active");
        return combo;
    }
    void openAndActivate(CheckCombo *combo)
    {
        QTest::mouseClick(part(combo, "ButDropDown"), Qt::LeftButton);
        QVERIFY(formOf(combo)->isVisible());
        QVERIFY(QTest::qWaitForWindowActive(formOf(combo)));
    }

private Q_SLOTS:
    void init()
    {
        m_platform = std::make_unique<TestPlatform>();
        m_host = std::make_unique<QWidget>();
        m_host->resize(300, 200);
    }
    void cleanup()
    {
        m_host.reset();
        m_platform.reset();
    }

    // Every put reports the change under the property's name, also when the value is the same;
    // persisted ones survive a save and load, a damaged neighbour costing only itself.
    void puts_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");

        const char *persisted[]
            = {"Title", "MaxLine",     "Delay",     "Enabled",    "EditEnabled", "Sorting",
               "Inv",   "SingleCheck", "AllSelect", "Appearance", "Border"};
        const QVariantList values{
            QStringLiteral("Regions"), 9, 40, false, false, false, true, true, true, 0, 0};
        for (int i = 0; i < values.size(); ++i)
            QTest::newRow(persisted[i]) << QString::fromLatin1(persisted[i]) << values.at(i);
        const auto other = [](const char *key, const QVariant &value) {
            QTest::newRow(key) << QString::fromLatin1(key) << value;
        };
        other("TypeData", QVariant::fromValue(CheckCombo::ArData));
        other("SArrayData", list1({"a", "b"}));
        other("ArrayChecked", list1({"All"}));
        other("ArrayCheckedID", QVariantList{1});
        other("ArrayVisible", QVariantList{0});
        other("CommandText", QStringLiteral("SELECT 1"));
        other("CommandType", 1);
        other("Left", 5.0f);
        other("Width", 150.0f);
        other("Font", QFont(QStringLiteral("Serif"), 15));
    }
    void puts()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, value);

        // Given a control, whose defaults store nothing; when a property is put twice
        CheckCombo source(m_host.get());
        MemoryPropertyBag bag;
        source.WriteProperties(bag);
        QCOMPARE(bag.keys(), QStringList());
        QSignalSpy changed(&source, &Control::PropertyChanged);
        QVERIFY(source.setProperty(key.toLatin1(), value));
        QVERIFY(source.setProperty(key.toLatin1(), value));
        // then both puts are reported under its name
        QCOMPARE(changed.size(), 2);
        QCOMPARE(changed.at(1).at(0).toString(), key);

        source.WriteProperties(bag);
        if (bag.keys().isEmpty())
            return; // not persisted
        QCOMPARE(bag.keys(), QStringList(key));
        QCOMPARE(bag.ReadProperty(key), value);
        const char *damaged = key == QLatin1String("Delay") ? "MaxLine" : "Delay";
        bag.insert(QString::fromLatin1(damaged), QStringLiteral("not a number")); // skipped
        CheckCombo target;
        target.ReadProperties(bag);
        QCOMPARE(target.property(key.toLatin1()), value);
        QCOMPARE(target.property(damaged).toInt(), key == QLatin1String("Delay") ? 5 : 1);
        QCOMPARE(formOf(&target)->property("ActiveList").toInt(), target.Sorting() ? 1 : 0);
        QCOMPARE(menuItem(&target, 4)->isChecked(), target.Inv());
        QCOMPARE(part<QLineEdit>(&target, "Text")->isReadOnly(), !target.EditEnabled());
    }

    // What a screen reader reads for each part, as the host names the control by property or
    // as a plain QWidget, and as the list opens.
    void accessibleNames()
    {
        CheckCombo *combo = showCombo();
        const auto check = [](QObject *object, const char *name, const char *description = "") {
            QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(object);
            QVERIFY(accessible);
            QCOMPARE(accessible->text(QAccessible::Name), QString::fromUtf8(name));
            QCOMPARE(accessible->text(QAccessible::Description), QString::fromUtf8(description));
        };
        QWidget *text = part(combo, "Text"), *button = part(combo, "ButDropDown");
        check(text, "Filter");
        check(button, "Open list");
        combo->setProperty("accessibleName", QStringLiteral("Regions"));
        check(text, "Regions");
        static_cast<QWidget *>(combo)->setAccessibleName(QStringLiteral("Areas"));
        text->clearFocus();
        combo->setFocus(); // the field learns the name when it is focused again
        check(text, "Areas");
        openAndActivate(combo);
        check(button, "Close list");
        check(formOf(combo), "Filter list");
        const char *hint = "Check/Uncheck Items";
        check(indexed<QWidget>(formOf(combo), "List", 0), "Rows", hint);
        check(indexed<QWidget>(formOf(combo), "List", 1), "Rows, sorted", hint);
    }

    // The closed field opens from the keyboard as a combo box does; the field is the one tab stop.
    void openKeys_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<bool>("opens");

        const Qt::KeyboardModifiers none, alt(Qt::AltModifier);
        QTest::newRow("F4") << "Text" << Qt::Key_F4 << none << true;
        QTest::newRow("Alt+Down") << "Text" << Qt::Key_Down << alt << true;
        QTest::newRow("Alt+Down on the button") << "ButDropDown" << Qt::Key_Down << alt << true;
        QTest::newRow("Alt+F4 is the window's") << "Text" << Qt::Key_F4 << alt << false;
        QTest::newRow("Down alone") << "Text" << Qt::Key_Down << none << false;
    }
    void openKeys()
    {
        QFETCH(QString, target);
        QFETCH(Qt::Key, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(bool, opens);

        auto *before = new QLineEdit(m_host.get());
        CheckCombo *combo = showCombo();
        before->setFocus();
        QTest::keyClick(before, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), part(combo, "Text"));

        int mouseDowns = 0; // a spy cannot hold MouseDown's by-reference arguments
        connect(combo, &CheckCombo::MouseDown, this,
                [&](qint16 &, qint16 &, float &, float &) { ++mouseDowns; });
        QSignalSpy click(combo, &CheckCombo::Click);
        QTest::keyClick(combo->findChild<QWidget *>(target), key, modifiers);
        QCOMPARE(combo->isDroppedDown(), opens);
        QCOMPARE(formOf(combo)->isVisible(), opens);
        QCOMPARE(click.size(), opens ? 1 : 0);
        QCOMPARE(mouseDowns, 0); // a key is no mouse press
        if (opens) {
            QVERIFY(QTest::qWaitForWindowActive(formOf(combo)));
            QTest::keyClick(listOf(combo), Qt::Key_Escape);
            QVERIFY(!combo->isDroppedDown());
        }
    }

    void loadArray_data()
    {
        QTest::addColumn<bool>("sorting");
        QTest::addColumn<QVariant>("source");
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QVariantList>("ids");

        const auto row = [](const char *name, bool sorting, const QVariant &source,
                            const QStringList &texts, const QVariantList &ids) {
            QTest::newRow(name) << sorting << source << texts << ids;
        };
        const QVariant words = list1({"pear", "Apple", "fig", "apple", "Banana"});
        const QVariant cab = array2({{"c", 30}, {"a", 10}, {"B", 20}});
        row("1-D unsorted", false, words, sl({"pear", "Apple", "fig", "apple", "Banana"}),
            {0, 0, 0, 0, 0});
        row("1-D sorted, equal texts keep their order", true, words,
            sl({"Apple", "apple", "Banana", "fig", "pear"}), {0, 0, 0, 0, 0});
        row("2-D sorted", true, cab, sl({"a", "B", "c"}), {10, 20, 30});
        row("2-D unsorted", false, cab, sl({"c", "a", "B"}), {30, 10, 20});
        row("Empty", true, QVariant(), {}, {});
        VariantArray shifted({{-1, 1}});
        shifted.at({-1}) = QStringLiteral("before");
        shifted.at({0}) = QStringLiteral("x");
        shifted.at({1}) = QStringLiteral("y");
        row("lower bound taken as 0", false, QVariant::fromValue(shifted), sl({"x", "y"}), {0, 0});
        // A row that cannot be read ends the load; the rows before it stay.
        QVariantList withNull = list1({"a", "b", "c"}).toList();
        withNull.insert(2, nullVariant());
        row("Null text", false, withNull, sl({"a", "b"}), {0, 0});
        row("bad identifier", false, array2({{"x", 1}, {"y", QStringLiteral("?")}}), sl({"x"}),
            {1});
        // Long shared beginnings, lengths that differ inside and past the first units compared,
        // case, non-ASCII letters, empty texts and repeats: ascending by the case folding.
        QStringList texts;
        for (int i = 0; i < 300; ++i)
            texts.append(QStringLiteral("Item %1%2")
                             .arg((i * 37) % 101)
                             .arg(QLatin1String(i % 3 ? "" : "a")));
        texts << QStringLiteral("ITEM 1") << QStringLiteral("item 1") << QStringLiteral("Item 1")
              << QStringLiteral("Item 10000000000b") << QStringLiteral("Item 10000000000A")
              << QStringLiteral("Item 100000000000") << QStringLiteral("Item") << QString()
              << QString::fromUtf8("Ärger") << QString::fromUtf8("ärger") << QStringLiteral("Arg")
              << QString::fromUtf8("straße") << QStringLiteral("STRASSE")
              << QString::fromUtf8("Łódź") << QString::fromUtf8("łódź b") << QStringLiteral("Zebra")
              << QString::fromUtf8("Ωmega");
        QStringList sorted = texts;
        std::stable_sort(sorted.begin(), sorted.end(), [](const QString &a, const QString &b) {
            return a.toCaseFolded() < b.toCaseFolded();
        });
        row("sort order", true, list1(texts), sorted, QVariantList(sorted.size(), 0));
        row("sort order, in order already", true, list1(sorted), sorted,
            QVariantList(sorted.size(), 0));
        QVariantList many;
        QStringList counted;
        for (int i = 0; i < MaxRows + 2; ++i) {
            many.append(QString::number(i));
            if (i < MaxRows)
                counted.append(QString::number(i));
        }
        row("more rows than the counters hold", false, many, counted,
            QVariantList(counted.size(), 0));
    }
    void loadArray()
    {
        QFETCH(bool, sorting);
        QFETCH(QVariant, source);
        QFETCH(QStringList, texts);
        QFETCH(QVariantList, ids);

        CheckCombo combo;
        combo.setSorting(sorting);
        combo.setTypeData(CheckCombo::ArData);
        combo.setSArrayData(source);
        QAbstractItemView *list = listOf(&combo);
        QCOMPARE(rowTexts(list), texts);
        QCOMPARE(rowTexts(indexed<QAbstractItemView>(formOf(&combo), "List", sorting ? 0 : 1)),
                 QStringList()); // the other list stays empty
        const auto all = formOf(&combo)->property("AllItems").value<VariantArray>();
        QCOMPARE(snapshotRows(&combo), texts.size());
        QVariantList everyRow;
        for (int i = 0; i < texts.size(); ++i) {
            QCOMPARE(list->model()->index(i, 0).data(Qt::UserRole), ids.at(i));
            QCOMPARE(all.at({i, 0}).toString(), texts.at(i));
            QCOMPARE(all.at({i, 1}), ids.at(i));
            everyRow.append(i);
        }
        QCOMPARE(combo.ArrayVisible(), texts.isEmpty() ? QVariant() : QVariant(everyRow));
        QCOMPARE(combo.SArrayData(), source);
        // Turned unsorted and sorted again, the list shows the rows in the same order.
        combo.setSorting(!sorting);
        combo.setSorting(sorting);
        QCOMPARE(rowTexts(listOf(&combo)), texts);
    }

    void restoreChecks_data()
    {
        QTest::addColumn<QVariant>("source");
        QTest::addColumn<Via>("via");
        QTest::addColumn<QVariant>("input");
        QTest::addColumn<QStringList>("checked");
        QTest::addColumn<QVariant>("ids");
        QTest::addColumn<QString>("title");

        using enum Via;
        const QVariant abc = list1({"a", "b", "c"}), abc2 = array2({{"a", 1}, {"b", 2}, {"c", 3}});
        const QVariant xyx = list1({"x", "y", "x"});
        const auto row
            = [](const char *name, const QVariant &source, Via via, const QVariant &input,
                 const QStringList &checked, const QVariantList &ids, const char *title) {
                  QTest::newRow(name)
                      << source << via << input << checked
                      << (ids.isEmpty() ? QVariant() : QVariant(ids)) << QString::fromLatin1(title);
              };
        // By text: each text checks the first row that has it, in list order. The field shows
        // the one text, "List", or "All" when nothing or every row of the source is checked.
        row("two of three", abc2, Texts, list1({"b", "a"}), sl({"a", "b"}), {1, 2}, "List");
        row("every text", abc2, Texts, list1({"c", "a", "b"}), sl({"a", "b", "c"}), {1, 2, 3},
            "All");
        row("unknown text", abc, Texts, list1({"zz"}), {}, {}, "All");
        row("Empty", abc2, Texts, QVariant(), {}, {}, "All");
        row("lone All checks nothing", list1({"All", "x"}), Texts, list1({"All"}), {}, {}, "All");
        row("All among others is a text", list1({"All", "X", "y"}), Texts, list1({"All", "X"}),
            sl({"All", "X"}), {0, 0}, "List");
        row("first row of a text only", list1({"x", "x", "y", "x"}), Texts, list1({"y", "x"}),
            sl({"x", "y"}), {0, 0}, "List");
        row("repeated text", xyx, Texts, list1({"x", "x"}), sl({"x"}), {0}, "x");
        row("number element", list1({"5", "6"}), Texts, QVariantList{6}, sl({"6"}), {0}, "6");
        row("Null element skipped", abc2, Texts, QVariantList{nullVariant(), QStringLiteral("b")},
            sl({"b"}), {2}, "b");
        // A rebuild checks every row with a checked text.
        row("rebuild", xyx, Rebuild, list1({"x"}), sl({"x", "x"}), {0, 0}, "x");
        // A reload keeps the checks by text (here "b" and "c"), in the new list's order.
        row("reload", abc, Reload, array2({{"c", 3}, {"x", 9}, {"b", 2}, {"a", 1}}), sl({"c", "b"}),
            {3, 2}, "List");
        // By identifier: the first row of each; the rows of a 1-D array all carry 0.
        row("identifiers", array2({{"a", 10}, {"b", 20}, {"c", 30}, {"d", 20}}), Ids,
            QVariantList{30, 20, 99}, sl({"b", "c"}), {20, 30}, "List");
        row("identifiers of a 1-D array", list1({"p", "q"}), Ids, QVariantList{0, 0}, sl({"p"}),
            {0}, "p");
        // Under single check the texts or identifiers are checked in turn: the last one wins,
        // also when it was checked before.
        row("single, text repeated last", abc, STexts, list1({"b", "a", "b"}), sl({"b"}), {0}, "b");
        row("single, identifier repeated last", abc2, SIds, QVariantList{2, 1, 2}, sl({"b"}), {2},
            "b");
        row("single, rebuild with a text checked twice", array2({{"x", 1}, {"y", 2}, {"x", 3}}),
            SRebuild, {}, sl({"x"}), {3}, "All");
        row("Select All", array2({{"a", 1}, {"b", 2}, {"a", 3}}), SelectAll, {}, sl({"a", "b"}),
            {1, 2}, "All");
        row("Clear All", abc, ClearAll, {}, {}, {}, "All");
    }
    void restoreChecks()
    {
        QFETCH(QVariant, source);
        QFETCH(Via, via);
        QFETCH(QVariant, input);
        QFETCH(QStringList, checked);
        QFETCH(QVariant, ids);
        QFETCH(QString, title);

        CheckCombo combo;
        combo.setSorting(false);
        combo.setSArrayData(source);
        QWidget *form = formOf(&combo);
        QVERIFY(QMetaObject::invokeMethod(form, "CheckAllRows"));
        combo.setSingleCheck(via >= Via::STexts);
        const QStringList result = checked.isEmpty() ? sl({"All"}) : checked;
        QVariant given = input;
        switch (via) {
        case Via::Texts:
        case Via::STexts:
            combo.setArrayChecked(given);
            QCOMPARE(strings(given), result); // handed back
            QCOMPARE(part(&combo, "Text")->toolTip(), result.join(QLatin1Char(',')));
            break;
        case Via::Ids:
        case Via::SIds:
            combo.setArrayCheckedID(given);
            QCOMPARE(given, ids);
            break;
        case Via::Reload:
            combo.setArrayChecked(list1({"b", "c"}));
            combo.setSArrayData(input);
            break;
        case Via::Rebuild:
        case Via::SRebuild: // the checks from before, or those given, carried over by text
            if (input.isValid())
                combo.setArrayChecked(input);
            QVERIFY(QMetaObject::invokeMethod(form, "RebuildVisibleRows"));
            break;
        case Via::SelectAll:
        case Via::ClearAll:
            combo.ClearAll();
            if (via == Via::SelectAll)
                combo.SelectAll();
            break;
        }
        QCOMPARE(rowTexts(listOf(&combo), true), checked);
        QCOMPARE(strings(combo.ArrayChecked()), result);
        QCOMPARE(combo.ArrayCheckedID(), ids);
        QCOMPARE(combo.Title(), title);
    }

    // Keys in the open list: space toggles the current row; Ctrl+A, Ctrl+I and Ctrl+U check,
    // invert and clear (the letters alone are the list's). Under single check the rows are set
    // one after the other and the last row checked in turn wins. Esc then closes the list.
    void keys_data()
    {
        QTest::addColumn<bool>("single");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QTestEventList>("events");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<QString>("title");

        const auto ctrl = [](Qt::Key key) { // the letter alone after it must change nothing
            QTestEventList events;
            events.addKeyClick(key, Qt::ControlModifier);
            events.addKeyClick(key);
            return events;
        };
        QTestEventList spaceDownSpace;
        for (Qt::Key key : {Qt::Key_Space, Qt::Key_Down, Qt::Key_Space})
            spaceDownSpace.addKeyClick(key);
        const QTestEventList ctrlA = ctrl(Qt::Key_A), ctrlI = ctrl(Qt::Key_I),
                             ctrlU = ctrl(Qt::Key_U);
        QTest::newRow("ctrlA") << false << "b" << ctrlA << sl({"a", "b", "c"}) << "All";
        QTest::newRow("ctrlI") << false << "b" << ctrlI << sl({"a", "c"}) << "List";
        QTest::newRow("ctrlU") << false << "b" << ctrlU << sl({}) << "All";
        QTest::newRow("space, down, space")
            << false << "c" << spaceDownSpace << sl({"a", "b", "c"}) << "All";
        QTest::newRow("single: the newest check wins")
            << true << "c" << spaceDownSpace << sl({"b"}) << "b";
        QTest::newRow("single: ctrlA, nothing checked") << true << "" << ctrlA << sl({"c"}) << "c";
        QTest::newRow("single: ctrlA, last row checked")
            << true << "c" << ctrlA << sl({"c"}) << "c";
        QTest::newRow("single: ctrlI, first row checked")
            << true << "a" << ctrlI << sl({"c"}) << "c";
        QTest::newRow("single: ctrlI, last row checked")
            << true << "c" << ctrlI << sl({"c"}) << "c";
        QTest::newRow("single: ctrlU") << true << "b" << ctrlU << sl({}) << "All";
    }
    void keys()
    {
        QFETCH(bool, single);
        QFETCH(QString, before);
        QFETCH(QTestEventList, events);
        QFETCH(QStringList, after);
        QFETCH(QString, title);

        CheckCombo *combo = showCombo({"a", "b", "c"});
        combo->setSingleCheck(single);
        combo->setArrayChecked(before.isEmpty() ? QVariant() : list1(QStringList(before)));
        openAndActivate(combo);
        QSignalSpy quite(combo, &CheckCombo::Quite);
        QAbstractItemView *list = listOf(combo);
        list->setCurrentIndex(list->model()->index(0, 0));
        events.simulate(list);
        QCOMPARE(rowTexts(list, true), after);
        QTest::keyClick(list, Qt::Key_Escape);
        QCOMPARE(quite, QList<QVariantList>{{true}});
        QVERIFY(!combo->isDroppedDown() && !formOf(combo)->isVisible());
        QCOMPARE(strings(combo->ArrayChecked()), after.isEmpty() ? sl({"All"}) : after);
        QCOMPARE(combo->Title(), title);
    }

    void showHide_data()
    {
        QTest::addColumn<QList<int>>("unmark");
        QTest::addColumn<bool>("confirm");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QStringList>("checked");
        QTest::addColumn<QVariant>("arVis");

        // A hidden row loses its check.
        QTest::newRow("b and d hidden") << QList<int>{1, 3} << true << sl({"a", "c"}) << sl({"a"})
                                        << QVariant(QVariantList{0, 2});
        QTest::newRow("every row hidden")
            << QList<int>{0, 1, 2, 3} << true << sl({}) << sl({}) << QVariant();
        // Declined: the rows stay, but the marks left are the shown rows of the next rebuild.
        QTest::newRow("declined") << QList<int>{0} << false << sl({"a", "b", "c", "d"})
                                  << sl({"a", "b"}) << QVariant(QVariantList{1, 2, 3});
    }
    void showHide()
    {
        QFETCH(QList<int>, unmark);
        QFETCH(bool, confirm);
        QFETCH(QStringList, rows);
        QFETCH(QStringList, checked);
        QFETCH(QVariant, arVis);

        // German has no dialog texts of its own, so the buttons are English; the accessible names
        // are German
        m_platform->setUiLanguage(QLocale::German);
        CheckCombo *combo = showCombo({"a", "b", "c", "d"});
        combo->setArrayChecked(list1({"a", "b"}));
        openAndActivate(combo);
        QSignalSpy quite(combo, &CheckCombo::Quite);

        QWidget *form = formOf(combo);
        QTimer::singleShot(0, form, [&] {
            auto *dialog = part<QDialog>(form, "frmShowHide");
            QVERIFY(dialog && dialog->isVisible());
            auto *no = part<QPushButton>(dialog, "btnNo");
            QCOMPARE(no->text(), QStringLiteral("No"));
            auto *box = part<QListWidget>(dialog, "HideBox");
            QCOMPARE(box->accessibleName(), QStringLiteral("Angezeigte Zeilen"));
            for (int row : unmark) // the user clicks the rows off
                QTest::mouseClick(box->viewport(), Qt::LeftButton, {},
                                  box->visualItemRect(box->item(row)).center());
            QTest::mouseClick(confirm ? part(dialog, "btnYes") : no, Qt::LeftButton);
        });
        menuItem(combo, 3)->trigger();

        QCOMPARE(quite, QList<QVariantList>{{true}});
        QVERIFY(!form->isVisible());
        QCOMPARE(rowTexts(listOf(combo)), rows);
        QCOMPARE(rowTexts(listOf(combo), true), checked);
        QCOMPARE(strings(combo->ArrayChecked()), checked.isEmpty() ? sl({"All"}) : checked);
        QCOMPARE(combo->ArrayVisible(), arVis);
        QCOMPARE(snapshotRows(combo), 4);
        QVERIFY(!part(form, "frmShowHide"));
        QCOMPARE(m_platform->messages(), sl({"test", "test"}));

        QVERIFY(QMetaObject::invokeMethod(form, "RebuildVisibleRows"));
        QCOMPARE(rowTexts(listOf(combo)).size(), strings(arVis).size());
    }

    // A command and a connection of the control's own; hidden rows survive a recordset reload.
    void connectAndRefresh()
    {
        Connection connection;
        openDatabase(connection, m_dir.filePath(QStringLiteral("refresh.db")),
                     {QStringLiteral("CREATE TABLE t (name TEXT)"),
                      QStringLiteral("INSERT INTO t VALUES ('b'), ('d'), ('a')")});
        CheckCombo combo;
        combo.setSorting(false);
        combo.setCommandText(QStringLiteral("SELECT name FROM t ORDER BY name"));
        combo.setCommandType(1);
        combo.setConnect(&connection);
        QCOMPARE(rowTexts(listOf(&combo)), sl({"a", "b", "d"}));
        QVERIFY(!formOf(&combo)->property("FieldTips").toBool());
        combo.setArrayChecked(list1({"b"}));
        QVERIFY(
            QSqlQuery(connection.database()).exec(QStringLiteral("INSERT INTO t VALUES ('c')")));
        combo.Refresh();
        QCOMPARE(snapshotRows(&combo), 4);
        QCOMPARE(rowTexts(listOf(&combo)), sl({"a", "b", "c"})); // the rows shown stay 0 to 2
        QCOMPARE(rowTexts(listOf(&combo), true), QStringList()); // a refresh keeps no checks

        combo.setArrayVisible(QVariantList{0, 3});
        QCOMPARE(listOf(&combo)->model()->rowCount(), 3); // applied at the next rebuild only
        combo.setArrayChecked(list1({"a", "c"}));
        Recordset rs;
        rs.Open(QStringLiteral("SELECT name FROM t ORDER BY name DESC"),
                QVariant::fromValue<QObject *>(&connection));
        combo.setRecordsetData(&rs);
        QCOMPARE(rowTexts(listOf(&combo)), sl({"d", "a"})); // rows 0 and 3 of the new load
        QCOMPARE(rowTexts(listOf(&combo), true), sl({"a"}));
        combo.setSArrayData(list1({"x", "y", "z"})); // an array load shows every row again
        QCOMPARE(listOf(&combo)->model()->rowCount(), 3);
        // Row numbers that name no row add nothing; the row counters end the list.
        combo.setArrayVisible(QVariantList{5, 1, -1, QStringLiteral("x"), 0});
        combo.setRecordsetData(&rs);
        QCOMPARE(rowTexts(listOf(&combo)), sl({"c", "d"}));
        combo.setArrayVisible(QVariantList(MaxRows + 5, 1));
        combo.setRecordsetData(&rs);
        QCOMPARE(rowTexts(listOf(&combo)), QStringList(MaxRows, QStringLiteral("c")));

        combo.setCommandText(QStringLiteral("SELECT nosuchcolumn FROM t"));
        QVERIFY(errorOf([&] { combo.Refresh(); }) >= DatabaseError);
    }

    void popupPlacement()
    {
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        CheckCombo *combo = showCombo();
        combo->setMaxLine(3);
        QVariantList rows;
        for (int i = 0; i < 10; ++i)
            rows.append(QStringLiteral("row %1").arg(i));
        combo->setSArrayData(rows);
        openAndActivate(combo);
        QWidget *form = formOf(combo);
        QAbstractItemView *list = listOf(combo);
        const QRect field(combo->mapToGlobal(QPoint(0, 0)), combo->size());
        QCOMPARE(form->geometry().top(), field.bottom() + 1);
        QCOMPARE(form->geometry().left(), field.left());
        QCOMPARE(form->width(), field.width());
        QCOMPARE(form->height(), 3 * list->sizeHintForRow(0) + 2 * list->frameWidth());
        QTest::keyClick(list, Qt::Key_Escape);
        QVERIFY(!form->isVisible());
        // Inside the frame, the button at the right edge, the text filling the rest.
        const QRect button = part(combo, "ButDropDown")->geometry();
        QCOMPARE(button.right(), combo->contentsRect().right());
        QCOMPARE(button.height(), combo->contentsRect().height());
        QCOMPARE(part(combo, "Text")->geometry().right() + 1, button.x());

        // Near the screen's bottom the list opens above the field.
        m_host->move(screen.left() + 50, screen.bottom() + 1 - m_host->frameGeometry().height());
        combo->move(20, m_host->height() - 30);
        QTRY_VERIFY(combo->mapToGlobal(QPoint(0, combo->height())).y() + form->height()
                    > screen.bottom());
        openAndActivate(combo);
        QCOMPARE(form->geometry().bottom(), combo->mapToGlobal(QPoint(0, 0)).y() - 1);
    }

    // Clicking elsewhere commits the checks (Quite with Cancel False); a hidden host form
    // closes the list without Quite.
    void leaving_data()
    {
        QTest::addColumn<bool>("hostHides");
        QTest::newRow("clicked elsewhere") << false;
        QTest::newRow("hostHides") << true;
    }
    void leaving()
    {
        QFETCH(bool, hostHides);

        CheckCombo *combo = showCombo({"a", "b", "c"});
        combo->setArrayChecked(list1({"b"}));
        QSignalSpy quite(combo, &CheckCombo::Quite);
        openAndActivate(combo);
        // A press on the button while the list is open does not close it.
        QTest::mouseClick(part(combo, "ButDropDown"), Qt::LeftButton);
        QVERIFY(formOf(combo)->isVisible());
        QAbstractItemView *list = listOf(combo);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, checkBoxOf(list, 0));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, checkBoxOf(list, 1));
        if (hostHides)
            m_host->hide();
        else
            m_host->activateWindow(); // the user clicks elsewhere
        QTRY_VERIFY(!formOf(combo)->isVisible());
        QVERIFY(!combo->isDroppedDown());
        QCOMPARE(quite, hostHides ? QList<QVariantList>() : QList<QVariantList>{{false}});
        QCOMPARE(strings(combo->ArrayChecked()), sl({"a"}));
        QCOMPARE(combo->Title(), hostHides ? QStringLiteral("b") : QStringLiteral("a"));
    }

    void waitsForTheActivation()
    {
        CheckCombo *combo = showCombo({"a"});
        if (QGuiApplication::platformName() == QLatin1String("offscreen"))
            QSKIP("the offscreen platform activates every window that it shows; run under xcb");
        QWidget *form = formOf(combo);
        // A window system that has not activated the popup yet: not being active is not leaving it.
        form->setWindowFlag(Qt::WindowDoesNotAcceptFocus);
        QSignalSpy quite(combo, &CheckCombo::Quite);
        QElapsedTimer clock;
        clock.start();
        QTest::mouseClick(part(combo, "ButDropDown"), Qt::LeftButton);
        QTest::qWait(200);
        QVERIFY(form->isVisible());
        QCOMPARE(quite.size(), 0);
        // ... until the grace time has run out.
        QTRY_COMPARE_WITH_TIMEOUT(quite, QList<QVariantList>{{false}}, 5000);
        QVERIFY(clock.elapsed() >= 1000);
    }

    void contextMenu_data()
    {
        QTest::addColumn<bool>("single");
        QTest::addColumn<QStringList>("shown");
        QTest::newRow("all commands")
            << false
            << sl({"Select All", "Clear All", "Invert Selection", "Show/Hide", "Not In ..."});
        QTest::newRow("single check") << true << sl({"Clear All", "Show/Hide", "Not In ..."});
    }
    void contextMenu()
    {
        QFETCH(bool, single);
        QFETCH(QStringList, shown);

        CheckCombo *combo = showCombo({"a", "b"});
        combo->setSingleCheck(single);
        openAndActivate(combo);
        QTest::mouseClick(listOf(combo)->viewport(), Qt::RightButton, {}, QPoint(5, 5));
        auto *menu = part<QMenu>(formOf(combo), "MenuPopUp");
        QTRY_VERIFY(menu->isVisible());
        QStringList texts;
        for (QAction *action : menu->actions()) {
            if (action->isVisible())
                texts.append(action->text());
        }
        QCOMPARE(texts, shown);
        QTest::keyClick(menu, Qt::Key_Escape);
        QTRY_VERIFY(!menu->isVisible());
        QVERIFY(formOf(combo)->isVisible()); // the menu is not a way out of the list

        // "Not In ..." flips with each click; Inv follows without a property put.
        QSignalSpy changed(combo, &Control::PropertyChanged);
        menuItem(combo, 4)->trigger();
        QVERIFY(combo->Inv() && menuItem(combo, 4)->isChecked());
        menuItem(combo, 4)->trigger();
        QVERIFY(!combo->Inv() && !menuItem(combo, 4)->isChecked());
        QCOMPARE(changed.size(), 0);
        combo->setInv(true);
        QVERIFY(menuItem(combo, 4)->isChecked());
    }

    // Given a control (a spy cannot hold by-reference arguments: they are noted here), when a
    // button is clicked on a child, then MouseDown and MouseUp carry Button, Shift and X, and a
    // left press opens the list, raising Click after MouseDown; a move raises both move events.
    void mouseEvents()
    {
        CheckCombo *combo = showCombo({"a"});
        QList<QVariantList> down, up, moveXY;
        const auto note = [](QList<QVariantList> &into) {
            return [&into](qint16 &b, qint16 &s, float &x, float &) { into.append({b, s, x}); };
        };
        connect(combo, &CheckCombo::MouseDown, this, note(down));
        connect(combo, &CheckCombo::MouseUp, this, note(up));
        connect(combo, &CheckCombo::MouseMoveXY, this, note(moveXY));
        QSignalSpy click(combo, &CheckCombo::Click);
        QSignalSpy move(combo, &CheckCombo::MouseMove);
        qsizetype downsBeforeClick = -1;
        connect(combo, &CheckCombo::Click, this, [&] { downsBeforeClick = down.size(); });
        QWidget *text = part(combo, "Text"), *button = part(combo, "ButDropDown");
        QTest::mouseClick(button, Qt::RightButton, Qt::ShiftModifier, QPoint(7, 5));
        QCOMPARE(down, QList<QVariantList>{(QVariantList{2, 1, 7.0})});
        QCOMPARE(up, down);
        QVERIFY(!combo->isDroppedDown());
        QTest::mouseClick(text, Qt::LeftButton, Qt::ControlModifier, QPoint(8, 5));
        QCOMPARE(down.last(), (QVariantList{1, 2, 8.0}));
        QCOMPARE(up.last(), down.last());
        QVERIFY(combo->isDroppedDown());
        QCOMPARE(click.size(), 1);
        QCOMPARE(downsBeforeClick, 2);
        QTest::keyClick(listOf(combo), Qt::Key_Escape);

        QTest::mouseMove(text, QPoint(9, 5));
        QTRY_COMPARE(moveXY.size(), 1);
        QCOMPARE(move.size(), 1);
        QCOMPARE(moveXY.at(0).at(0), 0); // no button held
        QCOMPARE(moveXY.at(0).at(2), 9.0);
    }

    void recordset()
    {
        Connection connection;
        openDatabase(connection, QStringLiteral(":memory:"),
                     {QStringLiteral("CREATE TABLE t (name TEXT, note TEXT)"),
                      QStringLiteral("INSERT INTO t VALUES ('  pear ', 'p'), (NULL, 'n'), "
                                     "('apple', '  first  '), ('Fig', '   '), ('o''brien', 'q')")});
        Recordset rs;
        rs.Open(QStringLiteral("SELECT name, note FROM t"),
                QVariant::fromValue<QObject *>(&connection), 3, 3, 1);

        CheckCombo *combo = showCombo();
        combo->setSorting(true);
        combo->setSArrayData(list1({"pear", "x", "y", "z"})); // shows rows 0 to 3 of later loads
        combo->setArrayChecked(list1({"pear"}));
        combo->setRecordsetData(&rs);
        QWidget *form = formOf(combo);
        QAbstractItemView *list = listOf(combo);
        // Texts trimmed, a Null text skipped, no identifiers; checks kept by text.
        QCOMPARE(rowTexts(list), sl({"apple", "Fig", "o'brien", "pear"}));
        QCOMPARE(rowTexts(list, true), sl({"pear"}));
        QCOMPARE(combo->ArrayCheckedID().toList(), QVariantList({0}));
        QCOMPARE(combo->RecordsetData(), &rs);
        // "All" only when every row of a recordset is checked.
        combo->setArrayChecked(list1({"apple", "pear"}));
        QCOMPARE(combo->Title(), QStringLiteral("List"));
        combo->setArrayChecked(list1({"apple", "pear", "Fig", "o'brien"}));
        QCOMPARE(combo->Title(), QStringLiteral("All"));
        // Select All has no source array to take texts from: it checks nothing, showing "All".
        combo->setArrayChecked(list1({"apple"}));
        combo->SelectAll();
        QCOMPARE(rowTexts(list, true), QStringList());
        QCOMPARE(combo->Title(), QStringLiteral("All"));

        // The second field of the row under the mouse is its tool tip, found as each dialect
        // finds rows; a blank note or a quote in the text leaves it empty. A row with a tip
        // comes first each time, so that a stale tip would show. Moves reach the popup through
        // its window, as the window system delivers them.
        QVERIFY(form->property("FieldTips").toBool());
        openAndActivate(combo);
        QCOMPARE(list->toolTip(), QStringLiteral("Check/Uncheck Items"));
        for (const auto dialect : {CheckCombo::ADOData, CheckCombo::DAOData}) {
            combo->setTypeData(dialect);
            for (int row : {0, 1, 0, 2}) {
                const QRect rect = list->visualRect(list->model()->index(row, 0));
                QTest::mouseMove(form->windowHandle(),
                                 list->viewport()->mapTo(form, rect.center()));
                QTRY_COMPARE(list->toolTip(), row == 0 ? QStringLiteral("first") : QString());
            }
        }

        // An object that is no recordset loads nothing and raises nothing.
        QObject notARecordset;
        combo->setRecordsetData(&notARecordset);
        QCOMPARE(list->model()->rowCount(), 0);
    }
};

QTEST_MAIN(tst_CheckList)
#include "tst_checklist.moc"
