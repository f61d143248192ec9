/// \file
/// The library's version array, returned by every control's Version.
#pragma once

#include <zelkon/common/global.h>

#include <QVariantList>

namespace zelkon {

///@{
/// The library's version: major, minor and revision number.
constexpr int VersionMajor = 2;
constexpr int VersionMinor = 4;
constexpr int VersionRevision = 8;
///@}

/// Five elements, built afresh on each call: a text describing the library, the major, minor and
/// revision numbers, and a second text.
ZELKON_EXPORT QVariantList versionArray();

} // namespace zelkon
