// DataSets: construction, the mutex, and whole documents and components.
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "system/AtomicFile.h"
#include "json/DataSets.h"
#include "json/JsonDataSetKeys.h"
#include "system/SysmgtRoot.h"

using dsjson::member;

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
        std::ifstream in(sysmgtPath(file), std::ios::binary);
        if (!in.good()) {
            DBG(DBG_ERROR) << "loadDataSet: file stream !good " << file;
            return FC_NO_SUCH_NAME;
        }
        std::stringstream text;
        text << in.rdbuf();
        Json::Value root;
        std::string errors;
        if (!dsjson::parseDocument(text.str(), root, errors)) {
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
        const std::string key = name ? *name : declared->asString();
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
    int error = writeFileAtomically(file, text);
    if (error != 0) {
        DBG(DBG_ERROR) << "storeDataSet: Couldn't write file=" << file << " errno=" << error << " " << strerror(error);
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
