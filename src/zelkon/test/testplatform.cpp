#include <zelkon/test/testplatform.h>

namespace zelkon {

class TestPlatformPrivate
{
public:
    QDate today;
    QLocale locale;
    QLocale::Language language = QLocale::English;
    int beeps = 0;
    QStringList messages;
    QStringList keys;
};

TestPlatform::TestPlatform(QDate today, QLocale locale, QLocale::Language language)
    : d(std::make_unique<TestPlatformPrivate>())
{
    d->today = today;
    d->locale = std::move(locale);
    d->language = language;
    Platform::install(this);
}

TestPlatform::~TestPlatform()
{
    if (&Platform::current() == this)
        Platform::install(nullptr);
}

QDate TestPlatform::today() const
{
    return d->today;
}

QLocale TestPlatform::numberLocale() const
{
    return d->locale;
}

QLocale::Language TestPlatform::uiLanguage() const
{
    return d->language;
}

void TestPlatform::beep()
{
    ++d->beeps;
}

void TestPlatform::messageBox(const QString &text)
{
    d->messages.append(text);
}

void TestPlatform::sendKeys(const QString &keys)
{
    d->keys.append(keys);
    Platform::sendKeys(keys);
}

void TestPlatform::setToday(QDate today)
{
    d->today = today;
}

void TestPlatform::setNumberLocale(const QLocale &locale)
{
    d->locale = locale;
}

void TestPlatform::setUiLanguage(QLocale::Language language)
{
    d->language = language;
}

int TestPlatform::beeps() const
{
    return d->beeps;
}

QStringList TestPlatform::messages() const
{
    return d->messages;
}

QStringList TestPlatform::sentKeys() const
{
    return d->keys;
}

void TestPlatform::clearRecords()
{
    d->beeps = 0;
    d->messages.clear();
    d->keys.clear();
}

} // namespace zelkon
