#include "datacom/MessageCommand.h"

#include "datacom/DbgPrintClient.h"
#include "datacom/TagText.h"

namespace datacom {

void MessageCommand::toString(std::string& out) const {
    out.clear();
    out.reserve(32 + id.size() + params.size() * 48);
    out += "<Command ID=\"";
    appendTagValue(out, id);
    out += "\" >\n";
    appendParams(out, "\t");
    out += "</Command>\n";
}

Fcodes MessageCommand::initFromString(const std::string& text) {
    if (getPropertyValue(text, 0, "ID", id) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not Found ID in command\n" << text;
        return FC_BODY_ERROR;
    }
    parseParams(text, " in command:\n");
    return FC_OK;
}

}  // namespace datacom
