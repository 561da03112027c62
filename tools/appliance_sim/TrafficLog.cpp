#include "TrafficLog.h"

#include <cstdio>
#include <iomanip>
#include <sstream>

#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"
#include "datacom/MessageTypes.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"

using namespace datacom;

namespace {

// A value's line breaks are shown as \n, so that a message stays one line.
void appendParams(std::ostringstream& out, const MessageParams& params) {
    for (const auto& [name, value] : params.params) {
        out << ' ' << name << "=\"";
        for (char c : value)
            if (c == '\n')
                out << "\\n";
            else
                out << c;
        out << '"';
    }
}

// Newlines and tabs dropped, so that a data body reads as one line.
std::string oneLine(const std::string& text) {
    std::string line;
    for (char c : text)
        if (c != '\n' && c != '\r' && c != '\t')
            line += c;
    return line;
}

void appendBody(std::ostringstream& out, const std::string& body) {
    // The BODY element's content, without its tags.
    std::string inner = body;
    const std::string open = std::string("<") + wire::TAG_BODY + ">";
    const std::string close = std::string("</") + wire::TAG_BODY + ">";
    const size_t start = inner.find(open);
    const size_t end = inner.rfind(close);
    if (start != std::string::npos && end != std::string::npos && end >= start + open.size())
        inner = inner.substr(start + open.size(), end - start - open.size());
    std::string element;
    if (getSegment(inner, 0, wire::TAG_COMMAND, element) >= 0) {
        MessageCommand command;
        if (isOk(command.initFromString(element))) {
            out << " \"" << command.getId() << '"';
            appendParams(out, command);
            return;
        }
    } else if (getSegment(inner, 0, wire::TAG_EVENT, element) >= 0) {
        MessageEvent event;
        if (isOk(event.initFromString(element))) {
            out << " \"" << event.id << "\" Source=\"" << event.source << "\" Status=\"" << event.status << '"';
            appendParams(out, event);
            return;
        }
    }
    const std::string rest = oneLine(inner);
    if (!rest.empty())
        out << ' ' << rest;
}

}  // namespace

TrafficLog::~TrafficLog() {
    if (file != nullptr)
        fclose(file);
}

bool TrafficLog::openFile(const std::string& hostPath) {
    std::lock_guard<std::mutex> guard(mutex);
    if (file != nullptr)
        fclose(file);
    file = fopen(hostPath.c_str(), "w");
    return file != nullptr;
}

std::string TrafficLog::formatLine(const char* direction, const std::string& service, const MessageHeader& header,
                                   const std::string& body) {
    std::ostringstream out;
    out << std::left << std::setw(4) << direction << service << ' ' << header.Type << " #" << header.ID;
    appendBody(out, body);
    // Requests carry no code on the wire; replies and events do.
    const bool request = header.Type == msgtype::COMMAND || header.Type == msgtype::GET || header.Type == msgtype::SET;
    if (request)
        return out.str();
    const Fcodes code = static_cast<Fcodes>(header.Fcode);
    out << " Fcode=0x" << std::hex << static_cast<uint32_t>(code) << std::dec << " (" << fcodeText(code) << ")";
    return out.str();
}

void TrafficLog::message(const char* direction, const std::string& service, const MessageHeader& header,
                         const std::string& body) {
    write(formatLine(direction, service, header, body));
}

void TrafficLog::note(const std::string& text) {
    write("--  " + text);
}

void TrafficLog::write(const std::string& line) {
    std::lock_guard<std::mutex> guard(mutex);
    fprintf(stdout, "%s\n", line.c_str());
    fflush(stdout);
    if (file != nullptr) {
        fprintf(file, "%s\n", line.c_str());
        fflush(file);
    }
}
