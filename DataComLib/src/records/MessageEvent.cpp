#include "datacom/MessageEvent.h"

#include "datacom/DbgPrintClient.h"
#include "datacom/TagText.h"

namespace datacom {

void MessageEvent::toString(std::string& out) const {
    out.clear();
    out.reserve(160 + params.size() * 48);
    out += "\t<Event ID=\"";
    appendTagValue(out, id);
    out += "\" Source=\"";
    appendTagValue(out, source);
    out += "\" Status=\"";
    appendTagValue(out, status);
    out += "\" Time=\"";
    appendTagValue(out, time);
    out += "\" Description=\"";
    appendTagValue(out, description);
    out += "\" Severity=\"";
    appendTagValue(out, severity);
    out += "\" >\n";
    appendParams(out, "\t\t");
    out += "\t</Event>\n";
}

Fcodes MessageEvent::initFromString(const std::string& text) {
    if (getPropertyValue(text, 0, "ID", id) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not found tags ID in:\n" << text;
        return FC_BODY_ERROR;
    }
    if (getPropertyValue(text, 0, "Source", source) < 0)
        DBG(DBG_WARN) << "initFromString: Not found tags Source in:\n" << text;
    getPropertyValue(text, 0, "Status", status);
    getPropertyValue(text, 0, "Time", time);
    getPropertyValue(text, 0, "Description", description);
    getPropertyValue(text, 0, "Severity", severity);
    parseParams(text, " in:\n");
    return FC_OK;
}

}  // namespace datacom
