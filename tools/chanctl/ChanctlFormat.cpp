#include "ChanctlFormat.h"

#include <algorithm>
#include <cstdlib>

#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"
#include "vocab/ChannelConditions.h"
#include "vocab/DatasetNames.h"

using namespace datacom;

using namespace vocab;

namespace {

std::string quoted(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::replace(text.begin(), text.end(), '\r', ' ');
    return "\"" + text + "\"";
}

std::string hex(uint32_t code) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    do {
        text.insert(text.begin(), digits[code & 0xF]);
        code >>= 4;
    } while (code != 0);
    return "0x" + text;
}

std::string trimmed(const std::string& text) {
    size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos)
        return "";
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

}  // namespace

std::string eventLine(const MessageEvent& event) {
    std::string line = quoted(event.id) + " fcode=" + hex(event.fcode) + " source=" + quoted(event.source) +
                       " status=" + quoted(event.status) + " severity=" + quoted(event.severity) +
                       " description=" + quoted(event.description) + " time=" + quoted(event.time);
    for (const auto& param : event.params)
        line += " " + quoted(param.first) + "=" + quoted(param.second);
    return line + "\n";
}

std::string channelFcodeMeaning(uint32_t code) {
    std::string meaning;
    for (const std::string& name : channelConditionNames(code))
        meaning += (meaning.empty() ? "" : ", ") + name;
    return meaning.empty() ? "none" : meaning;
}

std::string replyText(const std::string& replyBody) {
    std::string segment;
    MessageCommand command;
    if (getSegment(replyBody, 0, wire::TAG_COMMAND, segment) >= 0 && isOk(command.initFromString(segment))) {
        std::string text;
        for (const auto& param : command.params)
            text += param.first + "=" + param.second + "\n";
        return text;
    }
    std::string inner = replyBody;
    for (const char* tag : {"<BODY>", "</BODY>"}) {
        size_t at = inner.find(tag);
        if (at != std::string::npos)
            inner.erase(at, std::string(tag).size());
    }
    inner = trimmed(inner);
    return inner.empty() ? "" : inner + "\n";
}

const std::vector<StatusRow>& statusRows() {
    static const std::vector<StatusRow> rows = {
        {"State", prop::STATE},
        {"Status", prop::STATUS},
        {"Fcode", prop::FCODE},
        {"Source", prop::SOURCE},
        {"Input", prop::INPUT_RESOLUTION},
        {"Resolution", prop::RESOLUTION},
        {"Total Bit Rate", prop::TOTAL_BIT_RATE},
    };
    return rows;
}

std::string statusCell(const StatusRow& row, const std::string& value) {
    if (std::string(row.property) != prop::FCODE)
        return value;
    // The store keeps the Fcode as an integer: decimal on the wire.
    char* end = nullptr;
    unsigned long code = std::strtoul(value.c_str(), &end, 0);
    if (value.empty() || *end != '\0')
        return value;
    return hex(static_cast<uint32_t>(code)) + " (" + channelFcodeMeaning(static_cast<uint32_t>(code)) + ")";
}

std::string targetCell(const std::string& enabled, const std::string& protocol, const std::string& address,
                       const std::string& port) {
    if (enabled != "true" && enabled != "1")
        return "off";
    return protocol + " " + address + ":" + port;
}

const char* const NOT_LOADED_LINE =
    "no channel data loaded; load it with: chanctl command LOAD_CHANNELS File=Default (or File=<stored file>)\n";

std::string statusTable(const StatusView& view) {
    if (!view.loaded)
        return NOT_LOADED_LINE;
    const std::vector<std::string>& labels = view.labels;
    const std::vector<ChannelSummary>& channels = view.channels;
    size_t labelWidth = 0;
    for (const auto& label : labels)
        labelWidth = std::max(labelWidth, label.size());
    std::vector<size_t> widths;
    for (const auto& channel : channels) {
        size_t width = channel.title.size();
        for (const auto& cell : channel.cells)
            width = std::max(width, cell.size());
        widths.push_back(width);
    }
    auto line = [&](const std::string& label, auto cellOf) {
        std::string text = label + std::string(labelWidth - label.size(), ' ');
        for (size_t i = 0; i < channels.size(); ++i) {
            std::string cell = cellOf(channels[i]);
            text += "  " + cell;
            if (i + 1 < channels.size())
                text += std::string(widths[i] - cell.size(), ' ');
        }
        return text + "\n";
    };
    std::string table = line("", [](const ChannelSummary& c) { return c.title; });
    for (size_t r = 0; r < labels.size(); ++r)
        table +=
            line(labels[r], [r](const ChannelSummary& c) { return r < c.cells.size() ? c.cells[r] : std::string(); });
    return table;
}
