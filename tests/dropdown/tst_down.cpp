#include "support/errorof.h"

#include <zelkon/common/error.h>
#include <zelkon/common/formfile.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/dropdown/down.h>
#include <zelkon/dropdown/lbvalue.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QCursor>
#include <QLabel>
#include <QListWidget>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>

using namespace zelkon;
using namespace Qt::StringLiterals;

namespace {

// One AddItem call by name, with as many arguments as the row gives (Text, Key, Value, Checked).
struct Add
{
    QString text;
    QString key;
    bool checked = false;
    int arguments = 4;
};

void addByName(Down &down, const Add &add)
{
    const QVariant value = add.text.toLower();
    QGenericArgument args[] = {Q_ARG(QString, add.text), Q_ARG(QString, add.key),
                               Q_ARG(QVariant, value), Q_ARG(bool, add.checked)};
    std::fill(std::begin(args) + add.arguments, std::end(args), QGenericArgument());
    QVERIFY(QMetaObject::invokeMethod(&down, "AddItem", args[0], args[1], args[2], args[3]));
}

QString shown(const Down &down)
{
    return down.findChild<QComboBox *>(u"txt"_s)->currentText();
}

QListWidget *popupList(const Down &down)
{
    // A closed pop-up lingers, hidden, until the event loop deletes it.
    for (auto *form : down.findChildren<QWidget *>(u"DownForm"_s)) {
        if (form->isVisible())
            return form->findChild<QListWidget *>(u"lst"_s);
    }
    return nullptr;
}

// A run-mode Down on a shown form, `offset` inside a container on that form. Counts the
// deactivations that reach the form past the filters installed after this one.
struct Host : QObject
{
    explicit Host(const QPoint &offset = {})
    {
        form.resize(400, 300);
        box = new QWidget(&form);
        box->setGeometry(QRect(offset, QSize(300, 80)));
        down = qobject_cast<Down *>(createControl(u"Down"_s, box));
        down->setGeometry(10, 20, 200, down->sizeHint().height());
        MemoryPropertyBag bag;
        down->ReadProperties(bag);
        form.installEventFilter(this);
        QObject::connect(down, &Down::OnClose, &form, [this] { ++closes; });
        form.show();
        form.activateWindow();
    }
    bool open()
    {
        QTest::mouseClick(down->findChild<QComboBox *>(u"txt"_s), Qt::LeftButton);
        return popupList(*down) != nullptr;
    }
    bool eventFilter(QObject *, QEvent *event) override
    {
        deactivations += event->type() == QEvent::WindowDeactivate;
        return false;
    }
    // Whether a deactivation of the form reaches it (the hook lets it through only when closed).
    bool formSeesDeactivation()
    {
        const int before = deactivations;
        QEvent event(QEvent::WindowDeactivate);
        QCoreApplication::sendEvent(&form, &event);
        return deactivations > before;
    }

    QWidget form;
    QWidget *box;
    Down *down;
    int deactivations = 0;
    int closes = 0;
};

} // namespace

Q_DECLARE_METATYPE(QList<Add>)

class tst_Down : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addItem_data();
    void addItem();
    void lookupErrors_data();
    void lookupErrors();
    void removeAndClearKeepCaption();
    void redrawAndPuts();
    void persistence();
    void popupGeometry_data();
    void popupGeometry();
    void toggles_data();
    void toggles();
    void closing_data();
    void closing();
};

