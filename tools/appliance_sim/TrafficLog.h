#pragma once

#include <cstdio>
#include <mutex>
#include <string>

#include "datacom/MessageHeader.h"

// The simulator's traffic printer: one readable line per message, written to
// standard output and, when a file is open, also to that file (flushed per
// line, so that a test can read it while the simulator runs).
// Thread-safe: the three services print from their own threads.
class TrafficLog {
public:
    TrafficLog() = default;
    ~TrafficLog();
    TrafficLog(const TrafficLog&) = delete;
    TrafficLog& operator=(const TrafficLog&) = delete;

    // Opens (truncates) the file; false when it cannot be opened.
    bool openFile(const std::string& hostPath);
    // Prints one message: `direction` "IN" or "OUT", `service` the socket's
    // short name, the body as it travels (BODY element included, or "").
    void message(const char* direction, const std::string& service, const datacom::MessageHeader& header,
                 const std::string& body);
    // Prints a free line (start-up, control actions).
    void note(const std::string& text);

    // The line `message` prints, e.g.
    //   IN  mediator COMMAND #7 "Tarnevel Get Branch State" Branch="UDP CH0"
    //   OUT mediator EVENT #0 "Tarnevel Branch Started" Source="UDP CH0" Status="None" Fcode=0x10000 (OK)
    //   IN  device GET #9 <DataSet ID="DeviceDataSet" ><Component Name="DateTimeTable" >...
    // Replies and events end with their Fcode and its meaning; requests carry none.
    static std::string formatLine(const char* direction, const std::string& service,
                                  const datacom::MessageHeader& header, const std::string& body);

private:
    void write(const std::string& line);

    std::mutex mutex;
    FILE* file = nullptr;
};
