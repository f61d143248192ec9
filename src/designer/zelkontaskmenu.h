// ZelkonTaskMenu: "Edit Properties..." in Designer's task menu of a control that has a page.
#pragma once

#include <QPointer>
#include <QtDesigner/QDesignerTaskMenuExtension>

class QAction;
class QWidget;

class ZelkonTaskMenu
    : public QObject
    , public QDesignerTaskMenuExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)
public:
    ZelkonTaskMenu(QWidget *control, const QString &pageName, QObject *parent);

    QAction *preferredEditAction() const override;
    QList<QAction *> taskActions() const override;

    // The page of a control class; empty when it has none.
    static QString pageFor(const QString &className);

private:
    void editProperties();

    QPointer<QWidget> m_control;
    QString m_pageName;
    QAction *m_edit;
};