void tst_Down::addItem_data()
{
    QTest::addColumn<QList<Add>>("adds");
    QTest::addColumn<QStringList>("captions"); // shown after each call
    QTest::addColumn<int>("error"); // of the last call
    QTest::addColumn<int>("checkedCount");
    QTest::addColumn<int>("listCount");

    const QString n;
    QTest::newRow("three checked")
        << QList<Add>{{u"A"_s, n, true}, {u"B"_s, n, true}, {u"C"_s, n, true}}
        << QStringList{u"A"_s, u"<List>"_s, u"<List>"_s} << 0 << 3 << 3;
    QTest::newRow("text only") << QList<Add>{{u"A"_s, n, false, 1}} << QStringList{n} << 0 << 0
                               << 1;
    QTest::newRow("unchecked changes nothing")
        << QList<Add>{{u"A"_s, n, true}, {u"B"_s, n, false}, {u"C"_s, n, false, 1}}
        << QStringList{u"A"_s, u"A"_s, u"A"_s} << 0 << 1 << 3;
    QTest::newRow("duplicate key counts the checked item first")
        << QList<Add>{{u"A"_s, u"k"_s, true}, {u"B"_s, u"K"_s, true}}
        << QStringList{u"A"_s, u"<List>"_s} << int(DuplicateKey) << 2 << 1;
    QTest::newRow("duplicate key by name, unchecked")
        << QList<Add>{{u"A"_s, u"key"_s, false}, {u"B"_s, u"KEY"_s, false, 2}} << QStringList{n, n}
        << int(DuplicateKey) << 0 << 1;
    QTest::newRow("blanks around a key make another key")
        << QList<Add>{{u"A"_s, u"k"_s}, {u"B"_s, u" k"_s}, {u"C"_s, u"k "_s}}
        << QStringList{n, n, n} << 0 << 0 << 3;
    QTest::newRow("a key of blanks is no key")
        << QList<Add>{{u"A"_s, u"  "_s}, {u"B"_s, u"  "_s, true}} << QStringList{n, u"B"_s} << 0
        << 1 << 2;
}

void tst_Down::addItem()
{
    // Given a run-mode list, when items are added by name, then each checked one updates the
    // count and the caption before its key is filed.
    QFETCH(QList<Add>, adds);
    QFETCH(QStringList, captions);
    QFETCH(int, error);
    std::unique_ptr<Control> control(createControl(u"Down"_s));
    auto &down = *qobject_cast<Down *>(control.get());
    down.setRedraw(true);
    for (qsizetype i = 0; i < adds.size(); ++i) {
        const int raised = errorOf([&] { addByName(down, adds.at(i)); });
        QCOMPARE(raised, i == adds.size() - 1 ? error : 0);
        QCOMPARE(shown(down), captions.at(i));
    }
    QTEST(down.CheckedCount(), "checkedCount");
    QTEST(down.ListCount(), "listCount");
    LBValue *first = nullptr;
    QVERIFY(QMetaObject::invokeMethod(&down, "ListItem", Q_RETURN_ARG(zelkon::LBValue *, first),
                                      Q_ARG(QVariant, 1)));
    QCOMPARE(first->Text(), adds.first().text);
    const QVariant value = first->Value();
    QVERIFY(adds.first().arguments > 2 ? value == adds.first().text.toLower() : IsMissing(value));
}

void tst_Down::lookupErrors_data()
{
    QTest::addColumn<QVariant>("index");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("text"); // of the item found

    QTest::newRow("first position") << QVariant(1) << 0 << u"A"_s;
    QTest::newRow("position rounds half to even") << QVariant(2.5) << 0 << u"B"_s;
    QTest::newRow("key in other case") << QVariant(u"KEY b"_s) << 0 << u"B"_s;
    QTest::newRow("position 0") << QVariant(0) << int(SubscriptOutOfRange) << QString();
    QTest::newRow("position past the end") << QVariant(4) << int(SubscriptOutOfRange) << QString();
    QTest::newRow("unknown key") << QVariant(u"key"_s) << int(InvalidProcedureCall) << QString();
    QTest::newRow("a number as text is a key")
        << QVariant(u"1"_s) << int(InvalidProcedureCall) << QString();
}

