/* The least a dialog can cost: start the program with posix_spawn, its stdin
 * and stdout on two pipes, read its output to the end, reap it with waitpid. */
#ifndef ORVEL_SPAWN_BASELINE_H
#define ORVEL_SPAWN_BASELINE_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Reads the output into `buffer` (`capacity` bytes, reused by the caller;
 * output beyond it wraps to the start). The number of bytes read, or -1. */
long orvel_spawn_round_trip(const char *path, char *const argv[], char *buffer, size_t capacity);

/* The same with the program in a session of its own, so without a
 * controlling terminal. */
long orvel_spawn_round_trip_without_terminal(const char *path, char *const argv[], char *buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
