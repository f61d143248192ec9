// zelkon::TestPlatform: a platform for tests that pins today, the locale and the language and
// records beeps, message boxes and keystrokes.
#pragma once

#include <zelkon/common/platform.h>

#include <QStringList>

namespace zelkon {

class TestPlatform : public Platform
{
public:
    // Installs itself; the destructor restores the default platform.
    explicit TestPlatform(QDate today = QDate(2024, 5, 10),
                          QLocale locale = QLocale(QLocale::English, QLocale::UnitedStates),
                          QLocale::Language language = QLocale::English);
    ~TestPlatform() override;

    QDate today() const override { return m_today; }
    QLocale numberLocale() const override { return m_locale; }
    QLocale::Language uiLanguage() const override { return m_language; }
    void beep() override { ++m_beeps; }
    void messageBox(const QString &text) override { m_messages.append(text); }
    // Records the keys, then moves the focus as the real platform does.
    void sendKeys(const QString &keys) override;

    void setToday(QDate today) { m_today = today; }
    void setNumberLocale(const QLocale &locale) { m_locale = locale; }
    void setUiLanguage(QLocale::Language language) { m_language = language; }

    int beeps() const { return m_beeps; }
    QStringList messages() const { return m_messages; }
    QStringList sentKeys() const { return m_keys; }
    void clearRecords();

private:
    QDate m_today;
    QLocale m_locale;
    QLocale::Language m_language;
    int m_beeps = 0;
    QStringList m_messages;
    QStringList m_keys;
};

} // namespace zelkon