void tst_Down::lookupErrors()
{
    // Given three items, when one is looked up or removed, then a bad index raises the
    // collection's error and changes nothing; a good one finds the item itself.
    QFETCH(QVariant, index);
    QFETCH(int, error);
    QFETCH(QString, text);
    Down down;
    down.AddItem(u"A"_s, u"key a"_s, 1, true);
    down.AddItem(u"B"_s, u"key b"_s, 2, true);
    down.AddItem(u"C"_s);
    LBValue *found = nullptr;
    QCOMPARE(errorOf([&] { found = down.ListItem(index); }), error);
    QCOMPARE(errorOf([&] { down.RemoveItem(index); }), error);
    QCOMPARE(down.ListCount(), error ? 3 : 2);
    QCOMPARE(down.CheckedCount(), error ? 2 : 1);
    if (!error)
        QCOMPARE(found->Text(), text);
}

void tst_Down::removeAndClearKeepCaption()
{
    // Given a run-mode list with one checked item, when items are changed through ListItem and
    // removed, then the count moves by the removed items' own checks and is never recounted, and
    // the caption stays as it was.
    Down down;
    down.setRedraw(true);
    down.AddItem(u"Only"_s, u"o"_s, {}, true);
    down.AddItem(u"Later"_s, u"l"_s);
    LBValue *later = down.ListItem(u"L"_s);
    QCOMPARE(later, down.ListItem(2)); // the item itself, not a copy
    QVERIFY(later->setProperty("Checked", true)); // not counted: the list did not see it
    QVERIFY(later->setProperty("Text", u"Renamed"_s));
    QCOMPARE(down.ListItem(2)->Text(), u"Renamed"_s);
    QVERIFY(!later->setProperty("Key", u"x"_s)); // read-only
    QCOMPARE(down.CheckedCount(), 1);

    down.RemoveItem(u"O"_s);
    QCOMPARE(down.CheckedCount(), 0);
    QCOMPARE(shown(down), u"Only"_s);
    down.RemoveItem(1);
    QCOMPARE(down.CheckedCount(), -1);
    QCOMPARE(down.ListCount(), 0);
    down.AddItem(u"Again"_s, u"o"_s); // a removed key is free again
    down.Clear();
    QCOMPARE(down.CheckedCount(), 0);
    QCOMPARE(down.ListCount(), 0);
    QCOMPARE(shown(down), u"Only"_s);

    QObject *item = createObject(u"lbvalue"_s);
    QVERIFY(qobject_cast<LBValue *>(item));
    QCOMPARE(item->property("Key").toString(), QString());
    delete item;
}

void tst_Down::redrawAndPuts()
{
    // Given a list that does not redraw, when captions change, then the screen keeps its text
    // until Redraw is switched on; caption puts report themselves and refresh nothing.
    Down down;
    QSignalSpy changed(&down, &Control::PropertyChanged);
    down.AddItem(u"A"_s, {}, {}, true);
    down.AddItem(u"B"_s, {}, {}, true);
    QCOMPARE(shown(down), QString());
    QVERIFY(down.setProperty("Redraw", true));
    QCOMPARE(shown(down), u"<List>"_s);
    QVERIFY(down.setProperty("CaptionGroup", u"Several"_s));
    QVERIFY(down.setProperty("CaptionGroup", u"Several"_s));
    QVERIFY(down.setProperty("CaptionNothing", u"None"_s));
    QVERIFY(down.setProperty("VisibleCount", -3)); // no range check
    QCOMPARE(shown(down), u"<List>"_s);
    down.AddItem(u"C"_s, {}, {}, true);
    QCOMPARE(shown(down), u"Several"_s);
    QStringList names;
    for (const QList<QVariant> &call : std::as_const(changed))
        names << call.at(0).toString();
    QCOMPARE(names,
             (QStringList{u"Redraw"_s, u"CaptionGroup"_s, u"CaptionGroup"_s, u"CaptionNothing"_s,
                          u"VisibleCount"_s}));
    QCOMPARE(down.VisibleCount(), -3);
}

