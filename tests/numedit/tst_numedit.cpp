#include <zelkon/common/colors_p.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/test/testplatform.h>
#include <zelkon/numedit/numedit.h>

#include <QApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace zelkon;

namespace {

const QLocale english(QLocale::English, QLocale::UnitedStates);
const QLocale german(QLocale::German, QLocale::Germany);

// A NumEdit created by class name in a window, after a plain field that holds the focus first.
struct Form
{
    explicit Form(const QLocale &locale = english)
        : platform(QDate(2024, 5, 10), locale)
    {
        other->setGeometry(10, 50, 150, 26);
        edit->setGeometry(10, 10, 150, 26);
        window.resize(200, 100);
    }
    bool show()
    {
        window.show();
        window.activateWindow();
        return QTest::qWaitForWindowActive(&window) && other->hasFocus();
    }
    // Shown, the NumEdit focused and the keys typed into it.
    bool enter(const QString &keys = {})
    {
        if (!show())
            return false;
        edit->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(text1, keys);
        return text1->hasFocus();
    }
    void focusOther() { other->setFocus(Qt::TabFocusReason); }
    QColor textColor() const { return text1->palette().color(QPalette::Text); }

    TestPlatform platform;
    QWidget window;
    QLineEdit *other = new QLineEdit(&window);
    NumEdit *edit = qobject_cast<NumEdit *>(createControl(QStringLiteral("NumEdit"), &window));
    QLineEdit *text1 = edit->findChild<QLineEdit *>(QStringLiteral("Text1"));
    QTimer *tmFocus = edit->findChild<QTimer *>(QStringLiteral("tmFocus"));
};

} // namespace

class tst_NumEdit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typing_data();
    void typing();
    void escapeAndEnter();
    void arrowKeys_data();
    void arrowKeys();
    void display_data();
    void display();
    void editingShowsPlainNumber();
    void colours();
    void limitsOnFocusLoss_data();
    void limitsOnFocusLoss();
    void assigningValueAndLimits();
    void lockedFieldIgnoresKeysAndFocus();
    void timerFollowsRealFocus();
    void saveAndRestore();
    void layoutAndMouse();
};

void tst_NumEdit::typing_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("keys"); // "<" is the Left arrow, "#" the keypad's decimal key
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("changes");
    QTest::addColumn<int>("caret"); // -1: not checked
    auto row = [](const char *tag, const QLocale &locale, const char *keys, const char *text,
                  double value, int changes, int caret = -1) {
        QTest::newRow(tag) << locale << QString::fromLatin1(keys) << QString::fromLatin1(text)
                           << value << changes << caret;
    };
    row("digits", english, "125", "125", 125, 3);
    row("en point", english, "12.5", "12.5", 12.5, 4);
    row("en comma becomes point", english, "12,5", "12.5", 12.5, 4);
    row("de point becomes comma", german, "12.5", "12,5", 12.5, 4);
    row("de comma", german, "12,5", "12,5", 12.5, 4);
    row("lone minus", english, "-", "-", 0, 1);
    row("minus then digit", english, "-5", "-5", -5, 2);
    row("plus separator", english, "+.", "+.", 0, 2);
    row("de minus separator", german, "-,", "-,", 0, 2);
    row("letters and space dropped", english, "1a 2", "12", 12, 2);
    // The rejected text is rewritten from Value, the rewrite notifies a second time and the caret
    // goes back to where the refused key was typed.
    row("second separator", english, "1.2.", "1.2", 1.2, 5, 3);
    row("sign after digits", english, "5-", "5", 5, 3, 1);
    row("sign inside", english, "123<<-", "123", 123, 5, 1);
    row("separator at start", english, "1.5<<<.", "1.5", 1.5, 5, 0);
    // A refused separator from the keypad is typed once more and refused once more.
    row("keypad after refusal", english, "1.5#", "1.5", 1.5, 7);
    row("de keypad accepted", german, "1#", "1,", 1, 2);
    row("thousands", english, "12t", "12000", 12000, 3);
    row("millions", english, "2M", "2000000", 2e6, 2);
    row("thousand millions", german, "1,5y", "1500000000", 1.5e9, 4);
    row("de fraction multiplied", german, "0,5t", "500", 500, 4);
}

