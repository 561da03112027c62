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

Fcodes ConfigChannelTarnevel::updateZixiStatistics(const std::string&) {
    return unsupported("updateZixiStatistics");
}

Fcodes ConfigChannelTarnevel::updateSrtStatistics(const std::string&) {
    return unsupported("updateSrtStatistics");
}

Fcodes ConfigChannelTarnevel::handleDataStreamEvent(MessageEvent*) {
    return unsupported("handleDataStreamEvent");
}

Fcodes ConfigChannelTarnevel::sapAction(const std::string&) {
    return unsupported("sapAction");
}

Fcodes ConfigChannelTarnevel::klvAction(const std::string&) {
    return unsupported("klvAction");
}

Fcodes ConfigChannelTarnevel::testConnectionToTarget(const std::string&) {
    return unsupported("testConnectionToTarget");
}

Fcodes ConfigChannelTarnevel::setLed(const std::string&, int) {
    return unsupported("setLed");
}

Fcodes ConfigChannelTarnevel::updateStreamAndErrorLeds() {
    return unsupported("updateStreamAndErrorLeds");
}

Fcodes ConfigChannelTarnevel::updateVideoSource(const std::string&) {
    return unsupported("updateVideoSource");
}

Fcodes ConfigChannelTarnevel::updateVideoSource(MessageEvent*) {
    return unsupported("updateVideoSource");
}

Fcodes ConfigChannelTarnevel::triggerVideoSource(const std::string&) {
    return unsupported("triggerVideoSource");
}

unsigned long ConfigChannelTarnevel::parseZixiStat(const std::string&, const std::string&) {
    unsupported("parseZixiStat");
    return 0;
}

void ConfigChannelTarnevel::traceroute(const std::string&, const std::string&) {
    unsupported("traceroute");
}
