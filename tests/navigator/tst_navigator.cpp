#include "support/backends.h"
#include "support/hostrecordset.h"

#include <zelkon/common/formfile.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>
#include <zelkon/navigator/navigator.h>
#include <zelkon/test/testplatform.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace zelkon;

namespace {

enum Colors { Normal, Info, Other };

// A newly placed Navigator created by class name in a dialog, after a plain field that holds the
// focus first.
struct Form
{
    Form()
    {
        other->move(0, 150);
        nav->InitProperties();
        nav->setGeometry(10, 100, 160, nav->sizeHint().height());
        dialog.resize(300, 300);
    }
    bool show()
    {
        dialog.show();
        dialog.activateWindow();
        other->setFocus();
        return QTest::qWaitForWindowActive(&dialog) && other->hasFocus();
    }
    void enter() { nav->setFocus(Qt::TabFocusReason); }
    bool closed() const { return text1->height() == nav->height(); }
    int row() const { return list1->currentIndex().row(); }
    int rows() const { return list1->model()->rowCount(); }
    Colors colors() const
    {
        const auto is = [this](QPalette::ColorRole base, QPalette::ColorRole text) {
            const QPalette p = text1->palette(), app = QApplication::palette();
            return p.color(QPalette::Base) == app.color(base)
                && p.color(QPalette::Text) == app.color(text);
        };
        return is(QPalette::Base, QPalette::Text)              ? Normal
            : is(QPalette::ToolTipBase, QPalette::ToolTipText) ? Info
                                                               : Other;
    }

    TestPlatform platform;
    QDialog dialog;
    QLineEdit *other = new QLineEdit(&dialog);
    Navigator *nav = qobject_cast<Navigator *>(createControl(QStringLiteral("Navigator"), &dialog));
    QLineEdit *text1 = nav->findChild<QLineEdit *>(QStringLiteral("Text1"));
    QAbstractItemView *list1 = nav->findChild<QAbstractItemView *>(QStringLiteral("List1"));
};

} // namespace

// Every recordset case runs on a SQLite file and on the PostgreSQL server that ZELKON_TEST_PG
// names; both hold the same table, read with the code in column 0 and the name in column 1.
class tst_Navigator : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    const QString m_sqlite = u"Driver=QSQLITE;Database="_qs + m_dir.filePath(u"nav.db"_qs);
    const QString m_pg = qEnvironmentVariable("ZELKON_TEST_PG");
    const QString m_table = u"zelkon_nav_%1"_qs.arg(QCoreApplication::applicationPid());
    QString m_cs;

    void createTable(const QString &connectionString, bool create)
    {
        Connection connection;
        connection.Open(connectionString);
        QSqlQuery q(connection.database());
        QStringList statements = {u"DROP TABLE IF EXISTS %1"_qs};
        if (create)
            statements << u"CREATE TABLE %1 (id INTEGER, code VARCHAR(8), name VARCHAR(20))"_qs
                       << u"INSERT INTO %1 VALUES (1, 'A17', 'Abc'), (2, 'B2', 'abd'),"
                          " (3, 'C3', 'Xyz'), (4, 'D4', 'Abc'), (5, 'E5', NULL),"
                          " (6, 'F6', 'O''Neil')"_qs;
        for (const QString &s : statements)
            QVERIFY2(q.exec(s.arg(m_table)), qPrintable(s));
    }
    template<typename R>
    std::unique_ptr<R> open()
    {
        auto rs = std::make_unique<R>();
        rs->Open(u"SELECT code, name FROM %1 ORDER BY id"_qs.arg(m_table), m_cs);
        return rs;
    }
    // The form's Navigator shows the names of the case's recordset.
    std::unique_ptr<Recordset> bind(Form &form)
    {
        auto rs = open<Recordset>();
        form.nav->setProperty("FieldInd", 1);
        form.nav->setProperty("DataSourthe", QVariant::fromValue<QObject *>(rs.get()));
        return rs;
    }

