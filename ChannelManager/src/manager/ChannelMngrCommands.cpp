// The commands the channel manager answers on "/tmp/sockChan": an ordered
// table of command IDs, first whole-text match wins; anything else goes to
// the worker, which refuses it.
#include <cstdlib>
#include <string>

#include "manager/ChannelMngr.h"
#include "vocab/ChannelVocabulary.h"
#include "channel/ConfigChannelTarnevel.h"
#include "records/MessageCommand.h"
#include "system/DbgPrintClient.h"
#include "system/SysmgtRoot.h"

namespace {

// A path for the shell: mapped under SYSMGT_ROOT like every system call, and
// single-quoted so that a root with blanks stays one word.
std::string shellPath(const std::string& logicalPath) {
    std::string quoted = "'";
    for (char c : sysmgtPath(logicalPath)) {
        if (c == '\'')
            quoted += "'\\''";
        else
            quoted += c;
    }
    return quoted + "'";
}

// The settings archive, "/tmp/devsettings.tgz", left for other services to fetch.
std::string settingsArchiveLine() {
    const std::string tar = shellPath("/tmp/devsettings.tar");
    const std::string gz = shellPath("/tmp/devsettings.tar.gz");
    return "tar cvf " + tar + " " + shellPath(vocab::path::SETTINGS_DIR) + ";gzip " + tar + ";mv " + gz + " " +
           shellPath("/tmp/devsettings.tgz");
}

}  // namespace

const ChannelMngr::CommandRoute ChannelMngr::commandRoutes[] = {
    {vocab::cmd::ACCEPT_CHANGES, &ChannelMngr::runAcceptChanges},
    {vocab::cmd::ROLLBACK_CHANGES, &ChannelMngr::runRollbackChanges},
    {vocab::cmd::LOAD_CHANNELS, &ChannelMngr::runLoadChannels},
    {vocab::cmd::STORE_CHANNELS, &ChannelMngr::runStoreChannels},
    {vocab::cmd::ACTIVATE_ROW, &ChannelMngr::runChannelCommand},
    {vocab::cmd::CHANGE_ON_THE_FLY, &ChannelMngr::runChannelCommand},
    {vocab::cmd::PLAY, &ChannelMngr::runChannelCommand},
    {vocab::cmd::STOP, &ChannelMngr::runChannelCommand},
    {vocab::cmd::UPDATE_SOURCE, &ChannelMngr::runUpdateSource},
    {vocab::cmd::SET_DVI_MODE, &ChannelMngr::runSetDviMode},
    {vocab::cmd::SET_ANALOG_FORMAT, &ChannelMngr::runSetAnalogFormat},
    {vocab::cmd::UPDATE_ZIXI_STATISTICS, &ChannelMngr::runStatistics},
    {vocab::cmd::UPDATE_SRT_STATISTICS, &ChannelMngr::runStatistics},
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
    return rollbackChanges();
}

Fcodes ChannelMngr::runLoadChannels(const MessageCommand& command, const std::string&, std::string&) {
    std::string file;
    if (command.getParam(vocab::cmd::PARAM_FILE, file) == 0)
        return FC_BODY_ERROR;
    Fcodes result;
    if (file == vocab::cmd::FILE_DEFAULT) {
        result = loadChannels(vocab::path::FACTORY_CHANNELS);
    } else {
        DBG(DBG_SYS) << "execute: Loading Channels from file=" << file;
        result = loadChannels(file);
    }
    // The event names the file as asked: "Default", not the factory path.
    sendCfgEvent(vocab::ev::CHANNELS_LOADED, file, result);
    return result | FC_OK;
}

Fcodes ChannelMngr::runStoreChannels(const MessageCommand& command, const std::string& text, std::string&) {
    std::string file;
    Fcodes result;
    if (command.getParam(vocab::cmd::PARAM_FILE, file) != 0) {
        DBG(DBG_SYS) << "execute: Storing file=" << file;
        result = storeDataSet(vocab::ds::CHANNEL, file);
    } else {
        DBG(DBG_ERROR) << "execute: Not found tags File in:\n" << text;
        result = FC_BODY_ERROR;
    }
    DBG(DBG_SYS) << "execute: After Storing file=" << file;
    sendCfgEvent(vocab::ev::CHANNELS_STORED, file, result);
    if (file.find(vocab::path::SETTINGS_DIR) != std::string::npos && std::system(settingsArchiveLine().c_str()) != 0)
        result |= FC_UNAVAILABLE;
    return result;
}

Fcodes ChannelMngr::runChannelCommand(const MessageCommand& command, const std::string& text, std::string& result) {
    DBG(DBG_INFO) << "execute: command=" << command.getId();
    ConfigChannelTarnevel channel(*this, *this);
    return channel.execute(text, result) | FC_OK;
}

Fcodes ChannelMngr::runUpdateSource(const MessageCommand& command, const std::string& text, std::string&) {
    DBG(DBG_INFO) << "execute: command=" << command.getId();
    std::string source;
    if (command.getParam(vocab::cmd::PARAM_VIDEO_SOURCE, source) == 0) {
        DBG(DBG_ERROR) << "execute: Not found tags " << vocab::cmd::PARAM_VIDEO_SOURCE << " in:\n" << text;
        return FC_BODY_ERROR;
    }
    if (source == vocab::cmd::VIDEO_SOURCE_ALL)
        return initSources() | FC_OK;
    ConfigChannelTarnevel channel(*this, *this);
    return channel.updateVideoSource(source) | FC_OK;
}

Fcodes ChannelMngr::runSetDviMode(const MessageCommand& command, const std::string& text, std::string&) {
    return acceptIgnoredParameter(command, text, vocab::cmd::PARAM_DVI_MODE);
}

Fcodes ChannelMngr::runSetAnalogFormat(const MessageCommand& command, const std::string& text, std::string&) {
    return acceptIgnoredParameter(command, text, vocab::cmd::PARAM_ANALOG_SOURCE);
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

Fcodes ChannelMngr::runStatistics(const MessageCommand&, const std::string& text, std::string& result) {
    ConfigChannelTarnevel channel(*this, *this);
    return channel.execute(text, result) | FC_OK;
}
