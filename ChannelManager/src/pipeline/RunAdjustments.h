#pragma once

#include <string>

#include "datacom/Fcodes.h"
#include "model/ChannelRowReader.h"
#include "ports/ChannelContext.h"

// The store changes a pipeline run makes before it reads its snapshot, so
// that every section sees the rows as the run leaves them: a shared SDI
// input's embedded audio mirrored into the H.264 rows, "Frame Sampling"
// matched to the input's rate, and the format that follows the input. Each
// is committed at once, as the rows it changes are the channel's own.
class RunAdjustments {
public:
    RunAdjustments(ChannelContext& ctx, const std::string& rowId);
    // Runs the three in order; the codes of their reads and writes OR-ed.
    datacom::Fcodes apply();
    // True when the format that follows the input changed the encoding
    // format or the frame sampling.
    bool formatChanged() const { return changed; }

private:
    void shareInput();
    void matchFrameSampling();
    void followInputFormat();

    ChannelContext& ctx;
    ChannelRowReader reads;  // its failures OR-ed into the result apply() returns
    const std::string rowId;
    const int channel;
    datacom::Fcodes result = datacom::FC_OK;
    bool changed = false;
    std::string source, inputDetected;
    bool inputParsed = false;
    float inputRate = 0;
};
