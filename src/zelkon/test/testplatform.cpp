#include <zelkon/test/testplatform.h>

namespace zelkon {

TestPlatform::TestPlatform(QDate today, QLocale locale, QLocale::Language language)
    : m_today(today)
    , m_locale(std::move(locale))
    , m_language(language)
{
    Platform::install(this);
}

TestPlatform::~TestPlatform()
{
    if (&Platform::current() == this)
        Platform::install(nullptr);
}

void TestPlatform::sendKeys(const QString &keys)
{
    m_keys.append(keys);
    Platform::sendKeys(keys);
}

void TestPlatform::clearRecords()
{
    m_beeps = 0;
    m_messages.clear();
    m_keys.clear();
}

} // namespace zelkon
