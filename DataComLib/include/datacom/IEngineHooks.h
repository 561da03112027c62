#pragma once

#include "datacom/Export.h"

#include <string>

#include "datacom/Fcodes.h"

namespace datacom {

class IDataHolder;
class MessageEvent;

/// What the messaging engine (DataCommunicator) calls on the process that owns
/// it: the events and commands it receives, and the data its "GET"/"SET"
/// requests and row commands are served from. A daemon that only listens to
/// its peers implements handle alone; a management service derives from
/// DataHolder, whose parameter facade (IDataHolder) serves the data requests.
///
/// The engine calls every hook on its server thread.
class DATACOM_API IEngineHooks {
public:
    virtual ~IEngineHooks() = default;

    /// An event a peer sent. Takes ownership of the event (a heap object),
    /// whatever the result.
    virtual Fcodes handle(MessageEvent* event) = 0;
    /// A command a peer sent (its tag text); `result` receives the reply
    /// payload, without BODY tags. Refused unless implemented.
    virtual Fcodes execute(const std::string& command, std::string& result);
    /// Runs after a request that failed (a refused "SET"), so that nothing of
    /// it stays pending. Nothing to undo unless implemented.
    virtual Fcodes rollbackChanges();
    /// The parameters "GET", "SET" and the row commands read and write; nullptr
    /// (the default) refuses them with "Unavailable".
    virtual IDataHolder* dataParameters();
};

}  // namespace datacom
