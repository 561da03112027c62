#pragma once

#include "datacom/Export.h"

#include <cstdint>
#include <string>

namespace datacom {

/// Result code of nearly every operation of the appliance's daemons, and the
/// Fcode that travels in a message header. Each failure kind is one bit above
/// OK, so results of several steps are merged with | and anything but FC_OK
/// means failure; the set bits tell which kinds occurred.
enum Fcodes : uint32_t {
    FC_OK = 0x10000,
    FC_HEADER_ERROR = 0x10001,
    FC_BODY_ERROR = 0x10002,
    FC_ACCESS_DENIED = 0x10004,
    FC_NO_SUCH_NAME = 0x10008,
    FC_WRONG_TYPE = 0x10010,
    FC_BAD_VALUE = 0x10020,
    FC_COMM_ERROR = 0x10040,
    FC_UNSUPPORTED = 0x10080,
    FC_UNAVAILABLE = 0x10100,
    FC_DATA_STREAM = 0x10200,
    FC_LOS = 0x10400,
};

inline Fcodes operator|(Fcodes a, Fcodes b) {
    return static_cast<Fcodes>(static_cast<uint32_t>(a) | static_cast<uint32_t>(b));
}
inline Fcodes& operator|=(Fcodes& a, Fcodes b) {
    return a = a | b;
}

inline bool isOk(Fcodes code) {
    return code == FC_OK;
}

/// The fixed text of a code ("OK", "No Such Name", ...). A merged code that is
/// not in the table reads as the texts of its failure bits joined by ", ";
/// a value with no known bit reads as "Unknown Fcode 0x" and its hex digits.
DATACOM_API std::string fcodeText(Fcodes code);

}  // namespace datacom