void tst_Down::persistence()
{
    // Given changed captions and row count, when the form is saved and opened in run mode, then
    // they come back, the caption shows CaptionNothing, and defaults store nothing.
    QWidget form;
    auto *down = qobject_cast<Down *>(createControl(u"Down"_s, &form));
    down->InitProperties();
    down->setVisibleCount(12);
    down->setCaptionNothing(u"none"_s);
    down->setCaptionGroup(u"some"_s);
    QTemporaryDir dir;
    const QString path = dir.filePath(u"form.zelkon"_s);
    saveForm(form, path);
    QWidget loadedForm;
    const QList<Control *> loaded = loadForm(loadedForm, path);
    QCOMPARE(loaded.size(), 1);
    auto *copy = qobject_cast<Down *>(loaded.first());
    QVERIFY(copy);
    QCOMPARE(copy->VisibleCount(), 12);
    QCOMPARE(copy->CaptionGroup(), u"some"_s);
    QCOMPARE(copy->CaptionNothing(), u"none"_s);
    QVERIFY(copy->Redraw());
    QCOMPARE(shown(*copy), u"none"_s);

    MemoryPropertyBag defaults;
    Down fresh;
    fresh.InitProperties();
    fresh.WriteProperties(defaults);
    QCOMPARE(defaults.keys(), QStringList());
}

void tst_Down::popupGeometry_data()
{
    QTest::addColumn<int>("items");
    QTest::addColumn<int>("visibleCount");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QPoint>("offset"); // of the container on the form
    QTest::addColumn<int>("width"); // asked of the control

    QTest::newRow("empty list: its frame only") << 0 << 8 << 0 << QPoint() << 200;
    QTest::newRow("three of eight") << 3 << 8 << 3 << QPoint() << 200;
    QTest::newRow("twenty shows eight") << 20 << 8 << 8 << QPoint() << 200;
    QTest::newRow("negative count as empty") << 5 << -2 << 0 << QPoint() << 200;
    QTest::newRow("container offset not added") << 2 << 8 << 2 << QPoint(40, 30) << 200;
    QTest::newRow("never narrower than two faces") << 1 << 8 << 1 << QPoint() << 5;
}

void tst_Down::popupGeometry()
{
    // Given a Down in a container on a form, laid out with the combo box across it and the face
    // and its label at the right edge, when a left press on the combo box opens the pop-up, then
    // it lies under the control's place read against the form, as wide as the control and as
    // high as its rows.
    QFETCH(int, items);
    QFETCH(QPoint, offset);
    QFETCH(int, visibleCount);
    QFETCH(int, width);
    Host host(offset);
    host.down->resize(width, host.down->height());
    const auto *pct = host.down->findChild<QLabel *>(u"pct"_s);
    QCOMPARE(host.down->width(), qMax(width, 2 * pct->width()));
    QCOMPARE(host.down->findChild<QComboBox *>(u"txt"_s)->geometry(), host.down->rect());
    QCOMPARE(pct->geometry().right(), host.down->rect().right());
    QCOMPARE(host.down->findChild<QLabel *>(u"lbl"_s)->geometry(), pct->geometry());
    host.down->setVisibleCount(visibleCount);
    for (int i = 0; i < items; ++i)
        host.down->AddItem(u"Item %1"_s.arg(i));
    QVERIFY(host.open());
    QListWidget *lst = popupList(*host.down);
    QWidget *popup = lst->window();
    QCOMPARE(popup->objectName(), u"DownForm"_s);
    const QPoint at = host.form.mapToGlobal(host.down->pos());
    QCOMPARE(popup->pos(), QPoint(at.x(), at.y() + host.down->height()));
    QCOMPARE(popup->width(), host.down->width());
    QFETCH(int, rows);
    const int rowHeight = items ? lst->sizeHintForRow(0) : 0;
    QCOMPARE(popup->height(), rows * rowHeight + 2 * lst->frameWidth());
    QCOMPARE(lst->count(), items);
}

