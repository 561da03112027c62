#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"

namespace datacom {
class MessageEvent;
}

// How chanctl prints what it receives. Pure functions over texts.

// One line for an event: its ID, fcode, fields and parameters, every text
// quoted (the wire cannot carry a double quote, so quoting is unambiguous),
// line breaks inside texts shown as spaces. Ends with a newline.
std::string eventLine(const datacom::MessageEvent& event);

// The meaning of a channel's "Fcode": the names of the channel conditions it
// holds, from the channel manager's condition table ("none" when it holds none).
std::string channelFcodeMeaning(uint32_t code);

// What a command's answer body says: the parameters of its Command element as
// NAME=VALUE lines, otherwise the body's inner text; "" when there is nothing.
std::string replyText(const std::string& replyBody);

// One channel's summary as read from the channel manager. Cells that could not
// be read hold "?" and the reason.
struct ChannelSummary {
    std::string rowId;
    std::string title;
    std::vector<std::string> cells;  // in the order of statusRows(), then the further rows
    bool fcodeRead = false;          // the "Fcode" was read: `fcode` holds it
    uint32_t fcode = 0;
};

// What status shows: both channels, or that no channel data is loaded yet.
struct StatusView {
    bool loaded = true;
    std::vector<std::string> labels;  // of the rows shown
    std::vector<ChannelSummary> channels;
    datacom::Fcodes code = datacom::FC_OK;  // the OR of the reads
};

// The line status prints before any channel data is loaded.
extern const char* const NOT_LOADED_LINE;

// The summary rows of the status view: label, "ChannelsTable" property.
struct StatusRow {
    const char* label;
    const char* property;
};
const std::vector<StatusRow>& statusRows();

// The cell shown for a value read: the Fcode with its meaning, others as they are.
std::string statusCell(const StatusRow& row, const std::string& value);

// The channels side by side, one row per label (the summary fields, then
// those of the further rows the service served); NOT_LOADED_LINE when the
// view holds no channel data.
std::string statusTable(const StatusView& view);

// The cell of a channel target: "off" when it is not enabled, otherwise
// "PROTOCOL ADDRESS:PORT".
std::string targetCell(const std::string& enabled, const std::string& protocol, const std::string& address,
                       const std::string& port);
