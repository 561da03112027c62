#pragma once

#include <json/json.h>

#include <mutex>
#include <string>
#include <vector>

#include "datacom/IDataSets.h"
#include "json/DataSetsJson.h"

namespace datacom {

// The JSON dataset store (see IDataSets): the committed documents by dataset
// name, and beside them the pending overlay `changes` of the same shape that
// holds only changed values (dataset, "components", component, "instance" or
// "instances", key or index, property). Reads never modify either tree.
//
// Locking: one recursive mutex guards both trees; every public operation holds
// it while it touches them (file reading and writing happen outside it), so the
// data holder's worker and the messaging threads are serialised. It is
// recursive because the pending reads fall back to the committed reads through
// the virtual interface while holding it, and so that callers may bracket
// several operations with lock()/unlock().
//
// Failures: FC_NO_SUCH_NAME unknown names; FC_WRONG_TYPE a property without a
// definition, or whose committed value is not of the kind its type admits;
// FC_BAD_VALUE a value outside an enumeration or its declared range, a text
// that is no integer or a name that exists already; FC_BODY_ERROR a document
// that cannot be parsed or a jsoncpp exception (logged with the operation's
// name); FC_UNAVAILABLE a store that could not be written. A failing operation leaves both trees as
// they were, except that an update keeps the changes it made before it failed.
class DataSets : public IDataSets {
public:
    DataSets();
    ~DataSets() override;
    DataSets(const DataSets&) = delete;
    DataSets& operator=(const DataSets&) = delete;

    // Loading replaces the committed document of a dataset of the same name;
    // its pending values stay, to be committed onto the new one or rolled back.
    // A document holding a value that would be refused as a write (ValueRules)
    // replaces nothing: the first such value is logged and its code answered.
    Fcodes loadDataSet(const std::string& file) override;
    Fcodes loadDataSet(const std::string& name, const std::string& file) override;
    // Writes the committed document only, atomically (temporary file, fsync,
    // rename); the file is written after the lock is released. A write that
    // fails is reported (FC_UNAVAILABLE, with the errno in the log) rather than
    // passed over: whoever stores settings must learn they were not saved.
    Fcodes storeDataSet(const std::string& name, const std::string& file) override;
    // A new empty document {"dataset": name, "components": {}}; an existing
    // name is refused with FC_BAD_VALUE.
    Fcodes addDataSet(const std::string& name) override;
    Fcodes deleteDataSet(const std::string& name) override;
    Fcodes updateDataSet(const std::string& source, const std::string& reference, bool keepExtras, bool addMissing,
                         bool takeReferenceInstances) override;
    // The first dataset, in name order, that has the component.
    Fcodes findDataSetWithComponent(std::string& dataSetName, const std::string& component) override;

    // A new component {"properties": {}}; an existing one is refused (FC_BAD_VALUE).
    Fcodes addComponent(const std::string& dataSet, const std::string& component) override;
    Fcodes deleteComponent(const std::string& dataSet, const std::string& component) override;
    // Replaces (or adds) the component with the one given as JSON text, which
    // must be an object whose values meet ValueRules; its pending values are dropped.
    Fcodes loadComponent(const std::string& dataSet, const std::string& component, const std::string& text) override;
    // Number of instances: array or object size, 1 for a single instance.
    Fcodes getComponentSize(const std::string& dataSet, const std::string& component, int& size) override;
    // A component without any instance container gets "instances" as an
    // object (addInstance) or an array (appendInstance) on first use.
    Fcodes addInstance(const std::string& dataSet, const std::string& component, const std::string& key) override;
    Fcodes appendInstance(const std::string& dataSet, const std::string& component, int& index) override;
    Fcodes removeInstance(const std::string& dataSet, const std::string& component, int index) override;
    Fcodes removeInstance(const std::string& dataSet, const std::string& component, const std::string& key) override;
    // Empties "instances" (keeping its kind) and drops its pending values;
    // a single "instance" is part of the component's layout and stays.
    Fcodes clearComponent(const std::string& dataSet, const std::string& component) override;
    bool hasInstance(const std::string& dataSet, const std::string& component, const std::string& key) override;
    bool hasInstance(const std::string& dataSet, const std::string& component, int index) override;

