// The Zelkon demo host: a report filter form over a sample SQLite database.
// With no display it runs offscreen, writes a screenshot and prints its path.
#include "mainwindow.h"
#include "sampledatabase.h"

#include <zelkon/common/error.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    const bool noDisplay = qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
#ifdef Q_OS_LINUX
    if (noDisplay)
        qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("zelkon-demo"));
    QApplication::setOrganizationName(QStringLiteral("Zelkon"));
    QApplication::setApplicationDisplayName(QStringLiteral("Zelkon demo"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Zelkon filter controls on a sample database"));
    parser.addHelpOption();
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Write a screenshot to <file> and quit."),
                                        QStringLiteral("file"));
    parser.addOption(screenshot);
    parser.process(app);

    QString databasePath;
    try {
        databasePath = SampleDatabase::ensure();
    } catch (const zelkon::Error &e) {
        std::fprintf(stderr, "zelkon-demo: cannot create the sample database: %s\n", e.what());
        return 1;
    }
    MainWindow window(databasePath);
    window.show();

    const bool offscreen = QGuiApplication::platformName() == QLatin1String("offscreen");
    if (parser.isSet(screenshot) || offscreen) {
        QString path = parser.value(screenshot);
        if (path.isEmpty())
            path = QDir(QStandardPaths::writableLocation(QStandardPaths::TempLocation))
                       .filePath(QStringLiteral("zelkon-demo.png"));
        QTimer::singleShot(200, &window, [&window, path] {
            const bool saved = window.grab().save(path);
            if (saved)
                std::printf(
                    "%s\n",
                    qPrintable(QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath())));
            else
                std::fprintf(stderr, "zelkon-demo: cannot write %s\n", qPrintable(path));
            QApplication::exit(saved ? 0 : 1);
        });
    }
    return app.exec();
}