void tst_NumEdit::typing()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, keys);
    QFETCH(int, caret);
    Form form(locale);
    QVERIFY(form.enter());
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    for (QChar key : keys) {
        if (key == QLatin1Char('<'))
            QTest::keyClick(form.text1, Qt::Key_Left);
        else if (key == QLatin1Char('#'))
            QTest::keyClick(form.text1, Qt::Key_Period, Qt::KeypadModifier);
        else
            QTest::keyClicks(form.text1, key);
    }
    QTEST(form.text1->text(), "text");
    QTEST(form.edit->Value(), "value");
    QTEST(int(changes.count()), "changes");
    QVERIFY(caret < 0 || form.text1->cursorPosition() == caret);
    QCOMPARE(form.platform.beeps(), 0);
}

void tst_NumEdit::escapeAndEnter()
{
    Form form;
    form.edit->setValue(7);
    QVERIFY(form.enter());
    QCOMPARE(form.text1->selectedText(), QStringLiteral("7"));
    QTest::keyClicks(form.text1, QStringLiteral("123"));
    QCOMPARE(form.edit->Value(), 123.0);
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    QTest::keyClick(form.text1, Qt::Key_Escape); // back to the value the field was entered with
    QCOMPARE(form.edit->Value(), 7.0);
    QCOMPARE(form.text1->text(), QStringLiteral("7"));
    QCOMPARE(changes.count(), 1);

    form.text1->selectAll();
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
    // Left and Right only at the edge of the text, the others always, Home never.
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
    QFETCH(int, key);
    QFETCH(int, raised);
    Form form;
    QFETCH(int, caret);
    QVERIFY(form.enter(QStringLiteral("123")));
    form.text1->setCursorPosition(caret);
    QSignalSpy arrows(form.edit, &NumEdit::ArrowKeyUp);
    QTest::keyClick(form.text1, Qt::Key(key));
    QCOMPARE(arrows,
             raised ? QList<QVariantList>{{QVariant::fromValue(qint16(raised))}}
                    : QList<QVariantList>());
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
    Form form(locale);
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    QVERIFY(form.edit->setProperty("DigNum", QVariant::fromValue(qint16(digits))));
    QFETCH(double, value);
    QVERIFY(form.edit->setProperty("Value", value));
    QTEST(form.text1->text(), "text");
    QCOMPARE(form.edit->DigNum(), qint16(qMax(digits, 0)));
    QCOMPARE(changes.count(), 0); // the formatted display never notifies
}

void tst_NumEdit::editingShowsPlainNumber()
{
    Form form(german);
    form.edit->setValue(1234.5);
    QCOMPARE(form.text1->text(), QStringLiteral("1.234,50"));
    QSignalSpy got(form.edit, &NumEdit::GotFocusEvent);
    QSignalSpy lost(form.edit, &NumEdit::LostFocusEvent);
    QVERIFY(form.enter());
    QCOMPARE(form.text1->selectedText(), QStringLiteral("1234,5"));
    QCOMPARE(form.edit->Value(), 1234.5); // reading Value leaves the plain text alone
    QCOMPARE(form.text1->text(), QStringLiteral("1234,5"));
    form.focusOther();
    QCOMPARE(form.text1->text(), QStringLiteral("1.234,50"));
    form.edit->setValue(0);
    form.edit->setFocus(Qt::TabFocusReason);
    QCOMPARE(form.text1->text(), QString()); // zero is edited as an empty field
    form.focusOther();
    QCOMPARE(form.text1->text(), QStringLiteral("0,00"));
    QCOMPARE(got.count(), 2);
    QCOMPARE(lost.count(), 2);
}

