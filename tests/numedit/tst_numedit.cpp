#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/numedit/numedit.h>
#include <zelkon/test/testplatform.h>

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QShortcut>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>
#include <QTimer>

using namespace zelkon;

namespace {

const QLocale english(QLocale::English, QLocale::UnitedStates);
const QLocale german(QLocale::German, QLocale::Germany);

// Key clicks in order: typed text and single keys.
struct Keys
{
    Keys &type(const char *text)
    {
        events.addKeyClicks(QString::fromUtf8(text));
        return *this;
    }
    Keys &key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        events.addKeyClick(key, modifiers);
        return *this;
    }
    QTestEventList events;
};

// A NumEdit created by class name in a dialog, after a plain field that holds the focus first.
struct Form
{
    explicit Form(const QLocale &locale = english)
        : platform(QDate(2024, 5, 10), locale)
    {
        other->setGeometry(10, 50, 150, 26);
        edit->setGeometry(10, 10, 150, 26);
        dialog.resize(200, 100);
    }
    bool show()
    {
        dialog.show();
        dialog.activateWindow();
        return QTest::qWaitForWindowActive(&dialog) && other->hasFocus();
    }
    bool enter() // shown, and the NumEdit focused
    {
        if (!show())
            return false;
        edit->setFocus(Qt::TabFocusReason);
        return text1->hasFocus();
    }
    void focusOther() { other->setFocus(Qt::TabFocusReason); }
    QColor textColor() const { return text1->palette().color(QPalette::Text); }

    TestPlatform platform;
    QDialog dialog;
    QLineEdit *other = new QLineEdit(&dialog);
    NumEdit *edit = qobject_cast<NumEdit *>(createControl(QStringLiteral("NumEdit"), &dialog));
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
    void multipliersByKeyPlace_data();
    void multipliersByKeyPlace();
    void escapeInDialogAndEnter();
    void arrowKeys_data();
    void arrowKeys();
    void display_data();
    void display();
    void editingShowsPlainNumber();
    void colours();
    void limitsOnFocusLoss_data();
    void limitsOnFocusLoss();
    void assigningValueAndLimits();
    void everyPutNotifies_data();
    void everyPutNotifies();
    void lockedFieldIgnoresKeysAndFocus();
    void timerFollowsRealFocus();
    void placeSaveAndRestore();
    void frameMouseAndSize();
};

void tst_NumEdit::typing_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QTestEventList>("keys");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("changes");
    QTest::addColumn<int>("caret"); // -1: not checked
    auto row = [](const char *tag, const QLocale &locale, const Keys &keys, const char *text,
                  double value, int changes, int caret = -1) {
        QTest::newRow(tag) << locale << keys.events << QString::fromLatin1(text) << value << changes
                           << caret;
    };
    const auto typed = [](const char *text) { return Keys().type(text); };
    row("digits", english, typed("125"), "125", 125, 3);
    row("en point", english, typed("12.5"), "12.5", 12.5, 4);
    row("en comma becomes point", english, typed("12,5"), "12.5", 12.5, 4);
    row("de point becomes comma", german, typed("12.5"), "12,5", 12.5, 4);
    row("de comma", german, typed("12,5"), "12,5", 12.5, 4);
    row("lone minus", english, typed("-"), "-", 0, 1);
    row("minus then digit", english, typed("-5"), "-5", -5, 2);
    row("plus separator", english, typed("+."), "+.", 0, 2);
    row("de minus separator", german, typed("-,"), "-,", 0, 2);
    row("letters and space dropped", english, typed("1a 2"), "12", 12, 2);
    // The rejected text is rewritten from Value, the rewrite notifies a second time and the caret
    // goes back to where the refused key was typed.
    row("second separator", english, typed("1.2."), "1.2", 1.2, 5, 3);
    row("sign after digits", english, typed("5-"), "5", 5, 3, 1);
    const Qt::Key left = Qt::Key_Left;
    row("sign inside", english, typed("123").key(left).key(left).type("-"), "123", 123, 5, 1);
    row("separator at start", english, typed("1.5").key(left).key(left).key(left).type("."), "1.5",
        1.5, 5, 0);
    // A refused separator from the keypad is typed once more and refused once more.
    const Qt::KeyboardModifiers keypad = Qt::KeypadModifier;
    row("keypad after refusal", english, typed("1.5").key(Qt::Key_Period, keypad), "1.5", 1.5, 7);
    row("de keypad accepted", german, typed("1").key(Qt::Key_Period, keypad), "1,", 1, 2);
    row("thousands", english, typed("12t"), "12000", 12000, 3);
    row("millions", english, typed("2M"), "2000000", 2e6, 2);
    row("thousand millions", german, typed("1,5y"), "1500000000", 1.5e9, 4);
    row("de fraction multiplied", german, typed("0,5t"), "500", 500, 4);
}

