#pragma once

#include "datacom/Export.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "datacom/DataRow.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/Fcodes.h"

namespace datacom {

class DataColumn;
class DataItem;
class DataSet;
template <typename T>
class Retired;

/// One typed object of a dataset: named parameter definitions (columns) and
/// instances (rows keyed by an instance name) with change tracking like a
/// table's. Owns its parameters and instances; each instance points back at
/// the object so that edits mark it changed. A recursive mutex guards
/// touch, untouch, toString, getInstances, getParameters, doDeleteAllInstances
/// and cleanUpRelations; callers bracket other multi-step work with lock()/unlock().
class DATACOM_API DataObject {
public:
    using Rows = std::map<std::string, std::unique_ptr<DataRow>>;

    DataObject();
    explicit DataObject(const std::string& objectName);
    virtual ~DataObject();
    DataObject(const DataObject&) = delete;
    DataObject& operator=(const DataObject&) = delete;

    /// Change tracking over the instances, as DataTable's over its rows.
    virtual Fcodes acceptChanges();
    virtual Fcodes touch();
    virtual Fcodes untouch();
    Fcodes rollbackChanges();
    bool isChanged();
    uint32_t getState() const { return state; }
    void setState(uint32_t bits);
    void addState(uint32_t bits);
    DataSet* getDataSet() const { return dataSet; }
    void setDataSet(DataSet* owner) { dataSet = owner; }
    void lock() { mutex.lock(); }
    void unlock() { mutex.unlock(); }

    /// Replaces `out` with the Object block: parameters by name, then instance
    /// rows by instance name (written with their integer ids).
    virtual void toString(std::string& out);
    Fcodes initFromString(const std::string& text);

    const std::string& getName() const { return name; }
    void setName(const std::string& objectName) { name = objectName; }

    /// Parameters, listed by name.
    std::vector<std::string> getParameters();
    DataColumn* getParameter(const std::string& parameterName) const;
    /// Takes ownership; every instance gets a default item and is marked changed.
    /// A column already held (under any name) is refused.
    void addParameter(const std::string& parameterName, DataColumn* column);
    /// Takes the items out of every instance (marked changed) and destroys them
    /// and the column.
    void removeParameter(const std::string& parameterName);
    void removeParameter(DataColumn* column);
    /// As DataTable::replaceColumn; the replaced column is kept (items may
    /// still point at it) until the object is cleaned up.
    void replaceParameter(const std::string& parameterName, DataColumn* column);

    /// Instances, listed by name.
    std::vector<std::string> getInstances();
    DataRow* getInstance(const std::string& instanceName) const;
    /// Takes ownership (an instance already under that name is destroyed).
    Fcodes addInstance(const std::string& instanceName, DataRow* row);
    /// As DataTable::newRow with instance names for ids. Never null.
    DataRow* newInstance(const std::string& instanceName, const DataRow* source, bool overwrite);
    /// Marks deleted; FC_NO_SUCH_NAME for an unknown name.
    Fcodes deleteInstance(const std::string& instanceName);
    Fcodes doDeleteInstance(const std::string& instanceName);
    void doDeleteAllInstances();

    Fcodes update(DataObject& reference, bool keepOwnColumns, bool mergeColumns, bool mergeRows, bool overwriteRows);

    void cleanUpRelations();

private:
    using Guard = std::lock_guard<std::recursive_mutex>;

    bool holds(const DataColumn* column) const;

    std::recursive_mutex mutex;
    std::atomic<uint32_t> state{datastate::NEW};
    Rows rows;
    DataSet* dataSet = nullptr;
    std::string name;
    std::map<std::string, std::unique_ptr<DataColumn>> parameters;
    std::unique_ptr<Retired<DataColumn>> retiredParameters;
};

}  // namespace datacom
