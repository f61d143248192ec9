#include <zelkon/common/error.h>
#include <zelkon/common/formfile.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variantarray.h>
#include <zelkon/smallcontrols/boxcombo.h>
#include <zelkon/smallcontrols/combolistbox.h>
#include <zelkon/smallcontrols/elapsedbut.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace zelkon;

namespace {

QVariantList list(std::initializer_list<QVariant> items)
{
    return QVariantList(items);
}

// An input array of texts and identifiers (Empty identifiers when none are given).
QVariant input(const QStringList &texts, const QVariant &ids = {})
{
    QVariantList t;
    for (const QString &text : texts)
        t << text;
    return list({t, ids});
}

// A one-dimensional array with other bounds than a list has.
QVariant oneBased(const QVariantList &items)
{
    VariantArray a({Bounds{1, qint32(items.size())}});
    for (qint32 i = 0; i < items.size(); ++i)
        a.at({i + 1}) = items.at(i);
    return QVariant::fromValue(a);
}

QComboBox *comboOf(Control *control)
{
    return control->findChild<QComboBox *>();
}

QStringList rowTexts(const QComboBox *combo)
{
    QStringList texts;
    for (int row = 0; row < combo->count(); ++row)
        texts << combo->itemText(row);
    return texts;
}

QList<int> rowIds(const QComboBox *combo)
{
    QList<int> ids;
    for (int row = 0; row < combo->count(); ++row)
        ids << combo->itemData(row).toInt();
    return ids;
}

// The error number a call throws, 0 when it throws none.
template<typename Call>
int errorOf(Call &&call)
{
    try {
        call();
    } catch (const Error &error) {
        return error.number();
    }
    return 0;
}

// A control created by class name on a shown and active window.
struct Window
{
    explicit Window(const QString &className)
        : control(createControl(className, &window))
    {
        control->setGeometry(10, 10, 200, control->sizeHint().height());
        window.resize(240, 60);
        window.show();
        window.activateWindow();
    }
    bool active() { return QTest::qWaitForWindowActive(&window); }

    QWidget window;
    Control *control;
};

} // namespace

