#pragma once

#include <string>

#include "datacom/Fcodes.h"
#include "ports/ChannelContext.h"

class ChannelRows;

// The SAP announcements of a channel's targets: announced ("START_SAP")
// while the channel plays, withdrawn ("STOP_SAP") otherwise.
class SapAnnouncements {
public:
    SapAnnouncements(ChannelContext& ctx, ChannelRows& rows) : ctx(ctx), rows(rows) {}

    datacom::Fcodes sapAction(const std::string& rowId);

private:
    ChannelContext& ctx;
    ChannelRows& rows;
};
