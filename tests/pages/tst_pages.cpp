#include <zelkon/common/control.h>
#include <zelkon/common/conversions.h>
#include <zelkon/common/propertypage.h>
#include <zelkon/common/registry.h>
#include <zelkon/test/testplatform.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QDateTimeEdit>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace zelkon;
using namespace Qt::StringLiterals;

namespace {

// An edit a designer makes on one field of a page.
struct Edit
{
    QString field;
    QTestEventList events;
};
using Edits = QList<Edit>;
using Texts = QMap<QString, QString>; // property or field name -> its value as text

Edit click(const QString &field)
{
    QTestEventList events;
    events.addKeyClick(Qt::Key_Space);
    return {field, events};
}

// Replaces the field's text as a designer does: select all, then type.
Edit type(const QString &field, const QString &text)
{
    QTestEventList events;
    events.addKeyClick(Qt::Key_Home);
    events.addKeyClick(Qt::Key_End, Qt::ShiftModifier);
    events.addKeyClicks(text);
    return {field, events};
}

// The widget that takes a field's key clicks: a text field's own edit line, or the field itself.
QWidget *keyTarget(QWidget *field)
{
    if (qobject_cast<QAbstractButton *>(field) || qobject_cast<QLineEdit *>(field))
        return field;
    if (auto *dates = field->findChild<QDateTimeEdit *>())
        return dates;
    return field->findChild<QLineEdit *>();
}

// The class of the controls that a page edits.
QString controlOf(const QString &page)
{
    return page == u"checkProperties"_s  ? u"CheckCombo"_s
        : page == u"RelDateProperties"_s ? u"RelDate"_s
                                         : u"NumEdit"_s;
}

// A page from its name over two of its controls; the first one is the selection's.
struct Design
{
    Design(const QString &pageName, const QVariantMap &properties)
        : page(createPropertyPage(pageName))
        , first(createControl(controlOf(pageName)))
        , second(createControl(controlOf(pageName)))
    {
        // Newly placed on a form, as a designer's controls are.
        first->InitProperties();
        second->InitProperties();
        for (auto it = properties.begin(); it != properties.end(); ++it)
            first->setProperty(it.key().toUtf8(), it.value());
        page->setSelectedControls({first.get(), second.get()});
        page->show();
    }
    QWidget *field(const QString &name) const { return page->findChild<QWidget *>(name); }
    void edit(Edits edits) const
    {
        for (Edit &e : edits)
            e.events.simulate(keyTarget(field(e.field)));
    }
    static Texts read(const QObject *control, const Texts &names)
    {
        Texts texts;
        for (auto it = names.begin(); it != names.end(); ++it)
            texts[it.key()] = CStr(control->property(it.key().toUtf8()));
        return texts;
    }

    TestPlatform platform;
    std::unique_ptr<PropertyPage> page;
    std::unique_ptr<Control> first;
    std::unique_ptr<Control> second;
};

} // namespace

