#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <string>

#include "datacom/Fcodes.h"

namespace datacom {
class MessageCommand;
}

// Injected failures of one simulated service: the next requests of a command
// ID are answered with a failure instead of being served. Rules for the same
// ID queue up and are used in the order they were given.
// Thread-safe: the control command and the serving thread may meet.
class FailureRules {
public:
    enum class Mode {
        Fcode,   // an ACK carrying the failure code
        Nack,    // a NACK carrying the failure code
        Silent,  // no answer at all
    };
    struct Failure {
        Mode mode = Mode::Fcode;
        datacom::Fcodes code = datacom::FC_UNAVAILABLE;
    };

    // Adds a rule from the parameters of a "Sim Fail" command. FC_BODY_ERROR
    // when Command is missing, or Count, Mode or Fcode are not
    // understood (a Count below 1, an Fcode without failure bits).
    datacom::Fcodes addFromCommand(const datacom::MessageCommand& command);
    void add(const std::string& commandId, int count, const Failure& failure);
    // True, with the failure to apply, when a rule covers this request; the
    // rule's count goes down by one.
    bool take(const std::string& commandId, Failure& failure);
    // Rules not used up yet, as "ID: n x Mode code" lines (for "Sim Report").
    std::string describe() const;

private:
    struct Rule {
        Failure failure;
        int remaining = 0;
    };
    mutable std::mutex mutex;
    std::map<std::string, std::deque<Rule>> rules;
};

// "Fcode", "NACK", "Silent".
const char* failureModeText(FailureRules::Mode mode);
