#include "LogFilter.h"

#include <strings.h>

#include "datacom/DbgPrintClient.h"

using namespace datacom;

int LogFilter::parseSeverity(const std::string& text) {
    static const char* const kNames[] = {"INFO", "WARN", "ERROR", "FATAL", "SYS"};
    for (int severity = DBG_INFO; severity <= DBG_SYS; ++severity) {
        if (strcasecmp(text.c_str(), kNames[severity]) == 0)
            return severity;
    }
    if (text.size() == 1 && text[0] >= '0' && text[0] <= '4')
        return text[0] - '0';
    return -1;
}

int LogFilter::severityOf(const std::string& line) {
    for (int severity = DBG_INFO; severity <= DBG_SYS; ++severity) {
        if (line.compare(0, 5, gSeverityString[severity]) == 0)
            return severity;
    }
    return -1;
}

bool LogFilter::passes(const std::string& line) {
    int severity = severityOf(line);
    if (severity >= 0)
        lastPassed = severity >= minSeverity;
    return lastPassed;
}

std::vector<std::string> LogFilter::feed(const std::string& chunk) {
    std::vector<std::string> lines;
    pending += chunk;
    size_t start = 0, end;
    while ((end = pending.find('\n', start)) != std::string::npos) {
        std::string line = pending.substr(start, end + 1 - start);
        if (passes(line))
            lines.push_back(std::move(line));
        start = end + 1;
    }
    pending.erase(0, start);
    return lines;
}

std::string LogFilter::flush() {
    std::string rest;
    rest.swap(pending);
    return !rest.empty() && passes(rest) ? rest : std::string();
}
