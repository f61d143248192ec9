// Platform services, string tables, version, registry, key translation and the spinner.
#include <zelkon/common/checkclass.h>
#include <zelkon/common/control.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/common/updown.h>
#include <zelkon/common/version.h>
#include <zelkon/test/testplatform.h>

#include <QDirIterator>
#include <QFormLayout>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <memory>

using namespace zelkon;

class tst_Platform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void strings_data();
    void strings();
    void namedStrings_data();
    void namedStrings();
    void versionArray();
    void registry();
    void testPlatformPinsAndRecords();
    void sendKeysMovesFocus();
    void keyTranslation_data();
    void keyTranslation();
    void mouseArguments();
    void upDownClampsAndNotifies();
    void upDownArrows();
    void controlsInFormLayout();
    void frameAndEnabled_data();
    void frameAndEnabled();
};

void tst_Platform::strings_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("own");
    QTest::newRow("en tool tip") << int(QLocale::English) << 101 << "Check/Uncheck Items" << true;
    QTest::newRow("en inverse") << int(QLocale::English) << 108 << "Not In ..." << true;
    QTest::newRow("en date") << int(QLocale::English) << 207 << "Relative/Absolute Date" << true;
    QTest::newRow("ru select") << int(QLocale::Russian) << 102 << QStringLiteral("Выделить все")
                               << true;
    QTest::newRow("ru clear") << int(QLocale::Russian) << 103 << QStringLiteral("Очистить все")
                              << true;
    QTest::newRow("ru invert") << int(QLocale::Russian) << 104
                               << QStringLiteral("Инвертировать выбор") << true;
    QTest::newRow("ru show") << int(QLocale::Russian) << 105 << QStringLiteral("Показать/Скрыть")
                             << true;
    QTest::newRow("ru yes") << int(QLocale::Russian) << 106 << QStringLiteral("Да") << true;
    QTest::newRow("ru no") << int(QLocale::Russian) << 107 << QStringLiteral("Нет") << true;
    QTest::newRow("ru inverse") << int(QLocale::Russian) << 108
                                << QStringLiteral("Инверсная логика") << true;
    QTest::newRow("ru tip") << int(QLocale::Russian) << 101
                            << QStringLiteral("Выделите нужные строки") << true;
    QTest::newRow("de repeats english") << int(QLocale::German) << 102 << "Select All" << true;
    QTest::newRow("de lacks yes") << int(QLocale::German) << 106 << "Yes" << false;
    QTest::newRow("de lacks no") << int(QLocale::German) << 107 << "No" << false;
    QTest::newRow("french falls back") << int(QLocale::French) << 204 << "Any Dates" << false;
    QTest::newRow("unknown id") << int(QLocale::English) << 999 << "" << false;
}

void tst_Platform::strings()
{
    QFETCH(int, language);
    QFETCH(int, id);
    QFETCH(QString, text);
    QFETCH(bool, own);
    const auto lang = QLocale::Language(language);
    QCOMPARE(loadString(id, lang), text);
    QCOMPARE(hasString(id, lang), own);
    TestPlatform platform(QDate(2024, 5, 10), QLocale::c(), lang);
    QCOMPARE(loadString(id), text);
}

// Every text the sources ask for by name must be in all three tables: a name one table lacks
// shows English to that language's users, and one that English lacks shows nothing.
void tst_Platform::namedStrings_data()
{
    QTest::addColumn<int>("language");
    QTest::newRow("en") << int(QLocale::English);
    QTest::newRow("ru") << int(QLocale::Russian);
    QTest::newRow("de") << int(QLocale::German);
}

