#include <zelkon/common/version.h>

namespace zelkon {

QVariantList versionArray()
{
    return {QStringLiteral("Zelkon filter controls for Qt"), VersionMajor, VersionMinor,
            VersionRevision, QStringLiteral("Qt %1").arg(QLatin1String(qVersion()))};
}

} // namespace zelkon
