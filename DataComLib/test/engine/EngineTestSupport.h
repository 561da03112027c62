#pragma once

// Test peers of the messaging engine: a bare datagram socket that checks
// exact bytes, a data holder fake that records what the engine asks of it,
// and a pair of engines (a served one and a client) on temporary sockets.

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "datacom/DataCommunicator.h"
#include "datacom/MessageHeader.h"
#include "datacom/NullDataHolder.h"
#include "engine/LocalAddress.h"

// Where the engine tests' bare peer listens.
constexpr const char* PEER = "/tmp/sockPeer";

// A bare datagram socket bound at a logical path under the test root.
class RawPeer {
public:
    explicit RawPeer(const std::string& logicalPath) {
        fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        address.setLogicalPath(logicalPath);
        unlink(address.path().c_str());
        bound = bind(fd, address.get(), address.length()) == 0;
    }
    ~RawPeer() { close(fd); }
    bool sendTo(const std::string& logicalPath, const std::string& text) const {
        datacom::LocalAddress to;
        to.setLogicalPath(logicalPath);
        return sendto(fd, text.data(), text.size(), MSG_DONTWAIT, to.get(), to.length()) ==
               static_cast<ssize_t>(text.size());
    }
    // The next datagram within `timeoutMs`; false when none came.
    bool receive(std::string& text, int timeoutMs = 3000) const {
        pollfd entry{fd, POLLIN, 0};
        if (poll(&entry, 1, timeoutMs) != 1)
            return false;
        std::vector<char> buffer(80000);
        ssize_t size = recv(fd, buffer.data(), buffer.size(), 0);
        text.assign(buffer.data(), size > 0 ? static_cast<size_t>(size) : 0);
        return size > 0;
    }
    std::string hostPath() const { return address.path(); }

    int fd = -1;
    bool bound = false;

private:
    datacom::LocalAddress address;
};

// A header's wire text.
inline std::string wireHeader(int id, const std::string& type, datacom::Fcodes fcode, int size) {
    datacom::MessageHeader header;
    header.ID = id;
    header.Type = type;
    header.Fcode = fcode;
    header.Size = size;
    std::string text;
    header.toString(text);
    return text;
}

// The ID in a datagram's header.
inline int wireId(const std::string& datagram) {
    datacom::MessageHeader header;
    header.initFromString(datagram);
    return header.ID;
}

// Runs `request` on another thread while `peer` receives its datagram (into
// `received`) and answers it with `reply(id)` to `replyTo` (nothing when
// empty). Returns the request's result.
inline datacom::Fcodes exchange(RawPeer& peer, const std::string& replyTo,
                                const std::function<datacom::Fcodes()>& request, std::string& received,
                                const std::function<std::string(int)>& reply) {
    auto result = std::async(std::launch::async, request);
    received.clear();
    std::string answer;
    if (peer.receive(received) && !(answer = reply(wireId(received))).empty())
        peer.sendTo(replyTo, answer);
    return result.get();
}

// A holder with a small table store and JSON store that records the calls the
// engine makes ("name args"). Cells and JSON values are kept committed and
// pending; the setters refuse a value beginning with '!' ("Bad Value"). A JSON
// instance is named by its key, or "#index" in an array; a value set as a
// boolean reads as "Wrong Type" through the text getters, as a strict store
// does. Called on the server thread, set up and read by the test: everything
// under one mutex.
class FakeDataHolder : public datacom::NullDataHolder {
public:
    void addCell(const std::string& table, int row, const std::string& column, const std::string& value) {
        Guard guard(mutex);
        values[cellKey(table, row, column)] = {value, value};
    }
    void setJson(const std::string& dataSet, const std::string& component, const std::string& instance,
                 const std::string& property, const std::string& value, bool isBool = false) {
        Guard guard(mutex);
        values[jsonKey(dataSet, component, instance, property)] = {value, value};
        if (isBool)
            bools.insert(jsonKey(dataSet, component, instance, property));
    }
    // What execute answers: its payload and code.
    void setExecuteAnswer(const std::string& payload, datacom::Fcodes code) {
        Guard guard(mutex);
        executeReply = payload;
        executeCode = code;
    }
    std::vector<std::string> calls() const {
        Guard guard(mutex);
        return log;
    }

    datacom::Fcodes handle(datacom::MessageEvent* event) override {
        std::unique_ptr<datacom::MessageEvent> owned(event);
        return record("handle " + event->id + " " + std::to_string(event->fcode)), datacom::FC_OK;
    }
    datacom::Fcodes execute(const std::string& command, std::string& result) override {
        Guard guard(mutex);
        record("execute " + command);
        result = executeReply;
        return executeCode;
    }
    int newRow(const std::string& table, int rowId) override {
        return record("newRow " + table + " " + std::to_string(rowId)), 0;
    }
    int appendNewRow(const std::string& table) override { return record("appendNewRow " + table), 0; }
    int getFirstRowIndex(const std::string& table) override { return record("getFirstRowIndex " + table), 0; }
    int getNextRowIndex(const std::string& table, int index) override {
        return record("getNextRowIndex " + table + " " + std::to_string(index)), 0;
    }
    datacom::Fcodes rollbackChanges() override { return record("rollbackChanges"), datacom::FC_OK; }
    datacom::Fcodes rollback() override { return record("rollback"), datacom::FC_OK; }