void tst_Platform::namedStrings()
{
    QFETCH(int, language);
    const QRegularExpression call(QStringLiteral(R"re(loadString\("(\w+)")re"));
    QDirIterator sources(QStringLiteral(ZELKON_SOURCE_DIR), {QStringLiteral("*.cpp")}, QDir::Files,
                         QDirIterator::Subdirectories);
    QStringList names;
    while (sources.hasNext()) {
        QFile file(sources.next());
        QVERIFY(file.open(QIODevice::ReadOnly));
        for (const auto &match : call.globalMatch(QString::fromUtf8(file.readAll())))
            names << match.captured(1);
    }
    QVERIFY(names.size() > 20);
    for (const QString &name : std::as_const(names))
        QVERIFY2(hasString(name.toLatin1().constData(), QLocale::Language(language)),
                 qPrintable(name));

    // Given a Russian user, when a control is made, then its texts are the Russian ones.
    TestPlatform platform(QDate(2024, 5, 10), QLocale::c(), QLocale::Russian);
    UpDown spinner;
    QCOMPARE(spinner.findChild<QToolButton *>(QStringLiteral("up"))->accessibleName(),
             QStringLiteral("Увеличить"));
}

void tst_Platform::versionArray()
{
    const QVariantList v = zelkon::versionArray();
    QCOMPARE(v.size(), 5);
    QVERIFY(!v.at(0).toString().isEmpty());
    QCOMPARE(v.at(1).toInt(), 2);
    QCOMPARE(v.at(2).toInt(), 4);
    QCOMPARE(v.at(3).toInt(), 8);
    Control control;
    QCOMPARE(control.property("Version").toList().size(), 5);
    QCOMPARE(control.property("Index").toInt(), -1);
}

void tst_Platform::registry()
{
    QObject *object = createObject(QStringLiteral("checkclass"));
    QVERIFY(qobject_cast<CheckClass *>(object));
    delete object;
    QVERIFY(objectClassNames().contains(QStringLiteral("CheckClass")));
    QCOMPARE(createObject(QStringLiteral("No.Such")), nullptr);
    QCOMPARE(createControl(QStringLiteral("NoSuchControl")), nullptr);
    QVERIFY(!registerObjectClass(QStringLiteral("CHECKCLASS"),
                                 [](QObject *p) -> QObject * { return new QObject(p); }));
}

void tst_Platform::testPlatformPinsAndRecords()
{
    {
        TestPlatform platform(QDate(2030, 1, 2), QLocale(QLocale::German), QLocale::Russian);
        QCOMPARE(&Platform::current(), &platform);
        QCOMPARE(Platform::current().today(), QDate(2030, 1, 2));
        platform.setToday(QDate(2030, 1, 3));
        QCOMPARE(Platform::current().today(), QDate(2030, 1, 3));
        QCOMPARE(Platform::current().numberLocale().decimalPoint(), QStringLiteral(","));
        Platform::current().beep();
        Platform::current().beep();
        Platform::current().messageBox(QStringLiteral("test"));
        QCOMPARE(platform.beeps(), 2);
        QCOMPARE(platform.messages(), QStringList{QStringLiteral("test")});
    }
    QCOMPARE(Platform::current().today(), QDate::currentDate()); // default restored
}

void tst_Platform::sendKeysMovesFocus()
{
    TestPlatform platform;
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *first = new QLineEdit(&window);
    auto *second = new QLineEdit(&window);
    layout->addWidget(first);
    layout->addWidget(second);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    first->setFocus();
    QTRY_COMPARE(QApplication::focusWidget(), first);
    Platform::current().sendKeys(QStringLiteral("{TAB}"));
    QTRY_COMPARE(QApplication::focusWidget(), second);
    QCOMPARE(platform.sentKeys(), QStringList{QStringLiteral("{TAB}")});
}

