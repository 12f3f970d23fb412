#ifndef OVELIN_OVELINGLOBAL_H
#define OVELIN_OVELINGLOBAL_H

#include <QtCore/qcompilerdetection.h>
#include <QtCore/qtconfigmacros.h>

// The version of these headers: 0xMMNNPP for major, minor and patch. A macro, so that #if can compare it.
#define OVELIN_VERSION 0x010000 // NOLINT(modernize-macro-to-enum)
#define OVELIN_VERSION_STR "1.0.0"

#if defined(OVELIN_STATIC)
#  define OVELIN_EXPORT
#elif defined(OVELIN_BUILD)
#  define OVELIN_EXPORT Q_DECL_EXPORT
#else
#  define OVELIN_EXPORT Q_DECL_IMPORT
#endif

#endif
