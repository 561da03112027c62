#include "ChanwebArgs.h"

#include <cerrno>
#include <cstdlib>

namespace {

bool parseNumber(const std::string& text, long min, long max, long& value) {
    if (text.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    const long parsed = std::strtol(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || parsed < min || parsed > max)
        return false;
    value = parsed;
    return true;
}

bool isLoopback(const std::string& address) {
    return address == "127.0.0.1" || address == "localhost" || address == "::1";
}

}  // namespace

std::string parseChanwebArgs(const std::vector<std::string>& args, ChanwebOptions& options) {
    for (size_t i = 0; i < args.size(); ++i) {
        std::string name = args[i], value;
        if (name == "-h" || name == "--help") {
            options.help = true;
            continue;
        }
        if (name == "--allow-remote") {
            options.allowRemote = true;
            continue;
        }
        if (name.rfind("--", 0) != 0)
            return "unexpected word '" + name + "'";
        const size_t equals = name.find('=');
        if (equals != std::string::npos) {
            value = name.substr(equals + 1);
            name = name.substr(0, equals);
        } else if (i + 1 < args.size()) {
            value = args[++i];
        } else {
            return name + " needs a value";
        }
        long number = 0;
        if (name == "--port") {
            if (!parseNumber(value, 0, 65535, number))
                return "--port needs a number from 0 to 65535, not '" + value + "'";
            options.port = static_cast<int>(number);
        } else if (name == "--bind") {
            options.bind = value;
        } else if (name == "--host") {
            options.hosts.push_back(value);
        } else if (name == "--socket") {
            options.socket = value;
        } else if (name == "--www") {
            options.www = value;
        } else if (name == "--timeout") {
            if (!parseNumber(value, 1, 86400L * 365, number))
                return "--timeout needs whole seconds, not '" + value + "'";
            options.timeoutSec = static_cast<unsigned>(number);
        } else {
            return "unknown option " + name;
        }
    }
    if (!isLoopback(options.bind) && !options.allowRemote && !options.help)
        return "refusing to listen on " + options.bind +
               ": chanweb has no authentication; add --allow-remote if every host that can reach it may drive the "
               "channels";
    return "";
}

std::vector<std::string> allowedHosts(const ChanwebOptions& options) {
    std::vector<std::string> hosts = {options.bind, "localhost"};
    if (options.bind == "localhost")
        hosts.push_back("127.0.0.1");
    hosts.insert(hosts.end(), options.hosts.begin(), options.hosts.end());
    return hosts;
}

const char* chanwebUsage() {
    return "Usage: chanweb [--port N] [--bind ADDR --allow-remote] [--host NAME]...\n"
           "               [--socket PATH] [--www DIR] [--timeout S]\n"
           "A live console of the channel manager in the browser: both channels, their\n"
           "events as they arrive, a bitrate chart, and Play, Stop, LOAD_CHANNELS \"Default\"\n"
           "and STORE_CHANNELS buttons.\n"
           "  --port N         port to serve on (default 8080; 0: any free one, printed)\n"
           "  --bind ADDR      address to listen on (default 127.0.0.1). chanweb has NO\n"
           "                   AUTHENTICATION: anyone who reaches the port can play, stop,\n"
           "                   load and store. Any address but loopback needs --allow-remote.\n"
           "  --host NAME      a name the browser may use for chanweb besides the bind\n"
           "                   address and localhost (repeatable); requests naming any\n"
           "                   other host are refused (421), against DNS rebinding\n"
           "  --socket PATH    the channel manager's socket (default /tmp/sockChan)\n"
           "  --www DIR        the page's files (default: share/chanweb beside the program,\n"
           "                   else the source tree's tools/chanweb/www)\n"
           "  --timeout S      end by itself after S seconds\n"
           "Paths are resolved under $SYSMGT_ROOT when it is set.\n";
}
