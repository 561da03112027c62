#pragma once

#include <cstdint>
#include <string>

#include "chanmgr/ChannelManagerNames.h"
#include "datacom/Fcodes.h"

// What the channel manager's clients see on "/tmp/sockChan": the channel
// rows a command names, the commands it serves with their parameters, the
// events it sends with their status and severity texts, and the channel
// condition codes ("Fcode" of a channel and of its events). The texts are
// defined once, in the installed chanmgr/ChannelManagerNames.h that peer
// daemons include; vocab:: sees them under the same names (cmd::PLAY ...)
// and adds the channel helpers. Header-only, so that tools (chanctl) include
// it instead of restating the texts.
namespace vocab {

namespace row {
using namespace chanmgr::row;
// The row of the channel beside `channel` (0 or 1): what the two share is
// turned off only when the other does not use it either.
constexpr const char* otherChannel(int channel) {
    return channel == 0 ? HEVC : H264;
}
}  // namespace row
namespace cond {
using namespace chanmgr::cond;
}  // namespace cond
namespace cmd {
using namespace chanmgr::cmd;
}  // namespace cmd
namespace ev {
using namespace chanmgr::ev;
}  // namespace ev
namespace state {
using namespace chanmgr::state;
}  // namespace state

// ---- Channel helpers ----
// 0 for "H.264", 1 for "HEVC", -1 for any other row.
inline int channelIndex(const std::string& rowId) {
    if (rowId == row::H264)
        return 0;
    if (rowId == row::HEVC)
        return 1;
    return -1;
}
inline bool isChannelRow(const std::string& rowId) {
    return channelIndex(rowId) >= 0;
}
// True when every bit of `condition` is set in a channel's "Fcode".
inline bool holds(uint32_t fcode, uint32_t condition) {
    return (fcode & condition) == condition;
}
// The channel condition code as an Fcodes value (they share the result type).
inline datacom::Fcodes condCode(uint32_t code) {
    return static_cast<datacom::Fcodes>(code);
}

}  // namespace vocab
