#pragma once

#include <functional>
#include <string>

#include "datacom/Fcodes.h"
#include "datacom/MessageEvent.h"
#include "ports/ChannelContext.h"

// The mediator's data-stream events: a lost data stream or Zixi connection
// marks the channel's condition, a Zixi link's bitrate request changes the
// channel's bitrates on the fly, an SRT client's arrival shares out the
// remaining output bitrate.
class DataStreamEvents {
public:
    // How a data-stream event asks for a bitrate change on the fly (a Zixi
    // link's request): rowId, total, max; the pipeline above carries it out.
    using BitrateChange = std::function<datacom::Fcodes(const std::string&, int, int)>;

    explicit DataStreamEvents(ChannelContext& ctx) : ctx(ctx) {}

    // "Data Stream", "Zixi Connection Failed", "Zixi Change Bitrate Request"
    // (carried out through `changeBitrate`, under the rows' lock),
    // "Srt New Client Request"; borrows the event.
    datacom::Fcodes handleDataStreamEvent(datacom::MessageEvent* event, const BitrateChange& changeBitrate);

private:
    datacom::Fcodes zixiChangeBitrate(const datacom::MessageEvent& event, const BitrateChange& changeBitrate);
    datacom::Fcodes srtNewClient();

    ChannelContext& ctx;
};
