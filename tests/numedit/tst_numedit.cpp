#include <zelkon/common/colors.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/testplatform.h>
#include <zelkon/common/updown.h>
#include <zelkon/numedit/numedit.h>

#include <QApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace zelkon;

namespace {

const QLocale english(QLocale::English, QLocale::UnitedStates);
const QLocale german(QLocale::German, QLocale::Germany);

// A shown, active window holding a NumEdit and a second field to move the focus to.
struct Form
{
    explicit Form(const QLocale &locale)
        : platform(QDate(2024, 5, 10), locale)
    {
        // The other field comes first in the focus chain, so the NumEdit is not being edited
        // when the window opens.
        other = new QLineEdit(&window);
        other->setGeometry(10, 50, 150, 26);
        edit = qobject_cast<NumEdit *>(createControl(QStringLiteral("NumEdit"), &window));
        edit->setGeometry(10, 10, 150, 26);
        text1 = edit->findChild<QLineEdit *>(QStringLiteral("Text1"));
        window.resize(200, 100);
    }
    bool show()
    {
        window.show();
        window.activateWindow();
        return QTest::qWaitForWindowActive(&window) && other->hasFocus();
    }
    void focusEdit() { edit->setFocus(Qt::TabFocusReason); }
    void focusOther() { other->setFocus(Qt::TabFocusReason); }

    TestPlatform platform;
    QWidget window;
    NumEdit *edit = nullptr;
    QLineEdit *other = nullptr;
    QLineEdit *text1 = nullptr;
};

} // namespace

class tst_NumEdit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void createdByName();
    void typing_data();
    void typing();
    void rejectedTextMovesCaretBack_data();
    void rejectedTextMovesCaretBack();
    void keypadDecimal_data();
    void keypadDecimal();
    void escapeRestoresSavedValue();
    void enterMovesFocus();
    void arrowKeys_data();
    void arrowKeys();
    void display_data();
    void display();
    void editingShowsPlainNumber();
    void negativeColour();
    void limitsOnFocusLoss_data();
    void limitsOnFocusLoss();
    void assigningValueAndLimits();
    void lockedFieldIgnoresKeysAndFocus();
    void timerFollowsRealFocus();
    void saveAndRestore();
    void layoutAndMouse();
};

void tst_NumEdit::createdByName()
{
    TestPlatform platform;
    std::unique_ptr<Control> control(createControl(QStringLiteral("NumEdit")));
    auto *edit = qobject_cast<NumEdit *>(control.get());
    QVERIFY(edit);
    QVERIFY(edit->findChild<QLineEdit *>(QStringLiteral("Text1")));
    QVERIFY(edit->findChild<UpDown *>(QStringLiteral("UpDown")));
    auto *timer = edit->findChild<QTimer *>(QStringLiteral("tmFocus"));
    QVERIFY(timer);
    QCOMPARE(timer->interval(), 5);
    const QMetaObject *meta = edit->metaObject();
    for (const char *signal :
         {"ChangeValue()", "ArrowKeyUp(qint16)", "MouseMove(qint16,qint16,float,float)",
          "MouseUp(qint16,qint16,float,float)", "MouseDown(qint16,qint16,float,float)",
          "LostFocusEvent()", "GotFocusEvent()"})
        QVERIFY2(meta->indexOfSignal(signal) >= 0, signal);
    // Defaults as a host sees them by name.
    QCOMPARE(edit->property("DigNum").value<qint16>(), qint16(2));
    QCOMPARE(edit->property("TextColor").toUInt(), 0x80000008u);
    QCOMPARE(edit->property("BackTextColor").toUInt(), 0x80000005u);
    QCOMPARE(edit->property("MaxValue").metaType(), QMetaType::fromType<double>());
    QCOMPARE(edit->property("Enabled").toBool(), true);
    QCOMPARE(edit->property("Value").toDouble(), 0.0);
    QCOMPARE(edit->findChild<QLineEdit *>(QStringLiteral("Text1"))->text(), QStringLiteral("0.00"));
}

