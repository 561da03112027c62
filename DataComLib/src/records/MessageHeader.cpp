#include "datacom/MessageHeader.h"

#include "datacom/DbgPrintClient.h"
#include "datacom/TagText.h"

namespace datacom {

namespace {

bool carriesFcode(const std::string& type) {
    return type == "RESPONSE" || type == "ACK" || type == "NACK" || type == "EVENT";
}

void appendHex(std::string& out, uint32_t value) {
    char digits[8];
    int count = 0;
    do {
        digits[count++] = "0123456789abcdef"[value & 0xF];
        value >>= 4;
    } while (value != 0);
    while (count > 0)
        out += digits[--count];
}

}  // namespace

void MessageHeader::toString(std::string& out) const {
    out += "<HEADER ID=\"";
    out += std::to_string(ID);
    out += "\" Type=\"";
    out += Type;
    out += "\" ";
    if (carriesFcode(Type)) {
        out += "Fcode=\"";
        appendHex(out, Fcode);
        out += "\" ";
    }
    out += "Size=\"";
    out += std::to_string(Size);
    out += "\" >\n</HEADER>\n";
}

Fcodes MessageHeader::initFromString(const std::string& text) {
    std::string value;
    if (getPropertyValue(text, 0, "ID", value) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not found tags ID in:\n" << text;
        return FC_HEADER_ERROR;
    }
    ID = tagToInt(value);

    if (getPropertyValue(text, 0, "Type", value) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not found tags Type in:\n" << text;
        return FC_HEADER_ERROR;
    }
    Type = value;

    if (getPropertyValue(text, 0, "Fcode", value) >= 0)
        Fcode = static_cast<Fcodes>(tagToHex(value));

    if (getPropertyValue(text, 0, "Size", value) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not found tags Size in:\n" << text;
        return FC_HEADER_ERROR;
    }
    Size = tagToInt(value);
    return FC_OK;
}

}  // namespace datacom
