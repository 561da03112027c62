#include "ChanctlJson.h"

#include <json/json.h>

#include <cstdlib>
#include <memory>
#include <sstream>

#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"
#include "vocab/ChannelConditions.h"

using namespace datacom;

namespace {

std::string line(const Json::Value& object) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, object) + "\n";
}

void putResult(Json::Value& object, Fcodes code) {
    object["fcode"] = static_cast<Json::UInt>(code);
    object["result"] = fcodeText(code);
}

}  // namespace

std::string eventJson(const MessageEvent& event) {
    Json::Value object(Json::objectValue);
    object["id"] = event.id;
    object["fcode"] = static_cast<Json::UInt>(event.fcode);
    object["source"] = event.source;
    object["status"] = event.status;
    object["severity"] = event.severity;
    object["description"] = event.description;
    object["time"] = event.time;
    Json::Value params(Json::objectValue);
    for (const auto& param : event.params)
        params[param.first] = param.second;
    object["params"] = params;
    return line(object);
}

std::string commandJson(const std::string& commandId, Fcodes code, const std::string& replyBody) {
    Json::Value object(Json::objectValue);
    object["command"] = commandId;
    putResult(object, code);
    Json::Value reply(Json::objectValue);
    std::string segment;
    MessageCommand command;
    if (getSegment(replyBody, 0, wire::TAG_COMMAND, segment) >= 0 && isOk(command.initFromString(segment))) {
        for (const auto& param : command.params)
            reply[param.first] = param.second;
    } else {
        const std::string text = replyText(replyBody);
        if (!text.empty())
            reply["text"] = text.substr(0, text.size() - 1);  // without replyText's newline
    }
    object["reply"] = reply;
    return line(object);
}

std::string valueJson(const std::vector<std::string>& words, bool set, Fcodes code, const std::string& value) {
    static const char* const names[] = {"dataset", "component", "property"};
    Json::Value object(Json::objectValue);
    for (size_t i = 0; i < 3 && i < words.size(); ++i)
        object[names[i]] = words[i];
    // get: DATASET COMPONENT PROPERTY [INSTANCE]; set: ... VALUE [INSTANCE].
    object["instance"] = words.size() > (set ? 4u : 3u) ? words.back() : "";
    putResult(object, code);
    if (isOk(code))
        object["value"] = value;
    return line(object);
}

Json::Value statusValue(const StatusView& view) {
    Json::Value object(Json::objectValue);
    putResult(object, view.code);
    object["loaded"] = view.loaded;
    if (!view.loaded) {
        const std::string hint = NOT_LOADED_LINE;
        object["hint"] = hint.substr(0, hint.size() - 1);
    }
    Json::Value list(Json::arrayValue);
    for (const ChannelSummary& channel : view.channels) {
        Json::Value entry(Json::objectValue);
        entry["row"] = channel.rowId;
        entry["title"] = channel.title;
        for (size_t i = 0; i < view.labels.size() && i < channel.cells.size(); ++i)
            entry[view.labels[i]] = channel.cells[i];
        if (channel.fcodeRead) {
            Json::Value names(Json::arrayValue);
            for (const std::string& name : channelConditionNames(channel.fcode))
                names.append(name);
            entry["condition"]["fcode"] = static_cast<Json::UInt>(channel.fcode);
            entry["condition"]["names"] = names;
        }
        list.append(entry);
    }
    object["channels"] = list;
    return object;
}

std::string statusJson(const StatusView& view) {
    return line(statusValue(view));
}
