// ZelkonTaskMenuFactory: gives Designer a task menu for the controls that have a property page.
#pragma once

#include <QtDesigner/QExtensionFactory>

class ZelkonTaskMenuFactory : public QExtensionFactory
{
    Q_OBJECT
public:
    explicit ZelkonTaskMenuFactory(QExtensionManager *parent);

protected:
    QObject *createExtension(QObject *object, const QString &iid, QObject *parent) const override;
};
