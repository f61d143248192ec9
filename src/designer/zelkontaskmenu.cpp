#include "zelkontaskmenu.h"

#include <zelkon/common/propertypage.h>
#include <zelkon/common/strings_p.h>

#include <QAction>
#include <QDialog>
#include <QDialogButtonBox>
#include <QMetaProperty>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtDesigner/QDesignerFormWindowCursorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>

namespace {

using Values = QList<QPair<QByteArray, QVariant>>;

// What a form file keeps of the control: its own designable properties.
Values designedValues(const QWidget *control)
{
    Values values;
    const QMetaObject *meta = control->metaObject();
    for (int i = QWidget::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (property.isDesignable() && property.isWritable())
            values.append({property.name(), property.read(control)});
    }
    return values;
}

} // namespace

ZelkonTaskMenu::ZelkonTaskMenu(QWidget *control, const QString &pageName, QObject *parent)
    : QObject(parent)
    , m_control(control)
    , m_pageName(pageName)
    , m_edit(new QAction(zelkon::loadString("designerEditProperties"), this))
{
    connect(m_edit, &QAction::triggered, this, &ZelkonTaskMenu::editProperties);
}

QAction *ZelkonTaskMenu::preferredEditAction() const
{
    return m_edit;
}

QList<QAction *> ZelkonTaskMenu::taskActions() const
{
    return {m_edit};
}

QString ZelkonTaskMenu::pageFor(const QString &className)
{
    static const QHash<QString, QString> pages = {
        {QStringLiteral("CheckCombo"), QStringLiteral("checkProperties")},
        {QStringLiteral("RelDate"), QStringLiteral("RelDateProperties")},
        {QStringLiteral("NumEdit"), QStringLiteral("neProperties")},
    };
    return pages.value(className);
}

void ZelkonTaskMenu::editProperties()
{
    if (!m_control)
        return;
    QDialog dialog(m_control->window());
    dialog.setWindowTitle(
        zelkon::loadString("designerPropertiesTitle").arg(m_control->objectName()));
    zelkon::PropertyPage *page = zelkon::createPropertyPage(m_pageName, &dialog);
    if (!page)
        return;
    auto *buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply, &dialog);
    QPushButton *apply = buttons->button(QDialogButtonBox::Apply);
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(page);
    layout->addWidget(buttons);
    page->setSelectedControls({m_control.data()});
    apply->setEnabled(page->Changed());
    connect(page, &zelkon::PropertyPage::ChangedChanged, apply, &QPushButton::setEnabled);

    // The page writes the control itself; what changed then goes through the form window's cursor
    // so that Designer records it, saves it in the .ui file and marks the form modified.
    const auto applyPage = [this, page] {
        const Values before = designedValues(m_control);
        page->ApplyChanges();
        QDesignerFormWindowInterface *form
            = QDesignerFormWindowInterface::findFormWindow(m_control);
        if (!form)
            return;
        const Values after = designedValues(m_control);
        for (qsizetype i = 0; i < after.size(); ++i) {
            if (after[i].second != before[i].second)
                form->cursor()->setWidgetProperty(m_control, QString::fromLatin1(after[i].first),
                                                  after[i].second);
        }
    };
    connect(apply, &QPushButton::clicked, page, applyPage);
    connect(buttons, &QDialogButtonBox::accepted, &dialog, [&] {
        if (page->Changed())
            applyPage();
        if (!page->Changed()) // a refused apply keeps the dialog open with the page as it was
            dialog.accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    dialog.exec();
}
