// Form files under faults: a disk that fills up half-way through a save, and files written to
// make the loader take more memory than any form needs.
#include <zelkon/common/control.h>
#include <zelkon/common/error.h>
#include <zelkon/common/formfile.h>
#include <zelkon/common/registry.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace zelkon;

class tst_FormFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failedWriteKeepsPreviousFile();
    void oversizedValueIsLeftOut();
    void hostileFileIsRefused_data();
    void hostileFileIsRefused();

private:
    QTemporaryDir m_dir;
};

void tst_FormFile::failedWriteKeepsPreviousFile()
{
    // Given a saved file and a form far larger than the space left for the next one
    const QString path = m_dir.filePath(QStringLiteral("full.zform"));
    QWidget form;
    QVERIFY(createControl(QStringLiteral("NumEdit"), &form));
    saveForm(form, path);
    QFile previous(path);
    QVERIFY(previous.open(QIODevice::ReadOnly));
    const QByteArray before = previous.readAll();
    previous.close();
    for (int i = 0; i < 200; ++i)
        createControl(QStringLiteral("NumEdit"), &form)
            ->setObjectName(QStringLiteral("n%1").arg(i));

    // When the file-size limit stops the write half-way (in a child, so the limit stays there)
    const pid_t child = fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        try {
            saveForm(form, path);
        } catch (const Error &e) {
            _exit(e.message().contains(path) ? 0 : 2);
        }
        _exit(1);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);

    // Then the save reported an error naming the file, and the previous file is whole and alone
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 0);
    QVERIFY(previous.open(QIODevice::ReadOnly));
    QCOMPARE(previous.readAll(), before);
    QCOMPARE(QDir(m_dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("full.zform")});
}

void tst_FormFile::oversizedValueIsLeftOut()
{
    // Given a control holding a value larger than a form file may be
    QWidget form;
    Control *combo = createControl(QStringLiteral("BoxCombo"), &form);
    const QVariantList texts(600, QString(30000, QLatin1Char('"')));
    combo->setProperty("InputArray", QVariantList{texts, QVariantList(600, 1)});
    QCOMPARE(combo->property("InputArray").toList().size(), 2);

    // When the form is saved and loaded again
    const QString path = m_dir.filePath(QStringLiteral("oversized.zform"));
    saveForm(form, path);
    QWidget loaded;
    const QList<Control *> controls = loadForm(loaded, path);

    // Then the form is there without that value
    QCOMPARE(controls.size(), 1);
    QVERIFY(!controls.first()->property("InputArray").isValid());
    QFile::remove(path);
}

void tst_FormFile::hostileFileIsRefused_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<qint64>("declaredSize"); // the file is extended, unwritten, to this size
    QTest::addColumn<QString>("reason");
    const auto withValue = [](const QByteArray &value) -> QByteArray {
        return R"({"format":"zelkon-form","version":1,"controls":[{"class":"NumEdit","name":"a",)"
               R"("index":-1,"geometry":[0,0,1,1],"properties":[{"name":"A","value":)"
            + value + "}]}]}";
    };
    QTest::newRow("a billion elements")
        << withValue(R"({"t":"array","bounds":[[0,999999999]],"items":[]})") << qint64(0)
        << "bounds need 1000000000";
    QTest::newRow("a billion billion elements") << withValue(
        R"({"t":"array","bounds":[[0,999999999],[1,1000000000]],"items":[{"t":"empty"}]})")
                                                << qint64(0) << "bounds need 2147483647";
    QTest::newRow("a thousand deep") << withValue(
        QByteArray(R"({"t":"list","items":[)").repeated(1000) + QByteArray("]}").repeated(1000))
                                     << qint64(0) << "too deeply nested";
    QTest::newRow("a hundred deep") << withValue(
        QByteArray(R"({"t":"list","items":[)").repeated(100) + QByteArray("]}").repeated(100))
                                    << qint64(0) << "nested more than 64 deep";
    QTest::newRow("a gigabyte of text")
        << withValue(R"({"t":"string","v":")").left(200) << (qint64(1) << 30) << "too large";
}

void tst_FormFile::hostileFileIsRefused()
{
    QFETCH(QByteArray, content);
    QFETCH(qint64, declaredSize);
    QFETCH(QString, reason);
    const QString path = m_dir.filePath(QStringLiteral("hostile.zform"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
    if (declaredSize > 0)
        QVERIFY(file.resize(declaredSize)); // sparse: the disk holds only the head
    file.close();
    QWidget form;
    try {
        loadForm(form, path);
        QFAIL("a hostile file was loaded");
    } catch (const Error &e) {
        QVERIFY2(e.message().contains(path) && e.message().contains(reason),
                 qPrintable(e.message()));
    }
    QVERIFY(Control::formControls(&form).isEmpty());
    QFile::remove(path);
}

QTEST_MAIN(tst_FormFile)
#include "tst_formfile.moc"
