#include "datacom/MessageParams.h"

#include "datacom/DbgPrintClient.h"
#include "datacom/TagText.h"

namespace datacom {

int MessageParams::getParam(const std::string& name, std::string& value) const {
    auto found = params.find(name);
    if (found == params.end())
        return 0;
    value = found->second;
    return 1;
}

void MessageParams::appendParams(std::string& out, const char* indent) const {
    for (const auto& param : params) {
        out += indent;
        out += "<Parameter Name=\"";
        appendTagValue(out, param.first);
        out += "\" Value=\"";
        appendTagValue(out, param.second);
        out += "\" />\n";
    }
}

void MessageParams::parseParams(const std::string& text, const char* where) {
    std::string segment, name, value;
    int position = 0;
    while ((position = getSegment(text, position, "Parameter", segment)) != -1) {
        if (getPropertyValue(segment, 0, "Name", name) < 0) {
            DBG(DBG_ERROR) << "initFromString: Not found tag="
                           << "Name" << where << text;
            continue;
        }
        if (getPropertyValue(segment, 0, "Value", value) < 0) {
            DBG(DBG_ERROR) << "initFromString: Not found tag="
                           << "Value" << where << text;
            continue;
        }
        params[name] = value;
    }
}

}  // namespace datacom
