#pragma once

#include "datacom/Export.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "datacom/IDataHolder.h"
#include "datacom/ThreadSafety.h"

namespace datacom {

class DataCommunicator;
class IDataSets;
class MessageEvent;

/// One item of the holder's queue: a command text (id 1, size its length) or
/// an event (id 2, size of the event record). `data` owns the payload; its
/// deleter knows the kind, so whoever drops the item frees it: the worker, once
/// doExecute or doHandle has returned.
struct DATACOM_API event_type {
    enum : int32_t { COMMAND = 1, EVENT = 2 };
    int32_t id;
    int32_t size;
    std::unique_ptr<void, void (*)(void*)> data;
};

/// The base of every management service of the configuration layer: the
/// embedded messaging engine, a worker thread that runs queued commands and
/// events one at a time in arrival order, the owned tabular data sets and JSON
/// store, and the parameter facade over them and over remote peers.
///
/// A service derives from it, implements doHandle, calls init(name) once, then
/// sets up its engine through getDataCommunicator() (init with `this`, start).
///
/// Threads: handle and execute are called by the engine's server thread and by
/// any other thread of the service; they only append to the queue (one mutex
/// around push and pop) and post the semaphore. The worker runs doExecute and
/// doHandle. Table operations hold the table's own lock; the holder's recursive
/// mutex (lock/unlock) is for derived services and never taken here.
///
/// What the holder keeps (engine, stores, queue, worker, lock) lives in its
/// private implementation, so a service includes this header and the parameter
/// facade alone; it reaches the engine through getDataCommunicator() and the
/// JSON store through getDataSets().
///
/// Shutdown: on the appliance the worker runs for ever. shutdown() (also run by
/// the destructor) stops the engine's server thread first, so nothing more is
/// queued, then lets the worker finish what is queued, ends it and joins it.
/// A derived service whose hooks use its own members calls shutdown() in its
/// own destructor, before those members go.
class DATACOM_API DATACOM_CAPABILITY("mutex") DataHolder : public IDataHolder {
public:
    DataHolder();
    /// Runs shutdown(); frees what is still queued, the data sets and the store.
    ~DataHolder() override;
    DataHolder(const DataHolder&) = delete;
    DataHolder& operator=(const DataHolder&) = delete;

    /// Lifecycle, queue and worker.

    /// Stores the name, makes the JSON store, the semaphore and the worker
    /// thread (round-robin priority 30 asked, creator's policy inherited).
    void init(const std::string& name) override;
    /// Stops the engine's server thread, then the worker (after it has run the
    /// queued items). Idempotent; never called from the worker.
    void shutdown();
    /// Queues the event (owned from now on); FC_OK at once.
    Fcodes handle(MessageEvent* event) override;
    /// Queues a copy of the command; FC_OK at once, `result` untouched.
    Fcodes execute(const std::string& command, std::string& result) override;
    /// The worker's command hook: "Accept Changes" and "Rollback Changes" as
    /// whole texts, anything else FC_NO_SUCH_NAME.
    Fcodes doExecute(const std::string& command, std::string& result) override;
    /// The worker's event hook. The event is lent: the worker destroys it when
    /// doHandle returns, so a service keeps a copy of what it needs later.
    Fcodes doHandle(MessageEvent* event) override = 0;
    /// Every tabular data set's changes accepted, in name order; the OR of their codes.
    Fcodes acceptChanges() override;
    /// Every tabular data set rolled back, in name order; always FC_OK.
    Fcodes rollbackChanges() override;
    /// The holder's own lock, re-entrant, taken through datacom::ScopedLock.
    /// The analysis sees a plain lock (re-entry is not modelled) and what it
    /// guards lives in the stores, out of its sight: so functions say
    /// DATACOM_REQUIRES(this) where they need it held, and DATACOM_EXCLUDES(this)
    /// only where they wait for a thread that takes it.
    void lock() DATACOM_ACQUIRE();
    void unlock() DATACOM_RELEASE();
    /// The embedded engine, owned by the holder: the service inits and starts it.
    DataCommunicator* getDataCommunicator();
    const std::string& getName() const;

    /// Table family and table structure.

