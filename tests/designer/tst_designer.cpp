// The Designer plugin offers every registered control, with properties Designer can edit, and a
// form designed with them comes back the same through uic and through QUiLoader.
#include "ui_designedform.h"

#include <zelkon/common/control.h>
#include <zelkon/common/error.h>
#include <zelkon/common/registry.h>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPluginLoader>
#include <QPushButton>
#include <QScopeGuard>
#include <QTest>
#include <QTimer>
#include <QUiLoader>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerTaskMenuExtension>
#include <QtDesigner/QExtensionManager>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <memory>

namespace {

QDesignerCustomWidgetCollectionInterface *plugin()
{
    static QPluginLoader loader(QStringLiteral(ZELKON_DESIGNER_PLUGIN));
    return qobject_cast<QDesignerCustomWidgetCollectionInterface *>(loader.instance());
}

// The types Designer's property editor edits (enumerations aside).
bool designerEdits(const QMetaProperty &property)
{
    static const QList<int> types = {
        QMetaType::Bool,     QMetaType::Int,       QMetaType::UInt,  QMetaType::Double,
        QMetaType::QString,  QMetaType::QFont,     QMetaType::QDate, QMetaType::QDateTime,
        QMetaType::QTime,    QMetaType::QColor,    QMetaType::QSize, QMetaType::QStringList,
        QMetaType::LongLong, QMetaType::ULongLong,
    };
    return property.isEnumType() || types.contains(property.userType());
}

// Designer's core as the plugin sees it, with the extension manager Designer would give it.
class DesignerCore : public QDesignerFormEditorInterface
{
public:
    using QDesignerFormEditorInterface::setExtensionManager;
};

} // namespace

class tst_Designer : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void offersEveryControl();
    void editPropertiesDialogAppliesThePage();
    void designablePropertiesAreEditable_data();
    void designablePropertiesAreEditable();
    void shortPropertiesKeepTheirRange_data();
    void shortPropertiesKeepTheirRange();
    void formRestoresDesignedValues_data();
    void formRestoresDesignedValues();
};

void tst_Designer::offersEveryControl()
{
    QDesignerCustomWidgetCollectionInterface *collection = plugin();
    QVERIFY(collection);
    QStringList offered;
    QWidget form;
    DesignerCore core;
    auto *extensions = new QExtensionManager(&core);
    core.setExtensionManager(extensions);
    const QStringList withPages
        = {QStringLiteral("zelkon::CheckCombo"), QStringLiteral("zelkon::RelDate"),
           QStringLiteral("zelkon::NumEdit")};
    for (QDesignerCustomWidgetInterface *widget : collection->customWidgets()) {
        offered.append(widget->name());
        widget->initialize(&core);
        QVERIFY(widget->includeFile().startsWith(QLatin1String("zelkon/")));
        QVERIFY2(!widget->icon().pixmap(16).isNull(), qPrintable(widget->name()));
        QWidget *created = widget->createWidget(&form);
        auto *control = qobject_cast<zelkon::Control *>(created);
        QVERIFY2(control, qPrintable(widget->name()));
        QVERIFY(!control->UserMode());
        QCOMPARE(QString::fromLatin1(control->metaObject()->className()), widget->name());
        // The controls with a property page offer it in the task menu, and only they do.
        auto *taskMenu = qt_extension<QDesignerTaskMenuExtension *>(extensions, control);
        QCOMPARE(bool(taskMenu), withPages.contains(widget->name()));
        if (taskMenu) {
            QCOMPARE(taskMenu->taskActions().size(), 1);
            QCOMPARE(taskMenu->preferredEditAction()->text(), QStringLiteral("Edit Properties..."));
        }
        // Dropped on a form, the control starts at its size hint.
        const QSize hint = control->sizeHint();
        const QString geometry = QStringLiteral("<width>%1</width><height>%2</height>")
                                     .arg(hint.width())
                                     .arg(hint.height());
        QVERIFY2(widget->domXml().contains(geometry), qPrintable(widget->domXml()));
    }
    QStringList expected;
    for (const QString &name : zelkon::controlClassNames())
        expected.append(QStringLiteral("zelkon::") + name);
    QCOMPARE(offered, expected);
}