void tst_NumEdit::typing_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("changes");

    QTest::newRow("digits") << english << "125"
                            << "125" << 125.0 << 3;
    QTest::newRow("en point") << english << "12.5"
                              << "12.5" << 12.5 << 4;
    QTest::newRow("en comma becomes point") << english << "12,5"
                                            << "12.5" << 12.5 << 4;
    QTest::newRow("de point becomes comma") << german << "12.5"
                                            << "12,5" << 12.5 << 4;
    QTest::newRow("de comma") << german << "12,5"
                              << "12,5" << 12.5 << 4;
    QTest::newRow("lone minus") << english << "-"
                                << "-" << 0.0 << 1;
    QTest::newRow("minus then digit") << english << "-5"
                                      << "-5" << -5.0 << 2;
    QTest::newRow("plus separator") << english << "+."
                                    << "+." << 0.0 << 2;
    QTest::newRow("de minus separator") << german << "-,"
                                        << "-," << 0.0 << 2;
    QTest::newRow("letters and space dropped") << english << "1a 2"
                                               << "12" << 12.0 << 2;
    // The rejected text is rewritten from Value and the rewrite notifies a second time.
    QTest::newRow("second separator") << english << "1.2."
                                      << "1.2" << 1.2 << 5;
    QTest::newRow("sign after digits") << english << "5-"
                                       << "5" << 5.0 << 3;
    QTest::newRow("thousands") << english << "12t"
                               << "12000" << 12000.0 << 3;
    QTest::newRow("millions") << english << "2M"
                              << "2000000" << 2e6 << 2;
    QTest::newRow("thousand millions") << german << "1,5y"
                                       << "1500000000" << 1.5e9 << 4;
    QTest::newRow("de fraction multiplied") << german << "0,5t"
                                            << "500" << 500.0 << 4;
}

void tst_NumEdit::typing()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, keys);
    Form form(locale);
    QVERIFY(form.show());
    form.focusEdit();
    QVERIFY(form.text1->hasFocus());
    QCOMPARE(form.text1->text(), QString());
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    QTest::keyClicks(form.text1, keys);
    QTEST(form.text1->text(), "text");
    QTEST(form.edit->Value(), "value");
    QTEST(int(changes.count()), "changes");
    QVERIFY(form.platform.beeps() == 0);
}

void tst_NumEdit::rejectedTextMovesCaretBack_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("caret");
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("after");

    QTest::newRow("sign inside") << "123" << 1 << "-" << 1;
    QTest::newRow("separator at start") << "1.5" << 0 << "." << 0;
    QTest::newRow("sign at end") << "42" << 2 << "-" << 2;
}

void tst_NumEdit::rejectedTextMovesCaretBack()
{
    QFETCH(QString, before);
    QFETCH(int, caret);
    QFETCH(QString, key);
    Form form(english);
    QVERIFY(form.show());
    form.focusEdit();
    QTest::keyClicks(form.text1, before);
    form.text1->setCursorPosition(caret);
    QTest::keyClicks(form.text1, key);
    QCOMPARE(form.text1->text(), before);
    QTEST(form.text1->cursorPosition(), "after");
}

void tst_NumEdit::keypadDecimal_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("changes");

    // A refused separator from the keypad is typed once more (and refused once more): two
    // rewrites, each notifying twice.
    QTest::newRow("keypad after refusal")
        << english << "1.5" << int(Qt::KeypadModifier) << "1.5" << 4;
    QTest::newRow("main key after refusal")
        << english << "1.5" << int(Qt::NoModifier) << "1.5" << 2;
    QTest::newRow("de keypad accepted") << german << "1" << int(Qt::KeypadModifier) << "1," << 1;
}

void tst_NumEdit::keypadDecimal()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, before);
    QFETCH(int, modifiers);
    Form form(locale);
    QVERIFY(form.show());
    form.focusEdit();
    QTest::keyClicks(form.text1, before);
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    QTest::keyClick(form.text1, Qt::Key_Period, Qt::KeyboardModifiers(modifiers));
    QTEST(form.text1->text(), "text");
    QTEST(int(changes.count()), "changes");
}

