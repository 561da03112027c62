#pragma once

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "datacom/DataCommunicator.h"
#include "datacom/DataHolder.h"
#include "datacom/DataSet.h"
#include "datacom/IDataSets.h"
#include "datacom/Mutex.h"
#include "datacom/ThreadSafety.h"

namespace datacom {

class DataItem;
class DataTable;

/// What a DataHolder keeps and the helpers its operations share: the engine,
/// the stores, the queue with its worker, and the holder's own lock. Owned by
/// the holder; `owner` is the holder itself, through which the helpers reach
/// the virtuals a service may override (table lookups, requestCommand, the
/// worker's hooks). Members are destroyed in the reverse of their order here,
/// so the engine goes last, after the stores its server thread reads. Hidden:
/// a nested class of an exported one would be exported with it otherwise.
struct __attribute__((visibility("hidden"))) DataHolder::Impl {
    explicit Impl(DataHolder& holder) : owner(holder) {}

    static void* work(void* self);
    /// Appends under the queue mutex and posts; `op` names the log line.
    void enqueue(event_type item, const char* op) DATACOM_EXCLUDES(queueMutex);
    /// Runs one dequeued item and frees it.
    void dispatch(event_type& item);
    /// Finds the table, row and item and runs `access` on the item under the
    /// table's lock. A missing one is logged ("No such table/rowId/item",
    /// prefixed with `op`) and answered FC_NO_SUCH_NAME.
    Fcodes withItem(const char* op, const std::string& table, int rowId, const std::string& column,
                    const std::function<Fcodes(DataItem&)>& access);
    /// Runs `access` on the table under its lock; `missing` when there is no table.
    template <typename Result, typename Access>
    Result withTable(const std::string& table, Result missing, Access access);
    /// "Add Row" and "Get Next Row": the request and the reply's "Row".
    Fcodes requestRowCommand(const char* commandId, const std::string& socketPath, const std::string& table, int rowId,
                             int& answerRow, unsigned timeoutSec, unsigned tries);

    DataHolder& owner;
    DataCommunicator communicator;
    std::map<std::string, std::unique_ptr<DataSet>> dataSets;
    std::unique_ptr<IDataSets> dataSets_json;
    sem_t semaphore{};
    bool semaphoreReady = false;
    std::string name;
    std::deque<event_type> queue DATACOM_GUARDED_BY(queueMutex);
    Mutex queueMutex;
    std::recursive_mutex mutex;  ///< behind lock()/unlock(): the holder itself is the capability

    pthread_t worker{};
    bool workerRunning = false;
    std::atomic<bool> stopping{false};
};

}  // namespace datacom
