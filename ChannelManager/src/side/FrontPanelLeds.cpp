#include <string>

#include "vocab/ChannelVocabulary.h"
#include "channel/ConfigChannelTarnevel.h"
#include "ITarnevelClient.h"
#include "side/SideActionSupport.h"
#include "holder/DataHolder.h"
#include "system/DbgPrintClient.h"

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

Fcodes ConfigChannelTarnevel::setLed(const std::string& led, int value) {
    Fcodes code = ITarnevelClient::setTarnevelIntParam(&holder, vocab::med::DEVICE, led, value);
    if (!isOk(code))
        DBG(2) << "setLed:  Error: val=" << value << " param=" << led << " comp=" << vocab::med::DEVICE << " fcode=0x"
               << side::hexCode(code);
    return code;
}

Fcodes ConfigChannelTarnevel::updateStreamAndErrorLeds() {
    const char* ds = vocab::ds::CHANNEL;
    Fcodes result = FC_OK;
    bool streaming = false;
    bool error = false;
    for (const char* rowId : {vocab::row::H264, vocab::row::HEVC}) {
        std::string state, status, source, detected;
        Fcodes read = FC_OK | holder.getTextParam(ds, vocab::tbl::CHANNELS, vocab::prop::STATE, state, rowId) |
                      holder.getTextParam(ds, vocab::tbl::CHANNELS, vocab::prop::STATUS, status, rowId) |
                      holder.getTextParam(ds, vocab::tbl::SOURCE, vocab::prop::SOURCE, source, rowId);
        // A separate step: the source must be read first.
        read |= holder.getTextParam(vocab::ds::VIDEO_SOURCE, vocab::tbl::VIDEO_SOURCE, vocab::prop::INPUT_DETECTED,
                                    detected, source);
        result |= read;
        if (!isOk(read))
            continue;
        const bool playing = state == vocab::state::PLAYING;
        streaming = streaming || playing;
        error = error || status == vocab::state::STATUS_ERROR || (playing && detected == vocab::state::INPUT_NONE);
    }
    result |= setLed(vocab::med::STREAMING_LED, streaming ? 1 : 0);
    result |= setLed(vocab::med::ERROR_LED, error ? 1 : 0);
    return result;
}