void tst_Platform::keyTranslation_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("shift");
    QTest::newRow("enter") << int(Qt::Key_Return) << int(Qt::NoModifier) << 13 << 0;
    QTest::newRow("keypad enter") << int(Qt::Key_Enter) << int(Qt::KeypadModifier) << 13 << 0;
    QTest::newRow("escape") << int(Qt::Key_Escape) << int(Qt::NoModifier) << 27 << 0;
    QTest::newRow("ctrl a") << int(Qt::Key_A) << int(Qt::ControlModifier) << 65 << 2;
    QTest::newRow("ctrl shift r") << int(Qt::Key_R) << int(Qt::ControlModifier | Qt::ShiftModifier)
                                  << 82 << 3;
    QTest::newRow("alt zero") << int(Qt::Key_0) << int(Qt::AltModifier) << 48 << 4;
    QTest::newRow("left") << int(Qt::Key_Left) << int(Qt::NoModifier) << 37 << 0;
    QTest::newRow("down") << int(Qt::Key_Down) << int(Qt::NoModifier) << 40 << 0;
    QTest::newRow("keypad decimal") << int(Qt::Key_Period) << int(Qt::KeypadModifier) << 110 << 0;
    QTest::newRow("keypad 7") << int(Qt::Key_7) << int(Qt::KeypadModifier) << 103 << 0;
    QTest::newRow("f12") << int(Qt::Key_F12) << int(Qt::NoModifier) << 123 << 0;
    QTest::newRow("comma") << int(Qt::Key_Comma) << int(Qt::NoModifier) << 188 << 0;
}

void tst_Platform::keyTranslation()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(int, code);
    QFETCH(int, shift);
    const QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers(modifiers));
    QCOMPARE(keyCode(&event), code);
    QCOMPARE(int(shiftState(event.modifiers())), shift);
    if (!(modifiers & Qt::KeypadModifier))
        QCOMPARE(qtKey(code), key == Qt::Key_Enter ? int(Qt::Key_Return) : key);
}

void tst_Platform::mouseArguments()
{
    const QMouseEvent press(QEvent::MouseButtonPress, QPointF(3, 4), QPointF(3, 4), Qt::RightButton,
                            Qt::LeftButton | Qt::RightButton, Qt::ShiftModifier);
    const MouseArgs a = mouseArgs(&press);
    QCOMPARE(a.Button, qint16(2));
    QCOMPARE(a.Shift, qint16(1));
    QCOMPARE(a.X, 3.0f);
    QCOMPARE(a.Y, 4.0f);
    const QMouseEvent move(QEvent::MouseMove, QPointF(1, 1), QPointF(1, 1), Qt::NoButton,
                           Qt::LeftButton | Qt::MiddleButton, Qt::ControlModifier);
    QCOMPARE(mouseArgs(&move).Button, qint16(5));
    QCOMPARE(mouseArgs(&move).Shift, qint16(2));
}

void tst_Platform::upDownClampsAndNotifies()
{
    UpDown spinner;
    QSignalSpy changes(&spinner, &UpDown::Change);
    spinner.setMin(-100);
    spinner.setMax(100);
    spinner.setValue(50);
    spinner.setValue(50);
    QCOMPARE(changes.size(), 1);
    spinner.setValue(1000);
    QCOMPARE(spinner.Value(), 100);
    QCOMPARE(changes.size(), 2);
    spinner.setMax(10); // narrowing the range moves the value and says so
    QCOMPARE(spinner.Value(), 10);
    QCOMPARE(changes.size(), 3);
    QVERIFY(spinner.setProperty("Value", -2147483647 - 1));
    QCOMPARE(spinner.property("Value").toInt(), -100);
}

void tst_Platform::upDownArrows()
{
    UpDown spinner;
    spinner.resize(20, 40);
    spinner.setMin(0);
    spinner.setMax(2);
    spinner.show();
    QVERIFY(QTest::qWaitForWindowExposed(&spinner));
    QSignalSpy changes(&spinner, &UpDown::Change);
    auto *up = spinner.findChild<QToolButton *>(QStringLiteral("up"));
    auto *down = spinner.findChild<QToolButton *>(QStringLiteral("down"));
    QVERIFY(up && down);
    QVERIFY(!down->isEnabled());
    QTest::mouseClick(up, Qt::LeftButton);
    QTest::mouseClick(up, Qt::LeftButton);
    QCOMPARE(spinner.Value(), 2);
    QVERIFY(!up->isEnabled());
    QTest::mouseClick(up, Qt::LeftButton); // at the limit nothing moves
    QCOMPARE(changes.size(), 2);
    QTest::keyClick(&spinner, Qt::Key_Down);
    QCOMPARE(spinner.Value(), 1);
    spinner.setWrap(true);
    spinner.setValue(2);
    spinner.stepUp();
    QCOMPARE(spinner.Value(), 0);
}

