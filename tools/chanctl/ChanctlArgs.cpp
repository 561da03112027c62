#include "ChanctlArgs.h"

#include <cerrno>
#include <cstdlib>

using namespace datacom;

namespace {

struct ActionName {
    const char* word;
    ChanctlAction action;
    size_t minWords, maxWords;  // words after the action, NAME=VALUE parameters not counted
    bool takesParams;
};

// Dispatch table: the action words, how many words each takes.
const ActionName kActions[] = {
    {"command", ChanctlAction::Command, 1, 1, true}, {"get", ChanctlAction::Get, 3, 4, false},
    {"set", ChanctlAction::Set, 4, 5, false},        {"listen", ChanctlAction::Listen, 0, 0, false},
    {"event", ChanctlAction::Event, 1, 1, true},     {"status", ChanctlAction::Status, 0, 0, false},
};

// A whole decimal number in [min, max]; false otherwise.
bool parseNumber(const std::string& text, long min, long max, long& value) {
    if (text.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    long parsed = std::strtol(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || parsed < min || parsed > max)
        return false;
    value = parsed;
    return true;
}

bool holdsQuote(const std::string& text) {
    return text.find('"') != std::string::npos;
}

// Applies one option; "" or the reason it is refused.
std::string applyOption(const std::string& name, const std::string& value, ChanctlOptions& options) {
    long number = 0;
    if (name == "socket") {
        if (value.empty())
            return "--socket needs a path";
        options.socket = value;
    } else if (name == "timeout") {
        if (!parseNumber(value, 1, 86400, number))
            return "--timeout needs whole seconds from 1 to 86400, not '" + value + "'";
        options.timeoutSec = static_cast<unsigned>(number);
        options.timeoutGiven = true;
    } else if (name == "count") {
        if (!parseNumber(value, 1, 1000000000L, number))
            return "--count needs a positive number, not '" + value + "'";
        options.count = number;
    } else if (name == "json") {
        if (!value.empty())
            return "--json takes no value";
        options.json = true;
    } else if (name == "source") {
        options.source = value;
    } else if (name == "status") {
        options.status = value;
    } else if (name == "description") {
        options.description = value;
    } else if (name == "fcode") {
        char* end = nullptr;
        errno = 0;
        unsigned long code = std::strtoul(value.c_str(), &end, 0);
        if (value.empty() || *end != '\0' || errno != 0 || code > 0xFFFFFFFFUL)
            return "--fcode needs a number such as 0x20000, not '" + value + "'";
        options.fcode = static_cast<Fcodes>(code);
    } else {
        return "unknown option --" + name;
    }
    return "";
}

bool takesValue(const std::string& name) {
    return name != "help" && name != "json";
}

}  // namespace

std::string parseChanctlArgs(const std::vector<std::string>& args, ChanctlOptions& options) {
    std::vector<std::string> words;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "-h" || arg == "--help") {
            options.action = ChanctlAction::Help;
            return "";
        }
        if (arg.size() < 3 || arg.compare(0, 2, "--") != 0) {
            words.push_back(arg);
            continue;
        }
        std::string name = arg.substr(2), value;
        size_t equals = name.find('=');
        if (equals != std::string::npos) {
            value = name.substr(equals + 1);
            name.resize(equals);
        } else if (takesValue(name)) {
            if (i + 1 == args.size())
                return "--" + name + " needs a value";
            value = args[++i];
        }
        std::string refused = applyOption(name, value, options);
        if (!refused.empty())
            return refused;
    }
    if (words.empty())
        return "no action given";

    const ActionName* action = nullptr;
    for (const auto& candidate : kActions)
        if (words[0] == candidate.word)
            action = &candidate;
    if (action == nullptr)
        return "unknown action '" + words[0] + "'";
    options.action = action->action;
    for (size_t i = 1; i < words.size(); ++i) {
        size_t equals = words[i].find('=');
        // A NAME=VALUE parameter follows the ID; before it, '=' is part of a word.
        if (action->takesParams && i > action->minWords && equals != std::string::npos && equals > 0)
            options.params.emplace_back(words[i].substr(0, equals), words[i].substr(equals + 1));
        else
            options.words.push_back(words[i]);
    }
    if (options.words.size() < action->minWords || options.words.size() > action->maxWords)
        return std::string("wrong number of arguments for '") + action->word + "'";

    for (const auto& word : options.words)
        if (holdsQuote(word))
            return "'" + word + "' holds a double quote, which the wire cannot carry";
    for (const auto& param : options.params)
        if (holdsQuote(param.first) || holdsQuote(param.second))
            return "'" + param.first + "=" + param.second + "' holds a double quote, which the wire cannot carry";
    for (const std::string* field : {&options.source, &options.status, &options.description})
        if (holdsQuote(*field))
            return "'" + *field + "' holds a double quote, which the wire cannot carry";
    return "";
}

const char* chanctlUsage() {
    return "usage: chanctl [OPTIONS] ACTION ...\n"
           "Talks to a service socket of the appliance (default the channel manager).\n"
           "\n"
           "Actions:\n"
           "  command ID [NAME=VALUE...]                 send a command, print the answer\n"
           "  get DATASET COMPONENT PROPERTY [INSTANCE]  print one value (GET)\n"
           "  set DATASET COMPONENT PROPERTY VALUE [INSTANCE]\n"
           "                                             set one value (SET; pending until \"Accept Changes\")\n"
           "  listen                                     subscribe, print each event on one line\n"
           "  event ID [NAME=VALUE...]                   send an event\n"
           "  status                                     both channels at a glance\n"
           "\n"
           "Options:\n"
           "  --socket PATH       the service's socket (default /tmp/sockChan)\n"
           "  --timeout SECONDS   how long to wait for an answer (default 10); listen: stop after it\n"
           "  --count N           listen: stop after N events\n"
           "  --json              command, get, set, status: one JSON object; listen: one per event\n"
           "  --source S, --status S, --description D, --fcode CODE\n"
           "                      event: its fields (CODE as 0x20000 or decimal)\n"
           "  -h, --help          this text\n"
           "\n"
           "Paths are resolved under $SYSMGT_ROOT when it is set. Exit status 0 when the\n"
           "answer is \"OK\"; otherwise 1 with the result on stderr (2: bad command line).\n"
           "A value may not hold a double quote: the wire cannot carry one.\n";
}
