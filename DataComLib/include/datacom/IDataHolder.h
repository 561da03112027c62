#pragma once

#include "datacom/Export.h"

#include <string>
#include <vector>

#include "datacom/Fcodes.h"
#include "datacom/IEngineHooks.h"

namespace datacom {

class DataSet;
class DataTable;
class IDataSets;
class MessageEvent;

/// The data holder of a management daemon as its peers see it: the hooks the
/// messaging engine calls for commands and events (IEngineHooks, whose
/// commands, events and roll-back every holder implements), and the parameter facade
/// over the tabular store (table family), the JSON store (JSON family) and
/// remote services (remote family). Every subsystem reads and writes
/// parameters through it.
///
/// Argument conventions:
/// - table family: table name, row id, column name, then the value or an
///   out-value;
/// - JSON family: data set, component, property, then the value or an
///   out-value, last the instance: by index (int) for a component whose
///   instances are an array, by key (text) otherwise, "" being the single
///   instance; one overload each;
/// - remote family: the peer's logical socket path first, then the same
///   addressing; time-outs in seconds and numbers of tries as in DataCommunicator.
/// Out-values are left untouched on failure. Results are Fcodes: FC_OK,
/// FC_NO_SUCH_NAME for a missing table, row, item, data set, component or instance,
/// otherwise what the store or the messaging engine returned.
///
/// The engine calls handle, execute, the row operations and rollbackChanges on
/// its server thread, and the data operations of "GET"/"SET" there too; an
/// implementation must accept them there.
class DATACOM_API IDataHolder : public IEngineHooks {
public:
    ~IDataHolder() override = default;

    /// The holder serves the engine's data requests itself.
    IDataHolder* dataParameters() override { return this; }

    /// Lifecycle and the hooks of the messaging engine.
    virtual void init(const std::string& name) = 0;
    virtual Fcodes acceptChanges() = 0;
    virtual Fcodes deleteRow(const std::string& table, int rowId) = 0;
    virtual Fcodes doExecute(const std::string& command, std::string& result) = 0;
    /// Borrows the event: whoever called it (the holder's worker) destroys it
    /// afterwards.
    virtual Fcodes doHandle(MessageEvent* event) = 0;
    /// `result` receives the reply payload, without BODY tags.
    Fcodes execute(const std::string& command, std::string& result) override = 0;

    /// Table family.
    virtual Fcodes getIntParam(const std::string& table, int rowId, const std::string& column, int& value) = 0;
    virtual Fcodes getNewIntParam(const std::string& table, int rowId, const std::string& column, int& value) = 0;
    virtual Fcodes getNewStringParam(const std::string& table, int rowId, const std::string& column,
                                     std::string& value) = 0;
    virtual Fcodes getParamState(const std::string& table, int rowId, const std::string& column, unsigned& state) = 0;
    virtual Fcodes getParamType(const std::string& table, const std::string& column, int& type) = 0;
    /// Row indexes: 0 when the table is missing.
    virtual int getFirstRowIndex(const std::string& table) = 0;
    virtual int getNextRowIndex(const std::string& table, int index) = 0;
    virtual int getLastRowIndex(const std::string& table) = 0;
    virtual int getRowsNum(const std::string& table) = 0;
    virtual Fcodes getStringParam(const std::string& table, int rowId, const std::string& column,
                                  std::string& value) = 0;
    /// Takes ownership of the event (a heap object), whatever the result.
    Fcodes handle(MessageEvent* event) override = 0;
    /// The new row's id, 0 on failure.
    virtual int newRow(const std::string& table, int rowId) = 0;
    virtual int appendNewRow(const std::string& table) = 0;

