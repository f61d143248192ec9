// A long session: the check-list popup opened and closed 10,000 times, then 1,000 forms of every
// registered control created and destroyed. The process's resident memory at the end must stay
// within a few megabytes of where it was after the first round; both figures are printed, and the
// exit status is non-zero when it grew more.
#include <zelkon/common/control.h>
#include <zelkon/common/registry.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QFile>
#include <QTest>

#include <malloc.h>
#include <unistd.h>

#include <cstdio>

namespace {

constexpr int popupRounds = 10000;
constexpr int formRounds = 1000;
constexpr double allowedGrowthMB = 4.0;

// Resident memory from /proc/self/statm, in megabytes, once freed memory went back to the system.
double residentMB()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    malloc_trim(0);
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() > 1 ? fields.at(1).toDouble() * double(sysconf(_SC_PAGESIZE)) / 1048576.0
                             : -1;
}

// Opens the popup with the button and closes it with Escape in its list, as a user does.
bool openAndClosePopup(zelkon::Control *combo)
{
    QTest::mouseClick(combo->findChild<QWidget *>(QStringLiteral("ButDropDown")), Qt::LeftButton);
    auto *popup = combo->findChild<QWidget *>(QStringLiteral("frmList"));
    if (!popup || !popup->isVisible())
        return false;
    for (auto *list : popup->findChildren<QAbstractItemView *>(QStringLiteral("List"))) {
        if (list->isVisible()) {
            QTest::keyClick(list, Qt::Key_Escape);
            break;
        }
    }
    QCoreApplication::processEvents();
    return !popup->isVisible();
}

void formsOfEveryControl(int rounds)
{
    for (const QString &className : zelkon::controlClassNames()) {
        for (int i = 0; i < rounds; ++i) {
            QWidget form;
            zelkon::createControl(className, &form);
            form.show();
            QCoreApplication::processEvents();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QWidget host;
    host.resize(300, 200);
    zelkon::Control *combo = zelkon::createControl(QStringLiteral("CheckCombo"), &host);
    if (!combo) {
        std::fprintf(stderr, "no CheckCombo registered\n");
        return 2;
    }
    QVariantList rows;
    for (int i = 0; i < 50; ++i)
        rows.append(QStringLiteral("Row %1").arg(i));
    combo->setProperty("SArrayData", rows);
    combo->setGeometry(10, 10, 200, 24);
    host.show();

    // The first round warms what lives as long as the process: fonts, styles, caches.
    if (!openAndClosePopup(combo)) {
        std::fprintf(stderr, "the popup did not open and close\n");
        return 2;
    }
    formsOfEveryControl(1);
    const double before = residentMB();

    for (int i = 0; i < popupRounds; ++i) {
        if (!openAndClosePopup(combo)) {
            std::fprintf(stderr, "the popup did not open and close in round %d\n", i);
            return 2;
        }
    }
    const double afterPopups = residentMB();
    formsOfEveryControl(formRounds);
    const double after = residentMB();

    std::printf("resident memory: %.1f MB before, %.1f MB after %d popups, %.1f MB after %d forms"
                " of each of %lld controls\n",
                before, afterPopups, popupRounds, after, formRounds,
                qlonglong(zelkon::controlClassNames().size()));
    if (after - before > allowedGrowthMB) {
        std::printf("FAIL: grew by %.1f MB (at most %.1f)\n", after - before, allowedGrowthMB);
        return 1;
    }
    return 0;
}