void tst_NumEdit::typing()
{
    QFETCH(QLocale, locale);
    QFETCH(QTestEventList, keys);
    QFETCH(int, caret);
    Form form(locale);
    QVERIFY(form.enter());
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    keys.simulate(form.text1);
    QTEST(form.text1->text(), "text");
    QTEST(form.edit->Value(), "value");
    QTEST(int(changes.count()), "changes");
    QVERIFY(caret < 0 || form.text1->cursorPosition() == caret);
    QCOMPARE(form.platform.beeps(), 0);
}

void tst_NumEdit::multipliersByKeyPlace_data()
{
    // A Russian layout: the keys in the places of T, M, Y and A type е, ь, н and ф.
    QTest::addColumn<QChar>("letter");
    QTest::addColumn<char>("place");
    QTest::addColumn<QString>("text");
    QTest::newRow("T") << QChar(0x0435) << 'T' << "12000";
    QTest::newRow("M") << QChar(0x044C) << 'M' << "12000000";
    QTest::newRow("Y") << QChar(0x043D) << 'Y' << "12000000000";
    QTest::newRow("other letter") << QChar(0x0444) << 'A' << "12";
}

void tst_NumEdit::multipliersByKeyPlace()
{
    QFETCH(QChar, letter);
    QFETCH(char, place);
    // The native codes of the key's place as the platform reports them: the scan code (X11 and
    // Wayland add 8 to it), and on Windows and macOS the virtual key.
    const QHash<char, quint32> scanCodes{{'T', 20}, {'M', 50}, {'Y', 21}, {'A', 30}};
#if defined(Q_OS_WIN)
    const quint32 scanCode = scanCodes.value(place), virtualKey = quint32(place);
#elif defined(Q_OS_MACOS)
    const QHash<char, quint32> macKeys{{'T', 0x11}, {'M', 0x2E}, {'Y', 0x10}, {'A', 0x00}};
    const quint32 scanCode = 1, virtualKey = macKeys.value(place);
#else
    const quint32 scanCode = scanCodes.value(place) + 8, virtualKey = 0;
#endif
    Form form;
    QVERIFY(form.enter());
    QTest::keyClicks(form.text1, QStringLiteral("12"));
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    for (QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, letter.toUpper().unicode(), Qt::NoModifier, scanCode, virtualKey, 0,
                        QString(letter));
        QApplication::sendEvent(form.text1, &event);
    }
    QFETCH(QString, text);
    QCOMPARE(form.text1->text(), text);
    QCOMPARE(changes.count(), text == QLatin1String("12") ? 0 : 1);
}

void tst_NumEdit::escapeInDialogAndEnter()
{
    // Given a field entered with 7 and edited to 123, in a dialog that also cancels on Escape
    Form form;
    form.edit->setValue(7);
    QShortcut cancel(Qt::Key_Escape, &form.dialog);
    QSignalSpy cancelled(&cancel, &QShortcut::activated);
    QVERIFY(form.enter());
    QCOMPARE(form.text1->selectedText(), QStringLiteral("7"));
    QTest::keyClicks(form.text1, QStringLiteral("123"));
    QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
    // When Escape is pressed
    QTest::keyClick(form.text1, Qt::Key_Escape);
    // Then the value is restored, and the dialog neither closes nor sees its shortcut
    QCOMPARE(form.edit->Value(), 7.0);
    QCOMPARE(form.text1->text(), QStringLiteral("7"));
    QCOMPARE(changes.count(), 1);
    QVERIFY(form.dialog.isVisible());
    QCOMPARE(cancelled.count(), 0);

    form.text1->selectAll();
    QTest::keyClicks(form.text1, QStringLiteral("1234.5"));
    QSignalSpy lost(form.edit, &NumEdit::LostFocusEvent);
    QTest::keyClick(form.text1, Qt::Key_Return);
    QCOMPARE(form.platform.sentKeys(), QStringList{QStringLiteral("{TAB}")});
    QVERIFY(form.other->hasFocus());
    QCOMPARE(lost.count(), 1);
    QCOMPARE(form.text1->text(), QStringLiteral("1,235"));
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
    QFETCH(int, caret);
    Form form;
    QVERIFY(form.enter());
    QTest::keyClicks(form.text1, QStringLiteral("123"));
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
    form.edit->setDigNum(2);
    form.edit->setValue(1234.5);
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
    QTest::newRow("single value") << 5.0 << 5.0 << "7" << 0 << 5.0 << 1;
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
    form.edit->setDigNum(2);
    QVERIFY(form.show());
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
}

void tst_NumEdit::everyPutNotifies_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"TagVariant", "Value", "TextColor", "NegTextColor", "DigNum",
                             "BackTextColor", "LockEdits", "FontName", "FontSize", "Border",
                             "Appearance", "MinValue", "MaxValue", "Enabled"})
        QTest::newRow(name) << QByteArray(name);
}