    /// Remote family.
    virtual Fcodes requestAddRow(const std::string& socketPath, const std::string& table, int rowId, int& newRowId,
                                 unsigned timeoutSec, unsigned tries) = 0;
    virtual Fcodes requestCommand(const std::string& socketPath, const std::string& command, std::string& result,
                                  unsigned timeoutSec, unsigned tries) = 0;
    virtual Fcodes requestNextRowId(const std::string& socketPath, const std::string& table, int rowId, int& nextRowId,
                                    unsigned timeoutSec, unsigned tries) = 0;
    virtual Fcodes requestRemoteIntParam(const std::string& socketPath, const std::string& table, int rowId,
                                         const std::string& column, int& value, unsigned timeoutSec,
                                         unsigned tries) = 0;
    virtual Fcodes requestRemoteStringParam(const std::string& socketPath, const std::string& table, int rowId,
                                            const std::string& column, std::string& value, unsigned timeoutSec,
                                            unsigned tries) = 0;
    /// `row`: the instance key, or the decimal index; "" for the single instance.
    virtual Fcodes requestGetIntParam(const std::string& socketPath, const std::string& dataSet,
                                      const std::string& component, const std::string& property, int& value,
                                      const std::string& row) = 0;
    virtual Fcodes requestGetTextParam(const std::string& socketPath, const std::string& dataSet,
                                       const std::string& component, const std::string& property, std::string& value,
                                       const std::string& row) = 0;
    virtual Fcodes requestSetRemoteIntParam(const std::string& socketPath, const std::string& dataSet,
                                            const std::string& component, const std::string& property, int value,
                                            const std::string& row, unsigned timeoutSec, unsigned tries) = 0;
    virtual Fcodes requestSetRemoteStringParam(const std::string& socketPath, const std::string& dataSet,
                                               const std::string& component, const std::string& property,
                                               const std::string& value, const std::string& row, unsigned timeoutSec,
                                               unsigned tries) = 0;

    Fcodes rollbackChanges() override = 0;
    virtual Fcodes setIntParam(const std::string& table, int rowId, const std::string& column, int value) = 0;
    virtual Fcodes setStringParam(const std::string& table, int rowId, const std::string& column,
                                  const std::string& value) = 0;
    virtual Fcodes initIntParam(const std::string& table, int rowId, const std::string& column, int value) = 0;
    virtual Fcodes initStringParam(const std::string& table, int rowId, const std::string& column,
                                   const std::string& value) = 0;
    virtual Fcodes addColumnToTable(const std::string& dataSet, const std::string& table, const std::string& column,
                                    const std::string& type, const std::string& access) = 0;

    /// Tabular data sets. The holder owns the sets added to it.
    virtual Fcodes addDataSet(const std::string& name, DataSet* dataSet) = 0;
    virtual DataSet* getDataSet(const std::string& name) = 0;
    virtual DataSet* findDataSetWithTable(const std::string& table) = 0;
    virtual DataTable* findDataTable(const std::string& table) = 0;
    virtual std::vector<std::string> getColumnNames(const std::string& table) = 0;

