// zelkon::TestPlatform: a platform for tests that pins today, the locale and the language and
// records beeps, message boxes and keystrokes.
#pragma once

#include <zelkon/common/platform.h>

#include <QStringList>

#include <memory>

namespace zelkon {

class TestPlatformPrivate;

class TestPlatform : public Platform
{
public:
    // Installs itself; the destructor restores the default platform.
    explicit TestPlatform(QDate today = QDate(2024, 5, 10),
                          QLocale locale = QLocale(QLocale::English, QLocale::UnitedStates),
                          QLocale::Language language = QLocale::English);
    ~TestPlatform() override;

    QDate today() const override;
    QLocale numberLocale() const override;
    QLocale::Language uiLanguage() const override;
    void beep() override;
    void messageBox(const QString &text) override;
    // Records the keys, then moves the focus as the real platform does.
    void sendKeys(const QString &keys) override;

    void setToday(QDate today);
    void setNumberLocale(const QLocale &locale);
    void setUiLanguage(QLocale::Language language);

    int beeps() const;
    QStringList messages() const;
    QStringList sentKeys() const;
    void clearRecords();

private:
    std::unique_ptr<TestPlatformPrivate> d;
};

} // namespace zelkon
