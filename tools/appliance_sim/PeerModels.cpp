#include "PeerModels.h"

#include "SimVocabulary.h"

using namespace datacom;

namespace {

const char* const DEVICE_COMMANDS[] = {sim::CMD_TOGGLE_KLVOSDI_INPUT, sim::CMD_RESET_KLVOSDI_STATS,
                                       sim::CMD_RESET_KLVOIP_STATS, sim::CMD_RESET_KLV_STATS};

std::string joinLines(const std::vector<std::string>& lines, const char* prefix) {
    std::string text;
    for (const std::string& line : lines)
        text += prefix + line + "\n";
    return text;
}

}  // namespace

std::string paramsText(const MessageParams& params) {
    std::string text;
    for (const auto& [name, value] : params.params) {
        if (!text.empty())
            text += ' ';
        text += name + "=" + value;
    }
    return text;
}

Fcodes SapModel::serve(const MessageCommand& request) {
    const std::string& id = request.getId();
    std::lock_guard<std::mutex> guard(mutex);
    served.push_back(request.params.empty() ? id : id + " " + paramsText(request));
    if (id == sim::CMD_STOP_ALL_SAP) {
        announced.clear();
        return FC_OK;
    }
    if (id != sim::CMD_START_SAP && id != sim::CMD_STOP_SAP)
        return FC_NO_SUCH_NAME;
    std::string name, address, port;
    if (request.getParam(sim::PARAM_CHANNEL_NAME, name) == 0 ||
        request.getParam(sim::PARAM_DESTINATION_IP, address) == 0 ||
        request.getParam(sim::PARAM_DESTINATION_PORT, port) == 0)
        return FC_BODY_ERROR;
    const std::string key = name + " " + address + ":" + port;
    if (id == sim::CMD_START_SAP)
        announced[key] = request.params;
    else
        announced.erase(key);
    return FC_OK;
}

std::vector<std::string> SapModel::streams() const {
    std::lock_guard<std::mutex> guard(mutex);
    std::vector<std::string> keys;
    for (const auto& entry : announced)
        keys.push_back(entry.first);
    return keys;
}

std::vector<std::string> SapModel::requests() const {
    std::lock_guard<std::mutex> guard(mutex);
    return served;
}

std::string SapModel::report() const {
    return joinLines(streams(), "announced ");
}

Fcodes DeviceCommandModel::serve(const MessageCommand& request) {
    const std::string& id = request.getId();
    bool known = false;
    for (const char* command : DEVICE_COMMANDS)
        known = known || id == command;
    if (!known)
        return FC_NO_SUCH_NAME;
    std::string unused;
    if (id == sim::CMD_TOGGLE_KLVOSDI_INPUT &&
        (request.getParam(sim::PARAM_KLV_SOURCE, unused) == 0 || request.getParam(sim::PARAM_CHANNEL_ID, unused) == 0))
        return FC_BODY_ERROR;
    std::string entry = id;
    if (!request.params.empty())
        entry += " " + paramsText(request);
    std::lock_guard<std::mutex> guard(mutex);
    served.push_back(entry);
    return FC_OK;
}

std::vector<std::string> DeviceCommandModel::commands() const {
    std::lock_guard<std::mutex> guard(mutex);
    return served;
}

std::string DeviceCommandModel::report() const {
    return joinLines(commands(), "command ");
}