void tst_Platform::controlsInFormLayout()
{
    // Every control sizes itself for a layout; the one-line ones stand as high as a line edit.
    const QStringList oneLine = {QStringLiteral("CheckCombo"),   QStringLiteral("RelDate"),
                                 QStringLiteral("NumEdit"),      QStringLiteral("BoxCombo"),
                                 QStringLiteral("ComboListBox"), QStringLiteral("Navigator"),
                                 QStringLiteral("Down")};
    QWidget form;
    auto *layout = new QFormLayout(&form);
    auto *edit = new QLineEdit(&form);
    layout->addRow(QStringLiteral("Text"), edit);
    QList<Control *> controls;
    for (const QString &name : controlClassNames()) {
        Control *control = createControl(name, &form);
        control->InitProperties();
        layout->addRow(name, control);
        controls << control;
    }
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    for (Control *control : std::as_const(controls)) {
        const QString name = QString::fromLatin1(control->metaObject()->className());
        QVERIFY2(control->sizeHint().isValid() && control->minimumSizeHint().isValid(),
                 qPrintable(name));
        QVERIFY2(control->minimumSizeHint().height() <= control->sizeHint().height(),
                 qPrintable(name));
        if (oneLine.contains(name.section(QLatin1String("::"), -1)))
            QCOMPARE(control->height(), edit->height());
    }
}

void tst_Platform::frameAndEnabled_data()
{
    QTest::addColumn<QString>("className");
    for (const QString &name : controlClassNames()) {
        const QMetaObject *meta = nullptr;
        std::unique_ptr<Control> probe(createControl(name));
        meta = probe->metaObject();
        if (meta->indexOfProperty("Border") >= 0 && meta->indexOfProperty("Appearance") >= 0)
            QTest::newRow(qPrintable(name)) << name;
    }
}

void tst_Platform::frameAndEnabled()
{
    // Border 0 draws no frame, Appearance 0 a flat line, the default a sunken frame; children
    // stay inside it. Every put reports the change, also with the value it already has.
    QFETCH(QString, className);
    QWidget form;
    Control *control = createControl(className, &form);
    control->InitProperties();
    control->resize(160, 40);
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    QSignalSpy changed(control, &Control::PropertyChanged);

    QVERIFY(control->setProperty("Border", 0));
    QCOMPARE(control->contentsRect(), control->rect());
    QVERIFY(control->setProperty("Border", 1));
    QVERIFY(control->setProperty("Appearance", 0));
    QCOMPARE(control->contentsRect(), control->rect().adjusted(1, 1, -1, -1));
    QVERIFY(control->setProperty("Appearance", 1));
    const int frame = control->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, control);
    QCOMPARE(control->contentsRect(), control->rect().adjusted(frame, frame, -frame, -frame));
    for (QWidget *child : control->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (child->isVisible() && !child->isWindow())
            QVERIFY2(control->contentsRect().contains(child->geometry()),
                     qPrintable(child->objectName()));
    }
    QVERIFY(control->setProperty("Appearance", 1));
    form.setEnabled(false); // the form's state is not the control's own
    QVERIFY(control->property("Enabled").toBool());
    form.setEnabled(true);
    QVERIFY(control->setProperty("Enabled", false));
    QVERIFY(!control->property("Enabled").toBool());
    QVERIFY(control->setProperty("Enabled", false));
    const QStringList expected
        = {QStringLiteral("Border"),     QStringLiteral("Border"),     QStringLiteral("Appearance"),
           QStringLiteral("Appearance"), QStringLiteral("Appearance"), QStringLiteral("Enabled"),
           QStringLiteral("Enabled")};
    QStringList names;
    for (const QList<QVariant> &call : std::as_const(changed))
        names << call.at(0).toString();
    QCOMPARE(names, expected);
}

QTEST_MAIN(tst_Platform)
#include "tst_platform.moc"
