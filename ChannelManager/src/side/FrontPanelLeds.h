#pragma once

#include <string>

#include "datacom/Fcodes.h"
#include "ports/ChannelContext.h"

// The front panel's streaming and error LEDs, set on the mediator's
// "Device" from the state of both channels.
class FrontPanelLeds {
public:
    explicit FrontPanelLeds(ChannelContext& ctx) : ctx(ctx) {}

    // Sets the integer LED parameter `led` of the mediator's "Device".
    datacom::Fcodes setLed(const std::string& led, int value);
    datacom::Fcodes updateStreamAndErrorLeds();

private:
    ChannelContext& ctx;
};
