#include "SimServices.h"

#include <fstream>
#include <sstream>

#include "SimVocabulary.h"
#include "datacom/AtomicFile.h"
#include "tarnevel/TarnevelWire.h"

using namespace datacom;

bool readHostFile(const std::string& hostPath, std::string& text) {
    std::ifstream in(hostPath, std::ios::binary);
    if (!in.good())
        return false;
    std::ostringstream content;
    content << in.rdbuf();
    text = content.str();
    return !in.bad();
}

Fcodes MediatorService::serveCommand(const MessageCommand& request, MessageCommand& answer,
                                     std::vector<MessageEvent>& events) {
    return mediator.serve(request, answer, events);
}

Fcodes MediatorService::serveControl(const MessageCommand& request, std::vector<MessageEvent>& events) {
    if (request.getId() == sim::CMD_SIM_SET_INPUT) {
        std::string source, format;
        if (request.getParam(sim::PARAM_SOURCE, source) == 0 ||
            request.getParam(sim::PARAM_INPUT_DETECTED, format) == 0)
            return FC_BODY_ERROR;
        return mediator.setInput(source, format, events);
    }
    if (request.getId() != sim::CMD_SIM_SET_PARAM)
        return FC_NO_SUCH_NAME;
    std::string component, parameter, value;
    if (request.getParam(tarnevel::PARAM_COMPONENT, component) == 0 ||
        request.getParam(tarnevel::PARAM_PARAMETER, parameter) == 0 || request.getParam(sim::PARAM_VALUE, value) == 0)
        return FC_BODY_ERROR;
    mediator.setParam(component, parameter, value);
    return FC_OK;
}

Fcodes DeviceService::loadDataSetFile(const std::string& hostPath, std::string& error) {
    std::string text;
    if (!readHostFile(hostPath, text)) {
        error = "cannot read " + hostPath;
        return FC_NO_SUCH_NAME;
    }
    if (int failed = writeFileAtomically(sim::DEVICE_DATA_SET_PATH, text)) {
        error = std::string("cannot write ") + sim::DEVICE_DATA_SET_PATH + " errno=" + std::to_string(failed);
        return FC_COMM_ERROR;
    }
    Fcodes code = loadDataSet(sim::DEVICE_DATA_SET_PATH);
    std::vector<std::string> components;
    if (isOk(code) && !isOk(getInstances(sim::DEVICE_DATA_SET, "DateTimeTable", components)))
        code = FC_NO_SUCH_NAME;
    if (!isOk(code))
        error = hostPath + " is not a \"" + sim::DEVICE_DATA_SET + "\" data set with a \"DateTimeTable\"";
    return code;
}

Fcodes DeviceService::serveCommand(const MessageCommand& request, MessageCommand& /*answer*/,
                                   std::vector<MessageEvent>& /*events*/) {
    return commands.serve(request);
}

Fcodes SapService::serveCommand(const MessageCommand& request, MessageCommand& /*answer*/,
                                std::vector<MessageEvent>& /*events*/) {
    return sap.serve(request);
}
