// DataSets: construction, the mutex, and whole documents and components.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "datacom/AtomicFile.h"
#include "datacom/SysmgtRoot.h"
#include "datacom/TagText.h"
#include "json/DataSets.h"
#include "json/JsonDataSetKeys.h"
#include "json/ValueRules.h"

namespace datacom {

using dsjson::member;

namespace {

// The largest dataset file read. The factory channel data is about 30 KiB and
// a stored channel file the same; 1 MiB leaves room for growth while the
// parsed tree (several times the text) stays small beside the appliance's
// memory. A larger file is refused rather than read.
constexpr off_t MAX_DATASET_FILE_BYTES = off_t{1024} * 1024;

// Reads a dataset file: only a regular file, and only up to the limit. The
// open does not wait (a named pipe without a writer would block it), and the
// kind and size are taken from the opened file itself.
Fcodes readDatasetFile(const std::string& file, std::string& text) {
    const int fd = open(sysmgtPath(file).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        DBG(DBG_ERROR) << "loadDataSet: file stream !good " << file;
        return FC_NO_SUCH_NAME;
    }
    struct stat info {};
    Fcodes result = FC_OK;
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        DBG(DBG_ERROR) << "loadDataSet: Not a regular file=" << file;
        result = FC_BAD_VALUE;
    } else if (info.st_size > MAX_DATASET_FILE_BYTES) {
        DBG(DBG_ERROR) << "loadDataSet: File too large=" << file << " size=" << info.st_size
                       << " limit=" << MAX_DATASET_FILE_BYTES;
        result = FC_BAD_VALUE;
    } else {
        // The size may change after fstat: the read itself stops one byte past
        // the limit. The buffer starts at the size fstat gave (one byte more
        // shows a file that grew) and grows only when the file did: one of the
        // limit's size, filled on every load, stayed resident in the allocator
        // (2.7 MB more anonymous memory in the daemon after LOAD_CHANNELS).
        const size_t readLimit = static_cast<size_t>(MAX_DATASET_FILE_BYTES) + 1;
        text.resize(static_cast<size_t>(info.st_size) + 1);
        size_t filled = 0;
        for (;;) {
            if (filled == text.size()) {
                if (text.size() >= readLimit)
                    break;
                text.resize(std::min(readLimit, text.size() * 2));
            }
            const ssize_t got = read(fd, &text[filled], text.size() - filled);
            if (got < 0 && errno == EINTR)
                continue;
            if (got <= 0)
                break;
            filled += static_cast<size_t>(got);
        }
        text.resize(filled);
        if (filled > static_cast<size_t>(MAX_DATASET_FILE_BYTES)) {
            DBG(DBG_ERROR) << "loadDataSet: File too large=" << file << " limit=" << MAX_DATASET_FILE_BYTES;
            result = FC_BAD_VALUE;
        }
    }
    close(fd);
    return result;
}

// Every name and text of a document ends up between the quotes of a data
// reply: the first one that cannot (see fitsTagValue), with its path.
bool unfitText(const Json::Value& value, const std::string& path, std::string& where, std::string& text) {
    if (value.isString() && !fitsTagValue(value.asString())) {
        where = path;
        text = value.asString();
        return true;
    }
    if (value.isObject()) {
        for (const std::string& key : value.getMemberNames()) {
            if (!fitsTagValue(key)) {
                where = path + "/";
                text = key;
                return true;
            }
            if (unfitText(value[key], path + "/" + key, where, text))
                return true;
        }
    } else if (value.isArray()) {
        for (Json::ArrayIndex i = 0; i < value.size(); ++i)
            if (unfitText(value[i], path + "/" + std::to_string(i), where, text))
                return true;
    }
    return false;
}

}  // namespace

DataSets::DataSets() = default;

DataSets::~DataSets() = default;

void DataSets::lock() {
    mutex.lock();
}

void DataSets::unlock() {
    mutex.unlock();
}

