#include <cstdint>

#include "datacom/DataHolder.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/MessageCommand.h"
#include "datacom/WireConstants.h"
#include "pipeline/PipelineConfigurator.h"
#include "pipeline/PipelineRun.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The KLV and encryption sections of configChannel.

namespace {
constexpr unsigned kDeviceTimeoutSec = 2;
constexpr unsigned kDeviceTries = 2;
constexpr int kFullFrame = 1000;  // crop factor of an uncropped picture (x1000)

// A text of the device manager's dataset (instance ""); a failure logs the
// device-read error line and leaves `value` empty.
std::string deviceText(PipelineRun& run, const char* table, const char* property) {
    std::string value;
    const Fcodes code =
        run.holder.requestGetTextParam(wire::SOCK_DEV, ds::DEVICE, table, property, value, std::string());
    if (!isOk(code)) {
        DBG(DBG_ERROR) << "configChannel: rowId=" << run.rowId << " Error: param=" << property << " table=" << table
                       << " fcode=0x" << std::hex << static_cast<uint32_t>(code);
        run.result |= code;
    }
    return value;
}

// Crop factors (x1000): the share of the input picture that the crop keeps,
// so the filter can rescale the field-of-view keys of the metadata to the
// encoded picture. Only channel 0 crops; without a crop, or without a known
// input size, the factor is 1000.
int cropFactor(const PipelineRun& run, int cropped, int input) {
    if (run.channel != 0 || !run.cropEnable || !run.inputParsed || input <= 0 || cropped <= 0 || cropped >= input)
        return kFullFrame;
    return static_cast<int>(static_cast<int64_t>(cropped) * kFullFrame / input);
}
}  // namespace

// Section 22. The chosen filter parses the UAS local set ("UAS LDS") and
// updates its keys when the picture is cropped; otherwise it passes the
// metadata through ("Simple").
void PipelineConfigurator::configKlvIngest(PipelineRun& run) {
    for (int k = 0; k < 2; ++k) {
        const std::string& ingest = k == 0 ? run.ingestKlv : run.ingestKlv2;
        const std::string klvSwitch = (k == 0 ? "KLV Switch " : "KLV Switch_2 ") + run.suffix;
        if (ingest == value::KLV_NONE) {
            run.put(klvSwitch, "Enable", false);
            continue;
        }
        std::string filter;
        if (ingest == value::KLV_SERIAL) {
            const std::string format = deviceText(run, tbl::KLV_TABLE, prop::INPUT_DATA_FORMAT);
            const char* found = pipeline::lookup(pipeline::KLV_SERIAL_FILTER, format);
            if (found)
                filter = found;
            else
                run.unknown("Input Data Format", format);
        } else if (ingest == value::KLV_SDI_SYNC) {
            filter = run.comp("KlvoSDI Filter ");
            run.enable(run.comp("KlvoSDI Wrapper "));
        } else if (ingest == value::KLV_SDI) {
            filter = "KlvoSDI Filter Async";
        } else if (ingest == value::KLV_IP) {
            const std::string encapsulation = deviceText(run, tbl::KLV_OVER_IP, prop::ENCAPSULATION);
            const char* found = pipeline::lookup(pipeline::KLV_IP_FILTER, encapsulation);
            if (found)
                filter = found;
            else
                run.unknown("Encapsulation", encapsulation);
        } else {
            run.unknown(k == 0 ? "Ingest KLV" : "Ingest KLV2", ingest);
        }
        if (filter.empty())
            continue;
        run.put(klvSwitch, "Input", filter);
        run.put(klvSwitch, "Enable", true);
        const bool cropped = run.channel == 0 && run.cropEnable;
        run.enable(filter);
        run.put(filter, "Parsing", cropped ? "UAS LDS" : "Simple");
        run.put(filter, "Update LDS Keys", cropped);
        run.put(filter, "H Crop Factor (x1000)", cropFactor(run, run.cropWidth, run.inputWidth));
        run.put(filter, "V Crop Factor (x1000)", cropFactor(run, run.cropHeight, run.inputHeight));
    }
}

// Section 23. The device manager routes the SDI input's KLV to the channel
// that ingests it; the channel drops the embedded KLV it does not ingest.
void PipelineConfigurator::configKlvOverSdi(PipelineRun& run) {
    const auto fromSdi = [](const std::string& ingest) {
        return ingest == value::KLV_SDI || ingest == value::KLV_SDI_SYNC;
    };
    const bool sdi = fromSdi(run.ingestKlv) || fromSdi(run.ingestKlv2);
    MessageCommand command;
    command.setId(cmd::TOGGLE_KLVOSDI_INPUT);
    command.addParam(cmd::PARAM_KLV_SOURCE, sdi ? "true" : "false");
    command.addParam(cmd::PARAM_KLV_CHANNEL_ID, run.rowId);
    std::string text, reply;
    command.toString(text);
    const Fcodes code = ctx.holder.requestCommand(wire::SOCK_DEV, text, reply, kDeviceTimeoutSec, kDeviceTries) | FC_OK;
    if (!isOk(code)) {
        DBG(DBG_ERROR) << "configChannel: rowId=" << run.rowId << " Error: val=" << (sdi ? "true" : "false")
                       << " param=KLV Source comp=" << cmd::TOGGLE_KLVOSDI_INPUT << " fcode=0x" << std::hex
                       << static_cast<uint32_t>(code);
        run.result |= code;
    }
    run.put(run.comp("KlvoSDI Drop "), "Enable", !sdi);
}

// Section 24. Without "Encryption", and for the SRT modes that the SRT
// sender applies itself, the stream passes through unencrypted here.
void PipelineConfigurator::configEncryption(PipelineRun& run) {
    const std::string aes = run.comp("AES Encrypt ");
    const bool srtMode = run.aesMode == "128-bit (SRT)" || run.aesMode == "256-bit (SRT)";
    if (!run.encryption || srtMode) {
        run.put(aes, "Encryption Mode", "Pass Through");
        return;
    }
    const char* cipher = pipeline::lookup(pipeline::AES_CIPHER, run.aesMode);
    if (!cipher) {
        run.unknown("AES Mode", run.aesMode);
        return;
    }
    run.put(aes, "Encryption Mode", "Software");
    run.put(aes, "Encryption Cipher", cipher);
    run.put(aes, prop::AES_KEY, run.aesKey);
}