class tst_Pages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every field of each page, by its check box's or its label's name, with that caption.
    void fields_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("caption");
        const auto rows
            = [](const QString &page, std::initializer_list<std::pair<QString, QString>> list) {
                  for (const auto &[name, caption] : list)
                      QTest::addRow("%s %s", qPrintable(page), qPrintable(name))
                          << page << name << caption;
              };
        // Two fields a line.
        // clang-format off
        rows(u"checkProperties"_s,
            {{u"chkAllSelect"_s, u"Enable Select All"_s}, {u"chkInv"_s, u"Enable Inverted"_s},
            {u"chkSorting"_s, u"Sort List"_s}, {u"chkEditEnabled"_s, u"EditEnabled"_s},
            {u"chkSingleCheck"_s, u"Single Check Only"_s}, {u"lblDelay"_s, u"Delay:"_s},
            {u"lblMaxLine"_s, u"Line Count:"_s}, {u"lblTitle"_s, u"Title:"_s}});
        rows(u"RelDateProperties"_s,
            {{u"lblRetDate"_s, u"Date:"_s}, {u"lblRetNum"_s, u"Number Of Day:"_s},
            {u"lblCustomFormat"_s, u"Custom Date Format:"_s}, {u"chkRelative"_s, u"Relative Date"_s},
            {u"chkMenuStateVisible"_s, u"Allow Change State From PopUp Menu"_s},
            {u"lblBootControl"_s, u"Botoom Bound Control Name:"_s},
            {u"lblTopControl"_s, u"Top Bound Control Name:"_s},
            {u"chkSynchValue"_s, u"Synchronisation Value All Controls"_s},
            {u"chkAllowAll"_s, u"Allow All Dates"_s}, {u"UpDown"_s, u"UpDown"_s},
            {u"lblMaxDate"_s, u"Max Date"_s}, {u"lblMinDate"_s, u"Min Date"_s}});
        rows(u"neProperties"_s,
            {{u"chkEnabled"_s, u"Enabled"_s}, {u"lblMaxValue"_s, u"Min Value:"_s},
            {u"lblMinValue"_s, u"Max Value:"_s}, {u"lblBorder"_s, u"Borders:"_s},
            {u"lblFontSize"_s, u"Font Size:"_s}, {u"lblFontName"_s, u"Font Name:"_s},
            {u"chkLockEdits"_s, u"Lock Edits"_s}, {u"lblDigNum"_s, u"Number Of Digits:"_s},
            {u"lblValue"_s, u"Value:"_s}});
        // clang-format on
    }
    void fields()
    {
        QFETCH(QString, page);
        QFETCH(QString, name);
        QFETCH(QString, caption);
        // Given a page just filled from its selection
        const Design design(page, {});
        QWidget *field = design.field(name);
        QVERIFY2(field, qPrintable(name));
        if (const auto *label = qobject_cast<const QLabel *>(field)) {
            QCOMPARE(label->text(), caption);
            field = label->buddy();
        } else {
            QCOMPARE(qobject_cast<const QAbstractButton *>(field)->text(), caption);
        }
        QSignalSpy changed(design.page.get(), &PropertyPage::ChangedChanged);
        // When the designer edits the field
        QWidget *target = keyTarget(field);
        QTestEventList events;
        if (qobject_cast<QAbstractButton *>(target))
            events.addKeyClick(Qt::Key_Space);
        else if (qobject_cast<QDateTimeEdit *>(target))
            // Each picker shows its own bound: only a step inward changes it.
            events.addKeyClick(field->objectName() == u"MinDate"_s ? Qt::Key_Up : Qt::Key_Down);
        else
            events.addKeyClicks(u"7"_s);
        events.simulate(target);
        // Then the page is changed, reported once
        QVERIFY(design.page->Changed());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().toBool(), true);
    }
    void unknownPage()
    {
        QCOMPARE(createPropertyPage(u"CheckProperties"_s), nullptr);
        // The numeric fields of the check list's page are real numeric controls.
        const std::unique_ptr<PropertyPage> p(createPropertyPage(u"checkProperties"_s));
        QCOMPARE(p->findChild<QWidget *>(u"txtDelay"_s)->metaObject()->className(),
                 "zelkon::NumEdit");
        QCOMPARE(p->findChild<QWidget *>(u"txtMaxLine"_s)->metaObject()->className(),
                 "zelkon::NumEdit");
    }
    void readsFirstControl_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QVariantMap>("properties");
        QTest::addColumn<Texts>("shown");
        QTest::newRow("check list") << u"checkProperties"_s
                                    << QVariantMap{{u"Inv"_s, true},
                                                   {u"Sorting"_s, false},
                                                   {u"Delay"_s, 300},
                                                   {u"Title"_s, u"Towns"_s}}
                                    << Texts{{u"chkInv"_s, u"1"_s},
                                             {u"chkSorting"_s, u"0"_s},
                                             {u"txtDelay"_s, u"300"_s},
                                             {u"txtTitle"_s, u"Towns"_s}};
        QTest::newRow("relative date") << u"RelDateProperties"_s
                                       << QVariantMap{{u"Relative"_s, true},
                                                      {u"RetNum"_s, -3},
                                                      {u"TopControl"_s, u"NoSuchControl"_s}}
                                       << Texts{{u"chkRelative"_s, u"1"_s},
                                                {u"txtRetNum"_s, u"-3"_s},
                                                {u"txtTopControl"_s, u""_s}};
        QTest::newRow("numeric") << u"neProperties"_s
                                 << QVariantMap{{u"DigNum"_s, 2},
                                                {u"MaxValue"_s, 10},
                                                {u"MinValue"_s, -5},
                                                {u"Value"_s, 2.5},
                                                {u"LockEdits"_s, true}}
                                 << Texts{{u"txtMinValue"_s, u"-5"_s},
                                          {u"txtValue"_s, u"2.5"_s},
                                          {u"chkLockEdits"_s, u"1"_s},
                                          {u"chkEnabled"_s, u"1"_s}};
    }
    void readsFirstControl()
    {
        QFETCH(QString, page);
        QFETCH(QVariantMap, properties);
        QFETCH(Texts, shown);
        const Design design(page, properties);
        for (auto it = shown.begin(); it != shown.end(); ++it) {
            const QWidget *w = design.field(it.key());
            const QVariant value = w->property("Value");
            const QString text = qobject_cast<const QAbstractButton *>(w)
                ? QString::number(w->property("checked").toBool())
                : value.isValid() ? CStr(value)
                                  : w->property("text").toString();
            QCOMPARE(text, it.value());
        }
        // What is read is no edit: a new selection leaves the page unchanged and says nothing.
        QSignalSpy changed(design.page.get(), &PropertyPage::ChangedChanged);
        design.page->setSelectedControls({design.second.get()});
        QVERIFY(!design.page->Changed());
        QCOMPARE(changed.count(), 0);
    }
    void apply_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QVariantMap>("before");
        QTest::addColumn<Edits>("edits");
        QTest::addColumn<int>("applies");
        QTest::addColumn<Texts>("after");
        QTest::addColumn<QString>("error");

        QTest::newRow("check list in order")
            << u"checkProperties"_s << QVariantMap{{u"Sorting"_s, true}}
            << Edits{click(u"chkInv"_s), click(u"chkSorting"_s), type(u"txtDelay"_s, u"250"_s),
                     type(u"txtMaxLine"_s, u"12"_s), type(u"txtTitle"_s, u"Towns"_s)}
            << 1
            << Texts{{u"Inv"_s, u"True"_s},
                     {u"Sorting"_s, u"False"_s},
                     {u"Delay"_s, u"250"_s},
                     {u"MaxLine"_s, u"12"_s},
                     {u"Title"_s, u"Towns"_s}}
            << QString();
        QTest::newRow("check list delay overflows: the rest is kept")
            << u"checkProperties"_s << QVariantMap{{u"Delay"_s, 100}, {u"Title"_s, u"Cities"_s}}
            << Edits{click(u"chkInv"_s), type(u"txtDelay"_s, u"40000"_s),
                     type(u"txtTitle"_s, u"Towns"_s)}
            << 1 << Texts{{u"Inv"_s, u"True"_s}, {u"Delay"_s, u"100"_s}, {u"Title"_s, u"Cities"_s}}
            << u"Delay: Overflow"_s;
        QTest::newRow("absolute date, day count ignored")
            << u"RelDateProperties"_s << QVariantMap{{u"Relative"_s, true}}
            << Edits{click(u"chkRelative"_s), type(u"txtRetDate"_s, u"1/15/2024"_s),
                     type(u"txtRetNum"_s, u"9"_s)}
            << 1 << Texts{{u"Relative"_s, u"False"_s}, {u"RetDate"_s, u"1/15/24"_s}} << QString();
        QTest::newRow("relative day count, date ignored")
            << u"RelDateProperties"_s << QVariantMap{{u"Relative"_s, false}}
            << Edits{click(u"chkRelative"_s), type(u"txtRetNum"_s, u"-7"_s),
                     type(u"txtRetDate"_s, u"1/15/2024"_s)}
            << 1 << Texts{{u"Relative"_s, u"True"_s}, {u"RetNum"_s, u"-7"_s}} << QString();
        const Edits allDates{type(u"txtRetDate"_s, u"All"_s), click(u"chkAllowAll"_s)};
        QTest::newRow("All before Allow All Dates: refused")
            << u"RelDateProperties"_s
            << QVariantMap{{u"Relative"_s, false}, {u"RetDate"_s, u"5/1/2024"_s}} << allDates << 1
            << Texts{{u"AllowAll"_s, u"True"_s}, {u"RetDate"_s, u"5/1/24"_s}} << QString();
        QTest::newRow("All before Allow All Dates: second apply")
            << u"RelDateProperties"_s
            << QVariantMap{{u"Relative"_s, false}, {u"RetDate"_s, u"5/1/2024"_s}} << allDates << 2
            << Texts{{u"AllowAll"_s, u"True"_s}, {u"RetDate"_s, u"All"_s}} << QString();
        QTest::newRow("bad day count and unknown partner skipped, the rest applied")
            << u"RelDateProperties"_s << QVariantMap{{u"Relative"_s, true}, {u"RetNum"_s, 4}}
            << Edits{type(u"txtRetNum"_s, u"x"_s), type(u"txtBootControl"_s, u"NoSuchControl"_s),
                     click(u"chkSynchValue"_s)}
            << 1
            << Texts{{u"RetNum"_s, u"4"_s}, {u"BootControl"_s, u""_s}, {u"SynchValue"_s, u"True"_s}}
            << QString();
        QTest::newRow("value after the range it falls in")
            << u"neProperties"_s << QVariantMap{{u"MaxValue"_s, 60}, {u"Value"_s, 50}}
            << Edits{type(u"txtMaxValue"_s, u"100"_s), type(u"txtValue"_s, u"80"_s)} << 1
            << Texts{{u"MaxValue"_s, u"100"_s}, {u"Value"_s, u"80"_s}} << QString();
        QTest::newRow("value clamped to the new range")
            << u"neProperties"_s << QVariantMap{{u"Value"_s, 50}}
            << Edits{type(u"txtMaxValue"_s, u"10"_s), type(u"txtDigNum"_s, u"1"_s),
                     click(u"chkLockEdits"_s)}
            << 1
            << Texts{{u"MaxValue"_s, u"10"_s},
                     {u"Value"_s, u"10"_s},
                     {u"DigNum"_s, u"1"_s},
                     {u"LockEdits"_s, u"True"_s}}
            << QString();
        QTest::newRow("non-numeric digits end the apply")
            << u"neProperties"_s << QVariantMap{{u"Value"_s, 50}}
            << Edits{click(u"chkLockEdits"_s), type(u"txtDigNum"_s, u"x"_s),
                     type(u"txtValue"_s, u"3"_s)}
            << 1 << Texts{{u"LockEdits"_s, u"True"_s}, {u"DigNum"_s, u"0"_s}, {u"Value"_s, u"50"_s}}
            << u"DigNum: Type mismatch"_s;
    }
    void apply()
    {
        QFETCH(QString, page);
        QFETCH(QVariantMap, before);
        QFETCH(Edits, edits);
        QFETCH(int, applies);
        QFETCH(Texts, after);
        QFETCH(QString, error);
        const bool fails = !error.isEmpty();
        // Given a page over two controls, edited by the designer
        Design design(page, before);
        const Texts secondBefore = Design::read(design.second.get(), after);
        design.edit(edits);
        QVERIFY(design.page->Changed());
        // When the changes are applied
        for (int i = 0; i < applies; ++i)
            design.page->ApplyChanges();
        // Then the first control has them in order, the second none, and a failed apply says why
        // and leaves the page changed
        QCOMPARE(Design::read(design.first.get(), after), after);
        QCOMPARE(Design::read(design.second.get(), after), secondBefore);
        QCOMPARE(design.platform.messages(), fails ? QStringList{error} : QStringList());
        QCOMPARE(design.page->Changed(), fails);
    }
    void grayedBoxAppliesFalse()
    {
        Design design(u"checkProperties"_s, {{u"Sorting"_s, true}});
        qobject_cast<QCheckBox *>(design.field(u"chkSorting"_s))
            ->setCheckState(Qt::PartiallyChecked);
        design.page->ApplyChanges();
        QCOMPARE(design.first->property("Sorting").toBool(), false);
    }
};

QTEST_MAIN(tst_Pages)
#include "tst_pages.moc"
