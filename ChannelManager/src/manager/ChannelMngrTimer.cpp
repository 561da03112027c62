// The periodic refresh of the video sources: a one-shot POSIX timer on
// SIGRTMIN, re-armed after each refresh. The signal handler only posts a
// semaphore; the refresh itself ("Update Source" with "Video Source" = "All"
// through execute) runs on a thread of its own, "tChTimer", so no lock, log
// or request is ever taken in signal context. The worker cannot do it: its
// doExecute refuses every queued command.
#include <pthread.h>
#include <sys/prctl.h>
#include <time.h>

#include <cerrno>

#include "datacom/DbgPrintClient.h"
#include "datacom/MessageCommand.h"
#include "manager/ChannelMngr.h"
#include "vocab/ChannelWireTexts.h"

using namespace datacom;

using namespace vocab;

ChannelMngr::~ChannelMngr() {
    stopPeerWatch();
    stopTimer();
    shutdown();
}

void ChannelMngr::stopTimer() {
    if (refreshRunning) {
        refreshStopping = true;
        sem_post(&ticks);
        pthread_join(refreshThread, nullptr);
        refreshRunning = false;
    }
    if (timerMade) {
        timer_delete(static_cast<timer_t>(timer));
        sem_destroy(&ticks);
        timerMade = false;
    }
}

int ChannelMngr::startTimer() {
    if (!timerMade) {
        if (sem_init(&ticks, 0, 0) != 0)
            return -1;
        struct sigaction action {};
        action.sa_sigaction = &ChannelMngr::timerTicked;
        action.sa_flags = SA_SIGINFO | SA_RESTART;
        sigemptyset(&action.sa_mask);
        if (sigaction(SIGRTMIN, &action, nullptr) != 0)
            return -1;
        sigevent notification{};
        notification.sigev_notify = SIGEV_SIGNAL;
        notification.sigev_signo = SIGRTMIN;
        notification.sigev_value.sival_ptr = this;
        timer_t created{};
        if (timer_create(CLOCK_REALTIME, &notification, &created) != 0) {
            DBG(DBG_ERROR) << "startTimer: timer_create failed errno=" << errno;
            sem_destroy(&ticks);
            return -1;
        }
        setTimer(created);
        timerMade = true;
    }
    if (!refreshRunning) {
        refreshStopping = false;
        const int made = pthread_create(&refreshThread, nullptr, &ChannelMngr::refreshWork, this);
        if (made != 0) {
            DBG(DBG_ERROR) << "startTimer: pthread_create failed errno=" << made;
            errno = made;
            return -1;
        }
        refreshRunning = true;
    }
    return armTimer();
}

// One single period, no interval: the next one is armed after the refresh,
// so a slow refresh never piles up expiries.
int ChannelMngr::armTimer() {
    itimerspec period{};
    const auto count = timerPeriod.count();
    period.it_value.tv_sec = static_cast<time_t>(count / 1000);
    period.it_value.tv_nsec = static_cast<long>(count % 1000) * 1000000L;
    const int armed = timer_settime(static_cast<timer_t>(timer), 0, &period, nullptr);
    if (armed != 0)
        DBG(DBG_ERROR) << "startTimer: timer_settime failed errno=" << errno;
    return armed;
}

void ChannelMngr::timerTicked(int, siginfo_t* info, void*) {
    if (info == nullptr || info->si_value.sival_ptr == nullptr)
        return;
    const int savedErrno = errno;
    sem_post(&static_cast<ChannelMngr*>(info->si_value.sival_ptr)->ticks);
    errno = savedErrno;
}

void* ChannelMngr::refreshWork(void* self) {
    static_cast<ChannelMngr*>(self)->refreshLoop();
    return nullptr;
}

void ChannelMngr::refreshLoop() {
    setTaskName(pthread_self(), "tChTimer");
    prctl(PR_SET_NAME, "tChTimer", 0, 0, 0);
    MessageCommand refresh;
    refresh.setId(cmd::UPDATE_SOURCE);
    refresh.addParam(cmd::PARAM_VIDEO_SOURCE, cmd::VIDEO_SOURCE_ALL);
    std::string text;
    refresh.toString(text);
    for (;;) {
        while (sem_wait(&ticks) != 0 && errno == EINTR) {
        }
        if (refreshStopping)
            return;
        std::string result;
        execute(text, result);
        armTimer();
    }
}
