#pragma once

#include <string>

#include "IChannelEvents.h"
#include "holder/DataHolder.h"

// The channel manager: the one application service of the daemon. A data
// holder that owns the channel, video-source and statistics datasets, serves
// "/tmp/sockChan" and turns commands, events and accepted changes into calls
// on the channel logic (ConfigChannelTarnevel), to which it also lends its
// outgoing events. A process-wide singleton, created on the first
// getInstance() (made by main before any thread exists) and never destroyed.
class ChannelMngr : public DataHolder, public IChannelEvents {
public:
    static ChannelMngr* getInstance();

    // Worker hook for queued events.
    Fcodes doHandle(MessageEvent* event) override;

    // ---- Outgoing events (ChannelMngrEvents.cpp), broadcast to every subscriber ----

    // Source empty, status "None", severity "Debug", description and "File" = fileName.
    void sendCfgEvent(const std::string& eventId, const std::string& fileName, unsigned long fcode) override;
    // Source = rowId, parameter "RowID" = rowId.
    void sendEvent(const std::string& eventId, const std::string& rowId, unsigned long fcode,
                   const std::string& status, const std::string& severity, const std::string& description) override;
    // "Video Source Updated", source = input, status "OFF" when the source went away, else "ON".
    void sendSourceEvent(const std::string& input, bool off, const std::string& description) override;
    Fcodes sapStopAll() override;

private:
    ChannelMngr() = default;
    static ChannelMngr* instance;
};
