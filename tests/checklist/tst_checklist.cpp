#include <zelkon/checklist/checkcombo.h>
#include <zelkon/checklist/frmlist.h>
#include <zelkon/common/error.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/testplatform.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>
#include <zelkon/dropdown/frmshowhide.h>

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
    QVariantList list;
    for (const QString &text : texts)
        list.append(text);
    return list;
}

QVariant list1(std::initializer_list<const char *> texts)
{
    return list1(sl(texts));
}

// A recordset's row block: a(0, i) the text, a(1, i) the identifier.
QVariant array2(std::initializer_list<std::pair<const char *, qint32>> rows)
{
    VariantArray a({{0, 1}, {0, qint32(rows.size()) - 1}});
    qint32 i = 0;
    for (const auto &[text, id] : rows) {
        a.at({0, i}) = QString::fromUtf8(text);
        a.at({1, i}) = id;
        ++i;
    }
    return QVariant::fromValue(a);
}

QStringList rowTexts(const QListWidget *list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i)
        texts.append(list->item(i)->text());
    return texts;
}

QStringList checkedRows(const QListWidget *list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i) {
        if (list->item(i)->checkState() == Qt::Checked)
            texts.append(list->item(i)->text());
    }
    return texts;
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

} // namespace

class tst_CheckList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void defaultsAndNames();
    void reachableByName();
    void loadArray_data();
    void loadArray();
    void failingRowEndsTheLoad();
    void tooManyRows();
    void closedFieldAndTips_data();
    void closedFieldAndTips();
    void repairCheckRules_data();
    void repairCheckRules();
    void rebuildChecksEveryRowWithTheText();
    void reloadKeepsChecksByText();
    void checkedByIdentifier();
    void selectAllAndClearAll();
    void singleCheck();
    void persistence_data();
    void persistence();
    void showHideDialog_data();
    void showHideDialog();
    void showHideFromTheMenu();
    void recordsetRows();
    void connectAndRefresh();
    void hiddenRowsSurviveRecordsetReload();

    void popupPlacement();
    void closesOnEscAndOnLeaving();
    void closesWhenTheHostHides();
    void waitsForTheActivation();
    void keys_data();
    void keys();
    void contextMenu_data();
    void contextMenu();
    void notInToggles();
    void mouseEvents();
    void rowToolTips_data();
    void rowToolTips();

private:
    CheckCombo *showCombo(int y = 40);
    void openAndActivate(CheckCombo *combo);

    std::unique_ptr<TestPlatform> m_platform;
    std::unique_ptr<QWidget> m_host;
    QTemporaryDir m_dir;
};

void tst_CheckList::init()
{
    m_platform = std::make_unique<TestPlatform>();
    m_host = std::make_unique<QWidget>();
    m_host->setObjectName(QStringLiteral("host"));
    m_host->resize(300, 200);
}

void tst_CheckList::cleanup()
{
    m_host.reset();
    m_platform.reset();
}

CheckCombo *tst_CheckList::showCombo(int y)
{
    auto *combo = new CheckCombo(m_host.get());
    combo->setGeometry(20, y, 160, 22);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    m_host->move(screen.left() + 50, screen.top() + 50);
    m_host->show();
    m_host->activateWindow();
    if (!QTest::qWaitForWindowActive(m_host.get()))
        qWarning("host window not active");
    return combo;
}

void tst_CheckList::openAndActivate(CheckCombo *combo)
{
    QTest::mouseClick(combo->findChild<QToolButton *>(QStringLiteral("ButDropDown")),
                      Qt::LeftButton);
    QVERIFY(combo->ListForm()->isVisible());
    QVERIFY(QTest::qWaitForWindowActive(combo->ListForm()));
}

