#include "propertiesdialog.h"

#include "filterform.h"

#include <zelkon/common/control.h>
#include <zelkon/common/propertypage.h>

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHash>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QString pageName(const zelkon::Control *control)
{
    static const QHash<QString, QString> pages{
        {QStringLiteral("zelkon::CheckCombo"), QStringLiteral("checkProperties")},
        {QStringLiteral("zelkon::RelDate"), QStringLiteral("RelDateProperties")},
        {QStringLiteral("zelkon::NumEdit"), QStringLiteral("neProperties")},
    };
    return pages.value(QString::fromLatin1(control->metaObject()->className()));
}

// The form's control that holds the focus or has a child that holds it.
zelkon::Control *focusedControl(const FilterForm *form)
{
    const QList<zelkon::Control *> controls = form->controls();
    for (QWidget *w = QApplication::focusWidget(); w; w = w->parentWidget()) {
        if (auto *control = qobject_cast<zelkon::Control *>(w); controls.contains(control))
            return control;
    }
    return nullptr;
}

} // namespace

QDialog *propertiesDialog(zelkon::Control *control, QWidget *parent)
{
    auto *dialog = new QDialog(parent);
    zelkon::PropertyPage *page = zelkon::createPropertyPage(pageName(control), dialog);
    if (!page) {
        delete dialog;
        return nullptr;
    }
    dialog->setWindowTitle(QObject::tr("Properties of %1").arg(control->objectName()));
    auto *buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply, dialog);
    QPushButton *apply = buttons->button(QDialogButtonBox::Apply);
    apply->setEnabled(false);
    QObject::connect(page, &zelkon::PropertyPage::ChangedChanged, apply, &QPushButton::setEnabled);
    QObject::connect(apply, &QPushButton::clicked, page, &zelkon::PropertyPage::ApplyChanges);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, [dialog, page] {
        if (page->Changed())
            page->ApplyChanges();
        // A failed apply has said why and keeps the dialog open with the edits.
        if (!page->Changed())
            dialog->accept();
    });
    auto *layout = new QVBoxLayout(dialog);
    layout->addWidget(page);
    layout->addWidget(buttons);
    page->setSelectedControls({control});
    return dialog;
}

void addEditPropertiesMenu(QMenuBar *bar, FilterForm *form)
{
    QMenu *edit = bar->addMenu(QObject::tr("&Edit"));
    edit->addAction(QObject::tr("Edit &properties..."), form, [form] {
        zelkon::Control *control = focusedControl(form);
        QDialog *dialog = control ? propertiesDialog(control, form->window()) : nullptr;
        if (!dialog) {
            QMessageBox::information(form->window(), QObject::tr("Edit properties"),
                                     QObject::tr("Click into a region, date or amount field "
                                                 "first: its properties are edited."));
            return;
        }
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->open();
    });
}
