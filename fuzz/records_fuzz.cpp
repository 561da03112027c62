// Event and command records: the Event and Command elements of a body, read
// into fresh records and into records that already hold parameters (the
// parsers merge), then written and read back.
#include "FuzzSupport.h"
#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"

using namespace datacom;

namespace {

// Every value a record reads comes from between quotes, so it holds none, and
// the record's own text puts its ID first: what was read, reads back, with
// the '<' and '>' it may hold replaced as the writer replaces them.
template <typename Record>
void checkReadsBack(const Record& record, const char* what) {
    std::string written;
    record.toString(written);
    Record again;
    fuzz::check(isOk(again.initFromString(written)), what);
    std::string id;
    appendTagValue(id, record.id);
    fuzz::check(again.id == id, what);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::usePrivateRoot();
    const std::string text(reinterpret_cast<const char*>(data), size);

    MessageEvent event;
    if (isOk(event.initFromString(text)))
        checkReadsBack(event, "an event's text reads back with its ID");
    MessageCommand command;
    if (isOk(command.initFromString(text)))
        checkReadsBack(command, "a command's text reads back with its ID");

    // As the engine and the mediator client meet them: inside a body.
    std::string segment;
    if (getSegment(text, 0, wire::TAG_EVENT, segment) >= 0) {
        MessageEvent merged;
        merged.addParam("Branch", "UDP CH0");
        merged.initFromString(segment);
        merged.initFromString(segment);  // a second read only overwrites
    }
    if (getSegment(text, 0, wire::TAG_COMMAND, segment) >= 0) {
        MessageCommand merged;
        merged.addParam("Component", "Video Encoder CH0");
        merged.initFromString(segment);
        std::string value;
        merged.getParam("Component", value);
        merged.removeParam(value);
    }
    return 0;
}
