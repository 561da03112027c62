#include "manager/SettingsArchive.h"

#include <dirent.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <string>

#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"
#include "side/BoundedCommand.h"

using namespace datacom;

namespace {

constexpr const char* ARCHIVE = "/tmp/devsettings.tgz";
// The private directory sits in /tmp itself, so that the final rename stays
// on one file system and is atomic.
constexpr const char* PRIVATE_DIR_TEMPLATE = "/tmp/devsettings.XXXXXX";

// The bound of the archive line. The settings are a few small files, archived
// in well under a second; ten seconds leaves room for a busy flash while the
// front end still gets its answer (the server thread waits for the line).
constexpr int ARCHIVE_LIMIT_MS = 10000;
// What of the line's output is kept for the failure's log line.
constexpr std::size_t ARCHIVE_OUTPUT_KEPT = 512;

// One word for the shell: single-quoted, so that a root with blanks or
// quotes stays one word.
std::string shellWord(const std::string& text) {
    std::string quoted = "'";
    for (char c : text) {
        if (c == '\'')
            quoted += "'\\''";
        else
            quoted += c;
    }
    return quoted + "'";
}

// tar and gzip inside the private directory only. tar runs from the root
// (-C) on the relative "data/settings", so the archive's members are
// "data/settings/..." on the device and under a SYSMGT_ROOT alike, as a tar
// of the absolute path makes them.
std::string archiveLine(const std::string& privateDir) {
    const std::string tar = shellWord(privateDir + "/devsettings.tar");
    return "tar cvf " + tar + " -C " + shellWord(sysmgtPath("/")) + " data/settings 2>&1 && gzip " + tar + " 2>&1";
}

// Empties and removes the private directory. Only this process writes in it
// (mode 0700), so whatever is inside is a leftover of this archive.
void removePrivateDir(const std::string& privateDir) {
    if (DIR* dir = opendir(privateDir.c_str())) {
        while (dirent* entry = readdir(dir)) {  // NOLINT(concurrency-mt-unsafe): the stream is this call's own
            const std::string name = entry->d_name;
            if (name != "." && name != "..")
                unlink((privateDir + "/" + name).c_str());
        }
        closedir(dir);
    }
    if (rmdir(privateDir.c_str()) != 0)
        DBG(DBG_ERROR) << "execute: settings archive left " << privateDir << " errno=" << errno;
}

// Builds the archive in `privateDir` and renames it into place.
Fcodes buildAndPublish(const std::string& privateDir) {
    const BoundedRun run = runBounded(archiveLine(privateDir), ARCHIVE_LIMIT_MS, ARCHIVE_OUTPUT_KEPT);
    if (!run.started || run.timedOut || run.status != 0) {
        DBG(DBG_ERROR) << "execute: settings archive failed started=" << run.started << " timedOut=" << run.timedOut
                       << " status=" << run.status << " output=" << run.output;
        return FC_UNAVAILABLE;
    }
    // rename never follows a link at the target: a planted one is replaced.
    // In the sticky /tmp a name that another user owns cannot be replaced,
    // and the archive then fails rather than going anywhere else.
    if (std::rename((privateDir + "/devsettings.tar.gz").c_str(), sysmgtPath(ARCHIVE).c_str()) != 0) {
        DBG(DBG_ERROR) << "execute: settings archive failed to replace " << ARCHIVE << " errno=" << errno;
        return FC_UNAVAILABLE;
    }
    return FC_OK;
}

}  // namespace

Fcodes writeSettingsArchive() {
    std::string privateDir = sysmgtPath(PRIVATE_DIR_TEMPLATE);
    if (mkdtemp(privateDir.data()) == nullptr) {
        DBG(DBG_ERROR) << "execute: settings archive failed to make a directory errno=" << errno;
        return FC_UNAVAILABLE;
    }
    const Fcodes result = buildAndPublish(privateDir);
    removePrivateDir(privateDir);
    return result;
}
