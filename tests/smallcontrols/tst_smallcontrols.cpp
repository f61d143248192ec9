#include "support/errorof.h"

#include <zelkon/common/error.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variantarray.h>
#include <zelkon/smallcontrols/boxcombo.h>
#include <zelkon/smallcontrols/combolistbox.h>
#include <zelkon/smallcontrols/elapsedbut.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace zelkon;

namespace {

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// An input array of the texts (separated by blanks) and the identifiers.
QVariant input(const char *texts, const QVariant &ids = {})
{
    QVariantList t;
    for (const QString &text : words(texts))
        t << text;
    return QVariantList{t, ids};
}

QVariant ids(std::initializer_list<QVariant> items)
{
    return QVariantList(items);
}

QComboBox *comboOf(const Control *control)
{
    return control->findChild<QComboBox *>();
}

// The rows as "text=identifier".
QStringList rows(const Control *control)
{
    const QComboBox *combo = comboOf(control);
    QStringList result;
    for (int row = 0; row < combo->count(); ++row)
        result << combo->itemText(row) + QLatin1Char('=')
                + QString::number(combo->itemData(row).toInt());
    return result;
}

// A control created by class name on a shown, active window.
struct Window
{
    explicit Window(const char *className)
        : control(createControl(QString::fromLatin1(className), &window))
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
        QTest::addColumn<QStringList>("rows");
        const auto row = [](const char *name, const char *className, const QVariant &value,
                            int error, const QStringList &rows) {
            QTest::newRow(name) << QString::fromLatin1(className) << value << error << rows;
        };
        const char *list = "ComboListBox";
        row("texts and ids", list, input("a b c", ids({10, 20, 30})), 0, words("a=10 b=20 c=30"));
        row("ids optional", list, input("a b"), 0, words("a=0 b=0"));
        row("converted", list, QVariantList{ids({1.5, true}), ids({QStringLiteral("7"), 8.0})}, 0,
            words("1.5=7 True=8"));
        row("no texts", list, input("", ids({1})), 0, {});
        row("Empty keeps the list", list, QVariant(), 0, words("old=5"));
        row("no array", list, QStringLiteral("ab"), 13, {});
        row("texts no array", list, QVariantList{QStringLiteral("ab"), ids({1})}, 13, {});
        row("ids no array", list, input("a b", 3), 13, words("a=0"));
        row("ids shorter", list, input("a b c", ids({1, 2})), 9, words("a=1 b=2 c=0"));
        row("no ids element", list, QVariantList{ids({QStringLiteral("a")})}, 9, words("a=0"));
        row("id no number", list, input("a b", ids({1, QStringLiteral("x")})), 13,
            words("a=1 b=0"));
        row("id beyond 32 bits", list, input("a", ids({1e10})), 6, words("a=0"));
        VariantArray outer({Bounds{0, 1}});
        outer.at({0}) = ids({QStringLiteral("a")});
        outer.at({1}) = ids({4});
        row("outer VariantArray", list, QVariant::fromValue(outer), 0, words("a=4"));
        row("outer array from 1", list, QVariant::fromValue(VariantArray({Bounds{1, 2}})), 9, {});
        const auto many = [](int count) {
            return QVariantList{QVariantList(count, 0), QVariant()};
        };
        row("32767 rows", list, many(32767), 0, QStringList(32767, QStringLiteral("0=0")));
        // The 16-bit row counter overflows on its step after a last row of 32767.
        row("32768 rows", list, many(32768), 6, QStringList(32768, QStringLiteral("0=0")));
        row("32769 rows", list, many(32769), 6, {});
        const char *box = "BoxCombo";
        row("box: texts and ids", box, input("a b", ids({1, 2})), 0, words("a=1 b=2"));
        row("box: ids required", box, input("a b"), 13, words("a=0"));
        row("box: 2-D array", box, QVariant::fromValue(VariantArray({{0, 1}, {0, 1}})), 9, {});
        row("box: Empty keeps the list", box, QVariant(), 0, words("old=5"));
    }

