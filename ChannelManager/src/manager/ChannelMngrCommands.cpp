// The commands the channel manager answers on "/tmp/sockChan": an ordered
// table of command IDs, first whole-text match wins; anything else goes to
// the worker, which refuses it.
#include <string>

#include "channel/ConfigChannelTarnevel.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/MessageCommand.h"
#include "manager/ChannelMngr.h"
#include "manager/SettingsArchive.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"

using namespace datacom;

using namespace vocab;

namespace {

// A channel file stored under it also refreshes the settings archive.
constexpr const char* SETTINGS_DIR = "/data/settings";

}  // namespace

const ChannelMngr::CommandRoute ChannelMngr::commandRoutes[] = {
    {cmd::ACCEPT_CHANGES, &ChannelMngr::runAcceptChanges},
    {cmd::ROLLBACK_CHANGES, &ChannelMngr::runRollbackChanges},
    {cmd::LOAD_CHANNELS, &ChannelMngr::runLoadChannels},
    {cmd::STORE_CHANNELS, &ChannelMngr::runStoreChannels},
    {cmd::ACTIVATE_ROW, &ChannelMngr::runChannelCommand},
    {cmd::CHANGE_ON_THE_FLY, &ChannelMngr::runChannelCommand},
    {cmd::PLAY, &ChannelMngr::runChannelCommand},
    {cmd::STOP, &ChannelMngr::runChannelCommand},
    {cmd::UPDATE_SOURCE, &ChannelMngr::runUpdateSource},
    {cmd::SET_DVI_MODE, &ChannelMngr::runSetDviMode},
    {cmd::SET_ANALOG_FORMAT, &ChannelMngr::runSetAnalogFormat},
    {cmd::UPDATE_ZIXI_STATISTICS, &ChannelMngr::runStatistics},
    {cmd::UPDATE_SRT_STATISTICS, &ChannelMngr::runStatistics},
};

Fcodes ChannelMngr::execute(const std::string& commandText, std::string& result) {
    MessageCommand command;
    if (!isOk(command.initFromString(commandText))) {
        DBG(DBG_ERROR) << "execute: Not found tags in:\n" << commandText;
        return FC_BODY_ERROR;
    }
    for (const CommandRoute& route : commandRoutes)
        if (command.getId() == route.id)
            return (this->*route.run)(command, commandText, result);
    // Not one of ours: the worker's doExecute refuses it, and the requester
    // hears "OK" for the hand-over.
    return DataHolder::execute(commandText, result);
}

Fcodes ChannelMngr::doExecute(const std::string& commandText, std::string&) {
    DBG(DBG_INFO) << "doExecute: arrived command=" << commandText;
    MessageCommand command;
    if (!isOk(command.initFromString(commandText))) {
        DBG(DBG_ERROR) << "execute: Not found tags in:\n" << commandText;
        return FC_BODY_ERROR;
    }
    DBG(DBG_ERROR) << "doExecute: NOT SUPPORTED command=" << command.getId();
    return FC_NO_SUCH_NAME;
}

Fcodes ChannelMngr::deleteRow(const std::string&, int) {
    DBG(DBG_ERROR) << "deleteRow: Unsupported";
    return FC_UNAVAILABLE;
}

Fcodes ChannelMngr::runAcceptChanges(const MessageCommand& command, const std::string&, std::string&) {
    DBG(DBG_INFO) << "execute: command=" << command.getId();
    return acceptChanges();
}

Fcodes ChannelMngr::runRollbackChanges(const MessageCommand& command, const std::string&, std::string&) {
    DBG(DBG_INFO) << "execute: command=" << command.getId();
    // The command discards every pending edit, the JSON datasets' as well, so
    // that "Accept Changes" has nothing stale left to commit. (rollbackChanges
    // alone stays tabular: the engine also calls it after a refused SET, which
    // must not take other clients' pending JSON edits with it.)
    rollbackChanges();
    return rollback() | FC_OK;
}

Fcodes ChannelMngr::runLoadChannels(const MessageCommand& command, const std::string&, std::string&) {
    std::string file;
    if (command.getParam(cmd::PARAM_FILE, file) == 0)
        return FC_BODY_ERROR;
    Fcodes result;
    if (file == cmd::FILE_DEFAULT) {
        result = loadChannels(path::FACTORY_CHANNELS);
    } else {
        DBG(DBG_SYS) << "execute: Loading Channels from file=" << file;
        result = loadChannels(file);
    }
    // The event names the file as asked: "Default", not the factory path.
    sendCfgEvent(ev::CHANNELS_LOADED, file, result);
    return result | FC_OK;
}

Fcodes ChannelMngr::runStoreChannels(const MessageCommand& command, const std::string& text, std::string&) {
    std::string file;
    Fcodes result;
    if (command.getParam(cmd::PARAM_FILE, file) != 0) {
        DBG(DBG_SYS) << "execute: Storing file=" << file;
        result = storeDataSet(ds::CHANNEL, file);
    } else {
        DBG(DBG_ERROR) << "execute: Not found tags File in:\n" << text;
        result = FC_BODY_ERROR;
    }
    DBG(DBG_SYS) << "execute: After Storing file=" << file;
    sendCfgEvent(ev::CHANNELS_STORED, file, result);
    if (file.find(SETTINGS_DIR) != std::string::npos)
        result |= writeSettingsArchive();
    return result;
}

Fcodes ChannelMngr::runChannelCommand(const MessageCommand& command, const std::string&, std::string&) {
    DBG(DBG_INFO) << "execute: command=" << command.getId();
    ConfigChannelTarnevel channel(*this, *this, book);
    return channel.execute(command) | FC_OK;
}

Fcodes ChannelMngr::runUpdateSource(const MessageCommand& command, const std::string& text, std::string&) {
    DBG(DBG_INFO) << "execute: command=" << command.getId();
    std::string source;
    if (command.getParam(cmd::PARAM_VIDEO_SOURCE, source) == 0) {
        DBG(DBG_ERROR) << "execute: Not found tags " << cmd::PARAM_VIDEO_SOURCE << " in:\n" << text;
        return FC_BODY_ERROR;
    }
    if (source == cmd::VIDEO_SOURCE_ALL)
        return initSources() | FC_OK;
    ConfigChannelTarnevel channel(*this, *this, book);
    return channel.updateVideoSource(source) | FC_OK;
}

Fcodes ChannelMngr::runSetDviMode(const MessageCommand& command, const std::string& text, std::string&) {
    return acceptIgnoredParameter(command, text, cmd::PARAM_DVI_MODE);
}

Fcodes ChannelMngr::runSetAnalogFormat(const MessageCommand& command, const std::string& text, std::string&) {
    return acceptIgnoredParameter(command, text, cmd::PARAM_ANALOG_SOURCE);
}

// The inputs are set up by the mediator's auto-detection on this appliance,
// so the value is read and deliberately not applied.
Fcodes ChannelMngr::acceptIgnoredParameter(const MessageCommand& command, const std::string& text,
                                           const char* parameter) {
    DBG(DBG_INFO) << "execute: command=" << command.getId();
    std::string value;
    if (command.getParam(parameter, value) == 0) {
        DBG(DBG_ERROR) << "execute: Not found tags " << parameter << " in:\n" << text;
        return FC_BODY_ERROR;
    }
    return FC_OK;
}

Fcodes ChannelMngr::runStatistics(const MessageCommand& command, const std::string&, std::string&) {
    ConfigChannelTarnevel channel(*this, *this, book);
    return channel.execute(command) | FC_OK;
}
