#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "datacom/Fcodes.h"

// What one chanctl invocation asks for: the action, its words and its options.
enum class ChanctlAction { Help, Command, Get, Set, Listen, Event, Status };

struct ChanctlOptions {
    ChanctlAction action = ChanctlAction::Help;
    std::string socket = "/tmp/sockChan";
    unsigned timeoutSec = 10;
    bool timeoutGiven = false;
    long count = -1;    // listen: stop after this many events; -1 = no limit
    bool json = false;  // command, get, set, status, listen: JSON objects instead of text
    // The words after the action that are not NAME=VALUE parameters: the
    // command or event ID; DATASET COMPONENT PROPERTY [VALUE] [INSTANCE].
    std::vector<std::string> words;
    std::vector<std::pair<std::string, std::string>> params;  // NAME=VALUE, in order given
    // Event fields.
    std::string source = "Source";
    std::string status = "None";
    std::string description;
    datacom::Fcodes fcode = datacom::FC_OK;
};

// Reads the command line (without the program name) into `options`. Returns ""
// or the reason it cannot be run. Options may stand anywhere, as "--name value"
// or "--name=value". Every text that goes on the wire is refused when it holds
// a double quote, since the tag text cannot carry one.
std::string parseChanctlArgs(const std::vector<std::string>& args, ChanctlOptions& options);

// The --help text.
const char* chanctlUsage();
