#pragma once

#include <string>

#include "datacom/Fcodes.h"
#include "datacom/MessageEvent.h"
#include "ports/ChannelContext.h"

class ChannelLifecycle;
class FrontPanelLeds;

// Tracking of the video inputs: a source's detected format and connection
// into "VideoSourceDataSet", and the channels on that source made to follow
// it (stopped, reconfigured or played again through the lifecycle).
class VideoSourceTracker {
public:
    VideoSourceTracker(ChannelContext& ctx, ChannelLifecycle& lifecycle, FrontPanelLeds& leds)
        : ctx(ctx), lifecycle(lifecycle), leds(leds) {}

    // Refreshes one source ("VideoSourceDataSet" row) and re-validates the
    // channels that use it.
    datacom::Fcodes updateVideoSource(const std::string& videoSource);
    // The same for an "Auto Detection Event" (Source = the source row); borrows it.
    datacom::Fcodes updateVideoSource(datacom::MessageEvent* event);
    datacom::Fcodes triggerVideoSource(const std::string& videoSource);

private:
    // Writes a source's detected format, makes its channels follow, tells the subscribers.
    datacom::Fcodes applyDetectedInput(const std::string& videoSource, const std::string& format);
    // One channel on the source follows its input; caller holds the rows' lock.
    datacom::Fcodes followInput(const std::string& rowId, const std::string& videoSource);

    ChannelContext& ctx;
    ChannelLifecycle& lifecycle;
    FrontPanelLeds& leds;
};