    /// JSON family.
    virtual Fcodes findDataSetWithComponent(std::string& dataSetName, const std::string& component) = 0;
    virtual bool hasInstance(const std::string& dataSet, const std::string& component, int index) = 0;
    virtual bool hasInstance(const std::string& dataSet, const std::string& component, const std::string& key) = 0;
    virtual Fcodes getProperties(const std::string& dataSet, const std::string& component,
                                 std::vector<std::string>& names) = 0;
    virtual Fcodes getInstances(const std::string& dataSet, const std::string& component,
                                std::vector<std::string>& keys) = 0;
    virtual Fcodes getIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                               int& value, int index) = 0;
    virtual Fcodes getIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                               int& value, const std::string& key) = 0;
    virtual Fcodes getTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                std::string& value, int index) = 0;
    virtual Fcodes getTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                std::string& value, const std::string& key) = 0;
    virtual Fcodes getBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                bool& value, int index) = 0;
    virtual Fcodes getBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                bool& value, const std::string& key) = 0;
    virtual Fcodes setIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                               int value, int index) = 0;
    virtual Fcodes setIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                               int value, const std::string& key) = 0;
    virtual Fcodes setTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                const std::string& value, int index) = 0;
    virtual Fcodes setTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                const std::string& value, const std::string& key) = 0;
    virtual Fcodes setBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                bool value, int index) = 0;
    virtual Fcodes setBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                bool value, const std::string& key) = 0;

    virtual Fcodes getDefValue(const std::string& table, const std::string& column, std::string& value) = 0;

    /// The JSON store: made once by init, owned by the holder.
    virtual IDataSets* createDataSets() = 0;
    virtual Fcodes loadDataSet(const std::string& path) = 0;
    virtual Fcodes loadDataSet(const std::string& name, const std::string& path) = 0;
    virtual Fcodes storeDataSet(const std::string& name, const std::string& path) = 0;
    virtual Fcodes deleteDataSet(const std::string& name) = 0;
    virtual Fcodes updateDataSet(const std::string& source, const std::string& reference, bool keepExtras,
                                 bool addMissing, bool takeReferenceInstances) = 0;
    virtual Fcodes addInstance(const std::string& dataSet, const std::string& component, const std::string& key) = 0;
    virtual Fcodes appendInstance(const std::string& dataSet, const std::string& component, int& index) = 0;
    virtual Fcodes removeInstance(const std::string& dataSet, const std::string& component, int index) = 0;
    virtual Fcodes removeInstance(const std::string& dataSet, const std::string& component, const std::string& key) = 0;
    virtual Fcodes clearComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual Fcodes getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                           const std::string& property, const std::string& value,
                                           std::vector<std::string>& keys) = 0;
    virtual Fcodes getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                           const std::string& property, int value, std::vector<std::string>& keys) = 0;
    virtual Fcodes getInstancesByKey(const std::string& dataSet, const std::string& component, const std::string& key,
                                     std::vector<std::string>& keys) = 0;
    /// The property's default in its text form.
    virtual Fcodes getComponentPropertyDefault(const std::string& dataSet, const std::string& component,
                                               const std::string& property, std::string& defaultValue) = 0;
    virtual Fcodes getNewIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                  int& value, int index) = 0;
    virtual Fcodes getNewIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                  int& value, const std::string& key) = 0;
    virtual Fcodes getNewTextParam(const std::string& dataSet, const std::string& component,
                                   const std::string& property, std::string& value, int index) = 0;
    virtual Fcodes getNewTextParam(const std::string& dataSet, const std::string& component,
                                   const std::string& property, std::string& value, const std::string& key) = 0;
    virtual Fcodes getNewBoolParam(const std::string& dataSet, const std::string& component,
                                   const std::string& property, bool& value, int index) = 0;
    virtual Fcodes getNewBoolParam(const std::string& dataSet, const std::string& component,
                                   const std::string& property, bool& value, const std::string& key) = 0;
    virtual Fcodes initIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                int value, int index) = 0;
    virtual Fcodes initIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                int value, const std::string& key) = 0;
    virtual Fcodes initTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 const std::string& value, int index) = 0;
    virtual Fcodes initTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 const std::string& value, const std::string& key) = 0;
    virtual Fcodes initBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 bool value, int index) = 0;
    virtual Fcodes initBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 bool value, const std::string& key) = 0;

    /// JSON change tracking.
    virtual Fcodes commit() = 0;
    virtual Fcodes commitComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual Fcodes rollback() = 0;
    virtual Fcodes rollbackComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual Fcodes touchDataSet(const std::string& dataSet) = 0;
    virtual Fcodes untouchDataSet(const std::string& dataSet) = 0;
    virtual Fcodes touchComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual Fcodes untouchComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual bool isChanged() = 0;
    virtual bool isChangedDataSet(const std::string& dataSet) = 0;
    virtual bool isChangedComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual bool isChangedInstance(const std::string& dataSet, const std::string& component, int index) = 0;
    virtual bool isChangedInstance(const std::string& dataSet, const std::string& component,
                                   const std::string& key) = 0;
    virtual bool isChangedProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int index) = 0;
    virtual bool isChangedProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, const std::string& key) = 0;
    /// Drops one pending value, so that the committed one is in effect again
    /// (how a refused "SET" undoes what it wrote).
    virtual Fcodes untouchProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int index) = 0;
    virtual Fcodes untouchProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, const std::string& key) = 0;
};

}  // namespace datacom
