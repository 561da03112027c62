#include "ChanctlCommands.h"

#include <chrono>
#include <cstdlib>
#include <memory>

#include "ChanctlFormat.h"
#include "ChanctlJson.h"
#include "datacom/DataCommunicator.h"
#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"
#include "datacom/MessageTypes.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"

using namespace datacom;

using namespace vocab;

namespace {

constexpr unsigned ONE_TRY = 1;

// The channel rows of the channel manager, shown by status.
const struct {
    const char* rowId;
    const char* title;
} kChannels[] = {{row::H264, "H.264 (CH0)"}, {row::HEVC, "HEVC (CH1)"}};
constexpr const char* CHANNEL_DATASET = ds::CHANNEL;
constexpr const char* CHANNELS_TABLE = tbl::CHANNELS;
constexpr const char* PROCESSING_TABLE = tbl::PROCESSING;
constexpr const char* TARGET_TABLE = tbl::TARGET;

// Rows shown after the summary when the service serves them, that is once
// channel data is loaded: the bitrates asked for and the two targets.
const struct {
    const char* label;
    const char* property;  // of PROCESSING_TABLE; null: the target named by `target`
    const char* target;    // instance suffix of the channel's target row
} kFurtherRows[] = {
    {"Set Bitrate", prop::TOTAL_BITRATE, nullptr},
    {"Max Bitrate", prop::MAX_BITRATE, nullptr},
    {"Target 1", nullptr, " Target1"},
    {"Target 2", nullptr, " Target2"},
};

std::string commandText(const std::string& id, const std::vector<std::pair<std::string, std::string>>& params) {
    MessageCommand command;
    command.setId(id);
    for (const auto& param : params)
        command.addParam(param.first, param.second);
    std::string text;
    command.toString(text);
    return text;
}

// The body of a GET or SET of one property, as the services' data requests read it.
std::string dataBody(const std::string& dataSet, const std::string& component, const std::string& property,
                     const std::string& instance, const std::string* setValue) {
    std::string body = "<BODY>\n\t<DataSet ID=\"" + dataSet + "\" >\n\t<Component Name=\"" + component + "\" >\n";
    if (!instance.empty())
        body += "\t\t<Row ID=\"" + instance + "\" >\n";
    body += "\t\t<Item Name=\"" + property + "\"";
    if (setValue != nullptr)
        body += " Value=\"" + *setValue + "\"";
    body += " />\n";
    if (!instance.empty())
        body += "\t\t</Row>\n";
    return body + "\t</Component>\n</DataSet>\n</BODY>\n";
}

// One request of `type` and the service's verdict: the Fcode of its ACK or
// NACK (the engine's own requestCommand turns a NACK into FC_HEADER_ERROR; a
// person wants the service's reason), FC_OK for the expected RESPONSE.
Fcodes exchange(DataCommunicator& engine, const std::string& socket, const char* type, const std::string& body,
                std::string& replyBody, unsigned timeoutSec, bool* answered = nullptr) {
    MessageHeader request, reply;
    request.ID = wire::PLACEHOLDER_REQUEST_ID;
    request.Type = type;
    request.Size = static_cast<int32_t>(body.size());
    Fcodes code = engine.sendRequest(socket, request, body, reply, replyBody, timeoutSec, ONE_TRY);
    if (answered != nullptr)
        *answered = isOk(code);
    if (!isOk(code))
        return code;
    if (reply.ID != request.ID)
        return FC_HEADER_ERROR;
    const bool command = request.Type == msgtype::COMMAND;
    if (reply.Type == msgtype::NACK || (command && reply.Type == msgtype::ACK))
        return reply.Type == msgtype::NACK && isOk(reply.Fcode) ? FC_HEADER_ERROR : reply.Fcode;
    return !command && reply.Type == msgtype::RESPONSE ? FC_OK : FC_HEADER_ERROR;
}

Fcodes sendCommand(DataCommunicator& engine, const std::string& socket, const std::string& text, std::string& replyBody,
                   unsigned timeoutSec, bool* answered = nullptr) {
    return exchange(engine, socket, msgtype::COMMAND, "<BODY>\n\t" + text + "\n</BODY>\n", replyBody, timeoutSec,
                    answered);
}

}  // namespace

