/// \file
/// zelkon::Missing: the value of an optional argument that the caller left out.
#pragma once

#include <zelkon/common/global.h>

#include <QMetaType>

namespace zelkon {

/// The value of an optional argument that the caller left out: a QVariant holding Missing
/// (missingVariant()) tells a member to use its default.
struct Missing
{
    /// All Missing values are alike.
    friend constexpr bool operator==(Missing, Missing) noexcept { return true; }
};

} // namespace zelkon

Q_DECLARE_METATYPE(zelkon::Missing)
