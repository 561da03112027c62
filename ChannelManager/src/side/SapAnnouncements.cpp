#include <sstream>
#include <string>
#include <vector>

#include "datacom/DbgPrintClient.h"
#include "datacom/MessageCommand.h"
#include "datacom/WireConstants.h"
#include "model/ChannelRows.h"
#include "ports/ChannelStore.h"
#include "ports/Mediator.h"
#include "side/SapAnnouncements.h"
#include "side/SideActionSupport.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// Announcing a channel's streams through the SAP announcer ("/tmp/sockSap"):
// every enabled target with "SAP" set is announced ("START_SAP") while the
// channel is "Played" or "Playing" and withdrawn ("STOP_SAP") otherwise.

namespace {

// The parameters of the SAP announcer's commands.
const char* const P_CHANNEL_NAME = cmd::PARAM_SAP_CHANNEL_NAME;
const char* const P_PROTOCOL = "Streaming Protocol";
const char* const P_DESTINATION_IP = cmd::PARAM_SAP_DESTINATION_IP;
const char* const P_DESTINATION_PORT = cmd::PARAM_SAP_DESTINATION_PORT;
const char* const P_IF_ADDRESS = "IfAddress";
const char* const P_SDP_FILE = "SdpFile";
const char* const P_TTL = "TTL";
const char* const P_INPUT = "Input";
const char* const P_INPUT_FORMAT = "Input Format";
const char* const P_STATUS = "Status";
const char* const P_FCODE = "Fcode";
// The device manager's address of a network interface (row = its name).
const char* const NETWORK_INTERFACES_TABLE = "NetworkInterfacesTable";
const char* const IP_ADDRESS = "IP Address";

struct TargetSettings {
    std::string channelName, interface, address, protocol;
    int port = 0;
    int ttl = 0;
};

Fcodes readTarget(ChannelStore& store, const std::string& target, TargetSettings& out) {
    const char* ds = ds::CHANNEL;
    const char* tbl = tbl::TARGET;
    return FC_OK | store.getTextParam(ds, tbl, prop::CHANNEL_NAME, out.channelName, target) |
           store.getTextParam(ds, tbl, prop::NETWORK_INTERFACE, out.interface, target) |
           store.getTextParam(ds, tbl, prop::TARGET_ADDRESS, out.address, target) |
           store.getTextParam(ds, tbl, prop::STREAMING_PROTOCOL, out.protocol, target) |
           store.getIntParam(ds, tbl, prop::TARGET_PORT, out.port, target) |
           store.getIntParam(ds, tbl, prop::TTL, out.ttl, target);
}

// The RTSP server writes one SDP file per target; it is named after the
// target row with blanks made underscores ("H.264_Target1.sdp") in the
// server's "SDP directory".
std::string sdpFileName(const std::string& directory, const std::string& target) {
    std::string name = target;
    for (char& c : name)
        if (c == ' ')
            c = '_';
    std::string path = directory;
    if (!path.empty() && path.back() != '/')
        path += '/';
    return path + name + ".sdp";
}

Fcodes sendToAnnouncer(ChannelStore& store, const MessageCommand& command) {
    std::string text, result;
    command.toString(text);
    return store.requestCommand(wire::SOCK_SAP, text, result, peer::REQUEST_TIMEOUT_SEC, peer::REQUEST_TRIES) | FC_OK;
}

}  // namespace

Fcodes SapAnnouncements::sapAction(const std::string& rowId) {
    const int channel = channelIndex(rowId);
    if (channel < 0)
        return FC_BAD_VALUE;
    const char* ds = ds::CHANNEL;
    std::string state, status, source, detected = state::INPUT_NONE;
    int fcode = 0;
    Fcodes result = FC_OK | ctx.store.getTextParam(ds, tbl::CHANNELS, prop::STATE, state, rowId) |
                    ctx.store.getTextParam(ds, tbl::CHANNELS, prop::STATUS, status, rowId) |
                    ctx.store.getIntParam(ds, tbl::CHANNELS, prop::FCODE, fcode, rowId) |
                    ctx.store.getTextParam(ds, tbl::SOURCE, prop::SOURCE, source, rowId);
    result |=
        ctx.store.getTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, detected, source) | FC_OK;
    const bool announce = state == state::PLAYING || state == state::PLAYED;

    std::vector<std::string> targets;
    result |= rows.getChildInstances(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, rowId, targets);
    for (const std::string& target : targets) {
        bool enabled = false, sap = false;
        Fcodes read = FC_OK | ctx.store.getBoolParam(ds, tbl::TARGET, prop::ENABLED, enabled, target) |
                      ctx.store.getBoolParam(ds, tbl::TARGET, prop::SAP, sap, target);
        TargetSettings settings;
        if (isOk(read) && enabled && sap)
            read |= readTarget(ctx.store, target, settings);
        result |= read;
        // A target whose settings cannot be read cannot be named to the announcer.
        if (!isOk(read) || !enabled || !sap)
            continue;

        MessageCommand command;
        command.addParam(P_CHANNEL_NAME, settings.channelName);
        command.addParam(P_DESTINATION_IP, settings.address);
        command.addParam(P_DESTINATION_PORT, std::to_string(settings.port));
        if (!announce) {
            command.setId(cmd::STOP_SAP);
            result |= sendToAnnouncer(ctx.store, command);
            continue;
        }
        std::string ifAddress;
        result |= ctx.store.requestGetTextParam(wire::SOCK_DEV, ds::DEVICE, NETWORK_INTERFACES_TABLE, IP_ADDRESS,
                                                ifAddress, settings.interface) |
                  FC_OK;
        std::string sdpFile;
        if (settings.protocol == value::RTP_ES) {
            const char* server = med::RTSP_SERVER[channel];
            std::string directory;
            Fcodes sdp = ctx.mediator.getTextParam(server, med::PARAM_SDP_DIRECTORY, directory);
            if (isOk(sdp))
                sdpFile = sdpFileName(directory, target);
            else
                DBG(DBG_ERROR) << "sapAction: rowId=" << rowId << " Error: param=" << med::PARAM_SDP_DIRECTORY
                               << " comp=" << server << " fcode=0x" << std::hex << static_cast<uint32_t>(sdp);
            result |= sdp;
        }
        command.setId(cmd::START_SAP);
        command.addParam(P_PROTOCOL, settings.protocol);
        command.addParam(P_IF_ADDRESS, ifAddress);
        command.addParam(P_SDP_FILE, sdpFile);
        command.addParam(P_TTL, std::to_string(settings.ttl));
        command.addParam(P_INPUT, source);
        command.addParam(P_INPUT_FORMAT, detected);
        command.addParam(P_STATUS, status);
        std::ostringstream code;  // lower-case hex without "0x", as in a header
        code << std::hex << static_cast<uint32_t>(fcode);
        command.addParam(P_FCODE, code.str());
        result |= sendToAnnouncer(ctx.store, command);
    }
    return result;
}