void tst_NumEdit::escapeRestoresSavedValue()
{
    Form form(english);
    QVERIFY(form.show());
    form.edit->setValue(7);
    form.focusEdit();
    QCOMPARE(form.text1->selectedText(), QStringLiteral("7"));
    QTest::keyClicks(form.text1, QStringLiteral("123"));
    QCOMPARE(form.edit->Value(), 123.0);
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    QTest::keyClick(form.text1, Qt::Key_Escape);
    QCOMPARE(form.edit->Value(), 7.0);
    QCOMPARE(form.text1->text(), QStringLiteral("7"));
    QCOMPARE(changes.count(), 1);
}

void tst_NumEdit::enterMovesFocus()
{
    Form form(english);
    QVERIFY(form.show());
    form.focusEdit();
    QTest::keyClicks(form.text1, QStringLiteral("1234.5"));
    QSignalSpy lost(form.edit, &NumEdit::LostFocusEvent);
    QTest::keyClick(form.text1, Qt::Key_Return);
    QCOMPARE(form.platform.sentKeys(), QStringList{QStringLiteral("{TAB}")});
    QVERIFY(form.other->hasFocus());
    QCOMPARE(lost.count(), 1);
    QCOMPARE(form.text1->text(), QStringLiteral("1,234.50"));
}

void tst_NumEdit::arrowKeys_data()
{
    QTest::addColumn<int>("caret");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("raised"); // the key code, or 0

    QTest::newRow("left at start") << 0 << int(Qt::Key_Left) << 37;
    QTest::newRow("left inside") << 1 << int(Qt::Key_Left) << 0;
    QTest::newRow("right at end") << 3 << int(Qt::Key_Right) << 39;
    QTest::newRow("right inside") << 2 << int(Qt::Key_Right) << 0;
    QTest::newRow("up") << 1 << int(Qt::Key_Up) << 38;
    QTest::newRow("down") << 1 << int(Qt::Key_Down) << 40;
    QTest::newRow("page up") << 1 << int(Qt::Key_PageUp) << 33;
    QTest::newRow("page down") << 1 << int(Qt::Key_PageDown) << 34;
    QTest::newRow("home") << 1 << int(Qt::Key_Home) << 0;
}

void tst_NumEdit::arrowKeys()
{
    QFETCH(int, caret);
    QFETCH(int, key);
    QFETCH(int, raised);
    Form form(english);
    QVERIFY(form.show());
    form.focusEdit();
    QTest::keyClicks(form.text1, QStringLiteral("123"));
    form.text1->setCursorPosition(caret);
    QSignalSpy arrows(form.edit, &NumEdit::ArrowKeyUp);
    QTest::keyClick(form.text1, Qt::Key(key));
    QCOMPARE(arrows.count(), raised ? 1 : 0);
    if (raised)
        QCOMPARE(arrows.first().first().value<qint16>(), qint16(raised));
}

void tst_NumEdit::display_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<int>("digits");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("grouped") << english << 2 << 1234567.891 << "1,234,567.89";
    QTest::newRow("negative half") << english << 2 << -0.5 << "-0.50";
    QTest::newRow("zero") << english << 2 << 0.0 << "0.00";
    QTest::newRow("no decimals, half up") << english << 0 << 2.5 << "3";
    QTest::newRow("no decimals, negative half") << english << 0 << -2.5 << "-3";
    QTest::newRow("no decimals grouped") << english << 0 << 1234.0 << "1,234";
    QTest::newRow("three decimals") << english << 3 << 1.0005 << "1.001";
    QTest::newRow("decimal half of a binary fraction") << english << 2 << 2.675 << "2.68";
    QTest::newRow("negative count is none") << english << -4 << 12.5 << "13";
    QTest::newRow("de grouped") << german << 2 << 1234.5 << "1.234,50";
    QTest::newRow("de negative") << german << 1 << -1234567.25 << "-1.234.567,3";
}

void tst_NumEdit::display()
{
    QFETCH(QLocale, locale);
    QFETCH(int, digits);
    QFETCH(double, value);
    Form form(locale);
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    QVERIFY(form.edit->setProperty("DigNum", QVariant::fromValue(qint16(digits))));
    QVERIFY(form.edit->setProperty("Value", value));
    QTEST(form.text1->text(), "text");
    QCOMPARE(form.edit->DigNum(), qint16(qMax(digits, 0)));
    QCOMPARE(changes.count(), 0); // the formatted display never notifies
}

