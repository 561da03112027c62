#include "MediatorModel.h"

#include <json/json.h>

#include <memory>
#include <sstream>

#include "SimVocabulary.h"
#include "datacom/TagText.h"
#include "tarnevel/TarnevelWire.h"

using namespace datacom;

using namespace vocab;

namespace {

// Parameter values travel as texts: integers in decimal, booleans as
// "true"/"false".
bool jsonToText(const Json::Value& value, std::string& text) {
    if (value.isString())
        text = value.asString();
    else if (value.isBool())
        text = value.asBool() ? "true" : "false";
    else if (value.isInt())
        text = std::to_string(value.asInt());
    else
        return false;
    return true;
}

std::string requiredParam(const MessageCommand& request, const char* name, bool& missing) {
    std::string value;
    if (request.getParam(name, value) == 0)
        missing = true;
    return value;
}

}  // namespace

void MediatorModel::startAfresh() {
    std::string text, error;
    {
        std::lock_guard<std::mutex> guard(mutex);
        text = loadedText;
    }
    loadParams(text, error);
}

Fcodes MediatorModel::loadParams(const std::string& jsonText, std::string& error) {
    Json::CharReaderBuilder builder;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    if (!reader->parse(jsonText.data(), jsonText.data() + jsonText.size(), &root, &error))
        return FC_BAD_VALUE;
    if (!root.isObject()) {
        error = "the parameter file must hold an object of components";
        return FC_BAD_VALUE;
    }
    std::map<std::string, std::map<std::string, std::string>> loaded;
    for (const std::string& component : root.getMemberNames()) {
        const Json::Value& members = root[component];
        if (!members.isObject()) {
            error = "component \"" + component + "\" is not an object of parameters";
            return FC_BAD_VALUE;
        }
        auto& table = loaded[component];
        for (const std::string& parameter : members.getMemberNames())
            if (!jsonToText(members[parameter], table[parameter])) {
                error = "\"" + component + "\" \"" + parameter + "\" is not a text, integer or boolean";
                return FC_BAD_VALUE;
            }
    }
    std::string names;
    for (const auto& entry : loaded)
        names += entry.first + "\n";
    std::lock_guard<std::mutex> guard(mutex);
    loadedText = jsonText;
    params.swap(loaded);
    assemblyText = names;
    branches.clear();
    return FC_OK;
}

Fcodes MediatorModel::serve(const MessageCommand& request, MessageCommand& answer, std::vector<MessageEvent>& events) {
    answer = request;
    const std::string& id = request.getId();
    std::lock_guard<std::mutex> guard(mutex);
    if (id == tarnevel::CMD_GET_PARAM)
        return getParam(request, answer);
    if (id == tarnevel::CMD_PUT_PARAM)
        return putParam(request);
    if (id == tarnevel::CMD_GET_ASSEMBLY) {
        answer.addParam(tarnevel::PARAM_ASSEMBLY, assemblyText);
        return FC_OK;
    }
    if (id == tarnevel::CMD_PUT_ASSEMBLY) {
        std::string text;
        if (request.getParam(tarnevel::PARAM_ASSEMBLY, text) == 0)
            return FC_BODY_ERROR;
        assemblyText = text;
        recordedWrites.push_back(std::string(tarnevel::PARAM_ASSEMBLY) + "=" + text);
        return FC_OK;
    }
    if (id == tarnevel::CMD_GET_BRANCH_STATE) {
        std::string branch;
        if (request.getParam(tarnevel::PARAM_BRANCH, branch) == 0)
            return FC_BODY_ERROR;
        auto found = branches.find(branch);
        answer.addParam(tarnevel::PARAM_BRANCH_STATE, found == branches.end() ? tarnevel::BRANCH_STOP : found->second);
        return FC_OK;
    }
    if (id == tarnevel::CMD_STORE_STATE)
        return FC_OK;
    if (id == tarnevel::CMD_START_BRANCH || id == tarnevel::CMD_STOP_BRANCH)
        return changeBranch(request, id == tarnevel::CMD_START_BRANCH, events);
    return FC_NO_SUCH_NAME;
}

// Answers in the value parameter the request carries: "IntValue" in decimal
// (leading-number conversion of the stored text), otherwise "TextValue".
Fcodes MediatorModel::getParam(const MessageCommand& request, MessageCommand& answer) const {
    bool missing = false;
    const std::string component = requiredParam(request, tarnevel::PARAM_COMPONENT, missing);
    const std::string parameter = requiredParam(request, tarnevel::PARAM_PARAMETER, missing);
    if (missing)
        return FC_BODY_ERROR;
    recordedReads.push_back(component + "/" + parameter);
    auto found = params.find(component);
    if (found == params.end())
        return FC_NO_SUCH_NAME;
    auto value = found->second.find(parameter);
    if (value == found->second.end())
        return FC_NO_SUCH_NAME;
    std::string unused;
    if (request.getParam(tarnevel::PARAM_INT_VALUE, unused) != 0)
        answer.addParam(tarnevel::PARAM_INT_VALUE, std::to_string(tagToInt(value->second)));
    else
        answer.addParam(tarnevel::PARAM_TEXT_VALUE, value->second);
    return FC_OK;
}

