#include "channel/ConfigChannelTarnevel.h"

#include "manager/ChannelMngr.h"

using namespace datacom;

ConfigChannelTarnevel::ConfigChannelTarnevel()
    : ConfigChannelTarnevel(*ChannelMngr::getInstance(), *ChannelMngr::getInstance()) {}

ConfigChannelTarnevel::ConfigChannelTarnevel(DataHolder& holder, IChannelEvents& events)
    : holder(holder), events(events) {}