void tst_Designer::editPropertiesDialogAppliesThePage()
{
    // Given a NumEdit on a form in Designer
    DesignerCore core;
    auto *extensions = new QExtensionManager(&core);
    core.setExtensionManager(extensions);
    QDesignerCustomWidgetInterface *plugged = nullptr;
    for (QDesignerCustomWidgetInterface *widget : plugin()->customWidgets()) {
        if (widget->name() == QLatin1String("zelkon::NumEdit"))
            plugged = widget;
    }
    QVERIFY(plugged);
    plugged->initialize(&core);
    QWidget form;
    QWidget *control = plugged->createWidget(&form);
    auto *taskMenu = qt_extension<QDesignerTaskMenuExtension *>(extensions, control);
    QVERIFY(taskMenu);
    bool edited = false;
    QTimer::singleShot(0, this, [&] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        const auto closing = qScopeGuard([dialog] { dialog->reject(); });
        QPushButton *apply
            = dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Apply);
        auto *fontSize = dialog->findChild<QLineEdit *>(QStringLiteral("txtFontSize"));
        QVERIFY(apply && fontSize);
        QVERIFY(!apply->isEnabled());
        // When the designer edits a field and applies
        fontSize->selectAll();
        QTest::keyClicks(fontSize, QStringLiteral("14"));
        QVERIFY(apply->isEnabled());
        QTest::mouseClick(apply, Qt::LeftButton);
        // Then the control has the value and Apply waits for the next edit
        QCOMPARE(control->property("FontSize").toInt(), 14);
        QVERIFY(!apply->isEnabled());
        edited = true;
    });
    // When the designer picks "Edit Properties..."
    taskMenu->preferredEditAction()->trigger();
    QVERIFY(edited);
}

void tst_Designer::designablePropertiesAreEditable_data()
{
    QTest::addColumn<QString>("className");
    for (const QString &name : zelkon::controlClassNames())
        QTest::newRow(qPrintable(name)) << name;
}

// What Designer's editor cannot edit, or a value that exists only at run time, is not designable.
void tst_Designer::designablePropertiesAreEditable()
{
    QFETCH(QString, className);
    const std::unique_ptr<zelkon::Control> control{zelkon::createControl(className)};
    QVERIFY(control);
    const QMetaObject *meta = control->metaObject();
    for (int i = QWidget::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (!property.isDesignable())
            continue;
        QVERIFY2(property.isWritable(), property.name());
        QVERIFY2(designerEdits(property), property.name());
    }
}

void tst_Designer::shortPropertiesKeepTheirRange_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<int>("valid");
    QTest::newRow("CheckCombo.MaxLine") << "CheckCombo" << QByteArray("MaxLine") << 9;
    QTest::newRow("CheckCombo.Delay") << "CheckCombo" << QByteArray("Delay") << 300;
    QTest::newRow("Navigator.ListLine") << "Navigator" << QByteArray("ListLine") << 4;
    QTest::newRow("Navigator.CharCount") << "Navigator" << QByteArray("CharCount") << 2;
    QTest::newRow("Navigator.FontSize") << "Navigator" << QByteArray("FontSize") << 14;
    QTest::newRow("NumEdit.DigNum") << "NumEdit" << QByteArray("DigNum") << 4;
    QTest::newRow("NumEdit.FontSize") << "NumEdit" << QByteArray("FontSize") << 14;
    QTest::newRow("NumEdit.Border") << "NumEdit" << QByteArray("Border") << 0;
    QTest::newRow("NumEdit.Appearance") << "NumEdit" << QByteArray("Appearance") << 0;
    QTest::newRow("ElapsedBut.Level") << "ElapsedBut" << QByteArray("Level") << 3;
}

