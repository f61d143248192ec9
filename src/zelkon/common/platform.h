/// \file
/// zelkon::Platform: the services of the host environment (today, locale, language, beep, ...).
#pragma once

#include <zelkon/common/global.h>

#include <QDate>
#include <QLocale>
#include <QString>

namespace zelkon {

/// The services of the host environment that the controls use. The default one asks Qt and the
/// system; install() puts another in place (tests pin today and the locale with TestPlatform).
class ZELKON_EXPORT Platform
{
public:
    /// A platform; it serves once given to install().
    Platform() = default;
    ///@{
    /// Not copyable: one platform is installed at a time.
    Platform(const Platform &) = delete;
    Platform &operator=(const Platform &) = delete;
    ///@}
    /// An installed platform that is destroyed puts the default one back.
    virtual ~Platform();

    /// The local calendar date, read afresh on every call.
    virtual QDate today() const;
    /// The locale whose decimal and grouping separators numbers are read and shown with.
    virtual QLocale numberLocale() const;
    /// The language of the string tables; English when a table lacks it.
    virtual QLocale::Language uiLanguage() const;
    /// Signals a refused input (an out-of-range number, a bad key).
    virtual void beep();
    /// Tells the user something that needs no answer, over the active window.
    virtual void messageBox(const QString &text);
    /// Keystrokes for the active window; "{TAB}" moves the focus to its next control.
    virtual void sendKeys(const QString &keys);

    /// The installed platform, or the default one.
    static Platform &current();
    /// The platform stays owned by the caller; nullptr restores the default.
    static void install(Platform *platform);
};

} // namespace zelkon