void tst_CheckList::defaultsAndNames()
{
    auto *combo
        = qobject_cast<CheckCombo *>(createControl(QStringLiteral("CheckCombo"), m_host.get()));
    QVERIFY(combo);
    m_host->show();
    QCOMPARE(combo->Title(), QStringLiteral("All"));
    QCOMPARE(combo->MaxLine(), 5);
    QCOMPARE(combo->Delay(), 1);
    QVERIFY(combo->Sorting() && combo->Enabled() && combo->EditEnabled());
    QVERIFY(!combo->Inv() && !combo->SingleCheck() && !combo->AllSelect());
    QVERIFY(combo->findChild<QLineEdit *>(QStringLiteral("Text")));
    auto *button = combo->findChild<QToolButton *>(QStringLiteral("ButDropDown"));
    QCOMPARE(button->arrowType(), Qt::DownArrow);
    QCOMPARE(combo->findChild<QTimer *>(QStringLiteral("CheckTime"))->interval(), 5);

    frmList *form = combo->findChild<frmList *>(QStringLiteral("frmList"));
    QVERIFY(form);
    const auto flags = form->windowFlags();
    QVERIFY(flags.testFlag(Qt::Tool) && flags.testFlag(Qt::FramelessWindowHint)
            && flags.testFlag(Qt::WindowStaysOnTopHint));
    const auto lists = form->findChildren<QListWidget *>(QStringLiteral("List"));
    QCOMPARE(lists.size(), 2);
    for (QListWidget *list : lists)
        QCOMPARE(list, form->list(list->property("Index").toInt()));
    QCOMPARE(form->ActiveList(), 1);
    QCOMPARE(form->List()->toolTip(), QStringLiteral("Check/Uncheck Items"));

    // Layout: the button at the right edge, the text filling the rest.
    combo->resize(200, 24);
    QCOMPARE(button->geometry().right(), 199);
    QCOMPARE(button->height(), 24);
    QCOMPARE(combo->findChild<QLineEdit *>(QStringLiteral("Text"))->geometry().right() + 1,
             button->x());
}

void tst_CheckList::reachableByName()
{
    Control *combo = createControl(QStringLiteral("CheckCombo"), m_host.get());
    QVERIFY(combo->setProperty("TypeData", 2));
    QVERIFY(combo->setProperty("SArrayData", array2({{"a", 1}, {"b", 2}, {"c", 3}})));
    QVERIFY(combo->setProperty("ArrayCheckedID", QVariantList{2, 3}));
    QCOMPARE(strings(combo->property("ArrayChecked")), sl({"b", "c"}));
    QCOMPARE(combo->property("Title").toString(), QStringLiteral("List"));
    QVERIFY(QMetaObject::invokeMethod(combo, "SelectAll"));
    QCOMPARE(combo->property("ArrayCheckedID").toList(), QVariantList({1, 2, 3}));
    QVERIFY(QMetaObject::invokeMethod(combo, "ClearAll"));
    QVERIFY(IsEmpty(combo->property("ArrayCheckedID")));
    for (const char *name :
         {"MaxLine",     "Delay",       "Enabled",    "EditEnabled", "Sorting", "Inv",
          "SingleCheck", "AllSelect",   "Appearance", "Border",      "Left",    "Top",
          "Height",      "Width",       "Font",       "hWnd",        "Version", "RecordsetData",
          "CommandText", "CommandType", "Connect",    "ArrayVisible"})
        QVERIFY2(combo->metaObject()->indexOfProperty(name) >= 0, name);
    for (const char *signal :
         {"Quite(bool)", "MouseMove()", "Click()", "MouseMoveXY(qint16&,qint16&,float&,float&)",
          "MouseUp(qint16&,qint16&,float&,float&)", "MouseDown(qint16&,qint16&,float&,float&)"})
        QVERIFY2(combo->metaObject()->indexOfSignal(signal) >= 0, signal);
    QVERIFY(combo->metaObject()->indexOfMethod("Refresh()") >= 0);

    // Enabled by name reaches the widget's own enabled state.
    QSignalSpy changed(combo, &Control::PropertyChanged);
    combo->setProperty("Enabled", false);
    QVERIFY(!combo->isEnabled());
    QCOMPARE(changed.value(0).value(0).toString(), QStringLiteral("Enabled"));
}

void tst_CheckList::loadArray_data()
{
    QTest::addColumn<bool>("sorting");
    QTest::addColumn<QVariant>("source");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QVariantList>("ids");

    const QVariant words = list1({"pear", "Apple", "fig", "apple", "Banana"});
    QTest::newRow("1-D unsorted") << false << words
                                  << sl({"pear", "Apple", "fig", "apple", "Banana"})
                                  << QVariantList{0, 0, 0, 0, 0};
    QTest::newRow("1-D sorted, equal texts keep their order")
        << true << words << sl({"Apple", "apple", "Banana", "fig", "pear"})
        << QVariantList{0, 0, 0, 0, 0};
    QTest::newRow("2-D sorted") << true << array2({{"c", 30}, {"a", 10}, {"B", 20}})
                                << sl({"a", "B", "c"}) << QVariantList{10, 20, 30};
    QTest::newRow("2-D unsorted") << false << array2({{"c", 30}, {"a", 10}, {"B", 20}})
                                  << sl({"c", "a", "B"}) << QVariantList{30, 10, 20};
    QTest::newRow("Empty") << true << QVariant() << sl({}) << QVariantList{};
    VariantArray shifted({{-1, 1}});
    shifted.at({-1}) = QStringLiteral("before");
    shifted.at({0}) = QStringLiteral("x");
    shifted.at({1}) = QStringLiteral("y");
    QTest::newRow("lower bound taken as 0")
        << false << QVariant::fromValue(shifted) << sl({"x", "y"}) << QVariantList{0, 0};
}

