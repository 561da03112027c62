#pragma once

#include <string>
#include <vector>

// Splits what arrives on the debug pipe into lines and keeps those at or
// above a minimum severity. A line that does not start with a severity name
// continues the line before it (messages may carry a multi-line text) and
// shares its fate. Not thread-safe; one reader owns it.
class LogFilter {
public:
    explicit LogFilter(int minSeverity) : minSeverity(minSeverity) {}

    // Feeds a chunk as read from the pipe; returns the complete lines that
    // pass, each with its end-of-line. A partial last line waits for more.
    std::vector<std::string> feed(const std::string& chunk);
    // The partial line left at the end, if it passes (used on exit).
    std::string flush();

    // "INFO", "WARN", "ERROR", "FATAL", "SYS" (any case) or 0..4; -1 when unknown.
    static int parseSeverity(const std::string& text);
    // The severity a line starts with, or -1 for a continuation line.
    static int severityOf(const std::string& line);

private:
    bool passes(const std::string& line);

    int minSeverity;
    bool lastPassed = true;
    std::string pending;
};