    Fcodes deleteRow(const std::string& table, int rowId) override;
    Fcodes getIntParam(const std::string& table, int rowId, const std::string& column, int& value) override;
    Fcodes getNewIntParam(const std::string& table, int rowId, const std::string& column, int& value) override;
    Fcodes getNewStringParam(const std::string& table, int rowId, const std::string& column,
                             std::string& value) override;
    Fcodes getStringParam(const std::string& table, int rowId, const std::string& column, std::string& value) override;
    Fcodes setIntParam(const std::string& table, int rowId, const std::string& column, int value) override;
    Fcodes setStringParam(const std::string& table, int rowId, const std::string& column,
                          const std::string& value) override;
    Fcodes initIntParam(const std::string& table, int rowId, const std::string& column, int value) override;
    Fcodes initStringParam(const std::string& table, int rowId, const std::string& column,
                           const std::string& value) override;
    Fcodes getParamState(const std::string& table, int rowId, const std::string& column, unsigned& state) override;
    Fcodes getParamType(const std::string& table, const std::string& column, int& type) override;
    /// The column's default in its decimal text form.
    Fcodes getDefValue(const std::string& table, const std::string& column, std::string& value) override;
    int getFirstRowIndex(const std::string& table) override;
    int getNextRowIndex(const std::string& table, int index) override;
    /// These two take no table lock, deliberately: the table's last-row query
    /// locks the table itself, and a row count is stale once returned anyway.
    int getLastRowIndex(const std::string& table) override;
    int getRowsNum(const std::string& table) override;
    /// Row id 0: the table's next free row; otherwise a row of that id (the
    /// existing one when it is there). The row's id, 0 on failure.
    int newRow(const std::string& table, int rowId) override;
    int appendNewRow(const std::string& table) override;
    /// Does nothing and answers FC_OK, deliberately: a table's columns come from
    /// its dataset file, and services must not change a layout at run time.
    Fcodes addColumnToTable(const std::string& dataSet, const std::string& table, const std::string& column,
                            const std::string& type, const std::string& access) override;
    /// Takes ownership; a set already held under that name is destroyed and
    /// replaced. A null set is refused with FC_BAD_VALUE. Not thread-safe
    /// against table lookups: services add their sets at start-up.
    Fcodes addDataSet(const std::string& name, DataSet* dataSet) override;
    DataSet* getDataSet(const std::string& name) override;
    /// The first set, in name order, that has the table; null when none has.
    DataSet* findDataSetWithTable(const std::string& table) override;
    DataTable* findDataTable(const std::string& table) override;
    std::vector<std::string> getColumnNames(const std::string& table) override;

    /// JSON family, forwarded to the store.
    /// Without a store (its creation failed) every operation answers FC_UNAVAILABLE, false or nothing.