void tst_CheckList::loadArray()
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

    const QVariant all = form->AllItems();
    QCOMPARE(IsEmpty(all), texts.isEmpty());
    for (int i = 0; i < texts.size(); ++i) {
        QCOMPARE(form->List()->itemValue(i), ids.at(i).toInt());
        QCOMPARE(all.value<VariantArray>().at({i, 0}).toString(), texts.at(i));
        QCOMPARE(all.value<VariantArray>().at({i, 1}), ids.at(i));
    }
    QVariantList everyRow;
    for (int i = 0; i < texts.size(); ++i)
        everyRow.append(i);
    QCOMPARE(combo.ArrayVisible(), texts.isEmpty() ? QVariant() : QVariant(everyRow));
    QCOMPARE(combo.ArrayChecked(), QVariant(QVariantList{QStringLiteral("All")}));
    QVERIFY(IsEmpty(combo.ArrayCheckedID()));
    QCOMPARE(combo.Title(), QStringLiteral("All"));
    QCOMPARE(combo.SArrayData(), source);
}

void tst_CheckList::failingRowEndsTheLoad()
{
    CheckCombo combo;
    combo.setSorting(false);
    combo.setSArrayData(
        QVariantList{QStringLiteral("a"), QStringLiteral("b"), nullVariant(), QStringLiteral("d")});
    QCOMPARE(rowTexts(combo.ListForm()->List()), sl({"a", "b"}));
    combo.setSArrayData(array2({{"x", 1}, {"y", 2}}));
    VariantArray bad = combo.SArrayData().value<VariantArray>();
    bad.at({1, 1}) = QStringLiteral("not a number");
    combo.setSArrayData(QVariant::fromValue(bad));
    QCOMPARE(rowTexts(combo.ListForm()->List()), sl({"x"}));
    QCOMPARE(combo.ListForm()->snapshotRows(), 1);
}

void tst_CheckList::tooManyRows()
{
    QVariantList rows;
    for (int i = 0; i < CheckListWidget::MaxRows + 2; ++i)
        rows.append(QString::number(i));
    CheckCombo combo;
    combo.setSorting(false);
    combo.setSArrayData(rows);
    QCOMPARE(combo.ListForm()->List()->count(), CheckListWidget::MaxRows);
    QCOMPARE(combo.ListForm()->snapshotRows(), CheckListWidget::MaxRows);
}

void tst_CheckList::closedFieldAndTips_data()
{
    QTest::addColumn<QVariant>("source");
    QTest::addColumn<QVariant>("wanted");
    QTest::addColumn<QStringList>("result");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("tips");

    const QVariant abc = list1({"a", "b", "c"});
    const QVariant abc2 = array2({{"a", 1}, {"b", 2}, {"c", 3}});
    for (const auto &[name, source] : {std::pair{"1-D", abc}, std::pair{"2-D", abc2}}) {
        QTest::addRow("%s two of three", name)
            << source << list1({"a", "b"}) << sl({"a", "b"}) << "List"
            << "a,b";
        QTest::addRow("%s all three", name)
            << source << list1({"c", "a", "b"}) << sl({"a", "b", "c"}) << "All"
            << "a,b,c";
        QTest::addRow("%s one", name) << source << list1({"b"}) << sl({"b"}) << "b"
                                      << "b";
        QTest::addRow("%s unknown text", name) << source << list1({"zz"}) << sl({"All"}) << "All"
                                               << "All";
        QTest::addRow("%s Empty", name) << source << QVariant() << sl({"All"}) << "All"
                                        << "All";
    }
}

void tst_CheckList::closedFieldAndTips()
{
    QFETCH(QVariant, source);
    QFETCH(QVariant, wanted);
    QFETCH(QStringList, result);
    QFETCH(QString, field);
    QFETCH(QString, tips);

    CheckCombo combo;
    combo.setSArrayData(source);
    QVariant variable = wanted;
    combo.setArrayChecked(variable);
    QCOMPARE(strings(variable), result);
    QCOMPARE(combo.Title(), field);
    QCOMPARE(combo.findChild<QLineEdit *>(QStringLiteral("Text"))->toolTip(), tips);
    QCOMPARE(combo.findChild<QToolButton *>(QStringLiteral("ButDropDown"))->toolTip(), tips);
    QCOMPARE(strings(combo.ArrayChecked()), result);
}

