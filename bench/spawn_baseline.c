#define _GNU_SOURCE
#include "spawn_baseline.h"

#include <errno.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

static long roundTrip(const char *path, char *const argv[], char *buffer, size_t capacity, int newSession)
{
    int input[2], output[2];
    if (pipe2(input, O_CLOEXEC) != 0)
        return -1;
    if (pipe2(output, O_CLOEXEC) != 0) {
        close(input[0]);
        close(input[1]);
        return -1;
    }
#ifdef F_SETPIPE_SZ
    /* The pipe size the library asks for, so that only its own work differs. */
    fcntl(output[0], F_SETPIPE_SZ, 1 << 20);
#endif
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    if (newSession)
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t pid = -1;
    const int error = posix_spawn(&pid, path, &actions, &attributes, argv, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    close(input[0]);
    close(output[1]);

    long total = error == 0 ? 0 : -1;
    while (error == 0) {
        const size_t at = (size_t)total % capacity;
        const ssize_t n = read(output[0], buffer + at, capacity - at);
        if (n > 0)
            total += n;
        else if (n == 0 || errno != EINTR)
            break;
    }
    close(input[1]);
    close(output[0]);
    if (error == 0) {
        int status = 0;
        while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
    }
    return total;
}

long orvel_spawn_round_trip(const char *path, char *const argv[], char *buffer, size_t capacity)
{
    return roundTrip(path, argv, buffer, capacity, 0);
}

long orvel_spawn_round_trip_without_terminal(const char *path, char *const argv[], char *buffer, size_t capacity)
{
    return roundTrip(path, argv, buffer, capacity, 1);
}
