#include <cstdint>

#include "pipeline/PipelineSections.h"
#include "pipeline/TextTables.h"
#include "vocab/MediatorNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The KLV and encryption sections of a pipeline run.

namespace {
constexpr int kFullFrame = 1000;  // crop factor of an uncropped picture (x1000)

// Crop factors (x1000): the share of the input picture that the crop keeps,
// so the filter can rescale the field-of-view keys of the metadata to the
// encoded picture. Only channel 0 crops; without a crop, or without a known
// input size, the factor is 1000.
int cropFactor(const ChannelSnapshot& s, int cropped, int input) {
    if (s.channel != 0 || !s.cropEnable || !s.inputParsed || input <= 0 || cropped <= 0 || cropped >= input)
        return kFullFrame;
    return static_cast<int>(static_cast<int64_t>(cropped) * kFullFrame / input);
}
}  // namespace

// Section 22. The chosen filter parses the UAS local set ("UAS LDS") and
// updates its keys when the picture is cropped; otherwise it passes the
// metadata through ("Simple").
void configKlvIngest(const ChannelSnapshot& s, PipelineOutput& out) {
    for (int k = 0; k < 2; ++k) {
        const std::string& ingest = k == 0 ? s.ingestKlv : s.ingestKlv2;
        const std::string klvSwitch = (k == 0 ? med::KLV_SWITCH : med::KLV_SWITCH_2) + s.suffix;
        if (ingest == value::KLV_NONE) {
            out.put(klvSwitch, med::PARAM_ENABLE, false);
            continue;
        }
        std::string filter;
        if (ingest == value::KLV_SERIAL) {
            const std::string& format = s.klvSerialFormat;
            const char* found = pipeline::lookup(pipeline::KLV_SERIAL_FILTER, format);
            if (found)
                filter = found;
            else
                out.unknown("Input Data Format", format);
        } else if (ingest == value::KLV_SDI_SYNC) {
            filter = out.comp(med::KLVOSDI_FILTER);
            out.enable(out.comp(med::KLVOSDI_WRAPPER));
        } else if (ingest == value::KLV_SDI) {
            filter = med::KLVOSDI_FILTER_ASYNC;
        } else if (ingest == value::KLV_IP) {
            const std::string& encapsulation = s.klvIpEncapsulation;
            const char* found = pipeline::lookup(pipeline::KLV_IP_FILTER, encapsulation);
            if (found)
                filter = found;
            else
                out.unknown("Encapsulation", encapsulation);
        } else {
            out.unknown(k == 0 ? "Ingest KLV" : "Ingest KLV2", ingest);
        }
        if (filter.empty())
            continue;
        out.put(klvSwitch, med::PARAM_INPUT, filter);
        out.put(klvSwitch, med::PARAM_ENABLE, true);
        const bool cropped = s.channel == 0 && s.cropEnable;
        out.enable(filter);
        out.put(filter, med::PARAM_PARSING, cropped ? "UAS LDS" : "Simple");
        out.put(filter, med::PARAM_UPDATE_LDS_KEYS, cropped);
        out.put(filter, med::PARAM_H_CROP_FACTOR_X1000, cropFactor(s, s.cropWidth, s.inputWidth));
        out.put(filter, med::PARAM_V_CROP_FACTOR_X1000, cropFactor(s, s.cropHeight, s.inputHeight));
    }
}

// Section 23. The device manager routes the SDI input's KLV to the channel
// that ingests it; the channel drops the embedded KLV it does not ingest.
void configKlvOverSdi(const ChannelSnapshot& s, PipelineOutput& out) {
    const auto fromSdi = [](const std::string& ingest) {
        return ingest == value::KLV_SDI || ingest == value::KLV_SDI_SYNC;
    };
    const bool sdi = fromSdi(s.ingestKlv) || fromSdi(s.ingestKlv2);
    out.klvSdiSource(sdi);
    out.put(out.comp(med::KLVOSDI_DROP), med::PARAM_ENABLE, !sdi);
}

// Section 24. Without "Encryption", and for the SRT modes that the SRT
// sender applies itself, the stream passes through unencrypted here.
void configEncryption(const ChannelSnapshot& s, PipelineOutput& out) {
    const std::string aes = out.comp(med::AES_ENCRYPT);
    const bool srtMode = s.aesMode == value::AES_128_SRT || s.aesMode == value::AES_256_SRT;
    if (!s.encryption || srtMode) {
        out.put(aes, med::PARAM_ENCRYPTION_MODE, "Pass Through");
        return;
    }
    const char* cipher = pipeline::lookup(pipeline::AES_CIPHER, s.aesMode);
    if (!cipher) {
        out.unknown("AES Mode", s.aesMode);
        return;
    }
    out.put(aes, med::PARAM_ENCRYPTION_MODE, "Software");
    out.put(aes, med::PARAM_ENCRYPTION_CIPHER, cipher);
    out.put(aes, prop::AES_KEY, s.aesKey);
}
