// The tag helpers on arbitrary text, with names and delimiters taken from the
// input too. Every parser of the system walks lists with them, each call
// starting where the last ended, so their results must be positions inside
// the text that move forward, and what they return must be what is there.
#include <algorithm>

#include "FuzzSupport.h"
#include "datacom/TagText.h"

using namespace datacom;

namespace {

void walkSegments(const std::string& text, const std::string& tag) {
    std::string segment;
    int from = 0;
    for (int guard = 0; guard <= static_cast<int>(text.size()); ++guard) {
        int next = getSegment(text, from, tag, segment);
        if (next < 0)
            return;
        fuzz::check(next > from && next <= static_cast<int>(text.size()), "getSegment moves forward inside the text");
        fuzz::check(segment.size() <= static_cast<size_t>(next) &&
                        text.compare(static_cast<size_t>(next) - segment.size(), segment.size(), segment) == 0,
                    "getSegment's element ends where it says");
        fuzz::check(segment.compare(0, tag.size() + 1, "<" + tag) == 0, "getSegment's element opens with its tag");
        from = next;
    }
    fuzz::check(false, "getSegment walk ended");
}

void walkProperties(const std::string& text, const std::string& name) {
    std::string value = "untouched";
    int from = 0;
    for (int guard = 0; guard <= static_cast<int>(text.size()); ++guard) {
        int quote = getPropertyValue(text, from, name, value);
        if (quote < 0)
            return;
        fuzz::check(quote < static_cast<int>(text.size()) && text[static_cast<size_t>(quote)] == '"',
                    "getPropertyValue points at the closing quote");
        fuzz::check(value.find('"') == std::string::npos, "a property value holds no quote");
        fuzz::check(text.compare(static_cast<size_t>(quote) - value.size(), value.size(), value) == 0,
                    "getPropertyValue's value is the text before the quote");
        fuzz::check(quote >= from, "getPropertyValue stays at or after its start");
        from = quote + 1;
    }
    fuzz::check(false, "getPropertyValue walk ended");
}

void walkTokens(const std::string& text, const std::string& start, const std::string& end) {
    std::string token;
    int from = 0;
    for (int guard = 0; guard <= static_cast<int>(text.size()); ++guard) {
        int at = getToken(text, from, start, end, token);
        if (at < 0)
            return;
        fuzz::check(at <= static_cast<int>(text.size()), "getToken points inside the text");
        fuzz::check(token.size() <= static_cast<size_t>(at) &&
                        text.compare(static_cast<size_t>(at) - token.size(), token.size(), token) == 0,
                    "getToken's token is the text before its end");
        if (at + 1 <= from)
            return;  // an empty end delimiter finds the token's start again: callers never pass one
        from = at + 1;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    std::string tag = input.line(16);
    // Tag names are the system's own words, never holding the '>' that ends
    // an opening tag.
    tag.erase(std::remove(tag.begin(), tag.end(), '>'), tag.end());
    const std::string name = input.line(16);
    const std::string start = input.line(4);
    const std::string end = input.line(4);
    const int from = static_cast<int>(input.byte()) - 8;  // a few negative starts too
    const std::string text = input.rest();

    walkSegments(text, tag);
    walkProperties(text, name);
    walkTokens(text, start, end);
    for (const char* whitespace : {" ", "\t", "\n"})
        walkTokens(text, whitespace, "\"");

    // Any start position, as a caller with a stale index would pass.
    std::string out;
    getSegment(text, from, tag, out);
    getPropertyValue(text, from, name, out);
    getToken(text, from, start, end, out);
    tagToInt(text);
    tagToHex(text);
    return 0;
}