void tst_CheckList::repairCheckRules_data()
{
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QVariant>("texts");
    QTest::addColumn<QStringList>("checked");

    QTest::newRow("lone All checks nothing") << sl({"All", "x"}) << list1({"All"}) << sl({});
    QTest::newRow("All among others is a text")
        << sl({"All", "X", "y"}) << list1({"All", "X"}) << sl({"All", "X"});
    QTest::newRow("first row of a text only")
        << sl({"x", "y", "x"}) << list1({"x", "y"}) << sl({"x", "y"});
    QTest::newRow("repeated text") << sl({"x", "y", "x"}) << list1({"x", "x"}) << sl({"x"});
    QTest::newRow("number element") << sl({"5", "6"}) << QVariant(QVariantList{6}) << sl({"6"});
    QTest::newRow("Null element skipped")
        << sl({"a", "b"}) << QVariant(QVariantList{nullVariant(), QStringLiteral("b")})
        << sl({"b"});
}

void tst_CheckList::repairCheckRules()
{
    QFETCH(QStringList, rows);
    QFETCH(QVariant, texts);
    QFETCH(QStringList, checked);

    CheckCombo combo;
    combo.setSorting(false);
    combo.setSArrayData(list1(rows));
    combo.ListForm()->CheckAllRows();
    combo.setArrayChecked(texts);
    QListWidget *list = combo.ListForm()->List();
    QCOMPARE(checkedRows(list), checked);
    if (rows.size() == 3 && checked.size() == 2)
        QCOMPARE(list->item(2)->checkState(), Qt::Unchecked); // the second "x"
}

void tst_CheckList::rebuildChecksEveryRowWithTheText()
{
    CheckCombo combo;
    combo.setSorting(false);
    combo.setSArrayData(list1({"x", "y", "x", "z"}));
    combo.setArrayChecked(list1({"x"}));
    QCOMPARE(checkedRows(combo.ListForm()->List()), sl({"x"}));
    combo.ListForm()->RebuildVisibleRows();
    QCOMPARE(checkedRows(combo.ListForm()->List()), sl({"x", "x"}));
}

void tst_CheckList::reloadKeepsChecksByText()
{
    CheckCombo combo;
    combo.setSArrayData(list1({"a", "b", "c"}));
    combo.setArrayChecked(list1({"b", "c"}));
    combo.setSArrayData(array2({{"c", 3}, {"x", 9}, {"b", 2}, {"a", 1}}));
    QCOMPARE(strings(combo.ArrayChecked()), sl({"b", "c"}));
    QCOMPARE(combo.ArrayCheckedID().toList(), QVariantList({2, 3}));
    QCOMPARE(combo.Title(), QStringLiteral("List"));
}

void tst_CheckList::checkedByIdentifier()
{
    CheckCombo combo;
    combo.setSArrayData(array2({{"a", 10}, {"b", 20}, {"c", 30}, {"d", 20}}));
    QVariant ids = QVariantList{30, 20, 99};
    combo.setArrayCheckedID(ids);
    QCOMPARE(ids.toList(), QVariantList({20, 30}));
    QCOMPARE(strings(combo.ArrayChecked()), sl({"b", "c"}));
    QCOMPARE(combo.Title(), QStringLiteral("List"));

    // Rows of a 1-D array all carry 0: only the first of them can be checked by identifier.
    combo.setSArrayData(list1({"p", "q"}));
    combo.setArrayCheckedID(QVariantList{0, 0});
    QCOMPARE(strings(combo.ArrayChecked()), sl({"p"}));
}

void tst_CheckList::selectAllAndClearAll()
{
    CheckCombo combo;
    combo.setSArrayData(array2({{"a", 1}, {"b", 2}, {"a", 3}}));
    combo.SelectAll();
    // Each text checks its first row: the second "a" stays unchecked.
    QCOMPARE(combo.ArrayCheckedID().toList(), QVariantList({1, 2}));
    QCOMPARE(combo.Title(), QStringLiteral("All"));
    combo.ClearAll();
    QVERIFY(IsEmpty(combo.ArrayCheckedID()));
    QCOMPARE(checkedRows(combo.ListForm()->List()), QStringList());
}

void tst_CheckList::singleCheck()
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