void tst_NumEdit::colours()
{
    Form form;
    QVERIFY(form.show());
    const QColor plain = form.textColor();
    QCOMPARE(plain, toQColor(SystemWindowText, QApplication::palette(form.text1)));
    form.edit->setNegTextColor(0x0000ff); // red, not in use yet
    QCOMPARE(form.textColor(), plain);
    form.edit->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(form.text1, QStringLiteral("-5"));
    QCOMPARE(form.textColor(), QColor(Qt::red));
    QTest::keyClick(form.text1, Qt::Key_Backspace); // "-": colour kept
    QCOMPARE(form.textColor(), QColor(Qt::red));
    QTest::keyClick(form.text1, Qt::Key_Backspace); // "": back to the text colour
    QCOMPARE(form.textColor(), plain);
    form.edit->setTextColor(0x00ff00);
    QCOMPARE(form.textColor(), QColor(Qt::green));
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
    QTest::addColumn<int>("beeps"); // and as many notifications on the focus loss
    QTest::newRow("no limits") << 0.0 << 0.0 << "-50" << 3 << -50.0 << 0;
    QTest::newRow("within") << 0.0 << 100.0 << "50" << 2 << 50.0 << 0;
    // 150 is held silently while typing; the focus loss corrects it.
    QTest::newRow("above") << 0.0 << 100.0 << "150" << 2 << 100.0 << 1;
    QTest::newRow("below") << -5.0 << 0.0 << "-9" << 1 << -5.0 << 1;
    QTest::newRow("contradictory, high") << 10.0 << 0.0 << "50" << 0 << 0.0 << 1;
    QTest::newRow("contradictory, low") << 10.0 << 0.0 << "5" << 0 << 0.0 << 2;
}

void tst_NumEdit::limitsOnFocusLoss()
{
    QFETCH(double, minValue);
    QFETCH(double, maxValue);
    QFETCH(QString, keys);
    QFETCH(int, beeps);
    Form form;
    form.edit->setMaxValue(maxValue);
    form.edit->setMinValue(minValue);
    form.edit->setValue(0);
    form.platform.clearRecords();
    QVERIFY(form.enter());
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    QTest::keyClicks(form.text1, keys);
    QTEST(int(changes.count()), "typingChanges");
    QCOMPARE(form.text1->text(), keys); // an out-of-range number stays as typed
    changes.clear();
    form.focusOther();
    QTEST(form.edit->Value(), "value");
    QCOMPARE(form.platform.beeps(), beeps);
    QCOMPARE(changes.count(), beeps);
}

void tst_NumEdit::assigningValueAndLimits()
{
    Form form;
    QVERIFY(form.show());
    QSignalSpy changed(form.edit, &Control::PropertyChanged);
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    form.edit->setMinValue(10); // a contradictory range: two corrections, a beep each
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
    form.edit->setValue(500); // clamped silently while not being edited
    QCOMPARE(form.text1->text(), QStringLiteral("100.00"));
    QCOMPARE(form.platform.beeps() + changes.count(), 0);
    form.edit->setFocus(Qt::TabFocusReason);
    form.edit->setValue(-3);
    QCOMPARE(form.text1->text(), QStringLiteral("10"));
    QCOMPARE(changes.count(), 1);
    QVERIFY(changed.contains(QVariantList{QStringLiteral("MinValue")}));
    QVERIFY(changed.contains(QVariantList{QStringLiteral("MaxValue")}));
    QCOMPARE(changed.last(), QVariantList{QStringLiteral("Value")});
}

void tst_NumEdit::lockedFieldIgnoresKeysAndFocus()
{
    Form form;
    form.edit->setValue(12);
    form.edit->setLockEdits(true);
    QSignalSpy got(form.edit, &NumEdit::GotFocusEvent);
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    QSignalSpy arrows(form.edit, &NumEdit::ArrowKeyUp);
    QVERIFY(form.enter());
    QVERIFY(form.text1->hasFocus());
    for (Qt::Key key : {Qt::Key_T, Qt::Key_Up, Qt::Key_Return})
        QTest::keyClick(form.text1, key);
    QCOMPARE(form.text1->text(), QStringLiteral("12.00"));
    QCOMPARE(form.edit->Value(), 12.0);
    QCOMPARE(got.count() + changes.count() + arrows.count(), 0);
    QVERIFY(form.platform.sentKeys().isEmpty());
    QVERIFY(!form.tmFocus->isActive());
}

namespace {
// Swallows the text box's focus events so that only the timer can notice a focus move.
struct FocusEventEater : QObject
{
    bool eventFilter(QObject *, QEvent *event) override
    {
        return event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut;
    }
};
} // namespace

