#include <zelkon/checklist/checkcombo.h>
#include <zelkon/checklist/frmlist.h>
#include <zelkon/common/error.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/test/testplatform.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>
#include <zelkon/dropdown/frmshowhide.h>

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <memory>

using namespace zelkon;

namespace {

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

QStringList rowTexts(const QListWidget *list, bool checkedOnly = false)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i) {
        if (!checkedOnly || list->item(i)->checkState() == Qt::Checked)
            texts.append(list->item(i)->text());
    }
    return texts;
}

QStringList checkedRows(const QListWidget *list)
{
    return rowTexts(list, true);
}

QStringList strings(const QVariant &value)
{
    QStringList texts;
    for (const QVariant &v : value.toList())
        texts.append(v.toString());
    return texts;
}

// The checkbox of a row, where a click toggles it.
QPoint checkBoxOf(QListWidget *list, int row)
{
    const QRect r = list->visualItemRect(list->item(row));
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

// A property bag that notes the keys in the order in which they are read.
class RecordingBag : public MemoryPropertyBag
{
public:
    QVariant ReadProperty(const QString &name, const QVariant &defaultValue = {}) const override
    {
        read.append(name);
        return MemoryPropertyBag::ReadProperty(name, defaultValue);
    }
    mutable QStringList read;
};

} // namespace

