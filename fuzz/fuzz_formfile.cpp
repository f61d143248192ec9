// Form files from anywhere: loading either builds the controls or raises zelkon::Error and leaves
// the form empty; what loaded saves and loads again.
#include <zelkon/common/control.h>
#include <zelkon/common/error.h>
#include <zelkon/common/formfile.h>
#include <zelkon/test/testplatform.h>

#include <QApplication>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_formfile";
    static char *argv[] = {name, nullptr};
    static QApplication *app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QApplication(argc, argv);
    }();
    Q_UNUSED(app);
    static QTemporaryDir dir;
    zelkon::TestPlatform platform;
    const QString path = dir.filePath(QStringLiteral("input.zform"));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            std::abort();
        file.write(reinterpret_cast<const char *>(data), qint64(size));
    }
    QWidget form;
    try {
        const QList<zelkon::Control *> loaded = zelkon::loadForm(form, path);
        const QString again = dir.filePath(QStringLiteral("again.zform"));
        zelkon::saveForm(form, again);
        QWidget copy;
        if (zelkon::loadForm(copy, again).size() != loaded.size())
            std::abort();
    } catch (const zelkon::Error &) {
        if (!zelkon::Control::formControls(&form).isEmpty())
            std::abort();
    }
    return 0;
}