    Fcodes getProperties(const std::string& dataSet, const std::string& component,
                         std::vector<std::string>& names) override;
    // Keys of an "instances" object; indexes as decimal text for an array;
    // one empty key for a single "instance".
    Fcodes getInstances(const std::string& dataSet, const std::string& component,
                        std::vector<std::string>& keys) override;
    // Instances (as getInstances lists them) whose committed property equals
    // the text (a string value) or the integer (an integer value).
    Fcodes getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                   const std::string& property, const std::string& value,
                                   std::vector<std::string>& keys) override;
    Fcodes getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int value, std::vector<std::string>& keys) override;
    // Instance keys starting with `keyPrefix` ("" lists them all).
    Fcodes getInstancesByKey(const std::string& dataSet, const std::string& component, const std::string& keyPrefix,
                             std::vector<std::string>& keys) override;
    // The definition's fields as text: type and access as written, default and
    // enumeration values as text (strings bare, others as jsoncpp writes them).
    Fcodes getComponentProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                                std::string& type, std::string& access, std::string& defaultValue,
                                std::vector<std::string>& values) override;
    Fcodes getComponentPropertyDefault(const std::string& dataSet, const std::string& component,
                                       const std::string& property, std::string& defaultValue) override;

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
    Fcodes initInt64Param(const std::string& dataSet, const std::string& component, const std::string& property,
                          int64_t value, const std::string& key) override;

    // Touching makes the pending entry a full copy of the committed one, so
    // that the next commit rewrites every value; values pending before are
    // replaced by the committed ones.
    Fcodes touchDataSet(const std::string& dataSet) override;
    Fcodes untouchDataSet(const std::string& dataSet) override;
    Fcodes touchComponent(const std::string& dataSet, const std::string& component) override;
    Fcodes untouchComponent(const std::string& dataSet, const std::string& component) override;
    bool isChanged() override;
    bool isChangedDataSet(const std::string& dataSet) override;
    bool isChangedComponent(const std::string& dataSet, const std::string& component) override;
    bool isChangedInstance(const std::string& dataSet, const std::string& component, const std::string& key) override;
    bool isChangedInstance(const std::string& dataSet, const std::string& component, int index) override;
    bool isChangedProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                           const std::string& key) override;
    bool isChangedProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                           int index) override;

    // The JSON request interface is not used by the appliance's channel
    // manager; these answer FC_UNSUPPORTED with an explaining
    // "fcode"/"description" in the response.
    Fcodes setParams(const Json::Value& request, Json::Value& response) override;
    Fcodes getParams(const Json::Value& request, Json::Value& response) override;
    Fcodes fetchPropertyNames(const Json::Value& request, Json::Value& response) override;
    Fcodes fetchComponentKeys(const Json::Value& request, Json::Value& response) override;

    // Copies exactly what is pending into the committed documents (instances
    // missing there are created) and clears it.
    Fcodes commit() override;
    Fcodes commitComponent(const std::string& dataSet, const std::string& component) override;
    Fcodes rollback() override;
    Fcodes rollbackComponent(const std::string& dataSet, const std::string& component) override;
    Fcodes untouchProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                           const std::string& key) override;
    Fcodes untouchProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                           int index) override;

    // Notification hooks: nothing to refresh in this store.
    void onGetDataset(const std::string&) override {}
    void onGetComponent(const std::string&, const std::string&) override {}
    void onGetComponentEntry(const std::string&, const std::string&, const std::string&) override {}
    void onGetComponentEntry(const std::string&, const std::string&, int) override {}
    void onGetComponentValue(const std::string&, const std::string&, const std::string&, const std::string&) override {}
    void onGetComponentValue(const std::string&, const std::string&, const std::string&, int) override {}

    void lock() override;
    void unlock() override;