void tst_CheckList::persistence_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");

    QTest::newRow("Title") << "Title" << QVariant(QStringLiteral("Regions"));
    QTest::newRow("MaxLine") << "MaxLine" << QVariant(qint16(9));
    QTest::newRow("Delay") << "Delay" << QVariant(qint16(40));
    QTest::newRow("Enabled") << "Enabled" << QVariant(false);
    QTest::newRow("EditEnabled") << "EditEnabled" << QVariant(false);
    QTest::newRow("Sorting") << "Sorting" << QVariant(false);
    QTest::newRow("Inv") << "Inv" << QVariant(true);
    QTest::newRow("SingleCheck") << "SingleCheck" << QVariant(true);
    QTest::newRow("AllSelect") << "AllSelect" << QVariant(true);
    QTest::newRow("Appearance") << "Appearance" << QVariant(qint32(0));
    QTest::newRow("Border") << "Border" << QVariant(qint32(0));
}

void tst_CheckList::persistence()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);

    CheckCombo fresh;
    fresh.move(30, 40);
    MemoryPropertyBag defaults;
    fresh.WriteProperties(defaults);
    QCOMPARE(defaults.keys(), QStringList()); // defaults, position and size store nothing

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

void tst_CheckList::showHideDialog_data()
{
    QTest::addColumn<QList<int>>("unmark");
    QTest::addColumn<bool>("confirm");
    QTest::addColumn<QVariant>("arVis");

    QTest::newRow("all marked") << QList<int>{} << true << QVariant(QVariantList{0, 1, 2, 3, 4});
    QTest::newRow("rows 1 and 3 unmarked")
        << QList<int>{1, 3} << true << QVariant(QVariantList{0, 2, 4});
    QTest::newRow("nothing marked") << QList<int>{0, 1, 2, 3, 4} << true << QVariant();
    QTest::newRow("declined") << QList<int>{4} << false << QVariant(QVariantList{0, 1, 2, 3});
}

void tst_CheckList::showHideDialog()
{
    QFETCH(QList<int>, unmark);
    QFETCH(bool, confirm);
    QFETCH(QVariant, arVis);

    frmShowHide dialog;
    dialog.fill(sl({"r0", "r1", "r2", "r3", "r4"}));
    QCOMPARE(dialog.findChild<QPushButton *>(QStringLiteral("btnYes"))->text(),
             QStringLiteral("Yes"));
    QTimer::singleShot(0, &dialog, [&] {
        QListWidget *box = dialog.HideBox();
        for (int row : unmark) {
            const QRect r = box->visualItemRect(box->item(row));
            QTest::mouseClick(box->viewport(), Qt::LeftButton, {}, r.center());
        }
        QTest::mouseClick(dialog.findChild<QPushButton *>(confirm ? QStringLiteral("btnYes")
                                                                  : QStringLiteral("btnNo")),
                          Qt::LeftButton);
    });
    QVariant result = QStringLiteral("unchanged");
    QCOMPARE(dialog.frmActivate(result), confirm);
    QCOMPARE(result, arVis);
    QCOMPARE(m_platform->messages(), sl({"test", "test"}));
}

void tst_CheckList::showHideFromTheMenu()
{
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
        dialog->HideBox()->item(1)->setCheckState(Qt::Unchecked); // hide b
        dialog->HideBox()->item(3)->setCheckState(Qt::Unchecked); // hide d
        QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("btnYes")),
                          Qt::LeftButton);
    });
    form->mnuPopup(3)->trigger();

    QCOMPARE(quite.size(), 1);
    QCOMPARE(quite.at(0).at(0).toBool(), true);
    QVERIFY(!form->isVisible());
    QCOMPARE(rowTexts(form->List()), sl({"a", "c"}));
    QCOMPARE(checkedRows(form->List()), sl({"a"})); // a hidden row loses its check
    QCOMPARE(combo->ArrayVisible(), QVariant(QVariantList{0, 2}));
    QCOMPARE(form->snapshotRows(), 4);
    QVERIFY(!form->ShowHideDialog());
    QCOMPARE(m_platform->messages(), sl({"test", "test"}));
}