Fcodes sendServiceCommand(DataCommunicator& engine, const std::string& socket, const std::string& id,
                          const std::vector<std::pair<std::string, std::string>>& params, std::string& replyBody,
                          unsigned timeoutSec, bool* answered) {
    return sendCommand(engine, socket, commandText(id, params), replyBody, timeoutSec, answered);
}

Fcodes runCommand(DataCommunicator& engine, const ChanctlOptions& options, FILE* out) {
    std::string replyBody;
    Fcodes code =
        sendServiceCommand(engine, options.socket, options.words[0], options.params, replyBody, options.timeoutSec);
    std::fputs(options.json ? commandJson(options.words[0], code, replyBody).c_str() : replyText(replyBody).c_str(),
               out);
    return code;
}

Fcodes exchangeValue(DataCommunicator& engine, const std::string& socket, bool write, const std::string& dataSet,
                     const std::string& component, const std::string& property, const std::string& instance,
                     const std::string& setValue, std::string& value, unsigned timeoutSec) {
    if (write && !fitsTagValue(setValue))
        return FC_BAD_VALUE;  // no record can carry it
    std::string replyBody;
    Fcodes code =
        exchange(engine, socket, write ? msgtype::SET : msgtype::GET,
                 dataBody(dataSet, component, property, instance, write ? &setValue : nullptr), replyBody, timeoutSec);
    if (!isOk(code))
        return code;
    std::string item, answer;
    if (getSegment(replyBody, 0, wire::TAG_ITEM, item) < 0 || getPropertyValue(item, 0, wire::ATTR_VALUE, answer) < 0)
        return FC_BODY_ERROR;
    value = answer;
    return FC_OK;
}

Fcodes runGet(DataCommunicator& engine, const ChanctlOptions& options, FILE* out) {
    const auto& w = options.words;
    std::string value;
    Fcodes code = exchangeValue(engine, options.socket, false, w[0], w[1], w[2], w.size() > 3 ? w[3] : "", "", value,
                                options.timeoutSec);
    if (options.json)
        std::fputs(valueJson(w, false, code, value).c_str(), out);
    else if (isOk(code))
        std::fprintf(out, "%s\n", value.c_str());
    return code;
}

Fcodes runSet(DataCommunicator& engine, const ChanctlOptions& options, FILE* out) {
    const auto& w = options.words;
    std::string value;
    Fcodes code = exchangeValue(engine, options.socket, true, w[0], w[1], w[2], w.size() > 4 ? w[4] : "", w[3], value,
                                options.timeoutSec);
    if (options.json)
        std::fputs(valueJson(w, true, code, value).c_str(), out);
    else if (isOk(code))
        std::fprintf(out, "%s\n", value.c_str());
    return code;
}

Fcodes runEvent(DataCommunicator& engine, const ChanctlOptions& options) {
    MessageEvent event;
    event.id = options.words[0];
    event.source = options.source;
    event.status = options.status;
    event.description = options.description;
    event.fcode = options.fcode;
    for (const auto& param : options.params)
        event.addParam(param.first, param.second);
    return engine.requestEvent(options.socket, event, options.timeoutSec, ONE_TRY);
}

