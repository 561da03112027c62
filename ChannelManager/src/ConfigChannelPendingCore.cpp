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

Fcodes ConfigChannelTarnevel::execute(const std::string&, std::string&) {
    return unsupported("execute");
}

Fcodes ConfigChannelTarnevel::playChannel(const std::string&) {
    return unsupported("playChannel");
}

Fcodes ConfigChannelTarnevel::stopChannel(const std::string&) {
    return unsupported("stopChannel");
}

Fcodes ConfigChannelTarnevel::updateChannelStatus(const std::string&) {
    return unsupported("updateChannelStatus");
}

Fcodes ConfigChannelTarnevel::updateChannel(const std::string&) {
    return unsupported("updateChannel");
}

Fcodes ConfigChannelTarnevel::configChannels() {
    return unsupported("configChannels");
}

Fcodes ConfigChannelTarnevel::reconfigChannelFormat(const std::string&) {
    return unsupported("reconfigChannelFormat");
}

Fcodes ConfigChannelTarnevel::waitWhileInTransition(const std::string&, const std::string&, int) {
    return unsupported("waitWhileInTransition");
}

Fcodes ConfigChannelTarnevel::handleTarnevelBranchEvent(MessageEvent*) {
    return unsupported("handleTarnevelBranchEvent");
}

Fcodes ConfigChannelTarnevel::getBranch(const std::string&, const std::string&, std::string&) {
    return unsupported("getBranch");
}

Fcodes ConfigChannelTarnevel::getRowId(const std::string&, std::string&) {
    return unsupported("getRowId");
}

Fcodes ConfigChannelTarnevel::getChildInstances(const std::string&, const std::string&, const std::string&, const std::string&, std::vector<std::string>&) {
    return unsupported("getChildInstances");
}

Fcodes ConfigChannelTarnevel::restoreChannelParameters(const std::string&) {
    return unsupported("restoreChannelParameters");
}

Fcodes ConfigChannelTarnevel::clearChannelParametersBackup(const std::string&) {
    return unsupported("clearChannelParametersBackup");
}

Fcodes ConfigChannelTarnevel::calcBitrates(const std::string&, int&, int&, float, int&, int&, bool) {
    return unsupported("calcBitrates");
}

Fcodes ConfigChannelTarnevel::changeBitrateOnTheFly(const std::string&, int, int) {
    return unsupported("changeBitrateOnTheFly");
}

Fcodes ConfigChannelTarnevel::updateAutomaticParams(const std::string&) {
    return unsupported("updateAutomaticParams");
}

int ConfigChannelTarnevel::getFirstChildRowId(const std::string&, const std::string&, const std::string&,
                                              const std::string&) {
    unsupported("getFirstChildRowId");
    return -1;
}

int ConfigChannelTarnevel::getNextChildRowId(const std::string&, const std::string&, const std::string&,
                                             const std::string&, int) {
    unsupported("getNextChildRowId");
    return -1;
}
