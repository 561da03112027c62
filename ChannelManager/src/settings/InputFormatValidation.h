#pragma once

#include <string>

#include "datacom/Fcodes.h"

namespace datacom {
class DataHolder;
}

// "Unavailable" when the detected input cannot feed the channel's encoding
// format at its frame sampling, or breaks the HEVC GOP rule. Reads only.
datacom::Fcodes validateInputFormat(datacom::DataHolder& holder, const std::string& rowId);
