/// \file
/// zelkon::TestPlatform: a platform for tests that pins today, the locale and the language and
/// records beeps, message boxes and keystrokes.
#pragma once

#include <zelkon/common/platform.h>

#include <QStringList>

#include <memory>

namespace zelkon {

class TestPlatformPrivate;

/// A platform for tests, in the Zelkon::Test library: it pins today, the number locale and the
/// language, and records beeps, message boxes and keystrokes instead of showing them.
class TestPlatform : public Platform
{
public:
    /// Installs itself; the destructor restores the default platform.
    explicit TestPlatform(QDate today = QDate(2024, 5, 10),
                          QLocale locale = QLocale(QLocale::English, QLocale::UnitedStates),
                          QLocale::Language language = QLocale::English);
    ~TestPlatform() override;

    /// The pinned date.
    QDate today() const override;
    /// The pinned locale.
    QLocale numberLocale() const override;
    /// The pinned language.
    QLocale::Language uiLanguage() const override;
    /// Counts the beep, silently.
    void beep() override;
    /// Records the text instead of showing a box.
    void messageBox(const QString &text) override;
    /// Records the keys, then moves the focus as the real platform does.
    void sendKeys(const QString &keys) override;

    /// Pins another date.
    void setToday(QDate today);
    /// Pins another locale.
    void setNumberLocale(const QLocale &locale);
    /// Pins another language.
    void setUiLanguage(QLocale::Language language);

    /// The beeps so far.
    int beeps() const;
    /// The message-box texts so far, oldest first.
    QStringList messages() const;
    /// The keystrokes sent so far, oldest first.
    QStringList sentKeys() const;
    /// Forgets the beeps, messages and keystrokes.
    void clearRecords();

private:
    std::unique_ptr<TestPlatformPrivate> d;
};

} // namespace zelkon
