#include "model/ChannelRows.h"

#include "ports/ChannelStore.h"
#include "ports/Mediator.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The mapping between channel rows and the mediator's branch names, the
// search of a channel's child rows, and the bitrate backup a stop restores.

namespace {

struct BranchNames {
    const char* protocols[3];  // the protocols that share the names
    const char* names[3];      // "H.264", "HEVC", "HEVC" with the ultra-low-latency profile
};

const BranchNames kBranches[] = {
    {{value::UDP_TS, value::PRO_MPEG, value::RTP_TS}, {"UDP CH0", "UDP CH1", "UDP CH1 ULL"}},
    {{value::RTP_ES, nullptr, nullptr}, {"RTP RTSP CH0", "RTP RTSP CH1", "RTP RTSP CH1 ULL"}},
    {{value::RTMP, nullptr, nullptr}, {"RTMP CH0", "RTMP CH1", "RTMP CH1"}},
    {{value::ZIXI, nullptr, nullptr}, {"ZIXI CH0", "ZIXI CH1", "ZIXI CH1 ULL"}},
    {{value::SRT, nullptr, nullptr}, {"SRT CH0", "SRT CH1", "SRT CH1 ULL"}},
};

// The branches whose events concern a channel. The SRT branches are left
// out deliberately: no SRT branch event is ever tied to a channel.
struct BranchRow {
    const char* branch;
    const char* rowId;
};
const BranchRow kBranchRows[] = {
    {"UDP CH0", row::H264},  {"RTP RTSP CH0", row::H264}, {"RTMP CH0", row::H264},         {"ZIXI CH0", row::H264},
    {"UDP CH1", row::HEVC},  {"RTP RTSP CH1", row::HEVC}, {"RTP RTSP CH1 ULL", row::HEVC}, {"RTMP CH1", row::HEVC},
    {"ZIXI CH1", row::HEVC}, {"UDP CH1 ULL", row::HEVC},  {"ZIXI CH1 ULL", row::HEVC},
};

}  // namespace

Fcodes ChannelRows::getBranch(const std::string& rowId, const std::string& protocol, std::string& branch) {
    const int channel = channelIndex(rowId);
    if (channel < 0)
        return FC_UNAVAILABLE;
    int column = channel;
    if (channel == 1) {
        std::string profile;
        store.getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::STREAM_PROFILE, profile, rowId);
        if (profile == value::PROFILE_ULL)
            column = 2;
    }
    for (const BranchNames& names : kBranches)
        for (const char* candidate : names.protocols)
            if (candidate != nullptr && protocol == candidate) {
                branch = names.names[column];
                return FC_OK;
            }
    return FC_UNAVAILABLE;
}

Fcodes ChannelRows::getRowId(const std::string& branch, std::string& rowId) {
    for (const BranchRow& entry : kBranchRows)
        if (branch == entry.branch) {
            rowId = entry.rowId;
            return FC_OK;
        }
    return FC_UNAVAILABLE;
}

Fcodes ChannelRows::getChildInstances(const std::string& dataSet, const std::string& component,
                                      const std::string& keyProperty, const std::string& keyValue,
                                      std::vector<std::string>& instances) {
    instances.clear();
    return store.getInstancesByParameter(dataSet, component, keyProperty, keyValue, instances);
}

int ChannelRows::getFirstChildRowId(const std::string& dataSet, const std::string& component,
                                    const std::string& keyProperty, const std::string& keyValue) {
    return getNextChildRowId(dataSet, component, keyProperty, keyValue, -1);
}

int ChannelRows::getNextChildRowId(const std::string& dataSet, const std::string& component,
                                   const std::string& keyProperty, const std::string& keyValue, int index) {
    for (int next = index + 1; store.hasInstance(dataSet, component, next); ++next) {
        std::string text;
        if (isOk(store.getTextParam(dataSet, component, keyProperty, text, next)) && text == keyValue)
            return next;
    }
    return -1;
}

// Where the backup wins: at every stop, over the values a Zixi request set.
// The encoder goes back with the channel: the restored video bitrate is sent
// to it too, so that a later play (the operator's, which sends no
// configuration) runs what the channel shows. Where the operator's on-the-fly
// change wins: see changeOnTheFly, which drops the backup.
Fcodes ChannelRows::restoreChannelParameters(const std::string& rowId) {
    Fcodes result = FC_OK;
    for (const char* property : {prop::TOTAL_BITRATE, prop::MAX_BITRATE, prop::VIDEO_BITRATE}) {
        int saved = 0;
        result |= store.getIntParam(ds::CHANNEL, tbl::PROCESSING_BACKUP, property, saved, rowId);
        if (saved != 0)
            result |= store.initIntParam(ds::CHANNEL, tbl::PROCESSING, property, saved, rowId);
        const int channel = channelIndex(rowId);
        if (saved != 0 && channel >= 0 && std::string(property) == prop::VIDEO_BITRATE)
            result |= mediator.setIntParam(med::VIDEO_ENCODER[channel], med::PARAM_BITRATE, saved);
    }
    return result | clearChannelParametersBackup(rowId);
}

Fcodes ChannelRows::clearChannelParametersBackup(const std::string& rowId) {
    Fcodes result = FC_OK;
    for (const char* property : {prop::TOTAL_BITRATE, prop::MAX_BITRATE, prop::VIDEO_BITRATE})
        result |= store.initIntParam(ds::CHANNEL, tbl::PROCESSING_BACKUP, property, 0, rowId);
    return result;
}

std::vector<std::string> ChannelRows::channelRows() {
    std::vector<std::string> rows;
    store.getInstances(ds::CHANNEL, tbl::CHANNELS, rows);
    return rows;
}
