#pragma once

#include <string>

#include "channel/ChannelLifecycle.h"
#include "datacom/Fcodes.h"
#include "datacom/MessageEvent.h"
#include "settings/ChannelContext.h"
#include "side/SideActions.h"

// Tracking of the video inputs: a source's detected format and connection
// into "VideoSourceDataSet", and the channels on that source made to follow
// it (stopped, reconfigured or played again through the lifecycle).
class VideoSourceTracker {
public:
    explicit VideoSourceTracker(ChannelContext& ctx) : ctx(ctx), lifecycle(ctx), side(ctx) {}

    // Refreshes one source ("VideoSourceDataSet" row) and re-validates the
    // channels that use it.
    datacom::Fcodes updateVideoSource(const std::string& videoSource);
    // The same for an "Auto Detection Event" (Source = the source row); borrows it.
    datacom::Fcodes updateVideoSource(datacom::MessageEvent* event);
    datacom::Fcodes triggerVideoSource(const std::string& videoSource);

private:
    // Writes a source's detected format, makes its channels follow, tells the subscribers.
    datacom::Fcodes applyDetectedInput(const std::string& videoSource, const std::string& format);
    // One channel on the source follows its input; caller holds the holder lock.
    datacom::Fcodes followInput(const std::string& rowId, const std::string& videoSource);

    ChannelContext& ctx;
    ChannelLifecycle lifecycle;
    SideActions side;
};
