#pragma once

#include <memory>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"

class ChannelStore;
class Mediator;

// The row and name mappings of the channel data: which rows belong to a
// channel (targets, audio rows), which mediator branch serves a channel's
// protocol and back, the channel rows "ALL" stands for, and the bitrate
// backup a stop restores (the encoder's bitrate goes back with it).
class ChannelRows {
public:
    ChannelRows(ChannelStore& store, Mediator& mediator) : store(store), mediator(mediator) {}

    datacom::Fcodes getBranch(const std::string& rowId, const std::string& protocol, std::string& branch);
    datacom::Fcodes getRowId(const std::string& branch, std::string& rowId);
    // Instances of a component whose `keyProperty` equals `keyValue`, in
    // document order (a channel's targets or audio rows by "Channel ID").
    datacom::Fcodes getChildInstances(const std::string& dataSet, const std::string& component,
                                      const std::string& keyProperty, const std::string& keyValue,
                                      std::vector<std::string>& instances);
    // The same search over a component whose instances are an array: the
    // first matching index at or after 0, or after `index`; -1 when none.
    int getFirstChildRowId(const std::string& dataSet, const std::string& component, const std::string& keyProperty,
                           const std::string& keyValue);
    int getNextChildRowId(const std::string& dataSet, const std::string& component, const std::string& keyProperty,
                          const std::string& keyValue, int index);
    // Writes the non-zero backup bitrates back, then clears the backup.
    datacom::Fcodes restoreChannelParameters(const std::string& rowId);
    datacom::Fcodes clearChannelParametersBackup(const std::string& rowId);
    // The instances of "ChannelsTable": the rows "ALL" stands for.
    std::vector<std::string> channelRows();

private:
    ChannelStore& store;
    Mediator& mediator;
};