void tst_NumEdit::editingShowsPlainNumber()
{
    Form form(german);
    QVERIFY(form.show());
    form.edit->setValue(1234.5);
    QCOMPARE(form.text1->text(), QStringLiteral("1.234,50"));
    QSignalSpy got(form.edit, &NumEdit::GotFocusEvent);
    QSignalSpy lost(form.edit, &NumEdit::LostFocusEvent);
    form.focusEdit();
    QCOMPARE(form.text1->text(), QStringLiteral("1234,5"));
    QCOMPARE(form.text1->selectedText(), QStringLiteral("1234,5"));
    QCOMPARE(got.count(), 1);
    // Reading Value while editing leaves the plain text alone.
    QCOMPARE(form.edit->Value(), 1234.5);
    QCOMPARE(form.text1->text(), QStringLiteral("1234,5"));
    form.focusOther();
    QCOMPARE(lost.count(), 1);
    QCOMPARE(form.text1->text(), QStringLiteral("1.234,50"));

    form.edit->setValue(0);
    form.focusEdit();
    QCOMPARE(form.text1->text(), QString());
    form.focusOther();
    QCOMPARE(form.text1->text(), QStringLiteral("0,00"));
    QCOMPARE(got.count(), 2);
    QCOMPARE(lost.count(), 2);
}

void tst_NumEdit::negativeColour()
{
    Form form(english);
    QVERIFY(form.show());
    const QColor plain = form.text1->palette().color(QPalette::Text);
    QCOMPARE(plain, toQColor(SystemWindowText, QApplication::palette(form.text1)));
    form.edit->setNegTextColor(0x0000ff); // red
    QCOMPARE(form.text1->palette().color(QPalette::Text), plain); // not in use yet
    form.focusEdit();
    QTest::keyClicks(form.text1, QStringLiteral("-5"));
    QCOMPARE(form.text1->palette().color(QPalette::Text), QColor(Qt::red));
    QTest::keyClick(form.text1, Qt::Key_Backspace); // "-": colour kept
    QCOMPARE(form.text1->palette().color(QPalette::Text), QColor(Qt::red));
    QTest::keyClick(form.text1, Qt::Key_Backspace); // "": back to the text colour
    QCOMPARE(form.text1->palette().color(QPalette::Text), plain);
    form.edit->setTextColor(0x00ff00);
    QCOMPARE(form.text1->palette().color(QPalette::Text), QColor(Qt::green));
    form.edit->setBackTextColor(0x80000018);
    QCOMPARE(form.text1->palette().color(QPalette::Base),
             QApplication::palette(form.text1).color(QPalette::ToolTipBase));
}

void tst_NumEdit::limitsOnFocusLoss_data()
{
    QTest::addColumn<double>("minValue");
    QTest::addColumn<double>("maxValue");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<int>("typingChanges");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("beeps");
    QTest::addColumn<int>("lossChanges");

    QTest::newRow("no limits") << 0.0 << 0.0 << "-50" << 3 << -50.0 << 0 << 0;
    QTest::newRow("within") << 0.0 << 100.0 << "50" << 2 << 50.0 << 0 << 0;
    // 150 is held silently while typing; the focus loss corrects it.
    QTest::newRow("above") << 0.0 << 100.0 << "150" << 2 << 100.0 << 1 << 1;
    QTest::newRow("below") << -5.0 << 0.0 << "-9" << 1 << -5.0 << 1 << 1;
    QTest::newRow("contradictory, high") << 10.0 << 0.0 << "50" << 0 << 0.0 << 1 << 1;
    QTest::newRow("contradictory, low") << 10.0 << 0.0 << "5" << 0 << 0.0 << 2 << 2;
}