class tst_SmallControls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void inputArray_data()
    {
        QTest::addColumn<QString>("className");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<int>("error");
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QList<int>>("ids");

        const QString list = QStringLiteral("ComboListBox");
        const QString box = QStringLiteral("BoxCombo");
        const QVariant ids12 = ::list({1, 2});
        const QStringList ab = {QStringLiteral("a"), QStringLiteral("b")};
        const QStringList abc = {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")};
        const QStringList before = {QStringLiteral("old")};
        QTest::newRow("list: texts and ids")
            << list << input(abc, ::list({10, 20, 30})) << 0 << abc << QList<int>{10, 20, 30};
        QTest::newRow("list: ids optional") << list << input(ab) << 0 << ab << QList<int>{0, 0};
        QTest::newRow("list: numbers as texts, texts as ids")
            << list << QVariant(::list({::list({1.5, true}), ::list({QStringLiteral("7"), 8.0})}))
            << 0 << QStringList{QStringLiteral("1.5"), QStringLiteral("True")} << QList<int>{7, 8};
        QTest::newRow("list: arrays of other kinds")
            << list << oneBased({input(ab).toList().at(0), ids12}) << 9 << QStringList()
            << QList<int>();
        QTest::newRow("list: Empty keeps the old list")
            << list << QVariant() << 0 << before << QList<int>{5};
        QTest::newRow("list: no array")
            << list << QVariant(QStringLiteral("ab")) << 13 << QStringList() << QList<int>();
        QTest::newRow("list: texts no array")
            << list << QVariant(::list({QStringLiteral("ab"), ids12})) << 13 << QStringList()
            << QList<int>();
        QTest::newRow("list: ids no array")
            << list << input(ab, 3) << 13 << QStringList{QStringLiteral("a")} << QList<int>{0};
        QTest::newRow("list: ids shorter")
            << list << input(abc, ids12) << 9 << abc << QList<int>{1, 2, 0};
        QTest::newRow("list: no ids element")
            << list << QVariant(::list({::list({QStringLiteral("a")})})) << 9
            << QStringList{QStringLiteral("a")} << QList<int>{0};
        QTest::newRow("list: id not a number")
            << list << input(ab, ::list({1, QStringLiteral("x")})) << 13 << ab << QList<int>{1, 0};
        QTest::newRow("list: id beyond 32 bits")
            << list << input({QStringLiteral("a")}, ::list({1e10})) << 6
            << QStringList{QStringLiteral("a")} << QList<int>{0};
        QTest::newRow("list: no texts")
            << list << input({}, ids12) << 0 << QStringList() << QList<int>();
        QTest::newRow("box: texts and ids")
            << box << input(ab, ids12) << 0 << ab << QList<int>{1, 2};
        QTest::newRow("box: ids required")
            << box << input(ab) << 13 << QStringList{QStringLiteral("a")} << QList<int>{0};
        QTest::newRow("box: 2-D array")
            << box << QVariant::fromValue(VariantArray({Bounds{0, 1}, Bounds{0, 1}})) << 9
            << QStringList() << QList<int>();
        QTest::newRow("box: Empty keeps the old list")
            << box << QVariant() << 0 << before << QList<int>{5};
    }

    // Given a control holding one row, when InputArray is put, then the rows are the texts with
    // their ids, a failure reaches the caller after the earlier rows, and only a success reports.
    void inputArray()
    {
        QFETCH(QString, className);
        QFETCH(QVariant, value);
        QFETCH(int, error);
        std::unique_ptr<Control> control(createControl(className));
        const QVariant old = input({QStringLiteral("old")}, list({5}));
        control->setProperty("InputArray", old);
        QSignalSpy changed(control.get(), &Control::PropertyChanged);

        QCOMPARE(errorOf([&] { control->setProperty("InputArray", value); }), error);

        QTEST(rowTexts(comboOf(control.get())), "texts");
        QTEST(rowIds(comboOf(control.get())), "ids");
        QCOMPARE(comboOf(control.get())->currentIndex(), -1);
        QCOMPARE(control->property("InputArray"), value.isValid() ? value : old);
        QCOMPARE(changed.size(), error == 0 && value.isValid() ? 1 : 0);
    }

    void rowCountIsSixteenBit_data()
    {
        QTest::addColumn<int>("upperBound");
        QTest::addColumn<int>("error");
        QTest::addColumn<int>("rows");
        QTest::newRow("32766") << 32766 << 0 << 32767;
        QTest::newRow("32767: the counter overflows after the last row") << 32767 << 6 << 32768;
        QTest::newRow("32768") << 32768 << 6 << 0;
    }

    void rowCountIsSixteenBit()
    {
        QFETCH(int, upperBound);
        QFETCH(int, error);
        ComboListBox box;
        const QVariantList texts(upperBound + 1, QStringLiteral("t"));
        QCOMPARE(errorOf([&] { box.setInputArray(list({texts, QVariant()})); }), error);
        QTEST(comboOf(&box)->count(), "rows");
    }

    void selection_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("argument");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("valueId");

        const QStringList abc = {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")};
        const QVariant ids = list({10, 20, 30});
        QTest::newRow("ValueID") << input(abc, ids) << QByteArray("ValueID") << QVariant(20) << 1
                                 << QStringLiteral("b") << 20;
        QTest::newRow("ValueID no match")
            << input(abc, ids) << QByteArray("ValueID") << QVariant(25) << -1 << QString() << 0;
        QTest::newRow("ValueID 0 without ids")
            << input(abc) << QByteArray("ValueID") << QVariant(0) << 0 << QStringLiteral("a") << 0;
        QTest::newRow("ValueID first match") << input(abc, list({7, 8, 7})) << QByteArray("ValueID")
                                             << QVariant(7) << 0 << QStringLiteral("a") << 7;
        QTest::newRow("StartValue")
            << input(abc, ids) << QByteArray("StartValue") << QVariant(QStringLiteral("c")) << 2
            << QStringLiteral("c") << 30;
        QTest::newRow("StartValue exact") << input(abc, ids) << QByteArray("StartValue")
                                          << QVariant(QStringLiteral("B")) << -1 << QString() << 0;
        QTest::newRow("StartValue last match")
            << input({QStringLiteral("x"), QStringLiteral("x")}, list({1, 2}))
            << QByteArray("StartValue") << QVariant(QStringLiteral("x")) << 1 << QStringLiteral("x")
            << 2;
        QTest::newRow("id beyond 16 bits reads 0")
            << input({QStringLiteral("a")}, list({70000})) << QByteArray("StartValue")
            << QVariant(QStringLiteral("a")) << 0 << QStringLiteral("a") << 0;
    }

    // Given a filled list, when the host selects by text or id, then the chosen row is read back
    // by Value and ValueID, the put is reported, and no Change is raised for it.
    void selection()
    {
        QFETCH(QVariant, value);
        QFETCH(QByteArray, property);
        QFETCH(QVariant, argument);
        ComboListBox box;
        box.setInputArray(value);
        QSignalSpy change(&box, &ComboListBox::Change);
        QSignalSpy changed(&box, &Control::PropertyChanged);

        QVERIFY(box.setProperty(property.constData(), argument));

        QTEST(comboOf(&box)->currentIndex(), "row");
        QTEST(box.Value(), "text");
        QTEST(int(box.ValueID()), "valueId");
        if (property == "StartValue") // kept as given
            QCOMPARE(box.StartValue(), argument.toString());
        QCOMPARE(change.size(), 0);
        QCOMPARE(changed.size(), 1);
    }

    void puts_data()
    {
        QTest::addColumn<QString>("className");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QVariant>("readBack");
        QTest::addColumn<int>("reports");
        const QString text = QStringLiteral("b");
        QTest::newRow("BoxCombo StartValue shown, not kept")
            << QStringLiteral("BoxCombo") << QByteArray("StartValue") << QVariant(text)
            << QVariant(QString()) << 1;
        QTest::newRow("BoxCombo Value") << QStringLiteral("BoxCombo") << QByteArray("Value")
                                        << QVariant(text) << QVariant(text) << 1;
        QTest::newRow("BoxCombo AllowAddNew")
            << QStringLiteral("BoxCombo") << QByteArray("AllowAddNew") << QVariant(true)
            << QVariant(true) << 1;
        for (const char *name : {"Titul", "OCXID"})
            QTest::addRow("ElapsedBut %s", name) << QStringLiteral("ElapsedBut") << QByteArray(name)
                                                 << QVariant(text) << QVariant(text) << 0;
        QTest::newRow("ElapsedBut Level") << QStringLiteral("ElapsedBut") << QByteArray("Level")
                                          << QVariant(qint16(-3)) << QVariant(qint16(-3)) << 0;
        QTest::newRow("ElapsedBut Inv") << QStringLiteral("ElapsedBut") << QByteArray("Inv")
                                        << QVariant(true) << QVariant(true) << 0;
        QTest::newRow("ElapsedBut Enabled") << QStringLiteral("ElapsedBut") << QByteArray("Enabled")
                                            << QVariant(false) << QVariant(false) << 0;
    }

    // Given a new control, when a property is put by name twice, then it reads back and the
    // container hears of each put, except from ElapsedBut, whose values belong to its host.
    void puts()
    {
        QFETCH(QString, className);
        QFETCH(QByteArray, property);
        QFETCH(QVariant, value);
        std::unique_ptr<Control> control(createControl(className));
        QSignalSpy changed(control.get(), &Control::PropertyChanged);

        QVERIFY(control->setProperty(property.constData(), value));
        QVERIFY(control->setProperty(property.constData(), value));

        QTEST(control->property(property.constData()), "readBack");
        QFETCH(int, reports);
        QCOMPARE(changed.size(), 2 * reports);
        if (property.endsWith("Value")) // shown in the box in either case
            QCOMPARE(comboOf(control.get())->currentText(), value.toString());
    }

    void addNew_data()
    {
        QTest::addColumn<bool>("allowAddNew");
        QTest::addColumn<QTestEventList>("keys");
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("keyPassedOn");

        const QStringList ab = {QStringLiteral("a"), QStringLiteral("b")};
        const auto typing = [](const char *text, Qt::Key key) {
            QTestEventList events;
            events.addKeyClicks(QString::fromLatin1(text));
            events.addKeyClick(key);
            return events;
        };
        QTest::newRow("new text added")
            << true << typing("c", Qt::Key_Return)
            << QStringList{ab + QStringList{QStringLiteral("c")}} << QStringLiteral("c") << false;
        QTest::newRow("existing text")
            << true << typing("a", Qt::Key_Return) << ab << QStringLiteral("a") << false;
        QTest::newRow("case counts")
            << true << typing("A", Qt::Key_Enter)
            << QStringList{ab + QStringList{QStringLiteral("A")}} << QStringLiteral("A") << false;
        QTest::newRow("adding not allowed")
            << false << typing("c", Qt::Key_Return) << ab << QStringLiteral("c") << true;
        QTest::newRow("empty text")
            << true << typing("", Qt::Key_Return) << ab << QString() << true;
        QTest::newRow("Escape empties")
            << true << typing("c", Qt::Key_Escape) << ab << QString() << false;
        QTest::newRow("Escape on empty")
            << true << typing("", Qt::Key_Escape) << ab << QString() << true;
    }

    // Given a filled box with the focus, when the user types and presses Enter or Escape, then a
    // new text is added unselected (exact comparison), Escape empties the text, no Change is
    // raised, and a key the box does not use goes on to the window.
    void addNew()
    {
        QFETCH(QTestEventList, keys);
        QFETCH(bool, allowAddNew);
        Window w(QStringLiteral("BoxCombo"));
        auto *box = qobject_cast<BoxCombo *>(w.control);
        box->setInputArray(input({QStringLiteral("a"), QStringLiteral("b")}, list({1, 2})));
        box->setAllowAddNew(allowAddNew);
        QVERIFY(w.active());
        box->setFocus();
        QSignalSpy change(box, &BoxCombo::Change);
        struct KeyWatch : QObject
        {
            bool eventFilter(QObject *, QEvent *e) override
            {
                seen |= e->type() == QEvent::KeyPress;
                return false;
            }
            bool seen = false;
        } windowKeys;
        w.window.installEventFilter(&windowKeys);

        keys.simulate(comboOf(box));

        QTEST(rowTexts(comboOf(box)), "texts");
        QTEST(box->Value(), "typed");
        QCOMPARE(comboOf(box)->currentIndex(), -1);
        QCOMPARE(change.size(), 0);
        QTEST(windowKeys.seen, "keyPassedOn");
    }

    void userPick_data()
    {
        QTest::addColumn<QString>("className");
        QTest::newRow("BoxCombo") << QStringLiteral("BoxCombo");
        QTest::newRow("ComboListBox") << QStringLiteral("ComboListBox");
    }

    // Given a filled control with the focus, when the user picks a row, then Change is raised.
    void userPick()
    {
        QFETCH(QString, className);
        Window w(className);
        w.control->setProperty("InputArray",
                               input({QStringLiteral("a"), QStringLiteral("b")}, list({1, 2})));
        QVERIFY(w.active());
        w.control->setFocus();
        QSignalSpy change(w.control, SIGNAL(Change()));

        QTest::keyClick(comboOf(w.control), Qt::Key_Down);

        QCOMPARE(change.size(), 1);
        QCOMPARE(w.control->property("Value").toString(), QStringLiteral("a"));
    }

    // Names sizes the node names (0 starts afresh with one); NodeNames fails outside them.
    void nodeNames()
    {
        ElapsedBut but;
        QCOMPARE(but.Names(), qint16(-1));
        QCOMPARE(errorOf([&] { but.NodeNames(0); }), 9);
        QCOMPARE(errorOf([&] { but.setNodeNames(0, QStringLiteral("x")); }), 9);
        but.setNames(3);
        but.setNodeNames(3, QStringLiteral("d"));
        QCOMPARE(errorOf([&] { but.NodeNames(4); }), 9);
        QCOMPARE(errorOf([&] { but.NodeNames(-1); }), 9);
        but.setNames(5);
        QCOMPARE(but.NodeNames(3), QStringLiteral("d"));
        QCOMPARE(but.NodeNames(5), QString());
        QCOMPARE(errorOf([&] { but.setNames(-2); }), 9);
        QCOMPARE(but.Names(), qint16(5));
        but.setNames(0);
        QCOMPARE(but.Names(), qint16(0));
        QCOMPARE(but.NodeNames(0), QString());
        QCOMPARE(errorOf([&] { but.NodeNames(1); }), 9);
        QVERIFY(QMetaObject::invokeMethod(&but, "setNodeNames", Q_ARG(qint16, 0),
                                          Q_ARG(QString, QStringLiteral("n"))));
        QString byName;
        QVERIFY(QMetaObject::invokeMethod(&but, "NodeNames", Q_RETURN_ARG(QString, byName),
                                          Q_ARG(qint16, 0)));
        QCOMPARE(byName, QStringLiteral("n"));
    }

    void mouse_data()
    {
        QTest::addColumn<QString>("child");
        QTest::addColumn<Qt::MouseButton>("button");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<QVariantList>("args");
        QTest::addColumn<int>("clicks");
        QTest::newRow("left on the button")
            << QStringLiteral("btnEllaps") << Qt::LeftButton << Qt::KeyboardModifiers()
            << QVariantList{1, 0, 5.0, 6.0} << 1;
        QTest::newRow("right with Shift on the button")
            << QStringLiteral("btnEllaps") << Qt::RightButton
            << Qt::KeyboardModifiers(Qt::ShiftModifier) << QVariantList{2, 1, 5.0, 6.0} << 0;
        QTest::newRow("left with Ctrl on the caption")
            << QStringLiteral("Title") << Qt::LeftButton
            << Qt::KeyboardModifiers(Qt::ControlModifier) << QVariantList{1, 2, 5.0, 6.0} << 0;
    }

    // Given a title button, when a child is clicked, then MouseDown and MouseUp carry the
    // button, shift state and the child's own coordinates, and only the button raises Click.
    void mouse()
    {
        QFETCH(QString, child);
        QFETCH(QVariantList, args);
        QFETCH(Qt::MouseButton, button);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        Window w(QStringLiteral("ElapsedBut"));
        w.control->setProperty("Titul", QStringLiteral("Filter"));
        auto *but = qobject_cast<ElapsedBut *>(w.control);
        QVERIFY(w.active());
        QList<QVariantList> down, up; // a spy cannot hold by-reference arguments
        const auto note = [](QList<QVariantList> &into) {
            return [&into](qint16 &b, qint16 &s, float &x, float &y) {
                into.append({int(b), int(s), double(x), double(y)});
            };
        };
        connect(but, &ElapsedBut::MouseDown, this, note(down));
        connect(but, &ElapsedBut::MouseUp, this, note(up));
        QSignalSpy click(but, &ElapsedBut::Click);

        QTest::mouseClick(but->findChild<QWidget *>(child), button, modifiers, QPoint(5, 6));

        QCOMPARE(down, QList<QVariantList>{args});
        QCOMPARE(up, down);
        QTEST(int(click.size()), "clicks");
    }

    // Given a caption, when the mouse moves over it, then MouseMoveXY comes before MouseMove and
    // the caption becomes the tool tip between the two.
    void moveOverCaption()
    {
        Window w(QStringLiteral("ElapsedBut"));
        auto *but = qobject_cast<ElapsedBut *>(w.control);
        but->setTitul(QStringLiteral("A long caption"));
        QVERIFY(w.active());
        auto *title = but->findChild<QLabel *>(QStringLiteral("Title"));
        QStringList log;
        connect(but, &ElapsedBut::MouseMoveXY, this, [&](qint16 &, qint16 &, float &x, float &) {
            log << QStringLiteral("XY %1 [%2]").arg(x).arg(title->toolTip());
        });
        connect(but, &ElapsedBut::MouseMove, this,
                [&] { log << QStringLiteral("move [%1]").arg(title->toolTip()); });

        QTest::mouseMove(title, QPoint(3, 4));

        QTRY_COMPARE(
            log, (QStringList{QStringLiteral("XY 3 []"), QStringLiteral("move [A long caption]")}));
    }

    void layout_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("pointSize");
        QTest::newRow("narrower than high") << 12 << 9;
        QTest::newRow("button only") << 30 << 9;
        QTest::newRow("wide") << 300 << 9;
        QTest::newRow("large font") << 120 << 30;
    }

    // Button and caption share the control without overlap, and a caption put asks for room.
    void layout()
    {
        QFETCH(int, width);
        QFETCH(int, pointSize);
        ElapsedBut but;
        QFont font = but.font();
        font.setPointSize(pointSize);
        but.setFont(font);
        const QSize before = but.sizeHint();
        but.setTitul(QStringLiteral("Sales by region and month"));
        QVERIFY(but.sizeHint().width() > before.width());
        but.resize(width, but.sizeHint().height());
        but.show();
        QVERIFY(QTest::qWaitForWindowExposed(&but));
        const QRect button = but.findChild<QPushButton *>()->geometry();
        const QRect title = but.findChild<QLabel *>()->geometry();
        QVERIFY(!button.intersects(title));
        QVERIFY(but.rect().contains(button));
        QVERIFY(title.isEmpty() || but.rect().contains(title));
        QCOMPARE(qMax(button.right(), title.right()), but.rect().right()); // nothing left unused
        QVERIFY(button.width() > 0);
    }

    // Given a form of the three controls, when it is saved and loaded, then geometry and the
    // saved properties come back, but the box's list stays empty until the host fills it.
    void formFile()
    {
        QWidget form;
        const QRect places[] = {{5, 5, 150, 24}, {5, 35, 160, 26}, {5, 70, 170, 28}};
        const QStringList classes = {QStringLiteral("ElapsedBut"), QStringLiteral("BoxCombo"),
                                     QStringLiteral("ComboListBox")};
        QList<QRect> geometries;
        for (int i = 0; i < classes.size(); ++i) {
            Control *control = createControl(classes.at(i), &form);
            control->setGeometry(places[i]);
            geometries << control->geometry(); // the box keeps its own height
        }
        auto *box = form.findChild<BoxCombo *>();
        const QVariant value = input({QStringLiteral("a")}, list({1}));
        box->setInputArray(value);
        box->setAllowAddNew(true);
        box->setStartValue(QStringLiteral("a"));
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("small.zform"));

        saveForm(form, path);
        QWidget loaded;
        const QList<Control *> controls = loadForm(loaded, path);

        QCOMPARE(controls.size(), 3);
        for (int i = 0; i < classes.size(); ++i) {
            QCOMPARE(QString::fromLatin1(controls.at(i)->metaObject()->className()),
                     QStringLiteral("zelkon::") + classes.at(i));
            QCOMPARE(controls.at(i)->geometry(), geometries.at(i));
        }
        auto *copy = qobject_cast<BoxCombo *>(controls.at(1));
        QVERIFY(copy->AllowAddNew());
        QCOMPARE(copy->InputArray(), value);
        QCOMPARE(comboOf(copy)->count(), 0);
    }
};

QTEST_MAIN(tst_SmallControls)
#include "tst_smallcontrols.moc"