const Json::Value* DataSets::committedComponent(const std::string& dataSet, const std::string& component) const {
    return member(member(member(datasets, dataSet), jsonkeys::COMPONENTS), component);
}

Json::Value* DataSets::writableComponent(const std::string& dataSet, const std::string& component) {
    return member(member(member(datasets, dataSet), jsonkeys::COMPONENTS), component);
}

const Json::Value* DataSets::pendingComponent(const std::string& dataSet, const std::string& component) const {
    return member(member(member(changes, dataSet), jsonkeys::COMPONENTS), component);
}

Json::Value* DataSets::pendingComponent(const std::string& dataSet, const std::string& component) {
    return member(member(member(changes, dataSet), jsonkeys::COMPONENTS), component);
}

Fcodes DataSets::loadDataSet(const std::string& file) {
    return loadDocument(nullptr, file);
}

Fcodes DataSets::loadDataSet(const std::string& name, const std::string& file) {
    return loadDocument(&name, file);
}

// Reads and parses outside the lock; only the final swap into `datasets` holds it.
Fcodes DataSets::loadDocument(const std::string* name, const std::string& file) {
    try {
        std::string text;
        const Fcodes read = readDatasetFile(file, text);
        if (!isOk(read))
            return read;
        Json::Value root;
        std::string errors;
        if (!dsjson::parseDocument(text, root, errors)) {
            DBG(DBG_ERROR) << "loadDataSet: Failed to parse a dataset from file=" << file << "\n err=" << errors;
            return FC_BODY_ERROR;
        }
        const Json::Value* declared = member(root, jsonkeys::DATASET);
        if (!name && (!declared || !declared->isString())) {
            DBG(DBG_ERROR) << "loadDataSet: Not found key=dataset in file=" << file;
            return FC_NO_SUCH_NAME;
        }
        const Json::Value* components = member(root, jsonkeys::COMPONENTS);
        if (!root.isObject() || (components && !components->isObject())) {
            DBG(DBG_ERROR) << "loadDataSet: Not a dataset document in file=" << file;
            return FC_BODY_ERROR;
        }
        std::string where, refused;
        if (unfitText(root, "", where, refused)) {
            DBG(DBG_ERROR) << "loadDataSet: refused value at " << where << " (holds '\"', '<' or '>'): " << refused
                           << " in file=" << file;
            return FC_BAD_VALUE;
        }
        const std::string key = name ? *name : declared->asString();
        // Every value meets the rules a write of it would meet before the
        // document replaces anything: a refused file changes nothing.
        const Fcodes admitted = dsjson::checkDocument("loadDataSet", key, root, " in file=" + file);
        if (!isOk(admitted))
            return admitted;
        Guard guard(*this);
        // Pending values stay: they are edits still to be committed onto (or
        // rolled back from) the document now in place.
        datasets[key].swap(root);
        return FC_OK;
    } catch (...) {
        DBG(DBG_ERROR) << "loadDataSet: Exc: Couldn't load dataset file=" << file;
    }
    return FC_BODY_ERROR;
}

Fcodes DataSets::storeDataSet(const std::string& name, const std::string& file) {
    std::string text;
    Fcodes result = guarded("storeDataSet", [&] {
        const Json::Value* document = member(datasets, name);
        if (!document) {
            DBG(DBG_ERROR) << "storeDataSet: Not found dataset=" << name;
            return FC_NO_SUCH_NAME;
        }
        text = dsjson::styledText(*document);
        return FC_OK;
    });
    if (!isOk(result))
        return result;
    // A file is replaced only by a file: a device, a pipe or a directory of
    // that name stays as it is.
    struct stat existing {};
    if (stat(sysmgtPath(file).c_str(), &existing) == 0 && !S_ISREG(existing.st_mode)) {
        DBG(DBG_ERROR) << "storeDataSet: Not a regular file=" << file;
        return FC_BAD_VALUE;
    }
    int error = writeFileAtomically(file, text);
    if (error != 0) {
        char reason[128];  // strerror_r: any thread may store
        DBG(DBG_ERROR) << "storeDataSet: Couldn't write file=" << file << " errno=" << error << " "
                       << strerror_r(error, reason, sizeof reason);
        return FC_UNAVAILABLE;
    }
    return FC_OK;
}