void tst_NumEdit::limitsOnFocusLoss()
{
    QFETCH(double, minValue);
    QFETCH(double, maxValue);
    QFETCH(QString, keys);
    Form form(english);
    QVERIFY(form.show());
    form.edit->setMaxValue(maxValue);
    form.edit->setMinValue(minValue);
    form.edit->setValue(0);
    form.platform.clearRecords();
    form.focusEdit();
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    QTest::keyClicks(form.text1, keys);
    QTEST(int(changes.count()), "typingChanges");
    QCOMPARE(form.text1->text(), keys); // an out-of-range number stays as typed
    changes.clear();
    form.focusOther();
    QTEST(form.edit->Value(), "value");
    QTEST(form.platform.beeps(), "beeps");
    QTEST(int(changes.count()), "lossChanges");
}

void tst_NumEdit::assigningValueAndLimits()
{
    Form form(english);
    QVERIFY(form.show());
    QSignalSpy changed(form.edit, &Control::PropertyChanged);
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    // A contradictory range corrects the value twice, with a beep each.
    form.edit->setMinValue(10);
    QCOMPARE(form.platform.beeps(), 2);
    QCOMPARE(changes.count(), 2);
    QCOMPARE(form.edit->Value(), 0.0);
    QVERIFY(form.edit->setProperty("MaxValue", QStringLiteral("100")));
    QCOMPARE(form.edit->property("MaxValue"), QVariant(100.0));
    QCOMPARE(form.edit->Value(), 10.0);
    form.edit->setMaxValue(QStringLiteral("lots")); // not a number: the limit stays
    QCOMPARE(form.edit->property("MaxValue"), QVariant(100.0));
    form.platform.clearRecords();
    changes.clear();
    form.edit->setValue(500); // silent clamp, no notification while not editing
    QCOMPARE(form.edit->Value(), 100.0);
    QCOMPARE(form.text1->text(), QStringLiteral("100.00"));
    QCOMPARE(form.platform.beeps(), 0);
    QCOMPARE(changes.count(), 0);
    form.focusEdit();
    form.edit->setValue(-3);
    QCOMPARE(form.text1->text(), QStringLiteral("10"));
    QCOMPARE(changes.count(), 1);
    QVERIFY(changed.contains(QVariantList{QStringLiteral("MinValue")}));
    QVERIFY(changed.contains(QVariantList{QStringLiteral("MaxValue")}));
    QCOMPARE(changed.last(), QVariantList{QStringLiteral("Value")});
}

void tst_NumEdit::lockedFieldIgnoresKeysAndFocus()
{
    Form form(english);
    QVERIFY(form.show());
    form.edit->setValue(12);
    form.edit->setLockEdits(true);
    QSignalSpy got(form.edit, &NumEdit::GotFocusEvent);
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    QSignalSpy arrows(form.edit, &NumEdit::ArrowKeyUp);
    form.focusEdit();
    QVERIFY(form.text1->hasFocus());
    QTest::keyClick(form.text1, Qt::Key_T);
    QTest::keyClick(form.text1, Qt::Key_Up);
    QTest::keyClick(form.text1, Qt::Key_Return);
    QCOMPARE(form.text1->text(), QStringLiteral("12.00"));
    QCOMPARE(form.edit->Value(), 12.0);
    QCOMPARE(got.count(), 0);
    QCOMPARE(changes.count(), 0);
    QCOMPARE(arrows.count(), 0);
    QVERIFY(form.platform.sentKeys().isEmpty());
    QVERIFY(!form.edit->findChild<QTimer *>(QStringLiteral("tmFocus"))->isActive());
}

namespace {
// Swallows the text box's focus events so that only the timer can notice a focus move.
class FocusEventEater : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        return event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut;
    }
};
} // namespace

void tst_NumEdit::timerFollowsRealFocus()
{
    Form form(english);
    QVERIFY(form.show());
    auto *timer = form.edit->findChild<QTimer *>(QStringLiteral("tmFocus"));
    QVERIFY(!timer->isActive());
    form.focusEdit();
    QVERIFY(timer->isActive());

    FocusEventEater eater;
    form.text1->installEventFilter(&eater);
    QSignalSpy got(form.edit, &NumEdit::GotFocusEvent);
    QSignalSpy lost(form.edit, &NumEdit::LostFocusEvent);
    form.edit->setValue(5);
    form.focusOther();
    QTRY_COMPARE(lost.count(), 1);
    QCOMPARE(form.text1->text(), QStringLiteral("5.00"));
    QVERIFY(timer->isActive()); // kept running after the focus loss
    form.focusEdit();
    QTRY_COMPARE(got.count(), 1);
    QCOMPARE(form.text1->text(), QStringLiteral("5"));
    form.text1->removeEventFilter(&eater);

    form.edit->hide();
    QVERIFY(!timer->isActive());
}

