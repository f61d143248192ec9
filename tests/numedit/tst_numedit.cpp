#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/numedit/numedit.h>
#include <zelkon/test/testplatform.h>

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <variant>

using namespace zelkon;

namespace {

const QLocale english(QLocale::English, QLocale::UnitedStates);
const QLocale german(QLocale::German, QLocale::Germany);

// Key clicks in order: typed texts and single keys.
QTestEventList clicks(std::initializer_list<std::variant<const char *, QKeyCombination>> parts)
{
    QTestEventList events;
    for (const auto &part : parts) {
        if (const auto *text = std::get_if<const char *>(&part))
            events.addKeyClicks(QString::fromUtf8(*text));
        else if (const auto *key = std::get_if<QKeyCombination>(&part))
            events.addKeyClick(key->key(), key->keyboardModifiers());
    }
    return events;
}

// A NumEdit created by class name in a dialog, after a plain field that holds the focus first.
struct Form
{
    explicit Form(const QLocale &locale = english)
        : platform(QDate(2024, 5, 10), locale)
    { }
    bool show(bool enter = false) // shown, and when asked the NumEdit focused
    {
        dialog.show();
        dialog.activateWindow();
        if (QTest::qWaitForWindowActive(&dialog) && enter)
            edit->setFocus(Qt::TabFocusReason);
        return dialog.isActiveWindow() && text1->hasFocus() == enter;
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

// Swallows the text box's focus events so that only the timer can notice a focus move.
struct FocusEventEater : QObject
{
    bool eventFilter(QObject *, QEvent *e) override
    {
        return e->type() == QEvent::FocusIn || e->type() == QEvent::FocusOut;
    }
};

} // namespace

class tst_NumEdit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typing_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QTestEventList>("keys");
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("changes");
        QTest::addColumn<int>("caret"); // -1: not checked
        QTest::addColumn<int>("arrow"); // the key code of the one ArrowKeyUp raised, or 0
        QTest::addColumn<bool>("movedOn"); // the focus moved to the next field
        QTest::addColumn<bool>("locked");
        auto row = [](const char *tag, const QLocale &locale, const QTestEventList &keys,
                      const char *text, double value, int changes, int caret = -1, int arrow = 0,
                      bool movedOn = false, bool locked = false) {
            QTest::newRow(tag) << locale << keys << QString::fromLatin1(text) << value << changes
                               << caret << arrow << movedOn << locked;
        };
        row("digits", english, clicks({"125"}), "125", 125, 3);
        row("en point", english, clicks({"12.5"}), "12.5", 12.5, 4);
        row("en comma becomes point", english, clicks({"12,5"}), "12.5", 12.5, 4);
        row("de point becomes comma", german, clicks({"12.5"}), "12,5", 12.5, 4);
        row("de comma", german, clicks({"12,5"}), "12,5", 12.5, 4);
        row("lone minus", english, clicks({"-"}), "-", 0, 1);
        row("minus then digit", english, clicks({"-5"}), "-5", -5, 2);
        row("plus separator", english, clicks({"+."}), "+.", 0, 2);
        row("de minus separator", german, clicks({"-,"}), "-,", 0, 2);
        row("letters and space dropped", english, clicks({"1a 2"}), "12", 12, 2);
        // The rejected text is rewritten from Value, the rewrite notifies a second time and the
        // caret goes back to where the refused key was typed.
        row("second separator", english, clicks({"1.2."}), "1.2", 1.2, 5, 3);
        row("sign after digits", english, clicks({"5-"}), "5", 5, 3, 1);
        const Qt::Key left = Qt::Key_Left;
        row("sign inside", english, clicks({"123", left, left, "-"}), "123", 123, 5, 1);
        row("separator at start", english, clicks({"1.5", left, left, left, "."}), "1.5", 1.5, 5,
            0);
        // A refused separator from the keypad is typed once more and refused once more.
        const QKeyCombination keypadDecimal = Qt::KeypadModifier | Qt::Key_Period;
        row("keypad after refusal", english, clicks({"1.5", keypadDecimal}), "1.5", 1.5, 7);
        row("de keypad accepted", german, clicks({"1", keypadDecimal}), "1,", 1, 2);
        row("thousands", english, clicks({"12t"}), "12000", 12000, 3);
        row("millions", english, clicks({"2M"}), "2000000", 2e6, 2);
        row("thousand millions", german, clicks({"1,5y"}), "1500000000", 1.5e9, 4);
        row("de fraction multiplied", german, clicks({"0,5t"}), "500", 500, 4);
        // Escape brings back the value the field was entered with, and only that: the dialog
        // neither closes nor runs its own Escape shortcut.
        row("escape", english, clicks({"123", Qt::Key_Escape}), "7", 7, 4);
        row("enter", english, clicks({"1234", Qt::Key_Return}), "1,234", 1234, 4, -1, 0, true);
        // Left and Right raise ArrowKeyUp only at the edge of the text, the others always, Home
        // never.
        row("left at start", english, clicks({"1", Qt::Key_Home, left}), "1", 1, 1, 0, 37);
        row("left inside", english, clicks({"1", left}), "1", 1, 1, 0);
        row("right at end", english, clicks({"1", Qt::Key_Right}), "1", 1, 1, 1, 39);
        row("right inside", english, clicks({"12", left, Qt::Key_Right}), "12", 12, 2, 2);
        row("up", english, clicks({"1", Qt::Key_Up}), "1", 1, 1, -1, 38);
        row("down", english, clicks({"1", Qt::Key_Down}), "1", 1, 1, -1, 40);
        row("page up", english, clicks({"1", Qt::Key_PageUp}), "1", 1, 1, -1, 33);
        row("page down", english, clicks({"1", Qt::Key_PageDown}), "1", 1, 1, -1, 34);
        // A locked field takes no keys and runs none of its focus handling.
        const QTestEventList lockedKeys = clicks({"5t", Qt::Key_Up, Qt::Key_Return});
        row("locked", english, lockedKeys, "7", 7, 0, -1, 0, false, true);
    }
    void typing()
    {
        QFETCH(QLocale, locale);
        QFETCH(QTestEventList, keys);
        QFETCH(int, caret);
        QFETCH(bool, locked);
        Form form(locale);
        form.edit->setValue(7); // selected in full on entry, so the first key replaces it
        form.edit->setLockEdits(locked);
        QShortcut cancel(Qt::Key_Escape, &form.dialog);
        QVERIFY(form.show(true));
        QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
        QSignalSpy arrows(form.edit, &NumEdit::ArrowKeyUp);
        QSignalSpy cancelled(&cancel, &QShortcut::activated);
        keys.simulate(form.text1);
        QVERIFY(form.dialog.isVisible());
        QCOMPARE(cancelled.count(), 0);
        QTEST(form.other->hasFocus(), "movedOn"); // by the keystroke the platform was sent
        QCOMPARE(form.tmFocus->isActive(), !locked);
        QTEST(arrows.size() == 1 ? arrows.at(0).at(0).toInt() : -int(arrows.size()), "arrow");
        QTEST(form.text1->text(), "text");
        QTEST(form.edit->Value(), "value");
        QTEST(int(changes.count()), "changes");
        QVERIFY(caret < 0 || form.text1->cursorPosition() == caret);
        QCOMPARE(form.platform.beeps(), 0);
    }