    // Given a control with one row, when InputArray is put, then the rows are the texts with
    // their ids, unselected; a failure reaches the caller after the earlier rows; a success
    // reports the put.
    void inputArray()
    {
        QFETCH(QString, className);
        QFETCH(QVariant, value);
        QFETCH(int, error);
        std::unique_ptr<Control> control(createControl(className));
        const QVariant old = input("old", ids({5}));
        control->setProperty("InputArray", old);
        QSignalSpy changed(control.get(), &Control::PropertyChanged);

        QCOMPARE(errorOf([&] { control->setProperty("InputArray", value); }), error);

        QTEST(rows(control.get()), "rows");
        QCOMPARE(comboOf(control.get())->currentIndex(), -1);
        QCOMPARE(control->property("InputArray"), value.isValid() ? value : old);
        QCOMPARE(changed.size(), error == 0 && value.isValid() ? 1 : 0);
    }

    void selection_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("argument");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("valueId");
        const auto row = [](const char *tag, const QVariant &value, const char *property,
                            const QVariant &argument, int row, int valueId) {
            QTest::newRow(tag) << value << QByteArray(property) << argument << row << valueId;
        };
        const QVariant abc = input("a b c", ids({10, 20, 30}));
        const QString a = QStringLiteral("a"), x = QStringLiteral("x");
        row("ValueID", abc, "ValueID", 20, 1, 20);
        row("ValueID no match", abc, "ValueID", 25, -1, 0);
        row("ValueID 0, no ids", input("a b"), "ValueID", 0, 0, 0);
        row("ValueID first", input("a b", ids({7, 7})), "ValueID", 7, 0, 7);
        row("StartValue", abc, "StartValue", QStringLiteral("c"), 2, 30);
        row("StartValue exact", abc, "StartValue", QStringLiteral("B"), -1, 0);
        row("StartValue last", input("x x", ids({1, 2})), "StartValue", x, 1, 2);
        row("id beyond 16 bits reads 0", input("a", ids({70000})), "StartValue", a, 0, 0);
    }

    // Given a filled list, when the host selects by text or id, then Value and ValueID read the
    // chosen row, the put is reported, and no Change is raised for it.
    void selection()
    {
        QFETCH(QVariant, value);
        QFETCH(QByteArray, property);
        QFETCH(QVariant, argument);
        QFETCH(int, row);
        ComboListBox box;
        box.setInputArray(value);
        QSignalSpy change(&box, &ComboListBox::Change);
        QSignalSpy changed(&box, &Control::PropertyChanged);

        QVERIFY(box.setProperty(property.constData(), argument));

        QCOMPARE(comboOf(&box)->currentIndex(), row);
        QCOMPARE(box.Value(), row < 0 ? QString() : comboOf(&box)->itemText(row));
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
        const auto row = [](const char *className, const char *property, const QVariant &value,
                            const QVariant &readBack, int reports) {
            QTest::newRow(property) << QString::fromLatin1(className) << QByteArray(property)
                                    << value << readBack << reports;
        };
        const QVariant b(QStringLiteral("b"));
        row("BoxCombo", "StartValue", b, QString(), 1); // shown, not kept
        row("BoxCombo", "Value", b, b, 1);
        row("BoxCombo", "AllowAddNew", true, true, 1);
        row("ElapsedBut", "Titul", b, b, 0);
        row("ElapsedBut", "Enabled", false, false, 0);
    }

    // Given a new control, when a property is put by name twice, then it reads back, and the
    // container hears of each put except from ElapsedBut, whose values belong to its host.
    void puts()
    {
        QFETCH(QString, className);
        QFETCH(QByteArray, property);
        QFETCH(QVariant, value);
        QFETCH(int, reports);
        std::unique_ptr<Control> control(createControl(className));
        QSignalSpy changed(control.get(), &Control::PropertyChanged);

        QVERIFY(control->setProperty(property.constData(), value));
        QVERIFY(control->setProperty(property.constData(), value));

        QTEST(control->property(property.constData()), "readBack");
        QCOMPARE(changed.size(), 2 * reports);
        if (property.endsWith("Value")) // shown in the box either way
            QCOMPARE(comboOf(control.get())->currentText(), value.toString());
    }

    void addNew_data()
    {
        QTest::addColumn<bool>("allowAddNew");
        QTest::addColumn<QTestEventList>("keys");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("keyPassedOn");
        // Typing `text`, then `key`.
        const auto row = [](const char *tag, bool allowAddNew, const char *text, Qt::Key key,
                            const char *rows, const char *typed, bool keyPassedOn) {
            QTestEventList events;
            events.addKeyClicks(QString::fromLatin1(text));
            events.addKeyClick(key);
            QTest::newRow(tag) << allowAddNew << events << words(rows) << QString::fromLatin1(typed)
                               << keyPassedOn;
        };
        const char *ab = "a=1 b=2";
        row("new text", true, "c", Qt::Key_Return, "a=1 b=2 c=0", "c", false);
        row("existing text", true, "a", Qt::Key_Return, ab, "a", false);
        row("case counts", true, "A", Qt::Key_Enter, "a=1 b=2 A=0", "A", false);
        row("existing, not allowed", false, "b", Qt::Key_Return, ab, "b", true);
        row("not allowed", false, "c", Qt::Key_Return, ab, "c", true);
        row("empty text", true, "", Qt::Key_Return, ab, "", true);
        row("Escape empties", true, "c", Qt::Key_Escape, ab, "", false);
        row("Escape on empty", true, "", Qt::Key_Escape, ab, "", true);
    }

    // Given a filled box with the focus, when the user types and presses Enter or Escape, then a
    // new text is added unselected (compared exactly), Escape empties the text, neither the keys
    // nor leaving the box select a row or raise Change, and a key the box does not use goes on to
    // the window.
    void addNew()
    {
        QFETCH(bool, allowAddNew);
        QFETCH(QTestEventList, keys);
        Window w("BoxCombo");
        auto *box = qobject_cast<BoxCombo *>(w.control);
        box->setInputArray(input("a b", ids({1, 2})));
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
        box->clearFocus(); // leaving the box picks nothing either

        QTEST(rows(box), "rows");
        QTEST(box->Value(), "typed");
        QCOMPARE(comboOf(box)->currentIndex(), -1);
        QCOMPARE(change.size(), 0);
        QTEST(windowKeys.seen, "keyPassedOn");
    }

    void userPick_data()
    {
        QTest::addColumn<QByteArray>("className");
        for (const char *name : {"BoxCombo", "ComboListBox"})
            QTest::newRow(name) << QByteArray(name);
    }

    // Given a filled control with the focus, when the user picks a row, then Change is raised.
    void userPick()
    {
        QFETCH(QByteArray, className);
        Window w(className.constData());
        w.control->setProperty("InputArray", input("a b", ids({1, 2})));
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
        // Clicked at (5, 6) of the child.
        const auto row = [](const char *tag, const char *child, Qt::MouseButton button,
                            Qt::KeyboardModifiers modifiers, int b, int shift, int clicks) {
            QTest::newRow(tag) << QString::fromLatin1(child) << button << modifiers
                               << QVariantList{b, shift, 5.0, 6.0} << clicks;
        };
        row("left on the button", "btnEllaps", Qt::LeftButton, {}, 1, 0, 1);
        row("right, Shift, button", "btnEllaps", Qt::RightButton, Qt::ShiftModifier, 2, 1, 0);
        row("left, Ctrl, caption", "Title", Qt::LeftButton, Qt::ControlModifier, 1, 2, 0);
    }

    // Given a title button, when a child is clicked, then MouseDown and MouseUp carry the button,
    // the shift state and the child's own coordinates, and only the button raises Click.
    void mouse()
    {
        QFETCH(QString, child);
        QFETCH(Qt::MouseButton, button);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(QVariantList, args);
        Window w("ElapsedBut");
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
        Window w("ElapsedBut");
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
        QCOMPARE(but.findChild<QLabel *>()->font().pointSize(), pointSize);
        QVERIFY(!button.intersects(title));
        QVERIFY(button.width() > 0 && but.rect().contains(button));
        QVERIFY(title.isEmpty() || but.rect().contains(title));
        QCOMPARE(qMax(button.right(), title.right()), but.rect().right()); // nothing left unused
    }

    // Given a filled box, when it is saved and loaded (a form file's round trip is the shell's),
    // then its saved properties come back, but its list stays empty until the host fills it.
    void persistence()
    {
        BoxCombo box;
        box.setInputArray(input("a", ids({1})));
        box.setAllowAddNew(true);
        MemoryPropertyBag bag;
        box.WriteProperties(bag);
        BoxCombo copy;
        copy.ReadProperties(bag);
        QVERIFY(copy.AllowAddNew());
        QCOMPARE(copy.InputArray(), box.InputArray());
        QCOMPARE(comboOf(&copy)->count(), 0);
    }
};

QTEST_MAIN(tst_SmallControls)
#include "tst_smallcontrols.moc"
