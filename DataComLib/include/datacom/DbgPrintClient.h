#pragma once

#include "datacom/Export.h"

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <sstream>
#include <string>

namespace datacom {

/// Verbosity threshold: a line of severity s is produced only when gDbgLevel <= s.
/// 0 (the default) logs everything, 5 silences the log. Set by -v and by the
/// "StartDbgPrint"/"StopDbgPrint" commands. Atomic: the messaging engine's
/// server thread changes it while every other thread reads it.
extern DATACOM_API std::atomic<int32_t> gDbgLevel;

/// Severity names, padded to five characters so that the prefixes line up.
extern DATACOM_API const char* const gSeverityString[5];

enum DbgSeverity : int { DBG_INFO = 0, DBG_WARN = 1, DBG_ERROR = 2, DBG_FATAL = 3, DBG_SYS = 4 };

/// Process-wide writer of finished log lines into the debug pipe read by the
/// log collector (dbglog on a host). Lives for the whole process; any thread
/// may log. No failure of the log ever reaches a caller.
class DATACOM_API DbgPrintClient {
public:
    static DbgPrintClient* instance;
    /// Creates the singleton on first use, opening "/tmp/sockDbg". The open
    /// blocks until a collector has the pipe open for reading.
    static DbgPrintClient* getInstance();

    /// A client writing to the given logical pipe path; the singleton uses
    /// "/tmp/sockDbg". Public so that tests can log into a pipe of their own.
    explicit DbgPrintClient(const std::string& fifoPath);
    ~DbgPrintClient();
    DbgPrintClient(const DbgPrintClient&) = delete;
    DbgPrintClient& operator=(const DbgPrintClient&) = delete;

    /// Writes the line prefix: severity, local date and time, milliseconds,
    /// task name of the calling thread and process id.
    void fillInOss(int severity, std::ostringstream* oss);
    /// Sends the stream's text in one non-blocking write; a full pipe or a
    /// missing collector loses the line.
    void doReport(std::ostringstream* oss);
    /// First registration of a thread id wins; later names are discarded.
    void setTaskName(unsigned long threadId, const std::string& name);

    /// Points the log at another descriptor (a test's pipe) and returns the
    /// one it replaces; the caller owns both. Once it returns no line is being
    /// written to the old one, so the caller may close it; other threads may
    /// log meanwhile.
    int setSink(int descriptor);
    /// The descriptor lines are written to, -1 when there is none.
    int sink();

private:
    std::string taskNameOf(unsigned long threadId);

    /// Guarded by sinkMutex, held for each write, so that setSink never
    /// races a line being written.
    int fd = -1;
    std::mutex sinkMutex;

    /// Thread id (the native pthread_t) to task name; id 0 is the fallback
    /// "tUnknwn". Guarded by taskNamesMutex: threads register while others log.
    std::map<unsigned long, std::string> taskNames;
    std::mutex taskNamesMutex;
};

/// Free forms every module uses; each forwards to the singleton.
DATACOM_API void fillInOss(int severity, std::ostringstream* oss);
DATACOM_API void debugReport(std::ostringstream* oss);
DATACOM_API void setTaskName(unsigned long threadId, const std::string& name);

/// One log line under construction: prefix and "file:line:" on creation,
/// end-of-line and the write on destruction. Use through DBG.
class DATACOM_API DbgLine {
public:
    DbgLine(int severity, const char* file, int line);
    ~DbgLine();
    DbgLine(const DbgLine&) = delete;
    DbgLine& operator=(const DbgLine&) = delete;
    std::ostringstream& stream() { return oss; }

private:
    std::ostringstream oss;
};

/// Turns the streamed line into a void expression, so DBG is one expression
/// that nests safely inside if/else.
struct DATACOM_API DbgVoidify {
    void operator&(std::ostream&) {}
};

// NOLINTBEGIN(bugprone-macro-parentheses): the line starts a stream expression the caller continues with <<
/// DBG(DBG_ERROR) << "getIntParam: No such table=" << table;
/// Nothing is formatted, and no argument evaluated, when the level filters the line out.
#define DBG(severity)                                                                   \
    (::datacom::gDbgLevel.load(std::memory_order_relaxed) > static_cast<int>(severity)) \
        ? (void)0                                                                       \
        : ::datacom::DbgVoidify() & ::datacom::DbgLine((severity), __FILE__, __LINE__).stream()
// NOLINTEND(bugprone-macro-parentheses)

}  // namespace datacom
