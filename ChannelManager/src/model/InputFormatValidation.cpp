#include "model/InputFormatValidation.h"
#include "datacom/DbgPrintClient.h"
#include "model/VideoFormatTables.h"
#include "ports/ChannelStore.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"

using namespace datacom;

using namespace vocab;

namespace {

// Detected inputs on which the HEVC encoder only runs with GOP "IP".
bool isHevcCrashInput(const std::string& input) {
    return input == "1920x1080p @ 60" || input == "1920x1080p @ 59.94" || input == "1920x1080p @ 50";
}

}  // namespace

// A failure replaces the result with "Unavailable" instead of OR-ing it in:
// once the format is known not to fit, earlier read failures no longer matter
// to the caller, which only asks whether the channel may run.
Fcodes validateInputFormat(ChannelStore& store, const std::string& rowId) {
    std::string source, streamProfile, inputDetected, gop;
    Fcodes result = FC_OK;
    result |= store.getTextParam(ds::CHANNEL, tbl::SOURCE, prop::SOURCE, source, rowId);
    result |= store.getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::STREAM_PROFILE, streamProfile, rowId);
    result |= store.getTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, inputDetected, source);

    const bool hevc = rowId == row::HEVC;
    const bool h264 = rowId == row::H264;
    if (hevc)
        result |= store.getTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::GOP_STRUCTURE, gop, "");
    else if (h264)
        result |= store.getTextParam(ds::CHANNEL, tbl::H264_ENCODER, prop::GOP_STRUCTURE, gop, "");

    if (result == FC_OK && inputDetected != state::INPUT_NONE) {
        std::string encodingFormat;
        int frameSampling = 0;
        result = FC_OK;
        result |= store.getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODING_FORMAT, encodingFormat, rowId);
        result |= store.getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::FRAME_SAMPLING, frameSampling, rowId);

        const bool ultraLowLatency = streamProfile == value::PROFILE_ULL;
        int maxRate = 0;
        if (videoformat::inputAllowed(encodingFormat, inputDetected)) {
            if (videoformat::maxInputFrameRate(inputDetected, maxRate) && maxRate < frameSampling) {
                DBG(DBG_ERROR) << "validateInputFormat: inputDetected=" << inputDetected
                               << " limits to max fr=" << maxRate << " less than fr=" << frameSampling;
                result = FC_UNAVAILABLE;
            } else if (hevc && gop != value::GOP_I && gop != value::GOP_IP &&
                       videoformat::maxHevcFrameRate(encodingFormat, maxRate)) {
                if (maxRate < frameSampling && !ultraLowLatency) {
                    DBG(DBG_ERROR) << "validateInputFormat: encodingFormat=" << encodingFormat
                                   << " limits to max fr=" << maxRate << " less than fr=" << frameSampling;
                    result = FC_UNAVAILABLE;
                }
            } else if (h264 && videoformat::maxH264FrameRate(encodingFormat, maxRate)) {
                if (maxRate < frameSampling && !ultraLowLatency) {
                    DBG(DBG_ERROR) << "validateInputFormat: encodingFormat=" << encodingFormat
                                   << " limits to max fr=" << maxRate << " less than fr=" << frameSampling;
                    result = FC_UNAVAILABLE;
                }
            }
        } else {
            DBG(DBG_ERROR) << "validateInputFormat: inputDetected=" << inputDetected
                           << " mismatches encodingFormat=" << encodingFormat;
            result = FC_UNAVAILABLE;
        }
    }

    // Applies even when the table checks were skipped: the HEVC encoder
    // crashes on 1080p inputs at 50 Hz and above with any GOP but "IP".
    if (hevc && isHevcCrashInput(inputDetected) && gop != value::GOP_IP) {
        DBG(DBG_ERROR) << "validateInputFormat: input detected=" << inputDetected << " GOP=" << gop
                       << ". Must be=" << value::GOP_IP << " to prevent HEVC crash";
        result = FC_UNAVAILABLE;
    }
    return result;
}