void tst_NumEdit::timerFollowsRealFocus()
{
    Form form;
    QVERIFY(form.show());
    QVERIFY(!form.tmFocus->isActive());
    QCOMPARE(form.tmFocus->interval(), 5);
    form.edit->setFocus(Qt::TabFocusReason);
    QVERIFY(form.tmFocus->isActive());

    FocusEventEater eater;
    form.text1->installEventFilter(&eater);
    QSignalSpy got(form.edit, &NumEdit::GotFocusEvent);
    QSignalSpy lost(form.edit, &NumEdit::LostFocusEvent);
    form.edit->setValue(5);
    form.focusOther();
    QTRY_COMPARE(lost.count(), 1);
    QCOMPARE(form.text1->text(), QStringLiteral("5.00"));
    QVERIFY(form.tmFocus->isActive()); // kept running after the focus loss
    form.edit->setFocus(Qt::TabFocusReason);
    QTRY_COMPARE(got.count(), 1);
    QCOMPARE(form.text1->text(), QStringLiteral("5"));
    form.text1->removeEventFilter(&eater);
    form.edit->hide();
    QVERIFY(!form.tmFocus->isActive());
}

void tst_NumEdit::saveAndRestore()
{
    TestPlatform platform(QDate(2024, 5, 10), german);
    NumEdit fresh;
    QCOMPARE(fresh.findChild<QLineEdit *>(QStringLiteral("Text1"))->text(), QStringLiteral("0,00"));
    QVERIFY(fresh.DigNum() == 2 && fresh.TextColor() == 0x80000008u
            && fresh.BackTextColor() == 0x80000005u && fresh.property("Enabled").toBool());
    MemoryPropertyBag empty;
    fresh.WriteProperties(empty);
    QCOMPARE(empty.keys(), QStringList());

    NumEdit source;
    const std::pair<const char *, QVariant> values[] = {{"DigNum", QVariant::fromValue(qint16(3))},
                                                        {"Value", 1234.5},
                                                        {"TextColor", 0x0000ffu},
                                                        {"NegTextColor", 0x00ff00u},
                                                        {"BackTextColor", 0xffffffu},
                                                        {"LockEdits", true},
                                                        {"MaxValue", 5000.0},
                                                        {"MinValue", -10.0},
                                                        {"Border", 0},
                                                        {"Appearance", 0},
                                                        {"Enabled", false}};
    for (const auto &[name, value] : values)
        QVERIFY2(source.setProperty(name, value), name);
    MemoryPropertyBag bag;
    source.WriteProperties(bag);
    QCOMPARE(bag.keys(),
             QStringLiteral("Value DigNum TextColor NegTextColor BackTextColor "
                            "LockEdits MinValue MaxValue Appearance Border")
                 .split(QLatin1Char(' ')));
    NumEdit target;
    target.resize(90, 25);
    platform.clearRecords();
    target.ReadProperties(bag);
    for (const QString &name : bag.keys())
        QVERIFY2(target.property(qPrintable(name)) == source.property(qPrintable(name)),
                 qPrintable(name));
    QCOMPARE(target.size(), QSize(90, 25));
    QCOMPARE(target.findChild<QLineEdit *>(QStringLiteral("Text1"))->text(),
             QStringLiteral("1.234,500"));

    // A range saved with a value inside it loads without clamping against a half-read range;
    // a bad entry is skipped.
    MemoryPropertyBag ranged;
    ranged.insert(QStringLiteral("Value"), 50.0);
    ranged.insert(QStringLiteral("MinValue"), 10.0);
    ranged.insert(QStringLiteral("MaxValue"), 100.0);
    ranged.insert(QStringLiteral("DigNum"), QStringLiteral("not a number"));
    NumEdit loaded;
    loaded.ReadProperties(ranged);
    QCOMPARE(loaded.Value(), 50.0);
    QCOMPARE(loaded.DigNum(), qint16(2));
    QCOMPARE(platform.beeps(), 0);
}

void tst_NumEdit::layoutAndMouse()
{
    Form form;
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
    QCOMPARE(up.count(), 1);
    QCOMPARE(down,
             (QList<QVariantList>{{QVariant::fromValue(qint16(1)), QVariant::fromValue(qint16(1)),
                                   QVariant::fromValue(7.0f), QVariant::fromValue(5.0f)}}));
}

QTEST_MAIN(tst_NumEdit)
#include "tst_numedit.moc"
