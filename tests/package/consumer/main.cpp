// A program outside the source tree that uses the installed library by class name.
#include <zelkon/test/testplatform.h>
#include <zelkon/zelkon.h>

#include <QApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    zelkon::TestPlatform platform;
    zelkon::Control *edit = zelkon::createControl(QStringLiteral("NumEdit"));
    if (!edit)
        return 1;
    edit->setProperty("Value", 1234.5);
    std::printf(
        "consumer: NumEdit %s\n",
        qPrintable(zelkon::Format(edit->property("Value").toDouble(), QStringLiteral("#,##0.00"))));
    delete edit;
    return 0;
}
