// The string tables: user-visible texts by id in English, Russian and German.
#pragma once

#include <zelkon/common/global.h>

#include <QLocale>
#include <QString>

namespace zelkon {

// Text of an id in the language of Platform::current().uiLanguage(). A language without a table,
// or an id missing from its table, falls back to English; an id unknown in English gives "".
ZELKON_EXPORT QString loadString(int id);
ZELKON_EXPORT QString loadString(int id, QLocale::Language language);
// Whether the language's own table holds the id (no fallback).
ZELKON_EXPORT bool hasString(int id, QLocale::Language language);

} // namespace zelkon