    void multipliersByKeyPlace_data()
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
    void multipliersByKeyPlace()
    {
        QFETCH(QChar, letter);
        QFETCH(char, place);
        QFETCH(QString, text);
        // The native codes of the key's place: X11 and Wayland report its scan code plus 8,
        // Windows the virtual key of its Latin letter, macOS a virtual key of its own.
        const QHash<char, quint32> scanCodes{{'T', 20}, {'M', 50}, {'Y', 21}, {'A', 30}},
            macKeys{{'T', 0x11}, {'M', 0x2E}, {'Y', 0x10}, {'A', 0x00}};
#if defined(Q_OS_WIN)
        const quint32 nativeScanCode = scanCodes.value(place), nativeVirtualKey = place;
#elif defined(Q_OS_MACOS)
        const quint32 nativeScanCode = 1, nativeVirtualKey = macKeys.value(place);
#else
        const quint32 nativeScanCode = scanCodes.value(place) + 8, nativeVirtualKey = 0;
#endif
        Form form;
        QVERIFY(form.show(true));
        QTest::keyClicks(form.text1, QStringLiteral("12"));
        QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
        for (QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, letter.toUpper().unicode(), Qt::NoModifier, nativeScanCode,
                            nativeVirtualKey, 0, QString(letter));
            QApplication::sendEvent(form.text1, &event);
        }
        QCOMPARE(form.text1->text(), text);
        QCOMPARE(changes.count(), text == QLatin1String("12") ? 0 : 1);
    }

    void display_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<int>("digits");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("edited"); // the plain number while the field has the focus
        auto row = [](const char *tag, const QLocale &locale, int digits, double value,
                      const char *text, const char *edited) {
            QTest::newRow(tag) << locale << digits << value << QString::fromUtf8(text)
                               << QString::fromUtf8(edited);
        };
        row("grouped", english, 2, 1234567.891, "1,234,567.89", "1234567.891");
        row("zero", english, 2, 0, "0.00", "");
        row("no decimals, half up", english, 0, 2.5, "3", "2.5");
        row("three decimals", english, 3, 1.0005, "1.001", "1.0005");
        row("negative count is none", english, -4, 12.5, "13", "12.5");
        row("de grouped", german, 2, 1234.5, "1.234,50", "1234,5");
        row("de negative", german, 1, -1234567.25, "-1.234.567,3", "-1234567,25");
    }
    void display()
    {
        QFETCH(QLocale, locale);
        QFETCH(int, digits);
        QFETCH(double, value);
        Form form(locale);
        QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
        QVERIFY(form.edit->setProperty("DigNum", QVariant::fromValue(qint16(digits))));
        QVERIFY(form.edit->setProperty("Value", value));
        QTEST(form.text1->text(), "text");
        QVERIFY(form.show(true)); // the plain number, selected in full
        QTEST(form.text1->selectedText(), "edited");
        QCOMPARE(form.edit->Value(), value); // reading Value leaves the plain text alone
        QTEST(form.text1->text(), "edited");
        form.focusOther();
        QTEST(form.text1->text(), "text");
        QCOMPARE(changes.count(), 0); // neither display notifies
    }

    void colours()
    {
        Form form;
        QVERIFY(form.show(true));
        const QColor plain = form.textColor();
        form.edit->setNegTextColor(0x0000ff); // red, not in use yet
        QCOMPARE(form.textColor(), plain);
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

    void limitsOnFocusLoss_data()
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
    void limitsOnFocusLoss()
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
        QVERIFY(form.show(true));
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

    void assigningValueAndLimits()
    {
        Form form;
        QVERIFY(form.show());
        QSignalSpy changes(form.edit, &NumEdit::ChangeValue);
        form.edit->setMinValue(10); // a contradictory range: two corrections, a beep each
        QCOMPARE(form.platform.beeps(), 2);
        QCOMPARE(changes.count(), 2);
        QVERIFY(form.edit->setProperty("MaxValue", QStringLiteral("100")));
        QCOMPARE(form.edit->property("MaxValue"), QVariant(100.0));
        QCOMPARE(form.edit->Value(), 10.0);
        form.edit->setMaxValue(QStringLiteral("lots")); // not a number: the limit stays
        QCOMPARE(form.edit->property("MaxValue"), QVariant(100.0));
        form.platform.clearRecords();
        changes.clear();
        form.edit->setValue(500); // clamped silently while not being edited
        QCOMPARE(form.text1->text(), QStringLiteral("100"));
        QCOMPARE(form.platform.beeps() + changes.count(), 0);
        form.edit->setFocus(Qt::TabFocusReason);
        form.edit->setValue(-3);
        QCOMPARE(form.text1->text(), QStringLiteral("10"));
        QCOMPARE(changes.count(), 1);
    }

    void everyPutNotifies_data()
    {
        QTest::addColumn<QByteArray>("name");
        for (const char *name : {"TagVariant", "Value", "TextColor", "NegTextColor", "DigNum",
                                 "BackTextColor", "LockEdits", "FontName", "FontSize", "Border",
                                 "Appearance", "MinValue", "MaxValue", "Enabled"})
            QTest::newRow(name) << QByteArray(name);
    }
    void everyPutNotifies()
    {
        // Given a field, when a property is put with the value it already has, then the
        // container still hears of it under the property's name.
        QFETCH(QByteArray, name);
        Form form;
        const QVariant current = form.edit->property(name);
        QSignalSpy changed(form.edit, &Control::PropertyChanged);
        QVERIFY(form.edit->setProperty(name, current));
        QCOMPARE(changed, QList<QVariantList>{{QString::fromLatin1(name)}});
    }

    void timerFollowsRealFocus()
    {
        Form form;
        QVERIFY(form.show(true));
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

    void placeSaveAndRestore()
    {
        TestPlatform platform(QDate(2024, 5, 10), german);
        const auto shown = [](NumEdit &edit) {
            return edit.findChild<QLineEdit *>(QStringLiteral("Text1"))->text();
        };
        // A newly placed field shows no decimals; a saved form without the key gets two.
        NumEdit placed, opened, target, damaged;
        placed.InitProperties();
        QCOMPARE(shown(placed), QStringLiteral("0"));
        MemoryPropertyBag placedBag, empty, source, bag, bad;
        placed.WriteProperties(placedBag);
        QCOMPARE(placedBag.keys(), QStringList{QStringLiteral("DigNum")});
        opened.ReadProperties(empty);
        QCOMPARE(shown(opened), QStringLiteral("0,00"));
        opened.WriteProperties(empty);
        QCOMPARE(empty.keys(), QStringList());

        // Every saved key is read back and written again as it was; the value saved inside its
        // range is not clamped against a half-read range on the way.
        const QStringList keys = QStringLiteral("Value DigNum TextColor NegTextColor BackTextColor "
                                                "LockEdits MinValue MaxValue Appearance Border")
                                     .split(QLatin1Char(' '));
        const QVariantList values{1234.5, 3,     0x0000ffu, 0x00ff00u, 0xffffffu,
                                  true,   -10.0, 5000.0,    0,         0};
        for (qsizetype i = 0; i < keys.size(); ++i)
            source.insert(keys.at(i), values.at(i));
        target.resize(90, 25);
        target.ReadProperties(source);
        target.WriteProperties(bag);
        QCOMPARE(bag.keys(), keys);
        for (const QString &key : keys)
            QVERIFY2(bag.ReadProperty(key) == source.ReadProperty(key), qPrintable(key));
        QCOMPARE(target.size(), QSize(90, 25));
        QCOMPARE(shown(target), QStringLiteral("1.234,500"));

        // A bad entry is skipped, leaving the digits the field was created with.
        bad.insert(QStringLiteral("DigNum"), QStringLiteral("not a number"));
        damaged.ReadProperties(bad);
        QCOMPARE(damaged.DigNum(), qint16(0));
        QCOMPARE(platform.beeps(), 0);
    }

    void layoutMouseAndEnabled()
    {
        Form form;
        QVERIFY(form.show());
        // The text box fills the inside of each frame but for two pixels at the bottom.
        for (const auto &[border, appearance] : {std::pair(1, 1), {1, 0}, {0, 1}}) {
            form.edit->setProperty("Border", border);
            form.edit->setProperty("Appearance", appearance);
            QCOMPARE(form.text1->geometry(), form.edit->contentsRect().adjusted(0, 0, 0, -2));
        }

        QSignalSpy down(form.edit, &NumEdit::MouseDown);
        QSignalSpy up(form.edit, &NumEdit::MouseUp);
        QTest::mouseClick(form.text1, Qt::LeftButton, Qt::ShiftModifier, QPoint(7, 5));
        QCOMPARE(up.count(), 1);
        const QVariantList args{QVariant::fromValue(qint16(1)), QVariant::fromValue(qint16(1)),
                                7.0f, 5.0f};
        QCOMPARE(down, QList<QVariantList>{args});

        // Enabled is the text box's: the control keeps its frame and its place in the tab order.
        form.edit->setProperty("Enabled", false);
        QVERIFY(!form.text1->isEnabled() && form.edit->isEnabled());
    }
};

QTEST_MAIN(tst_NumEdit)
#include "tst_numedit.moc"
