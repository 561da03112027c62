#pragma once

#include "datacom/Export.h"

#include <string>

#include "datacom/Fcodes.h"
#include "datacom/MessageParams.h"

namespace datacom {

/// A named request with named text parameters, carried in a "COMMAND" body.
class DATACOM_API MessageCommand : public MessageParams {
public:
    const std::string& getId() const { return id; }
    void setId(const std::string& newId) { id = newId; }

    /// Replaces `out` with the command's tag text. One indent level less than
    /// an event's: the requester adds a tab in front when it wraps the body.
    void toString(std::string& out) const;
    /// Requires ID (FC_BODY_ERROR when missing); parameters are merged, not cleared first.
    Fcodes initFromString(const std::string& text);

    std::string id = "NULL";
};

}  // namespace datacom
