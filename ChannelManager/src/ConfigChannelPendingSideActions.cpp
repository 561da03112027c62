#include "ConfigChannelTarnevel.h"

#include "system/DbgPrintClient.h"

// Operations of the channel logic that this build does not have yet: each is
// logged and refused with "Unsupported Request", never reported as done.
namespace {
Fcodes unsupported(const char* operation) {
    DBG(2) << operation << ": Unsupported Request";
    return FC_UNSUPPORTED;
}
}  // namespace

Fcodes ConfigChannelTarnevel::updateVideoSource(const std::string&) {
    return unsupported("updateVideoSource");
}

Fcodes ConfigChannelTarnevel::updateVideoSource(MessageEvent*) {
    return unsupported("updateVideoSource");
}

Fcodes ConfigChannelTarnevel::triggerVideoSource(const std::string&) {
    return unsupported("triggerVideoSource");
}