void tst_CheckList::recordsetRows()
{
    Connection connection;
    connection.Open(QStringLiteral("Driver=QSQLITE;Database=:memory:"));
    QSqlQuery q(connection.database());
    QVERIFY(q.exec(QStringLiteral("CREATE TABLE t (name TEXT, note TEXT)")));
    QVERIFY(q.exec(QStringLiteral("INSERT INTO t VALUES ('  pear ', 'p'), (NULL, 'n'), "
                                  "('apple', 'a'), ('Fig', 'f')")));
    Recordset rs;
    rs.Open(QStringLiteral("SELECT name, note FROM t"), QVariant::fromValue<QObject *>(&connection),
            3, 3, 1);

    CheckCombo combo;
    combo.setTypeData(CheckCombo::ADOData);
    combo.setSArrayData(list1({"pear", "x", "y", "z"})); // shows rows 0 to 3 of later loads
    combo.setArrayChecked(list1({"pear"}));
    combo.setRecordsetData(&rs);
    frmList *form = combo.ListForm();
    QCOMPARE(rowTexts(form->List()), sl({"apple", "Fig", "pear"}));
    QCOMPARE(checkedRows(form->List()), sl({"pear"})); // kept by text
    QCOMPARE(combo.ArrayCheckedID().toList(), QVariantList({0}));
    QVERIFY(form->FieldTips());
    QCOMPARE(combo.RecordsetData(), &rs);

    // Several checks of a recordset source: "All" only when every row is checked.
    combo.setArrayChecked(list1({"apple", "pear"}));
    QCOMPARE(combo.Title(), QStringLiteral("List"));
    combo.setArrayChecked(list1({"apple", "pear", "Fig"}));
    QCOMPARE(combo.Title(), QStringLiteral("All"));
    combo.SelectAll(); // checks rows of a source array only
    QCOMPARE(checkedRows(form->List()).size(), 3);

    // An object that is no recordset loads nothing and raises nothing.
    QObject notARecordset;
    combo.setRecordsetData(&notARecordset);
    QCOMPARE(form->List()->count(), 0);
}

void tst_CheckList::connectAndRefresh()
{
    const QString path = m_dir.filePath(QStringLiteral("refresh.db"));
    Connection connection;
    connection.Open(QString(QStringLiteral("Driver=QSQLITE;Database=") + path));
    QSqlQuery q(connection.database());
    QVERIFY(q.exec(QStringLiteral("CREATE TABLE region (name TEXT)")));
    QVERIFY(q.exec(QStringLiteral("INSERT INTO region VALUES ('North'), ('South'), ('East')")));

    CheckCombo combo;
    combo.setCommandText(QStringLiteral("SELECT name FROM region ORDER BY name"));
    combo.setCommandType(1);
    combo.setConnect(&connection);
    frmList *form = combo.ListForm();
    QCOMPARE(rowTexts(form->List()), sl({"East", "North", "South"}));
    QVERIFY(!form->FieldTips());

    combo.setArrayChecked(list1({"North"}));
    QVERIFY(q.exec(QStringLiteral("INSERT INTO region VALUES ('West')")));
    combo.Refresh();
    QCOMPARE(form->snapshotRows(), 4);
    QCOMPARE(checkedRows(form->List()), QStringList()); // a refresh keeps no checks

    combo.setCommandText(QStringLiteral("SELECT nosuchcolumn FROM region"));
    bool raised = false;
    try {
        combo.Refresh();
    } catch (const Error &e) {
        raised = e.number() >= DatabaseError;
    }
    QVERIFY(raised);
}

void tst_CheckList::hiddenRowsSurviveRecordsetReload()
{
    Connection connection;
    connection.Open(QStringLiteral("Driver=QSQLITE;Database=:memory:"));
    QSqlQuery q(connection.database());
    QVERIFY(q.exec(QStringLiteral("CREATE TABLE t (name TEXT)")));
    QVERIFY(q.exec(QStringLiteral("INSERT INTO t VALUES ('a'), ('b'), ('c'), ('d')")));

    CheckCombo combo;
    combo.setSorting(false);
    combo.setCommandText(QStringLiteral("SELECT name FROM t ORDER BY name"));
    combo.setConnect(&connection);
    frmList *form = combo.ListForm();
    combo.setArrayVisible(QVariantList{0, 3});
    QCOMPARE(form->List()->count(), 4); // applied at the next rebuild only
    combo.setArrayChecked(list1({"a", "c"}));

    Recordset rs;
    rs.Open(QStringLiteral("SELECT name FROM t ORDER BY name DESC"),
            QVariant::fromValue<QObject *>(&connection));
    combo.setRecordsetData(&rs);
    QCOMPARE(rowTexts(form->List()), sl({"d", "a"})); // rows 0 and 3 of the new load
    QCOMPARE(checkedRows(form->List()), sl({"a"}));

    // An array load shows every row again.
    combo.setSArrayData(list1({"x", "y", "z"}));
    QCOMPARE(form->List()->count(), 3);
}

