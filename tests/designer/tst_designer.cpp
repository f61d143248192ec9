// The Designer plugin offers every registered control and creates it in design mode.
#include <zelkon/common/control.h>
#include <zelkon/common/registry.h>

#include <QPluginLoader>
#include <QTest>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

class tst_Designer : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void offersEveryControl();
};

void tst_Designer::offersEveryControl()
{
    QPluginLoader loader(QStringLiteral(ZELKON_DESIGNER_PLUGIN));
    QObject *instance = loader.instance();
    QVERIFY2(instance, qPrintable(loader.errorString()));
    auto *collection = qobject_cast<QDesignerCustomWidgetCollectionInterface *>(instance);
    QVERIFY(collection);
    QStringList offered;
    QWidget form;
    for (QDesignerCustomWidgetInterface *widget : collection->customWidgets()) {
        offered.append(widget->name());
        QVERIFY(widget->domXml().contains(widget->name()));
        QVERIFY(widget->includeFile().startsWith(QLatin1String("zelkon/")));
        QWidget *created = widget->createWidget(&form);
        auto *control = qobject_cast<zelkon::Control *>(created);
        QVERIFY2(control, qPrintable(widget->name()));
        QVERIFY(!control->UserMode());
        QCOMPARE(QString::fromLatin1(control->metaObject()->className()), widget->name());
    }
    QStringList expected;
    for (const QString &name : zelkon::controlClassNames())
        expected.append(QStringLiteral("zelkon::") + name);
    QCOMPARE(offered, expected);
}

QTEST_MAIN(tst_Designer)
#include "tst_designer.moc"