private Q_SLOTS:
    void initTestCase_data() { addBackends(m_sqlite); }
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        for (const QString &cs : availableBackends(m_sqlite))
            createTable(cs, true);
    }
    void cleanupTestCase()
    {
        if (!m_pg.isEmpty())
            createTable(m_pg, false);
    }
    void init() { ZELKON_USE_BACKEND(m_cs); }

    void search_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("allCaps");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("colors");
        QTest::addColumn<int>("changes");
        // The first record that Find returns, compared without case; duplicates select the first.
        QTest::newRow("first of two cases")
            << u"ab"_qs << false << u"ab"_qs << 0 << int(Normal) << 2;
        QTest::newRow("narrowed") << u"abd"_qs << false << u"abd"_qs << 1 << int(Normal) << 3;
        QTest::newRow("no match") << u"abq"_qs << false << u"abq"_qs << -1 << int(Info) << 3;
        // The text goes into the criterion as typed: the recordset refuses it, which is no match.
        QTest::newRow("apostrophe") << u"O'"_qs << false << u"O'"_qs << -1 << int(Info) << 2;
        QTest::newRow("corrected") << u"abq\b"_qs << false << u"ab"_qs << 0 << int(Normal) << 4;
        // Each typed letter is one change and its upper case another; the caret stays at the end.
        QTest::newRow("all caps") << u"abc"_qs << true << u"ABC"_qs << 0 << int(Normal) << 6;
    }

    void search()
    {
        QFETCH(QString, typed);
        QFETCH(bool, allCaps);
        QFETCH(QString, text);
        Form form;
        const auto rs = bind(form);
        form.nav->setProperty("AllCaps", allCaps);
        QVERIFY(form.show());
        form.enter(); // the default text " " is selected on entry: typing replaces it
        QSignalSpy contextChange(form.nav, &Navigator::ContextChange);

        QTestEventList keys;
        for (const QString &part : typed.split(u'\b')) {
            keys.addKeyClicks(part);
            keys.addKeyClick(Qt::Key_Backspace);
        }
        delete keys.takeLast(); // the list owns its events
        keys.simulate(form.text1);

        QCOMPARE(form.text1->text(), text);
        QCOMPARE(form.text1->cursorPosition(), text.size());
        QTEST(int(contextChange.count()), "changes"); // one per change, the refused one too
        QTEST(form.row(), "row");
        QTEST(int(form.colors()), "colors");
        // One line per record with text, in recordset order, duplicates kept.
        QStringList lines;
        for (int i = 0; i < form.rows(); ++i)
            lines << form.list1->model()->index(i, 0).data().toString();
        QCOMPARE(lines, QStringList({u"Abc"_qs, u"abd"_qs, u"Xyz"_qs, u"Abc"_qs, u"O'Neil"_qs}));
    }

    void eraseAndClick()
    {
        // Given a text that matches nothing
        Form form;
        const auto rs = bind(form);
        QVERIFY(form.show());
        form.enter();
        QTest::keyClicks(form.text1, u"zz"_qs);
        QCOMPARE(form.colors(), Info);
        // When it is erased, then nothing is selected, the list is at its top, the colours stay
        QTest::keyClick(form.text1, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(form.text1, Qt::Key_Delete);
        QCOMPARE(form.row(), -1);
        QCOMPARE(form.list1->indexAt(QPoint(2, 2)).row(), 0);
        QCOMPARE(form.colors(), Info);

        // When the second "Abc" is clicked, then it is copied without a search (a search would
        // select the first "Abc"), with normal colours and one ContextChange
        QSignalSpy contextChange(form.nav, &Navigator::ContextChange);
        const QRect line = form.list1->visualRect(form.list1->model()->index(3, 0));
        QTest::mouseClick(form.list1->viewport(), Qt::LeftButton, {}, line.center());
        QCOMPARE(form.text1->text(), u"Abc"_qs);
        QCOMPARE(form.row(), 3);
        QCOMPARE(form.colors(), Normal);
        QCOMPARE(contextChange.count(), 1);
        QVERIFY(!form.closed());

        // When a line is double-clicked, then it is taken, the list closes and the text has the
        // focus
        const QRect third = form.list1->visualRect(form.list1->model()->index(2, 0));
        QTest::mouseClick(form.list1->viewport(), Qt::LeftButton, {}, third.center());
        QTest::mouseDClick(form.list1->viewport(), Qt::LeftButton, {}, third.center());
        QCOMPARE(form.text1->text(), u"Xyz"_qs);
        QVERIFY(form.closed());
        QVERIFY(form.text1->hasFocus());

        // Turning AllCaps on keeps the caret where it was
        form.text1->setCursorPosition(1);
        form.nav->setProperty("AllCaps", true);
        QCOMPARE(form.text1->text(), u"XYZ"_qs);
        QCOMPARE(form.text1->cursorPosition(), 1);
    }

    void openAndClose_data()
    {
        QTest::addColumn<bool>("upward");
        QTest::addColumn<QTestEventList>("keys"); // in the list, after Down in the text box
        QTest::addColumn<QString>("text");
        QTestEventList enter, escape, space;
        enter.addKeyClick(Qt::Key_Down);
        enter.addKeyClick(Qt::Key_Return);
        escape.addKeyClick(Qt::Key_Escape);
        space.addKeyClick(Qt::Key_End);
        space.addKeyClick(Qt::Key_Space);
        QTest::newRow("below, Enter") << false << enter << u"abd"_qs;
        QTest::newRow("above, Escape") << true << escape << u"Ab"_qs;
        QTest::newRow("above, End and Space") << true << space << u"O'Neil"_qs;
    }

    void openAndClose()
    {
        QFETCH(bool, upward);
        QFETCH(QTestEventList, keys);
        Form form;
        const auto rs = bind(form);
        form.nav->setProperty("UpDown", upward);
        form.nav->setProperty("Text", u"Ab"_qs);
        QVERIFY(form.show());
        const QRect closed = form.nav->geometry();
        const int textTop = form.nav->mapTo(&form.dialog, QPoint()).y();

        // Given the focus, the list opens on its side; the text box stays where it was on the form
        form.enter();
        QVERIFY(!form.closed());
        const int listHeight = form.list1->height();
        QCOMPARE(form.nav->height(), closed.height() + listHeight);
        QCOMPARE(form.text1->mapTo(&form.dialog, QPoint()).y(), textTop);
        QCOMPARE(form.list1->y(), upward ? 0 : closed.height());
        QVERIFY(form.list1->isVisible());

        // Escape in the text box closes it, any other key opens it again
        QTest::keyClick(form.text1, Qt::Key_Escape);
        QCOMPARE(form.nav->geometry(), closed);
        QTest::keyClick(form.text1, Qt::Key_Down);
        QVERIFY(!form.closed());
        QVERIFY(form.list1->hasFocus());

        // Keys in the list move the line (copied into the text), and Enter, Escape or Space close
        // it
        keys.simulate(form.list1);
        QTEST(form.text1->text(), "text");
        QCOMPARE(form.nav->geometry(), closed);
        QVERIFY(form.text1->hasFocus());

        // Leaving the control closes the list too
        QTest::mouseClick(form.text1, Qt::LeftButton);
        QVERIFY(!form.closed());
        form.other->setFocus(Qt::TabFocusReason);
        QCOMPARE(form.nav->geometry(), closed);
    }

    void disabledAndMouse()
    {
        // Given a disabled field, a data source still fills its list
        Form form;
        form.nav->setProperty("Enabled", false);
        const auto rs = bind(form);
        QCOMPARE(form.rows(), 5);
        QVERIFY(form.show());
        // When it is entered, clicked or typed in, then its list stays closed
        form.enter();
        QTest::keyClick(form.nav, Qt::Key_Down);
        QTest::mouseClick(form.text1, Qt::LeftButton);
        QVERIFY(form.closed() && !form.list1->isVisible());

        // Given it enabled again, when the text box is right-clicked with Shift, then the mouse
        // events carry the platform's arguments in the text box's coordinates
        form.nav->setProperty("Enabled", true);
        QSignalSpy down(form.nav, &Navigator::MouseDown);
        QSignalSpy up(form.nav, &Navigator::MouseUp);
        QTest::mouseClick(form.text1, Qt::RightButton, Qt::ShiftModifier, QPoint(7, 5));
        const QVariantList expected = {qint16(2), qint16(1), 7.0f, 5.0f};
        QCOMPARE(down, QList<QVariantList>({expected}));
        QCOMPARE(up, QList<QVariantList>({expected}));
    }

    void text2()
    {
        Form form;
        const auto rs = bind(form);
        form.nav->setProperty("FieldInd2", 0);
        form.nav->setProperty("Text", u"xyz"_qs);
        QCOMPARE(form.nav->property("Text2").toString(), u"C3"_qs);
        QCOMPARE(form.colors(), Normal);
        form.nav->setProperty("Text", u"xy"_qs); // an exact match only
        QCOMPARE(form.nav->property("Text2").toString(), QString());
        QCOMPARE(form.colors(), Info);

        QVERIFY(form.nav->setProperty("Text2", u"B2"_qs));
        QCOMPARE(form.text1->text(), u"abd"_qs);
        QCOMPARE(form.row(), 1);
        QCOMPARE(form.colors(), Normal);
        QVERIFY(form.nav->setProperty("Text2", u"B'"_qs));
        QCOMPARE(form.text1->text(), QString());
        QCOMPARE(form.colors(), Info);
    }

    void badSources_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<int>("field");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("colors"); // after a search
        QTest::newRow("none") << u"none"_qs << 1 << 0 << int(Normal);
        QTest::newRow("closed") << u"closed"_qs << 1 << 0 << int(Info);
        QTest::newRow("field out of range") << u"open"_qs << 7 << 0 << int(Info);
        QTest::newRow("no members") << u"plain"_qs << 1 << 0 << int(Info);
        QTest::newRow("not an object") << u"text"_qs << 1 << 0 << int(Info);
        QTest::newRow("host's own recordset") << u"host"_qs << 1 << 5 << int(Normal);
    }

    void badSources()
    {
        QFETCH(QString, source);
        QFETCH(int, field);
        QFETCH(int, rows);
        Form form;
        const auto rs = open<Recordset>();
        const auto host = open<HostRecordset>();
        QObject plain;
        if (source == u"closed")
            rs->Close();
        const QVariant value = source == u"none" ? QVariant()
            : source == u"text"                  ? QVariant(u"people"_qs)
            : source == u"plain"                 ? QVariant::fromValue(&plain)
            : source == u"host"                  ? QVariant::fromValue<QObject *>(host.get())
                                                 : QVariant::fromValue<QObject *>(rs.get());
        form.nav->setProperty("FieldInd", field);
        form.nav->setProperty("FieldInd2", field);
        QVERIFY(form.nav->setProperty("DataSourthe", value));
        QCOMPARE(form.rows(), rows);

        QVERIFY(form.show());
        form.enter();
        QTest::keyClicks(form.text1, u"ab"_qs);
        QCOMPARE(form.row(), rows ? 0 : -1);
        QTEST(int(form.colors()), "colors");
        QCOMPARE(form.platform.messages(), QStringList());
        form.nav->setProperty("Text2", u"x"_qs);
        QCOMPARE(form.text1->text(), QString());
    }

    void listLines_data()
    {
        QTest::addColumn<int>("lines");
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("points");
        QTest::newRow("one, the form's font") << 1 << QString() << 0;
        QTest::newRow("three, 8 pt sans") << 3 << u"DejaVu Sans"_qs << 8;
        QTest::newRow("four, 20 pt serif") << 4 << u"DejaVu Serif"_qs << 20;
        QTest::newRow("seven, 13 pt mono") << 7 << u"DejaVu Sans Mono"_qs << 13;
    }

    void listLines()
    {
        // Given ListLine, then a data source, an open list and a font
        QFETCH(int, lines);
        QFETCH(QString, family);
        QFETCH(int, points);
        Form form;
        QVERIFY(form.nav->setProperty("ListLine", lines));
        const auto rs = bind(form);
        QVERIFY(form.show());
        form.enter();
        if (points) {
            form.nav->setProperty("FontName", family);
            form.nav->setProperty("FontSize", points);
        }
        // Then exactly that many whole lines show, and ListLine reads back
        const QRect first = form.list1->visualRect(form.list1->model()->index(0, 0));
        QCOMPARE(form.list1->viewport()->height(), lines * first.height());
        QCOMPARE(form.nav->property("ListLine").toInt(), lines);
    }

    void persistence()
    {
        // Every persisted key survives a form file.
        QWidget form;
        auto *nav = qobject_cast<Navigator *>(createControl(u"Navigator"_qs, &form));
        nav->setObjectName(u"nav"_qs);
        const QVariantMap values = {
            {u"Text"_qs, u"Ab"_qs}, {u"LockEdits"_qs, true}, {u"AllCaps"_qs, true},
            {u"UpDown"_qs, true},   {u"FieldInd"_qs, 3},     {u"FieldInd2"_qs, 2},
            {u"CharCount"_qs, 12},  {u"ListLine"_qs, 7},     {u"Enabled"_qs, false},
        };
        QSignalSpy changed(nav, &Control::PropertyChanged);
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            QVERIFY(nav->setProperty(qPrintable(it.key()), it.value()));
        QStringList reported; // every put is reported under its own name
        for (const QVariantList &call : std::as_const(changed))
            reported << call.first().toString();
        QCOMPARE(reported, values.keys());
        QTemporaryDir dir;
        const QString path = dir.filePath(u"form.zelkon"_qs);
        saveForm(form, path);

        QWidget loaded;
        const QList<Control *> controls = loadForm(loaded, path);
        QCOMPARE(controls.size(), 1);
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            QVariant expected = it.value();
            if (it.key() == u"Text")
                expected = u"AB"_qs; // in upper case, as AllCaps keeps it
            QCOMPARE(controls.first()->property(qPrintable(it.key())).toString(),
                     expected.toString());
        }
        MemoryPropertyBag defaults;
        Navigator fresh;
        fresh.InitProperties();
        fresh.WriteProperties(defaults);
        QCOMPARE(defaults.keys(), QStringList());
    }
};

QTEST_MAIN(tst_Navigator)
#include "tst_navigator.moc"
