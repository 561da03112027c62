#pragma once

#include "datacom/Export.h"

#include <string>

#include "datacom/Fcodes.h"
#include "datacom/MessageParams.h"

namespace datacom {

/// A one-way notification from a process to its subscribers. Passed by pointer;
/// whoever receives it last owns and deletes it.
class DATACOM_API MessageEvent : public MessageParams {
public:
    /// Replaces `out` with the event's tag text (attributes first, then the
    /// parameters in name order). Nothing is escaped.
    void toString(std::string& out) const;
    /// Requires ID (FC_BODY_ERROR when missing); every other attribute is optional and
    /// keeps its previous value. Parameters are merged, not cleared first.
    Fcodes initFromString(const std::string& text);

    std::string description;
    Fcodes fcode = FC_OK;  ///< travels in the message header, not in the event text
    std::string id = "NULL";
    std::string severity = "None";
    std::string source = "Source";
    std::string status = "None";
    /// Kept for an event that never went through notify, which stamps the local time.
    std::string time = "2011-01-06  12:06:11";
};

}  // namespace datacom
