#include "channel/ConfigChannelTarnevel.h"

using namespace datacom;

ConfigChannelTarnevel::ConfigChannelTarnevel(DataHolder& holder, IChannelEvents& events)
    : holder(holder), events(events) {}
