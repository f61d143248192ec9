// Export macro of the Zelkon library.
#pragma once

#include <QtCore/qglobal.h>

#if defined(ZELKON_BUILDING)
#define ZELKON_EXPORT Q_DECL_EXPORT
#else
#define ZELKON_EXPORT Q_DECL_IMPORT
#endif
