#pragma once

#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <string>

#include "ChanctlArgs.h"
#include "ChanctlFormat.h"
#include "datacom/Fcodes.h"
#include "datacom/NullDataHolder.h"

namespace datacom {
class DataCommunicator;
}

// The actions of chanctl over a messaging engine that the caller made and
// initialised (and, for listen, started with a ListenHolder). Each prints its
// answer on `out` and returns the result, a refusal being the service's own
// Fcode from its NACK; the caller turns a failure into the exit status and its
// text on stderr. Requests make one try and wait
// options.timeoutSec for the answer.
datacom::Fcodes runCommand(datacom::DataCommunicator& engine, const ChanctlOptions& options, FILE* out);
datacom::Fcodes runGet(datacom::DataCommunicator& engine, const ChanctlOptions& options, FILE* out);
datacom::Fcodes runSet(datacom::DataCommunicator& engine, const ChanctlOptions& options, FILE* out);
datacom::Fcodes runEvent(datacom::DataCommunicator& engine, const ChanctlOptions& options);
datacom::Fcodes runStatus(datacom::DataCommunicator& engine, const ChanctlOptions& options, FILE* out);

// Both channels of the channel manager at `socket`, as status shows them and
// chanweb serves them. Before any channel data is loaded the service knows no
// "ChannelDataSet": the first read says so ("No Such Name") and no other is
// made, so a service that logs each refused read logs one request, not dozens.
StatusView readStatus(datacom::DataCommunicator& engine, const std::string& socket, unsigned timeoutSec);

// One command with its parameters to the service at `socket`, one try; its
// verdict as runCommand gives it, the answer's body in `replyBody`.
// `answered` (when given): whether the service replied at all, since its
// verdict may itself be "Communication Error" (from the service's own peers).
datacom::Fcodes sendServiceCommand(datacom::DataCommunicator& engine, const std::string& socket, const std::string& id,
                                   const std::vector<std::pair<std::string, std::string>>& params,
                                   std::string& replyBody, unsigned timeoutSec, bool* answered = nullptr);

// One value of a JSON data set of the service at `socket`, read ("GET", empty
// `setValue` ignored) or written ("SET", `write` true; `value` then receives
// the value now pending). A refusal gives the service's own Fcode from its
// NACK, as for every request of chanctl. `value` is untouched on failure.
datacom::Fcodes exchangeValue(datacom::DataCommunicator& engine, const std::string& socket, bool write,
                              const std::string& dataSet, const std::string& component, const std::string& property,
                              const std::string& instance, const std::string& setValue, std::string& value,
                              unsigned timeoutSec);

// The holder of a listening engine: prints every event it is handed as one
// line on `out` and counts them. Called on the engine's server thread; read by
// the waiting thread under its mutex.
class ListenHolder : public datacom::NullDataHolder {
public:
    // `json`: each event as one JSON object on its line.
    explicit ListenHolder(FILE* out, bool json = false) : out(out), json(json) {}
    datacom::Fcodes handle(datacom::MessageEvent* event) override;
    // Waits until `count` events were printed (count < 0: never) or
    // `timeoutSec` passed (0: no limit); true when the count was reached.
    bool waitFor(long count, unsigned timeoutSec);

private:
    FILE* out;
    bool json;
    std::mutex mutex;
    std::condition_variable arrived;
    long printed = 0;
};

// Subscribes the engine's receive socket to the service's events and prints
// them until options.count events came or options.timeout passed (no limit
// without --timeout: until the process is interrupted). A count not reached
// in time is FC_UNAVAILABLE.
datacom::Fcodes runListen(datacom::DataCommunicator& engine, ListenHolder& holder, const ChanctlOptions& options,
                          FILE* err);
