// The holder's life: init, the queue fed by handle/execute, the worker that
// drains it, the base command hook and the acceptance of tabular changes.
#include "datacom/DataHolder.h"

#include <sched.h>
#include <sys/prctl.h>

#include <cerrno>

#include "datacom/DbgPrintClient.h"
#include "datacom/MessageEvent.h"
#include "datacom/WireConstants.h"
#include "holder/DataHolderImpl.h"

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

DataHolder::DataHolder() : impl(std::make_unique<Impl>(*this)) {}

DataHolder::~DataHolder() {
    shutdown();
    if (impl->semaphoreReady)
        sem_destroy(&impl->semaphore);
}

void DataHolder::lock() DATACOM_NO_THREAD_SAFETY_ANALYSIS {
    impl->mutex.lock();
}

void DataHolder::unlock() DATACOM_NO_THREAD_SAFETY_ANALYSIS {
    impl->mutex.unlock();
}

DataCommunicator* DataHolder::getDataCommunicator() {
    return &impl->communicator;
}

const std::string& DataHolder::getName() const {
    return impl->name;
}

void DataHolder::init(const std::string& taskName) {
    Impl& self = *impl;
    self.name = taskName;
    self.dataSets_json.reset(createDataSets());
    if (!self.dataSets_json)
        DBG(DBG_FATAL) << "DataHolder::init Couldn't create dataSets_json Object";

    if (sem_init(&self.semaphore, 0, 0) != 0)
        DBG(DBG_ERROR) << "init: sem_init failed errno=" << errno;
    else
        self.semaphoreReady = true;

    // The policy is only asked for: inheritance stays at its default, so the
    // worker runs with its creator's policy and creation works unprivileged.
    // Without its semaphore no worker is made (reported as a failed creation).
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setschedpolicy(&attributes, SCHED_RR);
    sched_param priority{};
    priority.sched_priority = WORKER_PRIORITY;
    pthread_attr_setschedparam(&attributes, &priority);
    const int created = self.semaphoreReady ? pthread_create(&self.worker, &attributes, &Impl::work, &self) : EAGAIN;
    pthread_attr_destroy(&attributes);
    if (created != 0)
        DBG(DBG_FATAL) << "DataHolder::init pthread_create failed errno=" << created;
    else
        self.workerRunning = true;
}

void DataHolder::shutdown() {
    Impl& self = *impl;
    self.communicator.stop();
    if (!self.workerRunning)
        return;
    self.stopping = true;
    sem_post(&self.semaphore);
    pthread_join(self.worker, nullptr);
    self.workerRunning = false;
}

void* DataHolder::Impl::work(void* self) {
    static_cast<Impl*>(self)->owner.doWork();
    return nullptr;
}

void DataHolder::doWork() {
    Impl& self = *impl;
    setTaskName(pthread_self(), self.name);
    prctl(PR_SET_NAME, "DataHolder", 0, 0, 0);
    for (;;) {
        while (sem_wait(&self.semaphore) != 0 && errno == EINTR) {
        }
        event_type item{0, 0, {nullptr, deleteCommand}};
        {
            ScopedLock<Mutex> guard(self.queueMutex);
            if (self.queue.empty()) {
                // Only shutdown's extra post wakes an empty queue for good;
                // what was queued before it has been run by then.
                if (self.stopping)
                    return;
                continue;
            }
            item = std::move(self.queue.front());
            self.queue.pop_front();
        }
        self.dispatch(item);
    }
}

void DataHolder::Impl::dispatch(event_type& item) {
    if (item.id == event_type::COMMAND) {
        std::string result;
        owner.doExecute(*static_cast<std::string*>(item.data.get()), result);
    } else if (item.id == event_type::EVENT) {
        // doHandle only borrows the event; it is destroyed with the item below.
        owner.doHandle(static_cast<MessageEvent*>(item.data.get()));
    } else {
        DBG(DBG_ERROR) << "doWork: unknown event arrived id=" << item.id;
    }
    item.data.reset();
}

void DataHolder::Impl::enqueue(event_type item, const char* op) {
    {
        ScopedLock<Mutex> guard(queueMutex);
        queue.push_back(std::move(item));
    }
    // A failed post leaves the item queued; the next post runs it. FC_OK all the same.
    if (sem_post(&semaphore) != 0)
        DBG(DBG_ERROR) << op << ": sem_post failed errno=" << errno;
}

Fcodes DataHolder::handle(MessageEvent* event) {
    impl->enqueue({event_type::EVENT, static_cast<int32_t>(sizeof(MessageEvent)), {event, deleteEvent}}, "handle");
    return FC_OK;
}

Fcodes DataHolder::execute(const std::string& command, std::string&) {
    impl->enqueue(
        {event_type::COMMAND, static_cast<int32_t>(command.size()), {new std::string(command), deleteCommand}},
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
    for (auto& entry : impl->dataSets)
        result |= entry.second->acceptChanges();
    return result;
}

Fcodes DataHolder::rollbackChanges() {
    for (auto& entry : impl->dataSets)
        entry.second->rollbackChanges();
    return FC_OK;
}

}  // namespace datacom
