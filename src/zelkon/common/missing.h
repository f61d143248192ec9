// zelkon::Missing: the value of an optional argument that the caller left out.
#pragma once

#include <zelkon/common/global.h>

#include <QMetaType>

namespace zelkon {

struct Missing
{
    friend constexpr bool operator==(Missing, Missing) noexcept { return true; }
};

} // namespace zelkon

Q_DECLARE_METATYPE(zelkon::Missing)
