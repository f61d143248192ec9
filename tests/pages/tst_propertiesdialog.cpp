// The demo's property dialog: a page in a dialog whose Apply button follows the page's changes.
#include "propertiesdialog.h"

#include <zelkon/common/control.h>
#include <zelkon/common/registry.h>
#include <zelkon/test/testplatform.h>

#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <memory>

using namespace zelkon;
using namespace Qt::StringLiterals;

class tst_PropertiesDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void applyFollowsChanges();
};

void tst_PropertiesDialog::applyFollowsChanges()
{
    // Given the dialog of a numeric field
    TestPlatform platform;
    const std::unique_ptr<Control> amount(createControl(u"NumEdit"_s));
    amount->InitProperties();
    const std::unique_ptr<QDialog> dialog(propertiesDialog(amount.get(), nullptr));
    QVERIFY(dialog);
    dialog->show();
    auto *buttons = dialog->findChild<QDialogButtonBox *>();
    QPushButton *apply = buttons->button(QDialogButtonBox::Apply);
    QVERIFY(!apply->isEnabled());
    const auto type = [&](const char *field, const QString &text) {
        auto *box = dialog->findChild<QLineEdit *>(QLatin1String(field));
        QTest::keyClick(box, Qt::Key_End);
        QTest::keyClick(box, Qt::Key_Home, Qt::ShiftModifier);
        QTest::keyClicks(box, text);
    };
    // When a value is typed and applied, then the field has it and Apply is off again
    type("txtValue", u"7"_s);
    QVERIFY(apply->isEnabled());
    QTest::mouseClick(apply, Qt::LeftButton);
    QCOMPARE(amount->property("Value").toDouble(), 7.0);
    QVERIFY(!apply->isEnabled());
    // When OK applies a digit count that is no number, then the dialog says so and stays open
    type("txtDigNum", u"x"_s);
    QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
    QCOMPARE(platform.messages().size(), 1);
    QVERIFY(dialog->isVisible());
    // A class without a page has no dialog
    const std::unique_ptr<Control> lookup(createControl(u"Navigator"_s));
    QCOMPARE(propertiesDialog(lookup.get(), nullptr), nullptr);
}

QTEST_MAIN(tst_PropertiesDialog)
#include "tst_propertiesdialog.moc"
