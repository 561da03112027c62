#include "records/TagText.h"

#include <atomic>
#include <cstdlib>
#include <limits>

#include "system/DbgPrintClient.h"

void appendTagValue(std::string& out, const std::string& value) {
    const std::string::size_type first = value.find_first_of("\"<>");
    if (first == std::string::npos) {
        out += value;
        return;
    }
    const std::string::size_type start = out.size();
    out += value;
    for (std::string::size_type at = start + first; at < out.size(); ++at) {
        if (out[at] == '"')
            out[at] = '\'';
        else if (out[at] == '<')
            out[at] = '(';
        else if (out[at] == '>')
            out[at] = ')';
    }
    static std::atomic<bool> logged{false};
    if (!logged.exchange(true))
        DBG(DBG_WARN) << "appendTagValue: replaced the delimiters '\"<>' in value=" << out.substr(start);
}

namespace {

constexpr const char* kWhitespace = " \t\n";

bool isWhitespaceDelimiter(const std::string& delimiter) {
    return delimiter == " " || delimiter == "\t" || delimiter == "\n";
}

size_t findDelimiter(const std::string& text, size_t from, const std::string& delimiter) {
    if (isWhitespaceDelimiter(delimiter))
        return text.find_first_of(kWhitespace, from);
    return text.find(delimiter, from);
}

int toIndex(size_t position) {
    return position == std::string::npos ? -1 : static_cast<int>(position);
}

}  // namespace

int getPropertyValue(const std::string& text, int from, const std::string& name, std::string& value) {
    if (from < 0)
        return -1;
    const std::string key = name + "=\"";
    size_t keyAt = text.find(key, static_cast<size_t>(from));
    if (keyAt == std::string::npos)
        return -1;
    size_t valueAt = keyAt + key.size();
    size_t closingQuote = text.find('"', valueAt);
    if (closingQuote == std::string::npos)
        return -1;
    value.assign(text, valueAt, closingQuote - valueAt);
    return toIndex(closingQuote);
}

int getSegment(const std::string& text, int from, const std::string& tag, std::string& segment) {
    if (from < 0)
        return -1;
    size_t start = text.find("<" + tag + " ", static_cast<size_t>(from));
    if (start == std::string::npos)
        start = text.find("<" + tag + ">", static_cast<size_t>(from));
    if (start == std::string::npos)
        return -1;
    size_t openEnd = text.find('>', start);
    if (openEnd == std::string::npos)
        return -1;
    if (text[openEnd - 1] == '/') {
        segment.assign(text, start, openEnd + 1 - start);
        return toIndex(openEnd + 1);
    }
    const std::string closing = "</" + tag + ">";
    size_t closeAt = text.find(closing, start);
    if (closeAt == std::string::npos)
        return -1;
    size_t end = closeAt + closing.size();
    segment.assign(text, start, end - start);
    return toIndex(end);
}

int getToken(const std::string& text, int from, const std::string& start, const std::string& end, std::string& token) {
    if (from < 0)
        return -1;
    size_t startAt = findDelimiter(text, static_cast<size_t>(from), start);
    if (startAt == std::string::npos)
        return -1;
    size_t tokenAt = startAt + start.size();
    size_t endAt = findDelimiter(text, tokenAt, end);
    if (endAt == std::string::npos)
        return -1;
    token.assign(text, tokenAt, endAt - tokenAt);
    return toIndex(endAt);
}

int32_t tagToInt(const std::string& text) {
    long long parsed = std::strtoll(text.c_str(), nullptr, 10);
    if (parsed > std::numeric_limits<int32_t>::max())
        return std::numeric_limits<int32_t>::max();
    if (parsed < std::numeric_limits<int32_t>::min())
        return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(parsed);
}

uint32_t tagToHex(const std::string& text) {
    unsigned long long parsed = std::strtoull(text.c_str(), nullptr, 16);
    if (parsed > std::numeric_limits<uint32_t>::max())
        return std::numeric_limits<uint32_t>::max();
    return static_cast<uint32_t>(parsed);
}
