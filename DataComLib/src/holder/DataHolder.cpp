// The holder's life: init, the queue fed by handle/execute, the worker that
// drains it, the base command hook and the acceptance of tabular changes.
#include "datacom/DataHolder.h"

#include <sched.h>
#include <sys/prctl.h>

#include <cerrno>

#include "datacom/DbgPrintClient.h"
#include "datacom/WireConstants.h"

namespace datacom {

namespace {

constexpr int WORKER_PRIORITY = 30;

void deleteCommand(void* data) {
    delete static_cast<std::string*>(data);
}
void deleteEvent(void* data) {
    delete static_cast<MessageEvent*>(data);
}

}  // namespace

DataHolder::~DataHolder() {
    shutdown();
    if (semaphoreReady)
        sem_destroy(&semaphore);
}

void DataHolder::init(const std::string& taskName) {
    name = taskName;
    dataSets_json.reset(createDataSets());
    if (!dataSets_json)
        DBG(DBG_FATAL) << "DataHolder::init Couldn't create dataSets_json Object";

    if (sem_init(&semaphore, 0, 0) != 0)
        DBG(DBG_ERROR) << "init: sem_init failed errno=" << errno;
    else
        semaphoreReady = true;

    // The policy is only asked for: inheritance stays at its default, so the
    // worker runs with its creator's policy and creation works unprivileged.
    // Without its semaphore no worker is made (reported as a failed creation).
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setschedpolicy(&attributes, SCHED_RR);
    sched_param priority{};
    priority.sched_priority = WORKER_PRIORITY;
    pthread_attr_setschedparam(&attributes, &priority);
    const int created = semaphoreReady ? pthread_create(&worker, &attributes, &DataHolder::work, this) : EAGAIN;
    pthread_attr_destroy(&attributes);
    if (created != 0)
        DBG(DBG_FATAL) << "DataHolder::init pthread_create failed errno=" << created;
    else
        workerRunning = true;
}

void DataHolder::shutdown() {
    communicator.stop();
    if (!workerRunning)
        return;
    stopping = true;
    sem_post(&semaphore);
    pthread_join(worker, nullptr);
    workerRunning = false;
}

void* DataHolder::work(void* self) {
    static_cast<DataHolder*>(self)->doWork();
    return nullptr;
}

void DataHolder::doWork() {
    setTaskName(pthread_self(), name);
    prctl(PR_SET_NAME, "DataHolder", 0, 0, 0);
    for (;;) {
        while (sem_wait(&semaphore) != 0 && errno == EINTR) {
        }
        event_type item{0, 0, {nullptr, deleteCommand}};
        {
            ScopedLock<Mutex> guard(queueMutex);
            if (queue.empty()) {
                // Only shutdown's extra post wakes an empty queue for good;
                // what was queued before it has been run by then.
                if (stopping)
                    return;
                continue;
            }
            item = std::move(queue.front());
            queue.pop_front();
        }
        dispatch(item);
    }
}

void DataHolder::dispatch(event_type& item) {
    if (item.id == event_type::COMMAND) {
        std::string result;
        doExecute(*static_cast<std::string*>(item.data.get()), result);
    } else if (item.id == event_type::EVENT) {
        // doHandle only borrows the event; it is destroyed with the item below.
        doHandle(static_cast<MessageEvent*>(item.data.get()));
    } else {
        DBG(DBG_ERROR) << "doWork: unknown event arrived id=" << item.id;
    }
    item.data.reset();
}

void DataHolder::enqueue(event_type item, const char* op) {
    {
        ScopedLock<Mutex> guard(queueMutex);
        queue.push_back(std::move(item));
    }
    // A failed post leaves the item queued; the next post runs it. FC_OK all the same.
    if (sem_post(&semaphore) != 0)
        DBG(DBG_ERROR) << op << ": sem_post failed errno=" << errno;
}

Fcodes DataHolder::handle(MessageEvent* event) {
    enqueue({event_type::EVENT, static_cast<int32_t>(sizeof(MessageEvent)), {event, deleteEvent}}, "handle");
    return FC_OK;
}

Fcodes DataHolder::execute(const std::string& command, std::string&) {
    enqueue({event_type::COMMAND, static_cast<int32_t>(command.size()), {new std::string(command), deleteCommand}},
            "execute");
    return FC_OK;
}

Fcodes DataHolder::doExecute(const std::string& command, std::string&) {
    DBG(DBG_INFO) << "doExecute: arrived command=" << command;
    if (command == wire::CMD_ACCEPT_CHANGES) {
        acceptChanges();
        return FC_OK;
    }
    if (command == wire::CMD_ROLLBACK_CHANGES) {
        rollbackChanges();
        return FC_OK;
    }
    DBG(DBG_WARN) << "doExecute: Unsupported Command=" << command;
    return FC_NO_SUCH_NAME;
}

Fcodes DataHolder::acceptChanges() {
    Fcodes result = FC_OK;
    for (auto& entry : dataSets)
        result |= entry.second->acceptChanges();
    return result;
}

Fcodes DataHolder::rollbackChanges() {
    for (auto& entry : dataSets)
        entry.second->rollbackChanges();
    return FC_OK;
}

}  // namespace datacom
