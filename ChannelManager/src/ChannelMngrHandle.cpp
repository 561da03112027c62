#include "ChannelMngr.h"

#include "system/DbgPrintClient.h"

// The event dispatch of the daemon is not in this build yet: every event is
// logged and refused, so nothing pretends to have acted on it.
Fcodes ChannelMngr::doHandle(MessageEvent* event) {
    DBG(0) << "doHandle: arrived event=" << event->id;
    DBG(2) << "doHandle: Unsupported event=" << event->id;
    return FC_UNSUPPORTED;
}