// Declared int so that Designer edits them; by name they still take only 16-bit values.
void tst_Designer::shortPropertiesKeepTheirRange()
{
    QFETCH(QString, className);
    QFETCH(QByteArray, property);
    QFETCH(int, valid);
    const std::unique_ptr<zelkon::Control> control{zelkon::createControl(className)};
    QVERIFY(control);
    const QMetaProperty meta
        = control->metaObject()->property(control->metaObject()->indexOfProperty(property));
    QVERIFY(meta.isDesignable());
    QCOMPARE(meta.userType(), QMetaType::Int);
    for (const int outOfRange : {32768, -32769}) {
        try {
            control->setProperty(property, outOfRange);
            QFAIL(qPrintable(
                QString::fromLatin1(property + " took " + QByteArray::number(outOfRange))));
        } catch (const zelkon::Error &error) {
            QCOMPARE(error.number(), int(zelkon::Overflow));
        }
    }
    QVERIFY(control->setProperty(property, valid));
    QCOMPARE(control->property(property).toInt(), valid);
}

void tst_Designer::formRestoresDesignedValues_data()
{
    QTest::addColumn<bool>("throughUic");
    QTest::newRow("uic") << true;
    QTest::newRow("QUiLoader") << false;
}

void tst_Designer::formRestoresDesignedValues()
{
    QFETCH(bool, throughUic);
    QWidget uicForm;
    Ui::DesignedForm ui;
    std::unique_ptr<QWidget> loaded;
    QWidget *form = &uicForm;
    if (throughUic) {
        ui.setupUi(&uicForm);
    } else {
        QUiLoader loader;
        loader.clearPluginPaths();
        loader.addPluginPath(QStringLiteral(ZELKON_DESIGNER_DIR));
        QFile file(QStringLiteral(":/designedform.ui"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        loaded.reset(loader.load(&file));
        QVERIFY2(loaded, qPrintable(loader.errorString()));
        form = loaded.get();
    }
    const struct
    {
        const char *object;
        const char *property;
        QVariant value;
    } designed[] = {
        {"checkCombo", "Title", QStringLiteral("Regions")},
        {"checkCombo", "MaxLine", 7},
        {"checkCombo", "Delay", 20},
        {"checkCombo", "Sorting", true},
        {"checkCombo", "Inv", true},
        {"checkCombo", "Border", 0},
        {"checkCombo", "TypeData", 2},
        {"checkCombo", "CommandText", QStringLiteral("SELECT Name FROM Regions")},
        {"relDate", "AllowAll", true},
        {"relDate", "Appearance", 0},
        {"relDate", "MenuStateVisible", false},
        {"relDate", "CustomFormat", QStringLiteral("dd.MM.yyyy")},
        {"relDate", "UpDown", true},
        {"numEdit", "DigNum", 3},
        {"numEdit", "FontSize", 12},
        {"numEdit", "Border", 0},
        {"numEdit", "MinValue", -5.0},
        {"numEdit", "MaxValue", 10.0},
        {"numEdit", "Value", 2.5},
        {"numEdit", "LockEdits", true},
        {"numEdit", "TextColor", 255},
        {"navigator", "ListLine", 6},
        {"navigator", "CharCount", 3},
        {"navigator", "AllCaps", true},
        {"navigator", "FontSize", 11},
        {"elapsedBut", "Titul", QStringLiteral("Dates")},
        {"elapsedBut", "Inv", true},
        {"elapsedBut", "Level", 2},
        {"elapsedBut", "OCXID", QStringLiteral("relDate")},
        {"boxCombo", "AllowAddNew", true},
        {"comboListBox", "Index", 2},
        {"down", "CaptionGroup", QStringLiteral("Several")},
    };
    QSet<QString> classes;
    for (const auto &d : designed) {
        auto *control = form->findChild<zelkon::Control *>(QLatin1String(d.object));
        QVERIFY2(control, d.object);
        QVERIFY(control->UserMode());
        classes.insert(QString::fromLatin1(control->metaObject()->className()).mid(8));
        const QVariant actual = control->property(d.property);
        QVERIFY2(actual.isValid(), d.property);
        QVariant expected = d.value;
        QVERIFY(expected.convert(actual.metaType()));
        QVERIFY2(actual == expected,
                 qPrintable(QString::fromLatin1(d.object) + u'.' + QString::fromLatin1(d.property)
                            + QStringLiteral(" = ") + actual.toString()));
    }
    const QStringList every = zelkon::controlClassNames();
    QCOMPARE(classes, QSet<QString>(every.cbegin(), every.cend()));
}

QTEST_MAIN(tst_Designer)
#include "tst_designer.moc"
