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

Fcodes ConfigChannelTarnevel::configChannel(const std::string&) {
    return unsupported("configChannel");
}

Fcodes ConfigChannelTarnevel::configAVSettings(const std::string&) {
    return unsupported("configAVSettings");
}

Fcodes ConfigChannelTarnevel::configAudioGain(const std::string&) {
    return unsupported("configAudioGain");
}