void tst_CheckList::popupPlacement()
{
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    CheckCombo *combo = showCombo();
    combo->setMaxLine(3);
    QVariantList rows;
    for (int i = 0; i < 10; ++i)
        rows.append(QStringLiteral("row %1").arg(i));
    combo->setSArrayData(rows);
    QSignalSpy click(combo, &CheckCombo::Click);
    openAndActivate(combo);
    frmList *form = combo->ListForm();
    const QRect field(combo->mapToGlobal(QPoint(0, 0)), combo->size());
    QCOMPARE(form->geometry().top(), field.bottom() + 1);
    QCOMPARE(form->geometry().left(), field.left());
    QCOMPARE(form->width(), field.width());
    const int rowHeight = form->List()->sizeHintForRow(0);
    QCOMPARE(form->height(), 3 * rowHeight + 2 * form->List()->frameWidth());
    QCOMPARE(click.size(), 1);
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

void tst_CheckList::closesOnEscAndOnLeaving()
{
    CheckCombo *combo = showCombo();
    combo->setSorting(false);
    combo->setSArrayData(list1({"a", "b", "c"}));
    QSignalSpy quite(combo, &CheckCombo::Quite);
    frmList *form = combo->ListForm();

    openAndActivate(combo);
    QTest::keyClick(form->List(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(form->List(), Qt::Key_Escape);
    QCOMPARE(quite.size(), 1);
    QCOMPARE(quite.takeFirst().at(0).toBool(), true);
    QVERIFY(!form->isVisible() && !combo->isDroppedDown());
    QCOMPARE(combo->Title(), QStringLiteral("All"));

    // A press on the button while the list is open does not close it.
    openAndActivate(combo);
    auto *button = combo->findChild<QToolButton *>(QStringLiteral("ButDropDown"));
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(form->isVisible());
    QListWidget *list = form->List();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, checkBoxOf(list, 1));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, checkBoxOf(list, 2));
    m_host->activateWindow(); // the user clicks elsewhere
    QTRY_COMPARE(quite.size(), 1);
    QCOMPARE(quite.takeFirst().at(0).toBool(), false);
    QVERIFY(!form->isVisible());
    QCOMPARE(combo->Title(), QStringLiteral("a"));
    QCOMPARE(combo->findChild<QLineEdit *>(QStringLiteral("Text"))->toolTip(), QStringLiteral("a"));
}

void tst_CheckList::closesWhenTheHostHides()
{
    CheckCombo *combo = showCombo();
    combo->setSArrayData(list1({"a"}));
    QSignalSpy quite(combo, &CheckCombo::Quite);
    openAndActivate(combo);
    m_host->hide();
    QTRY_VERIFY(!combo->ListForm()->isVisible());
    QVERIFY(!combo->isDroppedDown());
    QCOMPARE(quite.size(), 0);
}

void tst_CheckList::waitsForTheActivation()
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

void tst_CheckList::keys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QStringList>("checked");

    QTest::newRow("Ctrl+A") << int(Qt::Key_A) << sl({"a", "b", "c"});
    QTest::newRow("Ctrl+I") << int(Qt::Key_I) << sl({"a", "c"});
    QTest::newRow("Ctrl+U") << int(Qt::Key_U) << sl({});
}

void tst_CheckList::keys()
{
    QFETCH(int, key);
    QFETCH(QStringList, checked);

    CheckCombo *combo = showCombo();
    combo->setSorting(false);
    combo->setSArrayData(list1({"a", "b", "c"}));
    combo->setArrayChecked(list1({"b"}));
    openAndActivate(combo);
    QListWidget *list = combo->ListForm()->List();
    QTest::keyClick(list, Qt::Key(key), Qt::ControlModifier);
    QCOMPARE(checkedRows(list), checked);
    QTest::keyClick(list, Qt::Key(key)); // without Ctrl the list has the key
    QCOMPARE(checkedRows(list), checked);
}

void tst_CheckList::contextMenu_data()
{
    QTest::addColumn<QLocale::Language>("language");
    QTest::addColumn<bool>("single");
    QTest::addColumn<QStringList>("shown");

    QTest::newRow("English") << QLocale::English << false
                             << sl({"Select All", "Clear All", "Invert Selection", "Show/Hide",
                                    "Not In ..."});
    QTest::newRow("Russian") << QLocale::Russian << false
                             << sl({"Выделить все", "Очистить все", "Инвертировать выбор",
                                    "Показать/Скрыть", "Инверсная логика"});
    QTest::newRow("German") << QLocale::German << false
                            << sl({"Select All", "Clear All", "Invert Selection", "Show/Hide",
                                   "Not In ..."});
    QTest::newRow("single check") << QLocale::English << true
                                  << sl({"Clear All", "Show/Hide", "Not In ..."});
}