StatusView readStatus(DataCommunicator& engine, const std::string& socket, unsigned timeoutSec) {
    StatusView view;
    for (const auto& row : statusRows())
        view.labels.push_back(row.label);
    for (const auto& channel : kChannels) {
        ChannelSummary summary{channel.rowId, channel.title, {}};
        for (const auto& row : statusRows()) {
            std::string value;
            Fcodes code = exchangeValue(engine, socket, false, CHANNEL_DATASET, CHANNELS_TABLE, row.property,
                                        channel.rowId, "", value, timeoutSec);
            // A service that does not answer at all is not asked 13 more times;
            // one without channel data says so at the first read.
            if (code == FC_COMM_ERROR || (code == FC_NO_SUCH_NAME && view.channels.empty() && summary.cells.empty())) {
                view.loaded = code != FC_NO_SUCH_NAME;
                view.code = code == FC_COMM_ERROR ? code : FC_OK;
                view.channels.clear();
                return view;
            }
            view.code |= code;
            summary.cells.push_back(isOk(code) ? statusCell(row, value) : "? (" + fcodeText(code) + ")");
            if (isOk(code) && std::string(row.property) == "Fcode") {
                summary.fcodeRead = true;
                summary.fcode = static_cast<uint32_t>(std::strtoul(value.c_str(), nullptr, 0));
            }
        }
        view.channels.push_back(summary);
    }
    // The further rows: shown when the service served the row for a channel.
    for (const auto& row : kFurtherRows) {
        std::vector<std::string> cells;
        bool served = false;
        for (const auto& channel : kChannels) {
            std::string cell;
            Fcodes code;
            if (row.property != nullptr) {
                code = exchangeValue(engine, socket, false, CHANNEL_DATASET, PROCESSING_TABLE, row.property,
                                     channel.rowId, "", cell, timeoutSec);
            } else {
                const std::string target = channel.rowId + std::string(row.target);
                const char* properties[] = {prop::ENABLED, prop::STREAMING_PROTOCOL, prop::TARGET_ADDRESS,
                                            prop::TARGET_PORT};
                std::string values[4];
                code = FC_OK;
                for (int i = 0; i < 4; ++i)
                    code |= exchangeValue(engine, socket, false, CHANNEL_DATASET, TARGET_TABLE, properties[i], target,
                                          "", values[i], timeoutSec);
                if (isOk(code))
                    cell = targetCell(values[0], values[1], values[2], values[3]);
            }
            served = served || isOk(code);
            cells.push_back(isOk(code) ? cell : "?");
        }
        if (!served)
            continue;
        view.labels.push_back(row.label);
        for (size_t i = 0; i < view.channels.size(); ++i)
            view.channels[i].cells.push_back(cells[i]);
    }
    return view;
}

Fcodes runStatus(DataCommunicator& engine, const ChanctlOptions& options, FILE* out) {
    const StatusView view = readStatus(engine, options.socket, options.timeoutSec);
    if (view.code != FC_COMM_ERROR || options.json)
        std::fputs(options.json ? statusJson(view).c_str() : statusTable(view).c_str(), out);
    return view.code;
}

Fcodes ListenHolder::handle(MessageEvent* event) {
    std::unique_ptr<MessageEvent> owned(event);
    std::lock_guard<std::mutex> guard(mutex);
    std::fputs(json ? eventJson(*owned).c_str() : eventLine(*owned).c_str(), out);
    std::fflush(out);
    ++printed;
    arrived.notify_all();
    return FC_OK;
}

bool ListenHolder::waitFor(long count, unsigned timeoutSec) {
    std::unique_lock<std::mutex> lock(mutex);
    auto reached = [&] { return count >= 0 && printed >= count; };
    if (timeoutSec == 0) {
        arrived.wait(lock, reached);
        return true;
    }
    return arrived.wait_for(lock, std::chrono::seconds(timeoutSec), reached);
}

Fcodes runListen(DataCommunicator& engine, ListenHolder& holder, const ChanctlOptions& options, FILE* err) {
    std::string replyBody;
    Fcodes code = sendCommand(engine, options.socket,
                              commandText(wire::CMD_SUBSCRIBE, {{wire::PARAM_SOCK_NAME, engine.getSockName()}}),
                              replyBody, options.timeoutSec);
    if (!isOk(code))
        return code;
    std::fprintf(err, "chanctl: listening to %s\n", options.socket.c_str());
    if (holder.waitFor(options.count, options.timeoutGiven ? options.timeoutSec : 0) || options.count < 0)
        return FC_OK;
    std::fprintf(err, "chanctl: fewer than %ld events before the time-out\n", options.count);
    return FC_UNAVAILABLE;
}
