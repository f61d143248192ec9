// ZelkonDesignerCollection: the Qt Designer plugin that offers every Zelkon control.
#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

class ZelkonDesignerCollection
    : public QObject
    , public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)
public:
    explicit ZelkonDesignerCollection(QObject *parent = nullptr);
    QList<QDesignerCustomWidgetInterface *> customWidgets() const override;

private:
    QList<QDesignerCustomWidgetInterface *> m_widgets;
};
