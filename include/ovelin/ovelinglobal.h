#ifndef OVELIN_OVELINGLOBAL_H
#define OVELIN_OVELINGLOBAL_H

#include <QtCore/qcompilerdetection.h>
#include <QtCore/qtconfigmacros.h>

#if defined(OVELIN_STATIC)
#  define OVELIN_EXPORT
#elif defined(OVELIN_BUILD)
#  define OVELIN_EXPORT Q_DECL_EXPORT
#else
#  define OVELIN_EXPORT Q_DECL_IMPORT
#endif

#endif