// A component of the parameter table may be written, as the mediator accepts
// only the components of its assembly: a misspelt name is refused "No Such
// Name". A new parameter of a known component is accepted, and a later read
// returns what was written.
Fcodes MediatorModel::putParam(const MessageCommand& request) {
    bool missing = false;
    const std::string component = requiredParam(request, tarnevel::PARAM_COMPONENT, missing);
    const std::string parameter = requiredParam(request, tarnevel::PARAM_PARAMETER, missing);
    if (missing)
        return FC_BODY_ERROR;
    std::string value;
    if (request.getParam(tarnevel::PARAM_TEXT_VALUE, value) == 0 &&
        request.getParam(tarnevel::PARAM_INT_VALUE, value) == 0)
        return FC_BODY_ERROR;
    auto found = params.find(component);
    if (found == params.end())
        return FC_NO_SUCH_NAME;
    found->second[parameter] = value;
    recordedWrites.push_back(component + "/" + parameter + "=" + value);
    if (parameter == sim::PARAM_UPDATE_STATS && value != "0")
        advanceStats(component);
    return FC_OK;
}

Fcodes MediatorModel::changeBranch(const MessageCommand& request, bool start, std::vector<MessageEvent>& events) {
    std::string branch;
    if (request.getParam(tarnevel::PARAM_BRANCH, branch) == 0 || branch.empty())
        return FC_BODY_ERROR;
    branches[branch] = start ? tarnevel::BRANCH_RUN : tarnevel::BRANCH_STOP;
    MessageEvent event;
    event.id = start ? sim::EVT_BRANCH_STARTED : sim::EVT_BRANCH_STOPPED;
    event.source = branch;
    event.severity = "Info";
    event.description = branch + (start ? " started" : " stopped");
    events.push_back(event);
    return FC_OK;
}

void MediatorModel::setStatTicks(const std::string& component, uint64_t ticks) {
    std::lock_guard<std::mutex> guard(mutex);
    statTicks[component] = ticks;
}

void MediatorModel::setParam(const std::string& component, const std::string& parameter, const std::string& value) {
    std::lock_guard<std::mutex> guard(mutex);
    params[component][parameter] = value;
}

std::string MediatorModel::branchState(const std::string& branch) const {
    std::lock_guard<std::mutex> guard(mutex);
    auto found = branches.find(branch);
    return found == branches.end() ? tarnevel::BRANCH_STOP : found->second;
}

std::vector<std::string> MediatorModel::writes() const {
    std::lock_guard<std::mutex> guard(mutex);
    return recordedWrites;
}

std::vector<std::string> MediatorModel::reads() const {
    std::lock_guard<std::mutex> guard(mutex);
    return recordedReads;
}

void MediatorModel::clearRecords() {
    std::lock_guard<std::mutex> guard(mutex);
    recordedWrites.clear();
    recordedReads.clear();
}

std::string MediatorModel::assembly() const {
    std::lock_guard<std::mutex> guard(mutex);
    return assemblyText;
}

std::string MediatorModel::report() const {
    std::lock_guard<std::mutex> guard(mutex);
    std::ostringstream out;
    for (const auto& [branch, state] : branches)
        out << "branch " << branch << " " << state << "\n";
    for (const std::string& write : recordedWrites)
        out << "write " << write << "\n";
    return out.str();
}

namespace {

bool startsWith(const std::string& text, const char* prefix) {
    return text.rfind(prefix, 0) == 0;
}

}  // namespace

Fcodes MediatorModel::setInput(const std::string& source, const std::string& format,
                               std::vector<MessageEvent>& events) {
    const char* receiver = med::receiverOf(source);
    if (receiver == nullptr)
        return FC_NO_SUCH_NAME;
    {
        std::lock_guard<std::mutex> guard(mutex);
        params[receiver][sim::PARAM_VIDEO_FORMAT] = format;
    }
    MessageEvent event;
    event.id = sim::EVT_AUTO_DETECTION;
    event.source = source;
    event.status = format == "None" ? "OFF" : "ON";
    event.severity = "Info";
    event.description = source + " detects " + format;
    event.addParam(sim::PARAM_INPUT_DETECTED, format);
    events.push_back(event);
    return FC_OK;
}

// A running link between two refreshes: every tick adds 1000 packets with
// 1% dropped and a few recovered, so successive reads differ as they would
// on the appliance. Caller holds the mutex.
void MediatorModel::advanceStats(const std::string& component) {
    const uint64_t tick = ++statTicks[component];
    auto& table = params[component];
    const std::string n = std::to_string(tick);
    if (startsWith(component, "Zixi Feeder")) {
        table["Network Stats"] = std::to_string(1000 * tick) + " packets, 1000 packet_rate, " +
                                 std::to_string(10 * tick) + " dropped, 5000000 bitrate, 20000000 available, " +
                                 std::to_string(20 + tick % 5) + " rtt, 2 jitter, 500 latency";
        table["Error Correction Stats"] = std::to_string(3 * tick) + " arq_recovered, " + std::to_string(2 * tick) +
                                          " fec_recovered, " + n + " not_recovered";
        table["Connection Stats"] = std::to_string(tick / 10) + " reconnections";
    } else if (startsWith(component, "Srt Sender")) {
        table["Stat: Bitrate (mbps)"] = std::to_string(4 + tick % 4) + ".5";
        table["Stat: RTT"] = std::to_string(2 + tick % 3);
        table["Stat: Packets"] = std::to_string(1000 * tick);
        table["Stat: Lost Packets"] = n;
        table["Stat: Dropped Packets"] = std::to_string(tick / 2);
        table["Stat: Retransmitted Packets"] = std::to_string(2 * tick);
    }
}
