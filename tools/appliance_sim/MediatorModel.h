#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"
#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"

// What the simulated media mediator knows: the state of each branch, the
// parameters of its components, the writes it received and its assembly. It
// serves the eight "Tarnevel ..." commands; the caller sends the answer and
// the events.
// Thread-safe: the serving thread and the control commands share it.
class MediatorModel {
public:
    // Loads the parameter table from its JSON text: an object of components,
    // each an object of parameters whose values are texts, integers or
    // booleans. Replaces the table and the assembly, and stops every branch,
    // as a mediator started afresh. FC_BAD_VALUE with `error` set when the
    // text is not such an object.
    datacom::Fcodes loadParams(const std::string& jsonText, std::string& error);
    // As a mediator started afresh: the last loaded table again, every branch
    // stopped, the records kept (they describe the whole session).
    void startAfresh();

    // Serves one request. `answer` starts as a copy of the request and gets
    // the answer parameter of a read; `events` receives the events to send to
    // the subscribers. FC_BODY_ERROR for missing parameters, FC_NO_SUCH_NAME
    // for an unknown command or component, and for reading an unknown
    // parameter.
    datacom::Fcodes serve(const datacom::MessageCommand& request, datacom::MessageCommand& answer,
                          std::vector<datacom::MessageEvent>& events);

    // The statistics of `component` as after `ticks` refreshes: a link that
    // has run for a long time (the next refresh counts on from there).
    void setStatTicks(const std::string& component, uint64_t ticks);
    // Sets a parameter as the mediator itself would (control command).
    void setParam(const std::string& component, const std::string& parameter, const std::string& value);
    // The receiver of a video source row now detects `format`: its "Video
    // Format" changes and an "Auto Detection Event" (Source = the row,
    // parameter "Input Detected" = format) goes into `events`. "No Such Name"
    // for a row without a receiver.
    datacom::Fcodes setInput(const std::string& source, const std::string& format,
                             std::vector<datacom::MessageEvent>& events);
    // "RUN" or "STOP"; a branch never started is "STOP".
    std::string branchState(const std::string& branch) const;
    // The writes received, in order, as `Component/Parameter=value`.
    std::vector<std::string> writes() const;
    // The parameter reads received, in order, as `Component/Parameter`.
    std::vector<std::string> reads() const;
    // Forgets the recorded writes and reads.
    void clearRecords();
    std::string assembly() const;
    // Running branches and recorded writes, one a line (for "Sim Report").
    std::string report() const;

private:
    datacom::Fcodes getParam(const datacom::MessageCommand& request, datacom::MessageCommand& answer) const;
    datacom::Fcodes putParam(const datacom::MessageCommand& request);
    datacom::Fcodes changeBranch(const datacom::MessageCommand& request, bool start,
                                 std::vector<datacom::MessageEvent>& events);
    // One refresh of a Zixi feeder's or SRT sender's statistics texts.
    void advanceStats(const std::string& component);

    mutable std::mutex mutex;
    std::string loadedText;  // the last table loaded, for startAfresh
    std::map<std::string, std::map<std::string, std::string>> params;
    std::map<std::string, std::string> branches;
    std::vector<std::string> recordedWrites;
    mutable std::vector<std::string> recordedReads;
    // Refreshes ("Update Stats") seen per component.
    std::map<std::string, uint64_t> statTicks;  // 64 bits: the counters pass 2^32 on long runs
    // One component name a line, in name order, unless a client put another.
    std::string assemblyText;
};
