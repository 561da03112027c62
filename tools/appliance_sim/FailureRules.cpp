#include "FailureRules.h"

#include <cstdlib>
#include <sstream>

#include "SimVocabulary.h"
#include "datacom/MessageCommand.h"

using namespace datacom;

namespace {

bool parseMode(const std::string& text, FailureRules::Mode& mode) {
    if (text == sim::MODE_FCODE)
        mode = FailureRules::Mode::Fcode;
    else if (text == sim::MODE_NACK)
        mode = FailureRules::Mode::Nack;
    else if (text == sim::MODE_SILENT)
        mode = FailureRules::Mode::Silent;
    else
        return false;
    return true;
}

// Whole text as a number: decimal, or hexadecimal with a 0x prefix.
bool parseNumber(const std::string& text, unsigned long& number) {
    if (text.empty())
        return false;
    char* end = nullptr;
    number = std::strtoul(text.c_str(), &end, 0);
    return *end == '\0';
}

}  // namespace

const char* failureModeText(FailureRules::Mode mode) {
    switch (mode) {
        case FailureRules::Mode::Nack:
            return sim::MODE_NACK;
        case FailureRules::Mode::Silent:
            return sim::MODE_SILENT;
        case FailureRules::Mode::Fcode:
            break;
    }
    return sim::MODE_FCODE;
}

Fcodes FailureRules::addFromCommand(const MessageCommand& command) {
    std::string commandId, text;
    if (command.getParam(sim::PARAM_COMMAND, commandId) == 0 || commandId.empty())
        return FC_BODY_ERROR;
    unsigned long count = 1;
    if (command.getParam(sim::PARAM_COUNT, text) != 0 && (!parseNumber(text, count) || count < 1 || count > 1000000))
        return FC_BODY_ERROR;
    Failure failure;
    if (command.getParam(sim::PARAM_MODE, text) != 0 && !parseMode(text, failure.mode))
        return FC_BODY_ERROR;
    unsigned long code = FC_UNAVAILABLE;
    // A code must carry at least one failure bit over FC_OK, or the requester
    // would see success.
    if (command.getParam(sim::PARAM_FCODE, text) != 0 &&
        (!parseNumber(text, code) || code > 0xFFFFFFFFul || (code | FC_OK) == FC_OK))
        return FC_BODY_ERROR;
    failure.code = static_cast<Fcodes>(code | FC_OK);
    add(commandId, static_cast<int>(count), failure);
    return FC_OK;
}

void FailureRules::add(const std::string& commandId, int count, const Failure& failure) {
    std::lock_guard<std::mutex> guard(mutex);
    rules[commandId].push_back(Rule{failure, count});
}

bool FailureRules::take(const std::string& commandId, Failure& failure) {
    std::lock_guard<std::mutex> guard(mutex);
    auto found = rules.find(commandId);
    if (found == rules.end())
        return false;
    Rule& rule = found->second.front();
    failure = rule.failure;
    if (--rule.remaining == 0) {
        found->second.pop_front();
        if (found->second.empty())
            rules.erase(found);
    }
    return true;
}

std::string FailureRules::describe() const {
    std::lock_guard<std::mutex> guard(mutex);
    std::ostringstream out;
    for (const auto& [commandId, queue] : rules)
        for (const Rule& rule : queue)
            out << commandId << ": " << rule.remaining << " x " << failureModeText(rule.failure.mode) << " 0x"
                << std::hex << static_cast<uint32_t>(rule.failure.code) << std::dec << "\n";
    return out.str();
}