void tst_NumEdit::saveAndRestore()
{
    TestPlatform platform(QDate(2024, 5, 10), german);
    NumEdit fresh;
    fresh.resize(120, 30);
    MemoryPropertyBag empty;
    fresh.WriteProperties(empty);
    QCOMPARE(empty.keys(), QStringList());

    NumEdit source;
    source.setDigNum(3);
    source.setValue(1234.5);
    source.setTextColor(0x0000ff);
    source.setNegTextColor(0x00ff00);
    source.setBackTextColor(0xffffff);
    source.setLockEdits(true);
    source.setMaxValue(5000);
    source.setMinValue(-10);
    source.setBorder(0);
    source.setAppearance(0);
    source.setEnabledProperty(false);
    MemoryPropertyBag bag;
    source.WriteProperties(bag);
    const QStringList expected{QStringLiteral("Value"),         QStringLiteral("DigNum"),
                               QStringLiteral("TextColor"),     QStringLiteral("NegTextColor"),
                               QStringLiteral("BackTextColor"), QStringLiteral("LockEdits"),
                               QStringLiteral("MinValue"),      QStringLiteral("MaxValue"),
                               QStringLiteral("Appearance"),    QStringLiteral("Border")};
    QCOMPARE(bag.keys(), expected);

    NumEdit target;
    target.resize(90, 25);
    platform.clearRecords();
    target.ReadProperties(bag);
    const char *names[] = {"Value",     "DigNum",   "TextColor", "NegTextColor", "BackTextColor",
                           "LockEdits", "MinValue", "MaxValue",  "Border",       "Appearance"};
    for (const char *name : names)
        QVERIFY2(target.property(name) == source.property(name), name);
    QCOMPARE(target.size(), QSize(90, 25));
    QCOMPARE(target.findChild<QLineEdit *>(QStringLiteral("Text1"))->text(),
             QStringLiteral("1.234,500"));
    QCOMPARE(platform.beeps(), 0);

    // A range saved with a value inside it loads without clamping against a half-read range.
    MemoryPropertyBag ranged;
    ranged.insert(QStringLiteral("Value"), 50.0);
    ranged.insert(QStringLiteral("MinValue"), 10.0);
    ranged.insert(QStringLiteral("MaxValue"), 100.0);
    ranged.insert(QStringLiteral("DigNum"), QStringLiteral("not a number"));
    NumEdit loaded;
    loaded.ReadProperties(ranged);
    QCOMPARE(loaded.Value(), 50.0);
    QCOMPARE(loaded.DigNum(), qint16(2)); // a bad entry is skipped
    QCOMPARE(platform.beeps(), 0);
}

void tst_NumEdit::layoutAndMouse()
{
    Form form(english);
    QVERIFY(form.show());
    form.edit->resize(120, 30);
    QCOMPARE(form.text1->geometry(), QRect(2, 2, 116, 24));
    form.edit->setAppearance(0);
    QCOMPARE(form.text1->geometry(), QRect(1, 1, 118, 26));
    form.edit->setBorder(0);
    QCOMPARE(form.text1->geometry(), QRect(0, 0, 120, 28));

    QSignalSpy down(form.edit, &NumEdit::MouseDown);
    QSignalSpy up(form.edit, &NumEdit::MouseUp);
    QTest::mouseClick(form.text1, Qt::LeftButton, Qt::ShiftModifier, QPoint(7, 5));
    QCOMPARE(down.count(), 1);
    QCOMPARE(up.count(), 1);
    QCOMPARE(down.first(),
             (QVariantList{QVariant::fromValue(qint16(1)), QVariant::fromValue(qint16(1)),
                           QVariant::fromValue(7.0f), QVariant::fromValue(5.0f)}));
}

QTEST_MAIN(tst_NumEdit)
#include "tst_numedit.moc"