void tst_NumEdit::everyPutNotifies()
{
    // Given a field, when a property is put with the value it already has, then the container
    // still hears of it under the property's name.
    QFETCH(QByteArray, name);
    Form form;
    const QVariant current = form.edit->property(name);
    QSignalSpy changed(form.edit, &Control::PropertyChanged);
    QVERIFY(form.edit->setProperty(name, current));
    QCOMPARE(changed, QList<QVariantList>{{QString::fromLatin1(name)}});
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
    Keys().key(Qt::Key_T).key(Qt::Key_Up).key(Qt::Key_Return).events.simulate(form.text1);
    QCOMPARE(form.text1->text(), QStringLiteral("12"));
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
    form.edit->setFocus(Qt::TabFocusReason);
    QVERIFY(form.tmFocus->isActive());

    FocusEventEater eater;
    form.text1->installEventFilter(&eater);
    QSignalSpy got(form.edit, &NumEdit::GotFocusEvent);
    QSignalSpy lost(form.edit, &NumEdit::LostFocusEvent);
    form.edit->setValue(5.5);
    form.focusOther();
    QTRY_COMPARE(lost.count(), 1);
    QCOMPARE(form.text1->text(), QStringLiteral("6"));
    QVERIFY(form.tmFocus->isActive()); // kept running after the focus loss
    form.edit->setFocus(Qt::TabFocusReason);
    QTRY_COMPARE(got.count(), 1);
    QCOMPARE(form.text1->text(), QStringLiteral("5.5"));
    form.text1->removeEventFilter(&eater);
    form.edit->hide();
    QVERIFY(!form.tmFocus->isActive());
}

void tst_NumEdit::placeSaveAndRestore()
{
    TestPlatform platform(QDate(2024, 5, 10), german);
    const auto text1 = [](NumEdit &edit) {
        return edit.findChild<QLineEdit *>(QStringLiteral("Text1"))->text();
    };
    // A newly placed field shows no decimals; a saved form without the key gets two.
    NumEdit placed;
    placed.InitProperties();
    QCOMPARE(text1(placed), QStringLiteral("0"));
    MemoryPropertyBag placedBag;
    placed.WriteProperties(placedBag);
    QCOMPARE(placedBag.keys(), QStringList{QStringLiteral("DigNum")});
    NumEdit opened;
    MemoryPropertyBag empty;
    opened.ReadProperties(empty);
    QCOMPARE(text1(opened), QStringLiteral("0,00"));
    opened.WriteProperties(empty);
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
    QCOMPARE(text1(target), QStringLiteral("1.234,500"));

    // A range saved with a value inside it loads without clamping against a half-read range;
    // a bad entry is skipped, leaving the digits the field was created with.
    MemoryPropertyBag ranged;
    ranged.insert(QStringLiteral("Value"), 50.0);
    ranged.insert(QStringLiteral("MinValue"), 10.0);
    ranged.insert(QStringLiteral("MaxValue"), 100.0);
    ranged.insert(QStringLiteral("DigNum"), QStringLiteral("not a number"));
    NumEdit loaded;
    loaded.ReadProperties(ranged);
    QCOMPARE(loaded.Value(), 50.0);
    QCOMPARE(loaded.DigNum(), qint16(0));
    QCOMPARE(platform.beeps(), 0);
}

void tst_NumEdit::frameMouseAndSize()
{
    Form form;
    QVERIFY(form.show());
    // The text box fills the frame's inside but for two pixels at the bottom; the frame is the
    // style's sunken one, a flat line, or none.
    const int sunken = form.edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth);
    for (const auto &[border, appearance, margin] :
         {std::tuple(1, 1, sunken), {1, 0, 1}, {0, 1, 0}}) {
        form.edit->setProperty("Border", border);
        form.edit->setProperty("Appearance", appearance);
        const QRect inside = form.edit->contentsRect();
        QCOMPARE(inside,
                 form.edit->rect().marginsRemoved(QMargins(margin, margin, margin, margin)));
        QCOMPARE(form.text1->geometry(), inside.adjusted(0, 0, 0, -2));
    }

    QSignalSpy down(form.edit, &NumEdit::MouseDown);
    QSignalSpy up(form.edit, &NumEdit::MouseUp);
    QTest::mouseClick(form.text1, Qt::LeftButton, Qt::ShiftModifier, QPoint(7, 5));
    QCOMPARE(up.count(), 1);
    QCOMPARE(down,
             (QList<QVariantList>{{QVariant::fromValue(qint16(1)), QVariant::fromValue(qint16(1)),
                                   QVariant::fromValue(7.0f), QVariant::fromValue(5.0f)}}));

    // Enabled is the text box's: the control keeps its frame and its place in the tab order.
    form.edit->setProperty("Enabled", false);
    QVERIFY(!form.text1->isEnabled() && form.edit->isEnabled());
    QCOMPARE(form.edit->property("Enabled"), QVariant(false));

    // One line high, as a line edit is, so that it lines up in a form layout.
    QCOMPARE(form.edit->sizeHint().height(), form.other->sizeHint().height());
    QCOMPARE(form.edit->minimumSizeHint().height(), form.other->sizeHint().height());
}

QTEST_MAIN(tst_NumEdit)
#include "tst_numedit.moc"