private:
    using Selector = dsjson::Selector;

    // Holds the store's mutex for a scope.
    class Guard {
    public:
        explicit Guard(DataSets& owner) : store(owner) { store.lock(); }
        ~Guard() { store.unlock(); }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

    private:
        DataSets& store;
    };

    // Runs `body` under the lock, turning any exception into a log line
    // "<op>: Exc: ..." and FC_BODY_ERROR (false for the bool-valued tests).
    template <typename Body>
    auto guarded(const char* op, Body&& body) -> decltype(body());

    // Lookups in the committed tree and the pending overlay; caller holds the lock.
    const Json::Value* committedComponent(const std::string& dataSet, const std::string& component) const;
    Json::Value* writableComponent(const std::string& dataSet, const std::string& component);
    const Json::Value* pendingComponent(const std::string& dataSet, const std::string& component) const;
    Json::Value* pendingComponent(const std::string& dataSet, const std::string& component);
    const Json::Value* pendingValue(const std::string& dataSet, const std::string& component,
                                    const std::string& property, const Selector& selector) const;

    // Typed family (DataSetsParams.cpp).
    template <typename T>
    Fcodes readCommitted(const char* op, const std::string& dataSet, const std::string& component,
                         const std::string& property, const Selector& selector, T& value);
    template <typename T, typename Fallback>
    Fcodes readPending(const char* op, const std::string& dataSet, const std::string& component,
                       const std::string& property, const Selector& selector, T& value, Fallback&& committedRead);
    Fcodes writeParam(const char* op, bool pending, const std::string& dataSet, const std::string& component,
                      const std::string& property, const Selector& selector, const Json::Value& offered);
    bool pendingPathFits(const std::string& dataSet, const std::string& component, const Selector& selector) const;
    Json::Value& pendingInstance(const std::string& dataSet, const std::string& component, const Selector& selector);

    // Change tracking helpers (DataSetsChanges.cpp).
    void applyPending(const std::string& dataSet, const std::string& component, const Json::Value& pending);
    void dropPendingComponent(const std::string& dataSet, const std::string& component);
    void prunePending(const std::string& dataSet, const std::string& component);
    bool changedAt(const std::string& dataSet, const std::string& component, const Selector& selector,
                   const std::string* property) const;
    Fcodes untouchAt(const std::string& dataSet, const std::string& component, const std::string& property,
                     const Selector& selector);

    // Loading (DataSetsDocuments.cpp).
    Fcodes loadDocument(const std::string* name, const std::string& file);

    // Update steps (DataSetsUpdate.cpp).
    void addMissingProperties(const std::string& source, const std::string& name, Json::Value& target,
                              const Json::Value& model);
    void removeExtraProperties(const std::string& name, Json::Value& target, const Json::Value& model);
    void takeInstances(const std::string& reference, const std::string& name, Json::Value& target,
                       const Json::Value& model);

    Json::Value datasets{Json::objectValue};
    Json::Value changes{Json::objectValue};
    std::recursive_mutex mutex;
};

// ---- inline template definitions ----

}  // namespace datacom

#include <exception>
#include <type_traits>
#include "datacom/DbgPrintClient.h"

namespace datacom {

template <typename Body>
auto DataSets::guarded(const char* op, Body&& body) -> decltype(body()) {
    Guard guard(*this);
    try {
        return body();
    } catch (const std::exception& e) {
        DBG(DBG_ERROR) << op << ": Exc: " << e.what();
    } catch (...) {
        DBG(DBG_ERROR) << op << ": Exc: unknown";
    }
    if constexpr (std::is_same_v<decltype(body()), bool>)
        return false;
    else
        return FC_BODY_ERROR;
}

}  // namespace datacom
