#pragma once

#include "datacom/Export.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"
#include "datacom/Retired.h"
#include "datacom/RowOwner.h"

namespace datacom {

class DataColumn;
class DataItem;
class DataRow;
class DataSet;

/// One typed object of a dataset: named parameter definitions (columns) and
/// instances (rows keyed by an instance name) with change tracking like a
/// table's. Owns its parameters and instances; each instance points back at
/// the object so that edits mark it changed. A recursive mutex guards
/// touch, untouch, toString, getInstances, getParameters, doDeleteAllInstances
/// and cleanUpRelations; callers bracket other multi-step work with lock()/unlock().
class DATACOM_API DataObject : public RowOwner<std::string> {
public:
    DataObject();
    explicit DataObject(const std::string& objectName);
    ~DataObject() override;

    /// acceptChanges, touch, untouch, rollbackChanges, isChanged, the state,
    /// the dataset and lock/unlock come from RowOwner, over the instances.

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
    bool holds(const DataColumn* column) const;

    std::string name;
    std::map<std::string, std::unique_ptr<DataColumn>> parameters;
    Retired<DataColumn> retiredParameters;
};

}  // namespace datacom
