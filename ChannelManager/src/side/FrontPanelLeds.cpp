#include <string>

#include "datacom/DbgPrintClient.h"
#include "ports/ChannelStore.h"
#include "ports/Mediator.h"
#include "side/FrontPanelLeds.h"
#include "side/SideActionSupport.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The front-panel LEDs, integer parameters of the mediator's "Device":
// 1 lights an LED, 0 puts it out.
//
// The lighting rule, from both channels:
// - "Streaming LED" is on while any channel is "Playing";
// - "Error LED" is on while any channel's "Status" is "ERROR", or a channel
//   is "Playing" while its video source detects no input ("Input Detected"
//   "None").
// A channel whose rows cannot be read lights nothing; the read's failure is
// in the result.

Fcodes FrontPanelLeds::setLed(const std::string& led, int value) {
    Fcodes code = ctx.mediator.setIntParam(med::DEVICE, led, value);
    if (!isOk(code))
        DBG(DBG_ERROR) << "setLed:  Error: val=" << value << " param=" << led << " comp=" << med::DEVICE << " fcode=0x"
                       << std::hex << static_cast<uint32_t>(code);
    return code;
}

Fcodes FrontPanelLeds::updateStreamAndErrorLeds() {
    const char* ds = ds::CHANNEL;
    Fcodes result = FC_OK;
    bool streaming = false;
    bool error = false;
    for (const char* rowId : {row::H264, row::HEVC}) {
        std::string state, status, source, detected;
        Fcodes read = FC_OK | ctx.store.getTextParam(ds, tbl::CHANNELS, prop::STATE, state, rowId) |
                      ctx.store.getTextParam(ds, tbl::CHANNELS, prop::STATUS, status, rowId) |
                      ctx.store.getTextParam(ds, tbl::SOURCE, prop::SOURCE, source, rowId);
        // A separate step: the source must be read first.
        read |= ctx.store.getTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, detected, source);
        result |= read;
        if (!isOk(read))
            continue;
        const bool playing = state == state::PLAYING;
        streaming = streaming || playing;
        error = error || status == state::STATUS_ERROR || (playing && detected == state::INPUT_NONE);
    }
    result |= setLed(med::PARAM_STREAMING_LED, streaming ? 1 : 0);
    result |= setLed(med::PARAM_ERROR_LED, error ? 1 : 0);
    return result;
}
