// The message header: the HEADER element of a datagram as the receive path
// finds it, its attributes, and the header's own text read back.
#include "FuzzSupport.h"
#include "datacom/MessageHeader.h"
#include "datacom/MessageTypes.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"

using namespace datacom;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::usePrivateRoot();
    const std::string text(reinterpret_cast<const char*>(data), size);

    // As the receive path does: the element first, then its attributes.
    std::string segment;
    MessageHeader header;
    if (getSegment(text, 0, wire::TAG_HEADER, segment) >= 0)
        header.initFromString(segment);
    // A peer may also send attributes with no element around them.
    MessageHeader bare;
    const Fcodes code = bare.initFromString(text);
    tagToInt(text);
    tagToHex(text);

    // What a parsed header writes, it reads back the same: the reply and
    // history paths rely on it. Type comes from between quotes, so it holds
    // none; ID and Size are numbers. A Type that ends in an attribute name and
    // '=' makes its own closing quote that attribute's key (the search is a
    // plain substring search, on purpose), so only Types without '=' count.
    if (isOk(code) && bare.Type.find('=') == std::string::npos) {
        std::string written;
        bare.toString(written);
        MessageHeader again;
        fuzz::check(isOk(again.initFromString(written)), "a written header reads back");
        fuzz::check(again.ID == bare.ID && again.Size == bare.Size, "ID and Size read back the same");
        fuzz::check(again.Type == bare.Type, "Type reads back the same");
        const bool carriesFcode = bare.Type == msgtype::RESPONSE || bare.Type == msgtype::ACK ||
                                  bare.Type == msgtype::NACK || bare.Type == msgtype::EVENT;
        fuzz::check(!carriesFcode || again.Fcode == bare.Fcode, "a reply's Fcode reads back the same");
    }
    return 0;
}
