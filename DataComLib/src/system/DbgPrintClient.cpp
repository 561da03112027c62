#include "datacom/DbgPrintClient.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <iostream>

#include "datacom/SysmgtRoot.h"
#include "datacom/WallClock.h"

namespace datacom {

std::atomic<int32_t> gDbgLevel{0};

const char* const gSeverityString[5] = {"INFO ", "WARN ", "ERROR", "FATAL", "SYS  "};

DbgPrintClient* DbgPrintClient::instance = nullptr;

DbgPrintClient* DbgPrintClient::getInstance() {
    // Function-local static: created once even when two threads log first at once.
    static DbgPrintClient* created = instance = new DbgPrintClient("/tmp/sockDbg");
    return created;
}

DbgPrintClient::DbgPrintClient(const std::string& fifoPath) {
    taskNames.emplace(0UL, "tUnknwn");

    // A collector that goes away must cost lines, not the process: writing to a
    // pipe without a reader raises SIGPIPE, whose default action is to terminate.
    struct sigaction current {};
    if (sigaction(SIGPIPE, nullptr, &current) == 0 && current.sa_handler == SIG_DFL)
        signal(SIGPIPE, SIG_IGN);

    // The pipe sits in the shared /tmp, where a neighbour could plant its
    // name as a link to one of this process's files and have the log written
    // over it: a link is refused (O_NOFOLLOW), and so is whatever else is not
    // a pipe (a hard link to a file). Whoever made the pipe reads the log;
    // that is the collector's role, and a pipe carries nothing further.
    fd = open(sysmgtPath(fifoPath).c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    struct stat opened {};
    if (fd >= 0 && (fstat(fd, &opened) != 0 || !S_ISFIFO(opened.st_mode))) {
        close(fd);
        fd = -1;
        errno = ENXIO;  // "no such device": the name is there, a pipe is not
    }
    if (fd < 0) {
        std::cout << "DbgPrintClient: Couldn't open a fifo " << fifoPath << " errno=" << errno << std::endl;
        fd = -1;
        return;
    }
    int flags = fcntl(fd, F_GETFL);
    if (flags >= 0)
        fcntl(fd, F_SETFL, flags | O_NONBLOCK);
}

DbgPrintClient::~DbgPrintClient() {
    if (fd >= 0)
        close(fd);
}

std::string DbgPrintClient::taskNameOf(unsigned long threadId) {
    std::lock_guard<std::mutex> guard(taskNamesMutex);
    auto found = taskNames.find(threadId);
    if (found == taskNames.end())
        found = taskNames.find(0UL);
    return found->second;
}

void DbgPrintClient::fillInOss(int severity, std::ostringstream* oss) {
    // Out-of-range severities are shown as the nearest one rather than read past the table.
    if (severity < DBG_INFO)
        severity = DBG_INFO;
    if (severity > DBG_SYS)
        severity = DBG_SYS;

    // Seconds and milliseconds come from two clock readings; at a second
    // boundary they may disagree by one second.
    const time_t now = wallClockNow().tv_sec;
    struct tm local {};
    localtime_r(&now, &local);
    char date[32];
    size_t dateLength = strftime(date, sizeof date, "%d/%m/%y %H:%M:%S.", &local);

    const int ms = static_cast<int>(wallClockNow().tv_nsec / 1000000) % 1000;
    const char millis[4] = {static_cast<char>('0' + ms / 100), static_cast<char>('0' + ms / 10 % 10),
                            static_cast<char>('0' + ms % 10), '\0'};

    oss->write(gSeverityString[severity], 5);
    oss->write(date, static_cast<std::streamsize>(dateLength));
    *oss << millis << ' ' << taskNameOf(static_cast<unsigned long>(pthread_self())) << '(' << getpid() << ')';
}

void DbgPrintClient::doReport(std::ostringstream* oss) {
    const std::string text = oss->str();
    std::lock_guard<std::mutex> guard(sinkMutex);
    if (fd < 0)
        return;
    ssize_t written = write(fd, text.data(), text.size());
    (void)written;  // a full pipe or a vanished collector loses the line
}

int DbgPrintClient::setSink(int descriptor) {
    std::lock_guard<std::mutex> guard(sinkMutex);
    const int previous = fd;
    fd = descriptor;
    return previous;
}

int DbgPrintClient::sink() {
    std::lock_guard<std::mutex> guard(sinkMutex);
    return fd;
}

void DbgPrintClient::setTaskName(unsigned long threadId, const std::string& name) {
    std::lock_guard<std::mutex> guard(taskNamesMutex);
    taskNames.emplace(threadId, name);
}

void fillInOss(int severity, std::ostringstream* oss) {
    DbgPrintClient::getInstance()->fillInOss(severity, oss);
}

void debugReport(std::ostringstream* oss) {
    DbgPrintClient::getInstance()->doReport(oss);
}

void setTaskName(unsigned long threadId, const std::string& name) {
    DbgPrintClient::getInstance()->setTaskName(threadId, name);
}

DbgLine::DbgLine(int severity, const char* file, int line) {
    fillInOss(severity, &oss);
    oss << file << ':' << line << ':';
}

DbgLine::~DbgLine() {
    oss << '\n';
    debugReport(&oss);
}

}  // namespace datacom