void tst_CheckList::contextMenu()
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
}

void tst_CheckList::notInToggles()
{
    CheckCombo combo;
    QSignalSpy changed(&combo, &Control::PropertyChanged);
    QAction *notIn = combo.ListForm()->mnuPopup(4);
    notIn->trigger();
    QVERIFY(combo.Inv() && notIn->isChecked());
    notIn->trigger();
    QVERIFY(!combo.Inv() && !notIn->isChecked());
    QCOMPARE(changed.size(), 0); // the user's toggle is no property put
    combo.setInv(true);
    QVERIFY(notIn->isChecked());
    QCOMPARE(changed.value(0).value(0).toString(), QStringLiteral("Inv"));
}

void tst_CheckList::mouseEvents()
{
    CheckCombo *combo = showCombo();
    combo->setSArrayData(list1({"a"}));
    QStringList order;
    QList<qint16> buttons;
    connect(combo, &CheckCombo::MouseDown, this, [&](qint16 &button, qint16 &, float &, float &) {
        order.append(QStringLiteral("MouseDown"));
        buttons.append(button);
    });
    connect(combo, &CheckCombo::MouseUp, this,
            [&](qint16 &, qint16 &, float &, float &) { order.append(QStringLiteral("MouseUp")); });
    connect(combo, &CheckCombo::Click, this, [&] { order.append(QStringLiteral("Click")); });
    connect(combo, &CheckCombo::MouseMove, this,
            [&] { order.append(QStringLiteral("MouseMove")); });
    connect(combo, &CheckCombo::MouseMoveXY, this, [&](qint16 &, qint16 &shift, float &x, float &) {
        order.append(QStringLiteral("MouseMoveXY %1 %2").arg(shift).arg(x));
    });

    auto *button = combo->findChild<QToolButton *>(QStringLiteral("ButDropDown"));
    QTest::mouseClick(button, Qt::RightButton, Qt::ShiftModifier);
    QCOMPARE(order, sl({"MouseDown", "MouseUp"}));
    QVERIFY(!combo->isDroppedDown());
    order.clear();
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(order, sl({"MouseDown", "Click", "MouseUp"}));
    QCOMPARE(buttons, QList<qint16>({2, 1}));
    QVERIFY(combo->isDroppedDown());
    QTest::keyClick(combo->ListForm()->List(), Qt::Key_Escape);

    order.clear();
    QTest::mouseMove(combo->findChild<QLineEdit *>(QStringLiteral("Text")), QPoint(7, 5));
    QTRY_COMPARE(order, sl({"MouseMove", "MouseMoveXY 0 7"}));
}

void tst_CheckList::rowToolTips_data()
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

void tst_CheckList::rowToolTips()
{
    QFETCH(int, dialect);
    QFETCH(int, row);
    QFETCH(QString, tip);

    Connection connection;
    connection.Open(QStringLiteral("Driver=QSQLITE;Database=:memory:"));
    QSqlQuery q(connection.database());
    QVERIFY(q.exec(QStringLiteral("CREATE TABLE t (name TEXT, note TEXT)")));
    QVERIFY(q.exec(QStringLiteral(
        "INSERT INTO t VALUES ('alpha', '  first  '), ('beta', '   '), ('o''brien', 'third')")));
    Recordset rs;
    rs.Open(QStringLiteral("SELECT name, note FROM t"),
            QVariant::fromValue<QObject *>(&connection));

    CheckCombo *combo = showCombo();
    combo->setSorting(false);
    combo->setTypeData(CheckCombo::ExDate(dialect));
    combo->setRecordsetData(&rs);
    openAndActivate(combo);
    QListWidget *list = combo->ListForm()->List();
    QCOMPARE(list->count(), 3);
    QCOMPARE(list->toolTip(), QStringLiteral("Check/Uncheck Items"));
    // Moves reach the popup through its window, as the window system delivers them.
    const auto moveTo = [&](int i) {
        const QPoint at = list->viewport()->mapTo(combo->ListForm(),
                                                  list->visualItemRect(list->item(i)).center());
        QTest::mouseMove(combo->ListForm()->windowHandle(), at);
    };
    moveTo(row);
    QTRY_COMPARE(list->toolTip(), tip);
    if (row != 0) { // a row with a tip first, so that a stale tip would show
        moveTo(0);
        QTRY_COMPARE(list->toolTip(), QStringLiteral("first"));
        moveTo(row);
        QTRY_COMPARE(list->toolTip(), tip);
    }
}

QTEST_MAIN(tst_CheckList)
#include "tst_checklist.moc"