    datacom::Fcodes getStringParam(const std::string& t, int r, const std::string& c, std::string& v) override {
        return read(cellKey(t, r, c), false, v);
    }
    datacom::Fcodes getNewStringParam(const std::string& t, int r, const std::string& c, std::string& v) override {
        return read(cellKey(t, r, c), true, v);
    }
    datacom::Fcodes setStringParam(const std::string& t, int r, const std::string& c, const std::string& v) override {
        return write(cellKey(t, r, c), v);
    }

    datacom::Fcodes findDataSetWithComponent(std::string& dataSet, const std::string& component) override {
        Guard guard(mutex);
        for (const auto& entry : values) {
            size_t first = entry.first.find('|'), second = entry.first.find('|', first + 1);
            if (entry.first.compare(first + 1, second - first - 1, component) == 0)
                return dataSet = entry.first.substr(0, first), datacom::FC_OK;
        }
        return datacom::FC_NO_SUCH_NAME;
    }
    datacom::Fcodes getProperties(const std::string& d, const std::string& c,
                                  std::vector<std::string>& names) override {
        Guard guard(mutex);
        const std::string prefix = d + "|" + c + "|";
        for (const auto& entry : values)
            if (entry.first.compare(0, prefix.size(), prefix) == 0)
                names.push_back(entry.first.substr(entry.first.rfind('|') + 1));
        return names.empty() ? datacom::FC_NO_SUCH_NAME : datacom::FC_OK;
    }
    bool hasInstance(const std::string& d, const std::string& c, int index) override {
        return hasInstance(d, c, "#" + std::to_string(index));
    }
    bool hasInstance(const std::string& d, const std::string& c, const std::string& key) override {
        Guard guard(mutex);
        auto next = values.lower_bound(jsonKey(d, c, key, ""));
        return next != values.end() &&
               next->first.compare(0, jsonKey(d, c, key, "").size(), jsonKey(d, c, key, "")) == 0;
    }
    datacom::Fcodes getTextParam(const std::string& d, const std::string& c, const std::string& p, std::string& v,
                                 int index) override {
        return read(jsonKey(d, c, "#" + std::to_string(index), p), false, v);
    }
    datacom::Fcodes getTextParam(const std::string& d, const std::string& c, const std::string& p, std::string& v,
                                 const std::string& key) override {
        return read(jsonKey(d, c, key, p), false, v);
    }
    datacom::Fcodes getNewTextParam(const std::string& d, const std::string& c, const std::string& p, std::string& v,
                                    int index) override {
        return read(jsonKey(d, c, "#" + std::to_string(index), p), true, v);
    }
    datacom::Fcodes getNewTextParam(const std::string& d, const std::string& c, const std::string& p, std::string& v,
                                    const std::string& key) override {
        return read(jsonKey(d, c, key, p), true, v);
    }
    datacom::Fcodes getBoolParam(const std::string& d, const std::string& c, const std::string& p, bool& v,
                                 const std::string& key) override {
        std::string text;
        datacom::Fcodes code = read(jsonKey(d, c, key, p), false, text, true);
        return datacom::isOk(code) ? (v = text == "true", code) : code;
    }
    datacom::Fcodes setTextParam(const std::string& d, const std::string& c, const std::string& p, const std::string& v,
                                 int index) override {
        return write(jsonKey(d, c, "#" + std::to_string(index), p), v);
    }
    datacom::Fcodes setTextParam(const std::string& d, const std::string& c, const std::string& p, const std::string& v,
                                 const std::string& key) override {
        return write(jsonKey(d, c, key, p), v);
    }

private:
    using Guard = std::lock_guard<std::recursive_mutex>;

    static std::string cellKey(const std::string& t, int r, const std::string& c) {
        return t + "|" + std::to_string(r) + "|" + c;
    }
    static std::string jsonKey(const std::string& d, const std::string& c, const std::string& i, const std::string& p) {
        return d + "|" + c + "|" + i + "|" + p;
    }
    void record(const std::string& call) {
        Guard guard(mutex);
        log.push_back(call);
    }
    datacom::Fcodes read(const std::string& key, bool pending, std::string& value, bool wantBool = false) {
        Guard guard(mutex);
        auto found = values.find(key);
        if (found == values.end())
            return datacom::FC_NO_SUCH_NAME;
        if (bools.count(key) != (wantBool ? 1u : 0u))
            return datacom::FC_WRONG_TYPE;
        value = pending ? found->second.second : found->second.first;
        return datacom::FC_OK;
    }
    datacom::Fcodes write(const std::string& key, const std::string& value) {
        Guard guard(mutex);
        auto found = values.find(key);
        if (found == values.end())
            return datacom::FC_NO_SUCH_NAME;
        if (!value.empty() && value[0] == '!')
            return datacom::FC_BAD_VALUE;
        found->second.second = value;
        return datacom::FC_OK;
    }

    mutable std::recursive_mutex mutex;
    std::string executeReply;
    datacom::Fcodes executeCode = datacom::FC_OK;
    std::vector<std::string> log;
    std::map<std::string, std::pair<std::string, std::string>> values;  // committed, pending
    std::set<std::string> bools;
};

// A served engine with the fake holder, and a client engine, on temporary sockets.
struct EnginePair {
    static constexpr const char* SERVER = "/tmp/sockSrv";
    static constexpr const char* CLIENT = "/tmp/sockCli";
    EnginePair() {
        server.init(&holder, SERVER, "/tmp/sockSrvSend", "tSrv");
        server.start();
        client.init(nullptr, CLIENT, "/tmp/sockCliSend", "tCli");
    }
    FakeDataHolder holder;
    datacom::DataCommunicator server;
    datacom::DataCommunicator client;
};

inline double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}
