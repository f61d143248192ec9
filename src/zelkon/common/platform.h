// zelkon::Platform: the services of the host environment (today, locale, language, beep, ...).
#pragma once

#include <zelkon/common/global.h>

#include <QDate>
#include <QLocale>
#include <QString>

namespace zelkon {

class ZELKON_EXPORT Platform
{
public:
    Platform() = default;
    Platform(const Platform &) = delete;
    Platform &operator=(const Platform &) = delete;
    virtual ~Platform();

    virtual QDate today() const; // local calendar date, read afresh on every call
    virtual QLocale numberLocale() const; // decimal and grouping separators
    virtual QLocale::Language uiLanguage() const; // language of the string tables; English fallback
    virtual void beep();
    virtual void messageBox(const QString &text);
    virtual void
    sendKeys(const QString &keys); // "{TAB}": focus to the next control of the active window

    static Platform &current();
    // The platform stays owned by the caller; nullptr restores the default.
    static void install(Platform *platform);
};

} // namespace zelkon
