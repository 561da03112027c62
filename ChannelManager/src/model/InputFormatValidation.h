#pragma once

#include <string>

#include "datacom/Fcodes.h"

class ChannelStore;

// "Unavailable" when the detected input cannot feed the channel's encoding
// format at its frame sampling, or breaks the HEVC GOP rule. Reads only.
datacom::Fcodes validateInputFormat(ChannelStore& store, const std::string& rowId);