class tst_CheckList : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestPlatform> m_platform;
    std::unique_ptr<QWidget> m_host;
    QTemporaryDir m_dir;

    CheckCombo *showCombo()
    {
        auto *combo = new CheckCombo(m_host.get());
        combo->setGeometry(20, 40, 160, 22);
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
        QTest::mouseClick(combo->findChild<QToolButton *>(QStringLiteral("ButDropDown")),
                          Qt::LeftButton);
        QVERIFY(combo->ListForm()->isVisible());
        QVERIFY(QTest::qWaitForWindowActive(combo->ListForm()));
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

    void defaultsAndNames()
    {
        Control *control = createControl(QStringLiteral("CheckCombo"), m_host.get());
        auto *combo = qobject_cast<CheckCombo *>(control);
        QVERIFY(combo);
        m_host->show();
        QCOMPARE(combo->Title(), QStringLiteral("All"));
        QCOMPARE(combo->MaxLine(), 5);
        QCOMPARE(combo->Delay(), 1);
        QVERIFY(combo->Sorting() && combo->Enabled() && combo->EditEnabled());
        QVERIFY(!combo->Inv() && !combo->SingleCheck() && !combo->AllSelect());
        QCOMPARE(combo->ListForm()->ActiveList(), 1);
        MemoryPropertyBag defaults;
        combo->move(30, 40);
        combo->WriteProperties(defaults);
        QCOMPARE(defaults.keys(), QStringList()); // defaults, position and size store nothing

        // Layout: the button at the right edge, the text filling the rest.
        auto *button = combo->findChild<QToolButton *>(QStringLiteral("ButDropDown"));
        combo->resize(200, 24);
        QCOMPARE(button->geometry().right(), 199);
        QCOMPARE(button->height(), 24);
        QCOMPARE(combo->findChild<QLineEdit *>(QStringLiteral("Text"))->geometry().right() + 1,
                 button->x());

        // A host reaches the data members by name.
        QVERIFY(control->setProperty("TypeData", 2));
        QVERIFY(control->setProperty("SArrayData", array2({{"a", 1}, {"b", 2}, {"c", 3}})));
        QVERIFY(control->setProperty("ArrayCheckedID", QVariantList{2, 3}));
        QCOMPARE(strings(control->property("ArrayChecked")), sl({"b", "c"}));
        QVERIFY(QMetaObject::invokeMethod(control, "SelectAll"));
        QCOMPARE(control->property("ArrayCheckedID").toList(), QVariantList({1, 2, 3}));
        QSignalSpy changed(control, &Control::PropertyChanged);
        control->setProperty("Enabled", false); // reaches the widget's own enabled state
        QVERIFY(!control->isEnabled());
        QCOMPARE(changed.value(0).value(0).toString(), QStringLiteral("Enabled"));
    }

    // What a screen reader reads for each part: the widget named `object` (Index `index` where
    // two share the name) after the host named the control, typed or as a plain QWidget.
    void accessibleNames_data()
    {
        QTest::addColumn<QString>("hostName");
        QTest::addColumn<bool>("asQWidget");
        QTest::addColumn<bool>("open");
        QTest::addColumn<QString>("object");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("description");

        const QString none;
        const QString hint = QStringLiteral("Check/Uncheck Items");
        QTest::newRow("field unnamed")
            << none << false << false << "Text" << -1 << "Filter" << none;
        QTest::newRow("field named by property")
            << "Regions" << false << false << "Text" << -1 << "Regions" << none;
        QTest::newRow("field named as QWidget, then focused")
            << "Regions" << true << false << "Text" << -1 << "Regions" << none;
        QTest::newRow("button closed")
            << none << false << false << "ButDropDown" << -1 << "Open list" << none;
        QTest::newRow("button open")
            << none << false << true << "ButDropDown" << -1 << "Close list" << none;
        QTest::newRow("popup") << none << false << true << "frmList" << -1 << "Filter list" << none;
        QTest::newRow("list") << none << false << true << "List" << 0 << "Rows" << hint;
        QTest::newRow("sorted list")
            << none << false << true << "List" << 1 << "Rows, sorted" << hint;
        QTest::newRow("dialog") << none << false << false << "frmShowHide" << -1 << "Show/Hide"
                                << none;
        QTest::newRow("dialog rows") << none << false << false << "HideBox" << -1 << "Rows to show"
                                     << "Marked rows stay in the list";
        QTest::newRow("dialog yes") << none << false << false << "btnYes" << -1 << "Yes"
                                    << "Show the marked rows only";
    }
    void accessibleNames()
    {
        QFETCH(QString, hostName);
        QFETCH(bool, asQWidget);
        QFETCH(bool, open);
        QFETCH(QString, object);
        QFETCH(int, index);
        QFETCH(QString, name);
        QFETCH(QString, description);

        CheckCombo *combo = showCombo();
        frmShowHide dialog;
        if (asQWidget) { // the field learns the name when it is focused again
            static_cast<QWidget *>(combo)->setAccessibleName(hostName);
            combo->findChild<QLineEdit *>(QStringLiteral("Text"))->clearFocus();
            combo->setFocus();
        } else if (!hostName.isEmpty()) {
            combo->setProperty("accessibleName", hostName);
        }
        if (open)
            openAndActivate(combo);

        QWidget *widget = nullptr;
        const QList<QWidget *> roots{combo, combo->ListForm(), &dialog};
        for (QWidget *root : roots) {
            QList<QWidget *> found = root->findChildren<QWidget *>(object);
            found.prepend(root);
            for (QWidget *w : found) {
                if (!widget && w->objectName() == object
                    && (index < 0 || w->property("Index").toInt() == index))
                    widget = w;
            }
        }
        QVERIFY(widget);
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(widget);
        QVERIFY(accessible);
        QCOMPARE(accessible->text(QAccessible::Name), name);
        QCOMPARE(accessible->text(QAccessible::Description), description);
    }

    // The closed field opens from the keyboard as a combo box does; the field is the one tab stop.
    void openKeys_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<bool>("opens");

        const Qt::KeyboardModifiers none;
        QTest::newRow("F4") << "Text" << Qt::Key_F4 << none << true;
        QTest::newRow("Alt+Down") << "Text" << Qt::Key_Down
                                  << Qt::KeyboardModifiers(Qt::AltModifier) << true;
        QTest::newRow("Alt+Down on the button")
            << "ButDropDown" << Qt::Key_Down << Qt::KeyboardModifiers(Qt::AltModifier) << true;
        QTest::newRow("Alt+F4 is the window's")
            << "Text" << Qt::Key_F4 << Qt::KeyboardModifiers(Qt::AltModifier) << false;
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
        auto *after = new QLineEdit(m_host.get());
        after->move(0, 100);
        after->show();
        auto *text = combo->findChild<QLineEdit *>(QStringLiteral("Text"));
        before->setFocus();
        QTest::keyClick(before, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), text);
        QTest::keyClick(text, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), after);
        QTest::keyClick(after, Qt::Key_Tab, Qt::ShiftModifier);
        QCOMPARE(QApplication::focusWidget(), text);

        QStringList order;
        connect(combo, &CheckCombo::MouseDown, this, [&](qint16 &, qint16 &, float &, float &) {
            order.append(QStringLiteral("MouseDown"));
        });
        connect(combo, &CheckCombo::Click, this, [&] { order.append(QStringLiteral("Click")); });
        QTest::keyClick(combo->findChild<QWidget *>(target), key, modifiers);
        QCOMPARE(combo->isDroppedDown(), opens);
        QCOMPARE(combo->ListForm()->isVisible(), opens);
        QCOMPARE(order, opens ? sl({"Click"}) : QStringList());
        QCOMPARE(text->text(), QStringLiteral("All"));
        if (opens) {
            QVERIFY(QTest::qWaitForWindowActive(combo->ListForm()));
            QTest::keyClick(combo->ListForm()->List(), Qt::Key_Escape);
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
        QVariantList many;
        QStringList counted;
        for (int i = 0; i < CheckListWidget::MaxRows + 2; ++i) {
            many.append(QString::number(i));
            if (i < CheckListWidget::MaxRows)
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
        frmList *form = combo.ListForm();
        QCOMPARE(form->List(), form->list(sorting ? 1 : 0));
        QCOMPARE(form->list(sorting ? 0 : 1)->count(), 0);
        QCOMPARE(rowTexts(form->List()), texts);

        const auto all = form->AllItems().value<VariantArray>();
        QCOMPARE(IsEmpty(form->AllItems()), texts.isEmpty());
        QCOMPARE(form->snapshotRows(), texts.size());
        QVariantList everyRow;
        for (int i = 0; i < texts.size(); ++i) {
            QCOMPARE(form->List()->itemValue(i), ids.at(i).toInt());
            QCOMPARE(all.at({i, 0}).toString(), texts.at(i));
            QCOMPARE(all.at({i, 1}), ids.at(i));
            everyRow.append(i);
        }
        QCOMPARE(combo.ArrayVisible(), texts.isEmpty() ? QVariant() : QVariant(everyRow));
        QCOMPARE(combo.ArrayChecked(), QVariant(QVariantList{QStringLiteral("All")}));
        QVERIFY(IsEmpty(combo.ArrayCheckedID()));
        QCOMPARE(combo.Title(), QStringLiteral("All"));
        QCOMPARE(combo.SArrayData(), source);
    }

    void sortOrder_data()
    {
        QTest::addColumn<QStringList>("texts");

        // Long shared beginnings, lengths that differ inside and past the first units compared,
        // case, non-ASCII letters, empty texts and repeats.
        QStringList ascii;
        for (int i = 0; i < 300; ++i)
            ascii.append(QStringLiteral("Item %1%2")
                             .arg((i * 37) % 101)
                             .arg(QLatin1String(i % 3 ? "" : "a")));
        ascii << QStringLiteral("ITEM 1") << QStringLiteral("item 1") << QStringLiteral("Item 1")
              << QStringLiteral("Item 10000000000b") << QStringLiteral("Item 10000000000A")
              << QStringLiteral("Item 100000000000") << QStringLiteral("Item") << QString();
        QTest::newRow("ASCII") << ascii;
        QStringList other = ascii.mid(290);
        other << QString::fromUtf8("Ärger") << QString::fromUtf8("ärger") << QStringLiteral("Arg")
              << QString::fromUtf8("straße") << QStringLiteral("STRASSE")
              << QString::fromUtf8("Łódź") << QString::fromUtf8("łódź b") << QStringLiteral("Zebra")
              << QString::fromUtf8("Ωmega");
        QTest::newRow("non-ASCII") << other;
    }

    void sortOrder()
    {
        QFETCH(QStringList, texts);

        // Ascending without regard to case, texts compared by their case folding; equal texts
        // keep the order given.
        QStringList expected = texts;
        std::stable_sort(expected.begin(), expected.end(), [](const QString &a, const QString &b) {
            return a.toCaseFolded() < b.toCaseFolded();
        });
        CheckCombo combo;
        combo.setSArrayData(list1(texts));
        QCOMPARE(rowTexts(combo.ListForm()->List()), expected);
        combo.setSArrayData(list1(expected)); // in order already
        QCOMPARE(rowTexts(combo.ListForm()->List()), expected);
    }

    void restoreChecks_data()
    {
        QTest::addColumn<QVariant>("source");
        QTest::addColumn<QString>("how");
        QTest::addColumn<QVariant>("input");
        QTest::addColumn<QStringList>("checked");
        QTest::addColumn<QVariant>("ids");
        QTest::addColumn<QString>("title");

        const QVariant abc = list1({"a", "b", "c"}), abc2 = array2({{"a", 1}, {"b", 2}, {"c", 3}});
        const auto row
            = [](const char *name, const QVariant &source, const char *how, const QVariant &input,
                 const QStringList &checked, const QVariantList &ids, const char *title) {
                  QTest::newRow(name)
                      << source << QString::fromLatin1(how) << input << checked
                      << (ids.isEmpty() ? QVariant() : QVariant(ids)) << QString::fromLatin1(title);
              };
        // By text: each text checks the first row that has it, in list order. The field shows
        // the one text, "List", or "All" when nothing or every row of the source is checked.
        row("two of three", abc2, "texts", list1({"b", "a"}), sl({"a", "b"}), {1, 2}, "List");
        row("every text, 1-D", abc, "texts", list1({"c", "a", "b"}), sl({"a", "b", "c"}), {0, 0, 0},
            "All");
        row("every text, 2-D", abc2, "texts", list1({"c", "a", "b"}), sl({"a", "b", "c"}),
            {1, 2, 3}, "All");
        row("unknown text", abc, "texts", list1({"zz"}), {}, {}, "All");
        row("Empty", abc2, "texts", QVariant(), {}, {}, "All");
        row("lone All checks nothing", list1({"All", "x"}), "texts", list1({"All"}), {}, {}, "All");
        row("All among others is a text", list1({"All", "X", "y"}), "texts", list1({"All", "X"}),
            sl({"All", "X"}), {0, 0}, "List");
        row("first row of a text only", list1({"x", "x", "y", "x"}), "texts", list1({"y", "x"}),
            sl({"x", "y"}), {0, 0}, "List");
        row("repeated text", list1({"x", "y", "x"}), "texts", list1({"x", "x"}), sl({"x"}), {0},
            "x");
        row("number element", list1({"5", "6"}), "texts", QVariantList{6}, sl({"6"}), {0}, "6");
        row("Null element skipped", abc2, "texts", QVariantList{nullVariant(), QStringLiteral("b")},
            sl({"b"}), {2}, "b");
        // A rebuild checks every row with a checked text.
        row("rebuild", list1({"x", "y", "x"}), "rebuild", list1({"x"}), sl({"x", "x"}), {0, 0},
            "x");
        // A reload keeps the checks by text (here "b" and "c"), in the new list's order.
        row("reload", abc, "reload", array2({{"c", 3}, {"x", 9}, {"b", 2}, {"a", 1}}),
            sl({"c", "b"}), {3, 2}, "List");
        // By identifier: the first row of each; the rows of a 1-D array all carry 0.
        row("identifiers", array2({{"a", 10}, {"b", 20}, {"c", 30}, {"d", 20}}), "ids",
            QVariantList{30, 20, 99}, sl({"b", "c"}), {20, 30}, "List");
        row("identifiers of a 1-D array", list1({"p", "q"}), "ids", QVariantList{0, 0}, sl({"p"}),
            {0}, "p");
        // Under single check the texts or identifiers are checked in turn: the last one wins,
        // also when it was checked before.
        row("single check, text repeated last", abc, "single texts", list1({"b", "a", "b"}),
            sl({"b"}), {0}, "b");
        row("single check, identifier repeated last", abc2, "single ids", QVariantList{2, 1, 2},
            sl({"b"}), {2}, "b");
        row("single check, rebuild with a text checked twice",
            array2({{"x", 1}, {"y", 2}, {"x", 3}}), "single rebuild all", {}, sl({"x"}), {3},
            "All");
        row("Select All", array2({{"a", 1}, {"b", 2}, {"a", 3}}), "selectAll", {}, sl({"a", "b"}),
            {1, 2}, "All");
        row("Clear All", abc, "clearAll", {}, {}, {}, "All");
    }
    void restoreChecks()
    {
        QFETCH(QVariant, source);
        QFETCH(QString, how);
        QFETCH(QVariant, input);
        QFETCH(QStringList, checked);
        QFETCH(QVariant, ids);
        QFETCH(QString, title);

        CheckCombo combo;
        combo.setSorting(false);
        combo.setSArrayData(source);
        frmList *form = combo.ListForm();
        form->CheckAllRows();
        if (how.startsWith(QLatin1String("single "))) {
            combo.setSingleCheck(true);
            how = how.mid(7);
        }
        const QStringList result = checked.isEmpty() ? sl({"All"}) : checked;
        QVariant given = input;
        if (how == QLatin1String("texts") || how == QLatin1String("rebuild")) {
            combo.setArrayChecked(given);
            QCOMPARE(strings(given), how == QLatin1String("texts") ? result : sl({"x"}));
            const auto *text = combo.findChild<QLineEdit *>(QStringLiteral("Text"));
            QCOMPARE(text->toolTip(), strings(given).join(QLatin1Char(',')));
            if (how == QLatin1String("rebuild")) {
                form->RebuildVisibleRows();
                form->GetChecked();
            }
        } else if (how == QLatin1String("rebuild all")) { // the checks from before stay
            form->RebuildVisibleRows();
            form->GetChecked();
        } else if (how == QLatin1String("reload")) {
            combo.setArrayChecked(list1({"b", "c"}));
            combo.setSArrayData(input);
        } else if (how == QLatin1String("ids")) {
            combo.setArrayCheckedID(given);
            QCOMPARE(given, ids); // handed back
        } else {
            combo.ClearAll();
            if (how == QLatin1String("selectAll"))
                combo.SelectAll();
        }
        QCOMPARE(checkedRows(form->List()), checked);
        QCOMPARE(strings(combo.ArrayChecked()), result);
        QCOMPARE(combo.ArrayCheckedID(), ids);
        QCOMPARE(combo.Title(), title);
    }

    // Ctrl+A and Ctrl+I check the rows one after the other: each check that makes a second one
    // leaves only itself, and a row is seen as that left it when its turn comes.
    void singleCheckCommands_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<int>("key");
        QTest::addColumn<QStringList>("after");

        QTest::newRow("ctrlA, nothing checked") << QString() << int(Qt::Key_A) << sl({"c"});
        QTest::newRow("ctrlA, last row checked") << "c" << int(Qt::Key_A) << sl({"c"});
        QTest::newRow("ctrlI, first row checked") << "a" << int(Qt::Key_I) << sl({"c"});
        QTest::newRow("ctrlI, last row checked") << "c" << int(Qt::Key_I) << sl({"c"});
        QTest::newRow("ctrlU") << "b" << int(Qt::Key_U) << sl({});
    }
    void singleCheckCommands()
    {
        QFETCH(QString, before);
        QFETCH(int, key);
        QFETCH(QStringList, after);

        CheckCombo *combo = showCombo();
        combo->setSorting(false);
        combo->setSingleCheck(true);
        combo->setSArrayData(list1({"a", "b", "c"}));
        combo->setArrayChecked(before.isEmpty() ? QVariant() : list1(QStringList(before)));
        openAndActivate(combo);
        QListWidget *list = combo->ListForm()->List();
        QTest::keyClick(list, Qt::Key(key), Qt::ControlModifier);
        QCOMPARE(checkedRows(list), after);
    }

    void singleCheck()
    {
        CheckCombo *combo = showCombo();
        combo->setSorting(false);
        combo->setSingleCheck(true);
        combo->setSArrayData(list1({"a", "b", "c"}));
        combo->setArrayChecked(list1({"a", "c"}));
        QCOMPARE(strings(combo->ArrayChecked()), sl({"c"}));

        openAndActivate(combo);
        QListWidget *list = combo->ListForm()->List();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, checkBoxOf(list, 0));
        QCOMPARE(checkedRows(list), sl({"a"}));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, checkBoxOf(list, 1));
        QCOMPARE(checkedRows(list), sl({"b"}));
        QTest::keyClick(list, Qt::Key_A, Qt::ControlModifier); // the newest check wins again
        QCOMPARE(checkedRows(list), sl({"c"}));
    }

    void persistence_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        const char *keys[]
            = {"Title", "MaxLine",     "Delay",     "Enabled",    "EditEnabled", "Sorting",
               "Inv",   "SingleCheck", "AllSelect", "Appearance", "Border"};
        const QVariantList values{QStringLiteral("Regions"),
                                  qint16(9),
                                  qint16(40),
                                  false,
                                  false,
                                  false,
                                  true,
                                  true,
                                  true,
                                  qint32(0),
                                  qint32(0)};
        for (int i = 0; i < values.size(); ++i)
            QTest::newRow(keys[i]) << QString::fromLatin1(keys[i]) << values.at(i);
    }
    void persistence()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, value);

        CheckCombo source;
        QVERIFY(source.setProperty(key.toLatin1(), value));
        MemoryPropertyBag bag;
        source.WriteProperties(bag);
        QCOMPARE(bag.keys(), QStringList(key));
        QVERIFY(identical(bag.ReadProperty(key), value));

        const char *damaged = key == QLatin1String("Delay") ? "MaxLine" : "Delay";
        bag.insert(QString::fromLatin1(damaged), QStringLiteral("not a number")); // skipped
        CheckCombo target;
        target.ReadProperties(bag);
        QCOMPARE(target.property(key.toLatin1()), value);
        QCOMPARE(target.property(damaged).toInt(), key == QLatin1String("Delay") ? 5 : 1);
        QCOMPARE(target.ListForm()->ActiveList(), target.Sorting() ? 1 : 0);
        QCOMPARE(target.ListForm()->SingleCheck(), target.SingleCheck());
        QCOMPARE(target.ListForm()->mnuPopup(4)->isChecked(), target.Inv());
        QCOMPARE(target.findChild<QLineEdit *>(QStringLiteral("Text"))->isReadOnly(),
                 !target.EditEnabled());
    }

    // Position and size are read one by one, in their order: a damaged one costs only itself.
    void readPositions_data()
    {
        QTest::addColumn<QString>("damaged");
        for (const char *key : {"", "Left", "Top", "Height", "Width"})
            QTest::newRow(*key ? key : "none") << QString::fromLatin1(key);
    }
    void readPositions()
    {
        QFETCH(QString, damaged);

        const QStringList keys = sl({"Left", "Top", "Height", "Width"});
        const QList<float> saved{11, 12, 23, 140};
        RecordingBag bag;
        for (int i = 0; i < keys.size(); ++i)
            bag.insert(keys.at(i),
                       keys.at(i) == damaged ? QVariant(QStringLiteral("?"))
                                             : QVariant(saved.at(i)));
        CheckCombo combo(m_host.get());
        combo.setGeometry(1, 2, 100, 20);
        const QList<float> before{1, 2, 20, 100};
        combo.ReadProperties(bag);
        QCOMPARE(bag.read,
                 sl({"Title", "MaxLine", "Delay", "Enabled", "EditEnabled", "Sorting", "Inv",
                     "SingleCheck", "AllSelect", "Appearance", "Border", "Left", "Top", "Height",
                     "Width"}));
        const QList<float> now{combo.Left(), combo.Top(), combo.Height(), combo.Width()};
        for (int i = 0; i < keys.size(); ++i)
            QCOMPARE(now.at(i), keys.at(i) == damaged ? before.at(i) : saved.at(i));
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
        QTest::newRow("declined") << QList<int>{0} << false << sl({"a", "b", "c", "d"})
                                  << sl({"a", "b"}) << QVariant(QVariantList{0, 1, 2, 3});
    }
    void showHide()
    {
        QFETCH(QList<int>, unmark);
        QFETCH(bool, confirm);
        QFETCH(QStringList, rows);
        QFETCH(QStringList, checked);
        QFETCH(QVariant, arVis);

        m_platform->setUiLanguage(QLocale::German); // no dialog texts of its own: English ones
        CheckCombo *combo = showCombo();
        combo->setSorting(false);
        combo->setSArrayData(list1({"a", "b", "c", "d"}));
        combo->setArrayChecked(list1({"a", "b"}));
        openAndActivate(combo);
        QSignalSpy quite(combo, &CheckCombo::Quite);

        frmList *form = combo->ListForm();
        QTimer::singleShot(0, form, [&] {
            auto *dialog = form->findChild<frmShowHide *>(QStringLiteral("frmShowHide"));
            QVERIFY(dialog && dialog->isVisible());
            QCOMPARE(dialog->findChild<QPushButton *>(QStringLiteral("btnNo"))->text(),
                     QStringLiteral("No"));
            QListWidget *box = dialog->HideBox();
            for (int row : unmark) // the user clicks the rows off
                QTest::mouseClick(box->viewport(), Qt::LeftButton, {},
                                  box->visualItemRect(box->item(row)).center());
            QTest::mouseClick(dialog->findChild<QPushButton *>(confirm ? QStringLiteral("btnYes")
                                                                       : QStringLiteral("btnNo")),
                              Qt::LeftButton);
        });
        form->mnuPopup(3)->trigger();

        QCOMPARE(quite.size(), 1);
        QCOMPARE(quite.at(0).at(0).toBool(), true);
        QVERIFY(!form->isVisible());
        QCOMPARE(rowTexts(form->List()), rows);
        QCOMPARE(checkedRows(form->List()), checked);
        QCOMPARE(strings(combo->ArrayChecked()), checked.isEmpty() ? sl({"All"}) : checked);
        QCOMPARE(combo->ArrayVisible(), arVis);
        QCOMPARE(form->snapshotRows(), 4);
        QVERIFY(!form->ShowHideDialog());
        QCOMPARE(m_platform->messages(), sl({"test", "test"}));
    }

    // A recordset load shows the rows that ArrayVisible names, as far as the row counters reach.
    void visibleRowsOfALoad_data()
    {
        QTest::addColumn<QVariant>("visible");
        QTest::addColumn<QStringList>("rows");

        QTest::newRow("row numbers that name no row")
            << QVariant(QVariantList{5, 1, -1, QStringLiteral("x"), 0}) << sl({"b", "a"});
        QTest::newRow("more rows than the counters hold")
            << QVariant(QVariantList(CheckListWidget::MaxRows + 5, 1))
            << QStringList(CheckListWidget::MaxRows, QStringLiteral("b"));
    }
    void visibleRowsOfALoad()
    {
        QFETCH(QVariant, visible);
        QFETCH(QStringList, rows);

        Connection connection;
        openDatabase(connection, QStringLiteral(":memory:"),
                     {QStringLiteral("CREATE TABLE t (name TEXT)"),
                      QStringLiteral("INSERT INTO t VALUES ('a'), ('b')")});
        Recordset rs;
        rs.Open(QStringLiteral("SELECT name FROM t"), QVariant::fromValue<QObject *>(&connection));
        CheckCombo combo;
        combo.setSorting(false);
        combo.setSArrayData(list1({"x"}));
        combo.setArrayVisible(visible);
        combo.setRecordsetData(&rs);
        QCOMPARE(rowTexts(combo.ListForm()->List()), rows);
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
        frmList *form = combo.ListForm();
        QCOMPARE(rowTexts(form->List()), sl({"a", "b", "d"}));
        QVERIFY(!form->FieldTips());
        combo.setArrayChecked(list1({"b"}));
        QVERIFY(
            QSqlQuery(connection.database()).exec(QStringLiteral("INSERT INTO t VALUES ('c')")));
        combo.Refresh();
        QCOMPARE(form->snapshotRows(), 4);
        QCOMPARE(rowTexts(form->List()), sl({"a", "b", "c"})); // the rows shown stay 0 to 2
        QCOMPARE(checkedRows(form->List()), QStringList()); // a refresh keeps no checks

        combo.setArrayVisible(QVariantList{0, 3});
        QCOMPARE(form->List()->count(), 3); // applied at the next rebuild only
        combo.setArrayChecked(list1({"a", "c"}));
        Recordset rs;
        rs.Open(QStringLiteral("SELECT name FROM t ORDER BY name DESC"),
                QVariant::fromValue<QObject *>(&connection));
        combo.setRecordsetData(&rs);
        QCOMPARE(rowTexts(form->List()), sl({"d", "a"})); // rows 0 and 3 of the new load
        QCOMPARE(checkedRows(form->List()), sl({"a"}));
        combo.setSArrayData(list1({"x", "y", "z"})); // an array load shows every row again
        QCOMPARE(form->List()->count(), 3);

        combo.setCommandText(QStringLiteral("SELECT nosuchcolumn FROM t"));
        bool raised = false;
        try {
            combo.Refresh();
        } catch (const Error &e) {
            raised = e.number() >= DatabaseError;
        }
        QVERIFY(raised);
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
        frmList *form = combo->ListForm();
        const QRect field(combo->mapToGlobal(QPoint(0, 0)), combo->size());
        QCOMPARE(form->geometry().top(), field.bottom() + 1);
        QCOMPARE(form->geometry().left(), field.left());
        QCOMPARE(form->width(), field.width());
        const int rowHeight = form->List()->sizeHintForRow(0);
        QCOMPARE(form->height(), 3 * rowHeight + 2 * form->List()->frameWidth());
        QTest::keyClick(form->List(), Qt::Key_Escape);
        QVERIFY(!form->isVisible());

        // Near the screen's bottom the list opens above the field.
        m_host->move(screen.left() + 50, screen.bottom() + 1 - m_host->frameGeometry().height());
        combo->move(20, m_host->height() - 30);
        QTRY_VERIFY(combo->mapToGlobal(QPoint(0, combo->height())).y() + form->height()
                    > screen.bottom());
        openAndActivate(combo);
        QCOMPARE(form->geometry().bottom(), combo->mapToGlobal(QPoint(0, 0)).y() - 1);
    }

    void closing_data()
    {
        QTest::addColumn<int>("key"); // pressed with Ctrl before Esc; 0: the list is left
        QTest::addColumn<QStringList>("checked");
        QTest::addColumn<QVariantList>("quite"); // the Cancel of each Quite
        QTest::addColumn<QString>("title");

        QTest::newRow("ctrlA") << int(Qt::Key_A) << sl({"a", "b", "c"}) << QVariantList{true}
                               << "All";
        QTest::newRow("ctrlI") << int(Qt::Key_I) << sl({"a", "c"}) << QVariantList{true} << "List";
        QTest::newRow("ctrlU") << int(Qt::Key_U) << sl({}) << QVariantList{true} << "All";
        QTest::newRow("leaving") << 0 << sl({"a"}) << QVariantList{false} << "a";
        QTest::newRow("hostHides") << -1 << sl({"b"}) << QVariantList{} << "b";
    }
    void closing()
    {
        QFETCH(int, key);
        QFETCH(QStringList, checked);
        QFETCH(QVariantList, quite);
        QFETCH(QString, title);

        CheckCombo *combo = showCombo();
        combo->setSorting(false);
        combo->setSArrayData(list1({"a", "b", "c"}));
        combo->setArrayChecked(list1({"b"}));
        QSignalSpy spy(combo, &CheckCombo::Quite);
        frmList *form = combo->ListForm();
        openAndActivate(combo);
        // A press on the button while the list is open does not close it.
        QTest::mouseClick(combo->findChild<QToolButton *>(QStringLiteral("ButDropDown")),
                          Qt::LeftButton);
        QVERIFY(form->isVisible());
        QListWidget *list = form->List();
        if (key > 0) {
            QTest::keyClick(list, Qt::Key(key), Qt::ControlModifier);
            QTest::keyClick(list, Qt::Key(key)); // without Ctrl the list has the key
            QCOMPARE(checkedRows(list), checked);
            QTest::keyClick(list, Qt::Key_Escape);
        } else if (key == 0) {
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, checkBoxOf(list, 0));
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, checkBoxOf(list, 1));
            m_host->activateWindow(); // the user clicks elsewhere
        } else {
            m_host->hide();
        }
        QTRY_VERIFY(!form->isVisible());
        QVERIFY(!combo->isDroppedDown());
        QCOMPARE(spy.size(), quite.size());
        for (int i = 0; i < quite.size(); ++i)
            QCOMPARE(spy.at(i).at(0), quite.at(i));
        QCOMPARE(strings(combo->ArrayChecked()), checked.isEmpty() ? sl({"All"}) : checked);
        QCOMPARE(combo->Title(), title);
    }

    void waitsForTheActivation()
    {
        CheckCombo *combo = showCombo();
        combo->setSArrayData(list1({"a"}));
        if (QGuiApplication::platformName() == QLatin1String("offscreen"))
            QSKIP("the offscreen platform activates every window that it shows; run under xcb");
        frmList *form = combo->ListForm();
        // A window system that has not activated the popup yet: not being active is not leaving it.
        form->setWindowFlag(Qt::WindowDoesNotAcceptFocus);
        QSignalSpy quite(combo, &CheckCombo::Quite);
        QElapsedTimer clock;
        clock.start();
        QTest::mouseClick(combo->findChild<QToolButton *>(QStringLiteral("ButDropDown")),
                          Qt::LeftButton);
        QTest::qWait(200);
        QVERIFY(form->isVisible());
        QCOMPARE(quite.size(), 0);
        // ... until the grace time has run out.
        QTRY_COMPARE_WITH_TIMEOUT(quite.size(), 1, 5000);
        QVERIFY(clock.elapsed() >= frmList::ActivationGraceMs);
        QCOMPARE(quite.at(0).at(0).toBool(), false);
    }

    void contextMenu_data()
    {
        QTest::addColumn<QLocale::Language>("language");
        QTest::addColumn<bool>("single");
        QTest::addColumn<QStringList>("shown");

        const QStringList english
            = sl({"Select All", "Clear All", "Invert Selection", "Show/Hide", "Not In ..."});
        QTest::newRow("English") << QLocale::English << false << english;
        QTest::newRow("Russian") << QLocale::Russian << false
                                 << sl({"Выделить все", "Очистить все", "Инвертировать выбор",
                                        "Показать/Скрыть", "Инверсная логика"});
        QTest::newRow("German") << QLocale::German << false << english; // no texts of its own
        QTest::newRow("single check")
            << QLocale::English << true << sl({"Clear All", "Show/Hide", "Not In ..."});
    }

    void contextMenu()
    {
        QFETCH(QLocale::Language, language);
        QFETCH(bool, single);
        QFETCH(QStringList, shown);

        m_platform->setUiLanguage(language);
        CheckCombo *combo = showCombo();
        combo->setSingleCheck(single);
        combo->setSArrayData(list1({"a", "b"}));
        openAndActivate(combo);
        frmList *form = combo->ListForm();
        QListWidget *list = form->List();
        QCOMPARE(list->toolTip(),
                 language == QLocale::Russian ? QStringLiteral("Выделите нужные строки")
                                              : QStringLiteral("Check/Uncheck Items"));
        QTest::mouseClick(list->viewport(), Qt::RightButton, {}, QPoint(5, 5));
        QMenu *menu = form->MenuPopUp();
        QTRY_VERIFY(menu->isVisible());
        QStringList texts;
        for (QAction *action : menu->actions()) {
            if (action->isVisible())
                texts.append(action->text());
        }
        QCOMPARE(texts, shown);
        QTest::keyClick(menu, Qt::Key_Escape);
        QTRY_VERIFY(!menu->isVisible());
        QVERIFY(form->isVisible()); // the menu is not a way out of the list

        // "Not In ..." flips with each click; Inv follows without a property put.
        QSignalSpy changed(combo, &Control::PropertyChanged);
        form->mnuPopup(4)->trigger();
        QVERIFY(combo->Inv() && form->mnuPopup(4)->isChecked());
        form->mnuPopup(4)->trigger();
        QVERIFY(!combo->Inv() && !form->mnuPopup(4)->isChecked());
        QCOMPARE(changed.size(), 0);
        combo->setInv(true);
        QVERIFY(form->mnuPopup(4)->isChecked());
    }

    void mouseEvents()
    {
        CheckCombo *combo = showCombo();
        combo->setSArrayData(list1({"a"}));
        QStringList order;
        // Each mouse event with its button and shift state; the move with its X as well.
        const auto record = [&order](const char *name, bool withX = false) {
            return [&order, name, withX](qint16 &button, qint16 &shift, float &x, float &) {
                order.append(
                    QStringLiteral("%1 %2 %3").arg(QLatin1String(name)).arg(button).arg(shift));
                if (withX)
                    order.last() += QStringLiteral(" %1").arg(x);
            };
        };
        connect(combo, &CheckCombo::MouseDown, this, record("MouseDown"));
        connect(combo, &CheckCombo::MouseUp, this, record("MouseUp"));
        connect(combo, &CheckCombo::MouseMoveXY, this, record("MouseMoveXY", true));
        connect(combo, &CheckCombo::Click, this, [&] { order.append(QStringLiteral("Click")); });
        connect(combo, &CheckCombo::MouseMove, this,
                [&] { order.append(QStringLiteral("MouseMove")); });

        auto *button = combo->findChild<QToolButton *>(QStringLiteral("ButDropDown"));
        QTest::mouseClick(button, Qt::RightButton, Qt::ShiftModifier);
        QCOMPARE(order, sl({"MouseDown 2 1", "MouseUp 2 1"}));
        QVERIFY(!combo->isDroppedDown());
        order.clear();
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(order, sl({"MouseDown 1 0", "Click", "MouseUp 1 0"}));
        QVERIFY(combo->isDroppedDown());
        QTest::keyClick(combo->ListForm()->List(), Qt::Key_Escape);

        order.clear();
        QTest::mouseMove(combo->findChild<QLineEdit *>(QStringLiteral("Text")), QPoint(7, 5));
        QTRY_COMPARE(order, sl({"MouseMove", "MouseMoveXY 0 0 7"}));
    }

    void recordset_data()
    {
        QTest::addColumn<int>("dialect");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("tip");

        for (int dialect : {0, 1}) {
            const char *name = dialect == 0 ? "ADO" : "DAO";
            QTest::addRow("%s found", name) << dialect << 0 << QStringLiteral("first");
            QTest::addRow("%s blank note", name) << dialect << 1 << QString();
            QTest::addRow("%s quote in text", name) << dialect << 2 << QString();
        }
    }
    void recordset()
    {
        QFETCH(int, dialect);
        QFETCH(int, row);
        QFETCH(QString, tip);

        Connection connection;
        openDatabase(connection, QStringLiteral(":memory:"),
                     {QStringLiteral("CREATE TABLE t (name TEXT, note TEXT)"),
                      QStringLiteral("INSERT INTO t VALUES ('  pear ', 'p'), (NULL, 'n'), "
                                     "('apple', '  first  '), ('Fig', '   '), ('o''brien', 'q')")});
        Recordset rs;
        rs.Open(QStringLiteral("SELECT name, note FROM t"),
                QVariant::fromValue<QObject *>(&connection), 3, 3, 1);

        CheckCombo *combo = showCombo();
        combo->setTypeData(CheckCombo::ExDate(dialect));
        combo->setSArrayData(list1({"pear", "x", "y", "z"})); // shows rows 0 to 3 of later loads
        combo->setArrayChecked(list1({"pear"}));
        combo->setRecordsetData(&rs);
        frmList *form = combo->ListForm();
        QListWidget *list = form->List();
        // Texts trimmed, a Null text skipped, no identifiers; checks kept by text.
        QCOMPARE(rowTexts(list), sl({"apple", "Fig", "o'brien", "pear"}));
        QCOMPARE(checkedRows(list), sl({"pear"}));
        QCOMPARE(combo->ArrayCheckedID().toList(), QVariantList({0}));
        QCOMPARE(combo->RecordsetData(), &rs);
        // "All" only when every row of a recordset is checked.
        combo->setArrayChecked(list1({"apple", "pear"}));
        QCOMPARE(combo->Title(), QStringLiteral("List"));
        combo->setArrayChecked(list1({"apple", "pear", "Fig", "o'brien"}));
        QCOMPARE(combo->Title(), QStringLiteral("All"));

        // The second field of the row under the mouse is its tool tip. Moves reach the popup
        // through its window, as the window system delivers them.
        QVERIFY(form->FieldTips());
        openAndActivate(combo);
        QCOMPARE(list->toolTip(), QStringLiteral("Check/Uncheck Items"));
        const auto moveTo = [&](int i) {
            const QPoint at
                = list->viewport()->mapTo(form, list->visualItemRect(list->item(i)).center());
            QTest::mouseMove(form->windowHandle(), at);
        };
        moveTo(row);
        QTRY_COMPARE(list->toolTip(), tip);
        if (row != 0) { // a row with a tip first, so that a stale tip would show
            moveTo(0);
            QTRY_COMPARE(list->toolTip(), QStringLiteral("first"));
            moveTo(row);
            QTRY_COMPARE(list->toolTip(), tip);
        }

        // An object that is no recordset loads nothing and raises nothing.
        QObject notARecordset;
        combo->setRecordsetData(&notARecordset);
        QCOMPARE(list->count(), 0);
    }
};

QTEST_MAIN(tst_CheckList)
#include "tst_checklist.moc"