    /// The store init installs (a DataSets from DataSetsFactory); a derived
    /// holder overrides it to hand in a store of its own. Owned by the holder.
    IDataSets* createDataSets() override;
    /// The store init installed (null before init or when its creation failed); owned by the holder.
    IDataSets* getDataSets();
    Fcodes findDataSetWithComponent(std::string& dataSetName, const std::string& component) override;
    bool hasInstance(const std::string& dataSet, const std::string& component, int index) override;
    bool hasInstance(const std::string& dataSet, const std::string& component, const std::string& key) override;
    Fcodes getProperties(const std::string& dataSet, const std::string& component,
                         std::vector<std::string>& names) override;
    Fcodes getInstances(const std::string& dataSet, const std::string& component,
                        std::vector<std::string>& keys) override;
    Fcodes getIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                       int& value, int index) override;
    Fcodes getIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                       int& value, const std::string& key) override;
    Fcodes getTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                        std::string& value, int index) override;
    Fcodes getTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                        std::string& value, const std::string& key) override;
    Fcodes getBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                        bool& value, int index) override;
    Fcodes getBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                        bool& value, const std::string& key) override;
    Fcodes setIntParam(const std::string& dataSet, const std::string& component, const std::string& property, int value,
                       int index) override;
    Fcodes setIntParam(const std::string& dataSet, const std::string& component, const std::string& property, int value,
                       const std::string& key) override;
    Fcodes setTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                        const std::string& value, int index) override;
    Fcodes setTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                        const std::string& value, const std::string& key) override;
    Fcodes setBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                        bool value, int index) override;
    Fcodes setBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                        bool value, const std::string& key) override;
    Fcodes loadDataSet(const std::string& path) override;
    Fcodes loadDataSet(const std::string& name, const std::string& path) override;
    Fcodes storeDataSet(const std::string& name, const std::string& path) override;
    Fcodes deleteDataSet(const std::string& name) override;
    Fcodes updateDataSet(const std::string& source, const std::string& reference, bool keepExtras, bool addMissing,
                         bool takeReferenceInstances) override;
    Fcodes addInstance(const std::string& dataSet, const std::string& component, const std::string& key) override;
    Fcodes appendInstance(const std::string& dataSet, const std::string& component, int& index) override;
    Fcodes removeInstance(const std::string& dataSet, const std::string& component, int index) override;
    Fcodes removeInstance(const std::string& dataSet, const std::string& component, const std::string& key) override;
    Fcodes clearComponent(const std::string& dataSet, const std::string& component) override;
    Fcodes getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                   const std::string& property, const std::string& value,
                                   std::vector<std::string>& keys) override;
    Fcodes getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int value, std::vector<std::string>& keys) override;
    Fcodes getInstancesByKey(const std::string& dataSet, const std::string& component, const std::string& key,
                             std::vector<std::string>& keys) override;
    Fcodes getComponentPropertyDefault(const std::string& dataSet, const std::string& component,
                                       const std::string& property, std::string& defaultValue) override;
    Fcodes getNewIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                          int& value, int index) override;
    Fcodes getNewIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                          int& value, const std::string& key) override;
    Fcodes getNewTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                           std::string& value, int index) override;
    Fcodes getNewTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                           std::string& value, const std::string& key) override;
    Fcodes getNewBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                           bool& value, int index) override;
    Fcodes getNewBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                           bool& value, const std::string& key) override;
    Fcodes initIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                        int value, int index) override;
    Fcodes initIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                        int value, const std::string& key) override;
    Fcodes initTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                         const std::string& value, int index) override;
    Fcodes initTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                         const std::string& value, const std::string& key) override;
    Fcodes initBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                         bool value, int index) override;
    Fcodes initBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                         bool value, const std::string& key) override;
    /// The store's 64-bit committed write (statistics counters).
    Fcodes initInt64Param(const std::string& dataSet, const std::string& component, const std::string& property,
                          int64_t value, const std::string& key);
    Fcodes commit() override;
    Fcodes commitComponent(const std::string& dataSet, const std::string& component) override;
    Fcodes rollback() override;
    Fcodes rollbackComponent(const std::string& dataSet, const std::string& component) override;
    Fcodes touchDataSet(const std::string& dataSet) override;
    Fcodes untouchDataSet(const std::string& dataSet) override;
    Fcodes touchComponent(const std::string& dataSet, const std::string& component) override;
    Fcodes untouchComponent(const std::string& dataSet, const std::string& component) override;
    bool isChanged() override;
    bool isChangedDataSet(const std::string& dataSet) override;
    bool isChangedComponent(const std::string& dataSet, const std::string& component) override;
    bool isChangedInstance(const std::string& dataSet, const std::string& component, int index) override;
    bool isChangedInstance(const std::string& dataSet, const std::string& component, const std::string& key) override;
    bool isChangedProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                           int index) override;
    bool isChangedProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                           const std::string& key) override;
    Fcodes untouchProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                           int index) override;
    Fcodes untouchProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                           const std::string& key) override;

    /// Remote family, forwarded to the engine.

    Fcodes requestCommand(const std::string& socketPath, const std::string& command, std::string& result,
                          unsigned timeoutSec, unsigned tries) override;
    /// "Add Row" / "Get Next Row" with "Tables" and "Row"; the reply's "Row" into the out-value.
    Fcodes requestAddRow(const std::string& socketPath, const std::string& table, int rowId, int& newRowId,
                         unsigned timeoutSec, unsigned tries) override;
    Fcodes requestNextRowId(const std::string& socketPath, const std::string& table, int rowId, int& nextRowId,
                            unsigned timeoutSec, unsigned tries) override;
    Fcodes requestRemoteIntParam(const std::string& socketPath, const std::string& table, int rowId,
                                 const std::string& column, int& value, unsigned timeoutSec, unsigned tries) override;
    Fcodes requestRemoteStringParam(const std::string& socketPath, const std::string& table, int rowId,
                                    const std::string& column, std::string& value, unsigned timeoutSec,
                                    unsigned tries) override;
    /// Always 10 s and 3 tries.
    Fcodes requestGetIntParam(const std::string& socketPath, const std::string& dataSet, const std::string& component,
                              const std::string& property, int& value, const std::string& row) override;
    Fcodes requestGetTextParam(const std::string& socketPath, const std::string& dataSet, const std::string& component,
                               const std::string& property, std::string& value, const std::string& row) override;
    Fcodes requestSetRemoteIntParam(const std::string& socketPath, const std::string& dataSet,
                                    const std::string& component, const std::string& property, int value,
                                    const std::string& row, unsigned timeoutSec, unsigned tries) override;
    Fcodes requestSetRemoteStringParam(const std::string& socketPath, const std::string& dataSet,
                                       const std::string& component, const std::string& property,
                                       const std::string& value, const std::string& row, unsigned timeoutSec,
                                       unsigned tries) override;
    Fcodes requestEvent(const std::string& socketPath, MessageEvent& event, unsigned delaySec, unsigned tries);
    /// Sends the event to every subscriber of the engine.
    void notify(MessageEvent& event);

protected:
    /// The worker thread's body: runs queued items until shutdown().
    void doWork();

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

}  // namespace datacom
