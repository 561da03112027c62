#include "datacom/TagText.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "datacom/DbgPrintClient.h"

namespace datacom {

bool fitsTagValue(const std::string& value) {
    return value.find_first_of("\"<>") == std::string::npos;
}

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

// The first `name="` at or after `from`, found as `name` followed by `="`
// without building the key, since every message passes here several times.
int getPropertyValue(const std::string& text, int from, const std::string& name, std::string& value) {
    if (from < 0)
        return -1;
    const size_t length = name.size();
    size_t keyAt = text.find(name, static_cast<size_t>(from));
    while (keyAt != std::string::npos &&
           (keyAt + length + 2 > text.size() || text[keyAt + length] != '=' || text[keyAt + length + 1] != '"'))
        keyAt = text.find(name, keyAt + 1);
    if (keyAt == std::string::npos)
        return -1;
    size_t valueAt = keyAt + length + 2;
    size_t closingQuote = text.find('"', valueAt);
    if (closingQuote == std::string::npos)
        return -1;
    value.assign(text, valueAt, closingQuote - valueAt);
    return toIndex(closingQuote);
}

// An opening "<tag " anywhere at or after `from` comes first; only when there
// is none does the first "<tag>" count. Both, and the closing "</tag>" of a
// "<tag>", are found in one pass over the '<' of the text, since every
// message body ("<BODY>...") is a "<tag>" that is otherwise scanned three
// times: for the absent "<tag ", for "<tag>" and for its closing tag.
int getSegment(const std::string& text, int from, const std::string& tag, std::string& segment) {
    if (from < 0)
        return -1;
    const char* data = text.data();
    const size_t size = text.size();
    const size_t length = tag.size();
    size_t withSpace = std::string::npos, plain = std::string::npos, plainClose = std::string::npos;
    for (size_t at = static_cast<size_t>(from); at < size; ++at) {
        const void* found = std::memchr(data + at, '<', size - at);
        if (found == nullptr)
            break;
        at = static_cast<size_t>(static_cast<const char*>(found) - data);
        if (at + 1 + length < size && std::memcmp(data + at + 1, tag.data(), length) == 0) {
            const char next = data[at + 1 + length];
            if (next == ' ') {
                withSpace = at;
                break;
            }
            if (next == '>' && plain == std::string::npos)
                plain = at;
        }
        if (plain != std::string::npos && plainClose == std::string::npos && at + 2 + length < size &&
            data[at + 1] == '/' && std::memcmp(data + at + 2, tag.data(), length) == 0 && data[at + 2 + length] == '>')
            plainClose = at;
    }
    const size_t start = withSpace != std::string::npos ? withSpace : plain;
    if (start == std::string::npos)
        return -1;
    size_t openEnd = text.find('>', start);
    if (openEnd == std::string::npos)
        return -1;
    if (text[openEnd - 1] == '/') {
        segment.assign(text, start, openEnd + 1 - start);
        return toIndex(openEnd + 1);
    }
    size_t closeAt = plainClose;
    if (start == withSpace) {
        const std::string closing = "</" + tag + ">";
        closeAt = text.find(closing, start);
    }
    if (closeAt == std::string::npos)
        return -1;
    size_t end = closeAt + length + 3;
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

}  // namespace datacom
