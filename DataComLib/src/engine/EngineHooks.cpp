// The defaults of the engine's hooks: a process that only listens refuses
// commands and data requests.
#include "datacom/IEngineHooks.h"

namespace datacom {

Fcodes IEngineHooks::execute(const std::string&, std::string&) {
    return FC_UNSUPPORTED;
}

Fcodes IEngineHooks::rollbackChanges() {
    return FC_OK;
}

IDataHolder* IEngineHooks::dataParameters() {
    return nullptr;
}

}  // namespace datacom
