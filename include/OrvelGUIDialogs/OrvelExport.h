/* The one export macro of libOrvelGUIDialogs. The library is built with hidden
 * visibility; only what carries ORV_EXPORT is part of its interface. */
#ifndef ORVEL_EXPORT_H
#define ORVEL_EXPORT_H

#if defined(_WIN32)
#define ORV_EXPORT
#else
#define ORV_EXPORT __attribute__((visibility("default")))
#endif

#endif
