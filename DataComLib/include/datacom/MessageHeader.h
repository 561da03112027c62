#pragma once

#include "datacom/Export.h"

#include <cstdint>
#include <string>

#include "datacom/Fcodes.h"

namespace datacom {

/// The envelope of every datagram: message ID, type, result code and the size
/// of the body that follows the header in the same datagram. Replies and events
/// carry their Fcode on the wire; requests ("COMMAND", "GET", "SET") do not.
class DATACOM_API MessageHeader {
public:
    /// Appends (does not replace) the header text to `out`.
    void toString(std::string& out) const;
    /// Reads ID, Type and Size (each required, FC_HEADER_ERROR when missing) and the
    /// optional Fcode; fields read before a failure keep their new values.
    Fcodes initFromString(const std::string& text);

    int32_t Size = 0;      ///< body length in bytes; below 1 means no body
    Fcodes Fcode = FC_OK;  ///< result of a reply, status of an event
    int32_t ID = 0;        ///< chosen by the requester, carried back by the reply
    std::string Type;      ///< one of the msgtype texts
};

}  // namespace datacom
