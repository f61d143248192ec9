// The string tables: user-visible texts by id or by name in English, Russian and German.
#pragma once

#include <zelkon/common/global.h>

#include <QLocale>
#include <QString>

namespace zelkon {

// Text of an id in the language of Platform::current().uiLanguage(). A language without a table,
// or an id missing from its table, falls back to English; an id unknown in English gives "".
QString loadString(int id);
QString loadString(int id, QLocale::Language language);
// Whether the language's own table holds the id (no fallback).
bool hasString(int id, QLocale::Language language);

// The same by name, for the texts that have no numeric id (accessible names, dialog titles); the
// names are plain ASCII keys of the same tables.
QString loadString(const char *name);
QString loadString(const char *name, QLocale::Language language);
bool hasString(const char *name, QLocale::Language language);

} // namespace zelkon