void tst_Down::toggles_data()
{
    QTest::addColumn<QList<bool>>("checks"); // of A, B, C
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("veto");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("uncounted"); // an item checked through ListItem, not counted
    QTest::addColumn<int>("wantedRow"); // of C

    QTest::newRow("first check names it")
        << QList<bool>{false, false, false} << 1 << false << 1 << u"B"_s << 0 << -5;
    QTest::newRow("second check gives the group")
        << QList<bool>{true, false, false} << 2 << false << 2 << u"<List>"_s << 0 << 99;
    QTest::newRow("last uncheck gives nothing")
        << QList<bool>{false, true, false} << 1 << false << 0 << u"<Nothing>"_s << 0 << -1;
    QTest::newRow("one left: the first checked in list order")
        << QList<bool>{true, false, true} << 0 << false << 1 << u"C"_s << 0 << -1;
    QTest::newRow("vetoed check") << QList<bool>{true, false, false} << 1 << true << 1 << u"A"_s
                                  << 0 << -1;
    QTest::newRow("vetoed uncheck")
        << QList<bool>{true, true, false} << 0 << true << 2 << u"<List>"_s << 0 << -1;
    QTest::newRow("count of one names the first checked")
        << QList<bool>{false, false, false} << 2 << false << 1 << u"B"_s << 2 << -1;
    QTest::newRow("row 0 is item 1 when C wants row 0")
        << QList<bool>{true, false, false} << 0 << false << 2 << u"<List>"_s << 0 << 0;
}

void tst_Down::toggles()
{
    // Given an open pop-up filled in list order (C at its wanted row, if any, past the end
    // appended), when the user toggles a row with the space key, then OnItemCheck comes once,
    // with the row and item row + 1 of the list (not reported while filling); accepted, the
    // count and caption follow; vetoed by the handler, the row shows the item's state and the
    // count and caption stay.
    QFETCH(QList<bool>, checks);
    QFETCH(int, row);
    QFETCH(bool, veto);
    QFETCH(int, wantedRow);
    Host host;
    const QStringList texts = {u"A"_s, u"B"_s, u"C"_s};
    for (int i = 0; i < 3; ++i)
        host.down->AddItem(texts.at(i), {}, {}, checks.at(i), i == 2 ? wantedRow : -1);
    QFETCH(int, uncounted);
    if (uncounted)
        host.down->ListItem(uncounted)->setChecked(true);
    QList<QPair<int, QString>> reported;
    connect(host.down, &Down::OnItemCheck, this, [&](qint16 &index, LBValue *&item) {
        reported.append({index, item->Text()});
        if (veto)
            item->setChecked(!item->Checked());
    });
    QVERIFY(host.open());
    QListWidget *lst = popupList(*host.down);
    QCOMPARE(lst->item(0)->text(), wantedRow == 0 ? u"C"_s : u"A"_s);
    const bool before = lst->item(row)->checkState() == Qt::Checked;
    lst->setCurrentRow(row);
    QTest::keyClick(lst, Qt::Key_Space);
    QCOMPARE(reported, (QList<QPair<int, QString>>{{row, texts.at(row)}}));
    const bool shown = lst->item(row)->checkState() == Qt::Checked;
    QCOMPARE(shown, veto ? before : !before);
    QCOMPARE(host.down->ListItem(row + 1)->Checked(), shown);
    QTEST(host.down->CheckedCount(), "count");
    QTEST(host.down->findChild<QComboBox *>(u"txt"_s)->currentText(), "caption");
}

