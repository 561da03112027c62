#include <string>
#include <vector>

#include "pipeline/PipelineSections.h"
#include "pipeline/TextTables.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/MediatorNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// After section 26: a configuration enables what the channel uses; this
// turns off the channel's components that this run did not enable, so that
// nothing the operator turned off keeps running (the sender of a disabled
// target or of a changed protocol, which a shared branch would still feed;
// the KLV wrapper and filters after the ingest became "None"; the SDI
// transmitter after "SDI Out Preview" was cleared; the low-delay audio path
// after leaving "Ultra Low Latency - LAN"); and, while the channel plays,
// the KLV branch that its ingest no longer names (klvFollowSettings).
//
// The channel's own components are its senders, its RTSP and RTMP servers,
// its KLV-over-SDI wrapper and filter and, on HEVC, the low-delay audio
// path. The SDI transmitter and the KLV filters without a channel suffix
// serve both channels: they are turned off only when the other channel's
// rows do not use them either ("SDI Out Preview"; an ingest of the filter's
// kind). Each is turned off at most once per run, through the run's write
// path (assembly check, failure line); one the mediator reports off already
// is left alone, so a run only writes what changes.

void configUnusedComponents(const ChannelSnapshot& s, PipelineOutput& out) {
    const int ch = s.channel;
    std::vector<std::string> candidates = {
        med::UDP_SENDER[ch],          med::UDP_SENDER_2[ch],      med::ZIXI_FEEDER[ch],
        med::ZIXI_FEEDER_2[ch],       med::SRT_SENDER[ch],        med::SRT_SENDER_2[ch],
        med::RTSP_SERVER[ch],         out.comp(med::RTMP_SERVER), out.comp(med::KLVOSDI_WRAPPER),
        out.comp(med::KLVOSDI_FILTER)};
    if (ch == 1)
        for (const char* c : {med::AUDIO_CAPTURE_STR0_CH1_LOW_DELAY, med::AAC_ENCODER_STR0_CH1_LOW_DELAY,
                              med::PCM_CONVERTER_STR0_CH1_LOW_DELAY})
            candidates.push_back(c);

    if (!s.otherSdiOutPreview)
        candidates.push_back(med::SDI_TRANSMITTER);
    const std::string& otherKlv = s.otherIngestKlv;
    const std::string& otherKlv2 = s.otherIngestKlv2;
    const struct {
        const char* filter;
        const char* kind;
    } sharedFilters[] = {{med::KLVOSERIAL_FILTER, value::KLV_SERIAL},
                         {med::RAW_KLV_RS232_FILTER, value::KLV_SERIAL},
                         {med::KLVOSDI_FILTER_ASYNC, value::KLV_SDI},
                         {med::TS_KLV_FILTER, value::KLV_IP},
                         {med::RAW_KLV_FILTER, value::KLV_IP}};
    for (const auto& f : sharedFilters)
        if (otherKlv != f.kind && otherKlv2 != f.kind)
            candidates.push_back(f.filter);

    for (const std::string& component : candidates)
        if (out.enabled.count(component) == 0 && out.present(component))
            out.turnOff(component);
    // The KLV branch of a playing channel whose ingest changed.
    out.followKlv();
}
