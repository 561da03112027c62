#include "side/BoundedCommand.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace {

using Clock = std::chrono::steady_clock;

int remainingMs(Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

int statusOf(int waitStatus) {
    if (WIFEXITED(waitStatus))
        return WEXITSTATUS(waitStatus);
    if (WIFSIGNALED(waitStatus))
        return 128 + WTERMSIG(waitStatus);
    return -1;
}

// Spawns the shell with its stdout on `writeEnd`; the pid, or -1.
pid_t spawnShell(const std::string& line, int writeEnd) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, writeEnd, STDOUT_FILENO);
    // Its own process group, so that the bound kills the shell and its children.
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    std::string shell = "sh", option = "-c", command = line;
    char* argv[] = {shell.data(), option.data(), command.data(), nullptr};
    pid_t pid = -1;
    // The child gets a copy of the environment: taken under the environment
    // lock, so that a "TZ" update on another thread cannot move it meanwhile.
    lockEnvironment();
    if (posix_spawn(&pid, "/bin/sh", &actions, &attributes, argv, environ) != 0)
        pid = -1;
    unlockEnvironment();
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return pid;
}

}  // namespace

BoundedRun runBounded(const std::string& line, int limitMs, std::size_t maxOutput) {
    BoundedRun run;
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0)
        return run;
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(limitMs);
    const pid_t pid = spawnShell(line, fds[1]);
    close(fds[1]);
    if (pid < 0) {
        close(fds[0]);
        return run;
    }
    run.started = true;

    char buffer[512];
    for (;;) {
        pollfd readable{fds[0], POLLIN, 0};
        const int ready = poll(&readable, 1, remainingMs(deadline));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0) {  // bound reached (the shell's children may hold the pipe)
            kill(-pid, SIGKILL);
            run.timedOut = true;
            break;
        }
        const ssize_t got = read(fds[0], buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;  // end of output
        const std::size_t room = maxOutput > run.output.size() ? maxOutput - run.output.size() : 0;
        run.output.append(buffer, static_cast<std::size_t>(got) < room ? static_cast<std::size_t>(got) : room);
    }
    close(fds[0]);

    int waitStatus = 0;
    for (;;) {
        const pid_t done = waitpid(pid, &waitStatus, WNOHANG);
        if (done == pid)
            break;
        if (done < 0 && errno != EINTR)
            return run;
        if (run.timedOut || remainingMs(deadline) == 0) {
            kill(-pid, SIGKILL);
            while (waitpid(pid, &waitStatus, 0) < 0 && errno == EINTR) {
            }
            run.timedOut = true;
            break;
        }
        poll(nullptr, 0, 5);
    }
    run.status = statusOf(waitStatus);
    return run;
}
