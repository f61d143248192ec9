#include <zelkon/common/platform.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QWidget>

namespace zelkon {

namespace {

Platform *installedPlatform = nullptr;

Platform &defaultPlatform()
{
    static Platform platform;
    return platform;
}

} // namespace

Platform::~Platform()
{
    if (installedPlatform == this)
        installedPlatform = nullptr;
}

QDate Platform::today() const
{
    return QDate::currentDate();
}

QLocale Platform::numberLocale() const
{
    return QLocale();
}

QLocale::Language Platform::uiLanguage() const
{
    const QStringList languages = QLocale().uiLanguages();
    if (!languages.isEmpty())
        return QLocale(languages.constFirst()).language();
    return QLocale().language();
}

void Platform::beep()
{
    QApplication::beep();
}

void Platform::messageBox(const QString &text)
{
    QWidget *parent = QApplication::activeWindow();
    QMessageBox box(QMessageBox::NoIcon, QApplication::applicationDisplayName(), text,
                    QMessageBox::Ok, parent);
    box.exec();
}

void Platform::sendKeys(const QString &keys)
{
    if (keys.compare(QLatin1String("{TAB}"), Qt::CaseInsensitive) != 0
        && keys.compare(QLatin1String("+{TAB}"), Qt::CaseInsensitive) != 0)
        return;
    QWidget *focus = QApplication::focusWidget();
    if (!focus)
        return;
    // Delivered as a real Tab key so that the focus chain of the window decides where it goes,
    // exactly as if the user had pressed it.
    const Qt::KeyboardModifiers modifiers
        = keys.startsWith(QLatin1Char('+')) ? Qt::ShiftModifier : Qt::NoModifier;
    const int key = modifiers ? Qt::Key_Backtab : Qt::Key_Tab;
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(focus, &press);
    QKeyEvent release(QEvent::KeyRelease, key, modifiers);
    if (QWidget *now = QApplication::focusWidget())
        QApplication::sendEvent(now, &release);
}

Platform &Platform::current()
{
    return installedPlatform ? *installedPlatform : defaultPlatform();
}

void Platform::install(Platform *platform)
{
    installedPlatform = platform;
}

} // namespace zelkon