Fcodes DataSets::addDataSet(const std::string& name) {
    return guarded("addDataSet", [&] {
        if (member(datasets, name)) {
            DBG(DBG_ERROR) << "addDataSet: Already exists dataset=" << name;
            return FC_BAD_VALUE;
        }
        Json::Value document(Json::objectValue);
        document[jsonkeys::DATASET] = name;
        document[jsonkeys::COMPONENTS] = Json::Value(Json::objectValue);
        datasets[name].swap(document);
        return FC_OK;
    });
}

Fcodes DataSets::deleteDataSet(const std::string& name) {
    return guarded("deleteDataSet", [&] {
        if (!member(datasets, name)) {
            DBG(DBG_ERROR) << "deleteDataSet: Not found dataset=" << name;
            return FC_NO_SUCH_NAME;
        }
        datasets.removeMember(name);
        changes.removeMember(name);
        return FC_OK;
    });
}

Fcodes DataSets::findDataSetWithComponent(std::string& dataSetName, const std::string& component) {
    return guarded("findDataSetWithComponent", [&] {
        for (auto it = datasets.begin(); it != datasets.end(); ++it) {
            if (member(member(*it, jsonkeys::COMPONENTS), component)) {
                dataSetName = it.name();
                return FC_OK;
            }
        }
        DBG(DBG_WARN) << "findDataSetWithComponent: Not found comp=" << component;
        return FC_NO_SUCH_NAME;
    });
}

Fcodes DataSets::addComponent(const std::string& dataSet, const std::string& component) {
    return guarded("addComponent", [&] {
        Json::Value* components = member(member(datasets, dataSet), jsonkeys::COMPONENTS);
        if (!components || !components->isObject()) {
            DBG(DBG_ERROR) << "addComponent: No such name dataset=" << dataSet;
            return FC_NO_SUCH_NAME;
        }
        if (member(*components, component)) {
            DBG(DBG_ERROR) << "addComponent: Already exists comp=" << component << " in dataset=" << dataSet;
            return FC_BAD_VALUE;
        }
        Json::Value fresh(Json::objectValue);
        fresh[jsonkeys::PROPERTIES] = Json::Value(Json::objectValue);
        (*components)[component].swap(fresh);
        return FC_OK;
    });
}

Fcodes DataSets::deleteComponent(const std::string& dataSet, const std::string& component) {
    return guarded("deleteComponent", [&] {
        if (!committedComponent(dataSet, component)) {
            DBG(DBG_ERROR) << "deleteComponent: No such name dataset=" << dataSet << " comp=" << component;
            return FC_NO_SUCH_NAME;
        }
        datasets[dataSet][jsonkeys::COMPONENTS].removeMember(component);
        dropPendingComponent(dataSet, component);
        return FC_OK;
    });
}

Fcodes DataSets::loadComponent(const std::string& dataSet, const std::string& component, const std::string& text) {
    Json::Value parsed;
    std::string errors;
    if (!dsjson::parseDocument(text, parsed, errors) || !parsed.isObject()) {
        DBG(DBG_ERROR) << "loadComponent: Failed to parse comp=" << component << "\n err=" << errors;
        return FC_BODY_ERROR;
    }
    const Fcodes admitted = dsjson::checkComponent("loadComponent", dataSet, component, parsed, "");
    if (!isOk(admitted))
        return admitted;
    return guarded("loadComponent", [&] {
        Json::Value* components = member(member(datasets, dataSet), jsonkeys::COMPONENTS);
        if (!components || !components->isObject()) {
            DBG(DBG_ERROR) << "loadComponent: No such name dataset=" << dataSet;
            return FC_NO_SUCH_NAME;
        }
        (*components)[component].swap(parsed);
        dropPendingComponent(dataSet, component);
        return FC_OK;
    });
}

}  // namespace datacom