void tst_Down::closing_data()
{
    QTest::addColumn<QString>("opening"); // press, double click, or press and then the face
    QTest::addColumn<QString>("how");
    QTest::addColumn<bool>("closes");
    QTest::newRow("enter") << u"press"_s << u"enter"_s << true;
    QTest::newRow("escape after a double click") << u"double"_s << u"escape"_s << true;
    QTest::newRow("escape, opened twice") << u"twice"_s << u"escape"_s << true;
    QTest::newRow("another key") << u"press"_s << u"down"_s << false;
    QTest::newRow("click outside") << u"press"_s << u"outside"_s << true;
    QTest::newRow("click inside") << u"press"_s << u"inside"_s << false;
    QTest::newRow("Free") << u"press"_s << u"free"_s << true;
}

void tst_Down::closing()
{
    // Given a pop-up opened from the combo box (whose own list stays shut), when the user
    // presses a key, clicks, or the host calls Free, then Enter, Escape, a click outside and Free
    // close it, OnClose comes once and the form's one hook is gone; other keys and a click
    // inside leave it open. After Free a click on the combo box opens the combo's own list.
    QFETCH(QString, opening);
    QFETCH(QString, how);
    QFETCH(bool, closes);
    Host host;
    host.down->AddItem(u"A"_s);
    host.down->AddItem(u"B"_s);
    QVERIFY(QTest::qWaitForWindowActive(&host.form));
    auto *txt = host.down->findChild<QComboBox *>(u"txt"_s);
    if (opening == "double"_L1)
        QTest::mouseDClick(txt, Qt::LeftButton);
    else
        QVERIFY(host.open());
    if (opening == "twice"_L1) {
        QTest::mousePress(host.down->findChild<QLabel *>(u"lbl"_s), Qt::LeftButton);
        QTest::mouseRelease(host.down->findChild<QLabel *>(u"lbl"_s), Qt::LeftButton);
    }
    QListWidget *lst = popupList(*host.down);
    QVERIFY(lst);
    QVERIFY(!txt->view()->isVisible());
    QWidget *popup = lst->window();
    // The pop-up takes the activation; the form does not see it go.
    QVERIFY(QTest::qWaitForWindowActive(popup));
    QCOMPARE(host.deactivations, 0);
    QVERIFY(!host.formSeesDeactivation());
    if (how == "enter"_L1 || how == "escape"_L1 || how == "down"_L1) {
        const Qt::Key key = how == "enter"_L1 ? Qt::Key_Return
            : how == "escape"_L1              ? Qt::Key_Escape
                                              : Qt::Key_Down;
        // Twice before the event loop runs again, as a held key does: still one OnClose.
        QTest::keyClick(lst, key);
        QTest::keyClick(lst, key);
    } else if (how == "free"_L1) {
        host.down->Free();
    } else {
        // The mouse leaves: within a timer tick the pop-up takes it, and gives it back inside.
        QCursor::setPos(host.form.mapToGlobal(QPoint(380, 280)));
        QTRY_COMPARE(QWidget::mouseGrabber(), popup);
        if (how == "inside"_L1) {
            QCursor::setPos(popup->geometry().center());
            QTRY_VERIFY(!QWidget::mouseGrabber());
            const QRect row = lst->visualItemRect(lst->item(1));
            QTest::mouseClick(popup->windowHandle(), Qt::LeftButton, {},
                              lst->viewport()->mapTo(popup, row.center()));
        } else {
            // Through the window system's path, where the mouse goes to the window holding it.
            QTest::mouseClick(host.form.windowHandle(), Qt::LeftButton, {}, QPoint(380, 280));
        }
    }
    QCoreApplication::processEvents();
    QCOMPARE(popupList(*host.down) == nullptr, closes);
    QCOMPARE(host.closes, closes ? 1 : 0);
    QCOMPARE(host.formSeesDeactivation(), closes);
    if (!closes)
        return;
    QVERIFY(!QWidget::mouseGrabber());
    QCOMPARE(host.open(), how != "free"_L1); // it opens again, unless the hooks are gone
    QCOMPARE(txt->view()->isVisible(), how == "free"_L1);
    txt->hidePopup();
}

QTEST_MAIN(tst_Down)
#include "tst_down.moc"
