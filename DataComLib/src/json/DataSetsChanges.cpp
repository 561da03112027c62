// DataSets: the pending overlay — commit, rollback, touch/untouch and the
// isChanged family.
#include "json/DataSets.h"
#include "json/JsonDataSetKeys.h"

namespace datacom {

using dsjson::member;
using dsjson::Selector;

namespace {

// Copies every member of the pending instance into the committed one.
void copyValues(const Json::Value& pending, Json::Value& committed) {
    if (!pending.isObject() || !committed.isObject())
        return;
    for (auto it = pending.begin(); it != pending.end(); ++it)
        committed[it.name()] = *it;
}

bool holdsValues(const Json::Value& instance) {
    return instance.isObject() && !instance.empty();
}

// True while the pending component still holds a value somewhere.
bool holdsPending(const Json::Value& component) {
    const Json::Value* single = member(component, jsonkeys::INSTANCE);
    if (single && holdsValues(*single))
        return true;
    const Json::Value* instances = member(component, jsonkeys::INSTANCES);
    if (instances && (instances->isObject() || instances->isArray()))
        for (const Json::Value& instance : *instances)
            if (holdsValues(instance))
                return true;
    return false;
}

// The member `name` of the object `node`, made an empty container of `kind`
// when it is missing.
Json::Value& memberOrNew(Json::Value& node, const std::string& name, Json::ValueType kind) {
    Json::Value* found = member(node, name);
    return found ? *found : (node[name] = Json::Value(kind));
}

// Copies exactly what the pending component holds into the committed one
// (`target`): every property of its "instance", and every instance of its
// "instances" with every property under it. An instance or container missing
// on the committed side is created to take the values. What cannot take them
// without reshaping the document stays as it is: a container of the other kind,
// and an array element past the committed end (its index would need made-up
// instances before it).
void mergeInstances(const Json::Value& pending, Json::Value& target) {
    if (!target.isObject())
        return;
    const Json::Value* single = member(pending, jsonkeys::INSTANCE);
    if (single && single->isObject())
        copyValues(*single, memberOrNew(target, jsonkeys::INSTANCE, Json::objectValue));
    const Json::Value* instances = member(pending, jsonkeys::INSTANCES);
    if (!instances || !(instances->isObject() || instances->isArray()))
        return;
    Json::Value& targetInstances = memberOrNew(target, jsonkeys::INSTANCES, instances->type());
    if (instances->isObject() && targetInstances.isObject()) {
        for (auto it = instances->begin(); it != instances->end(); ++it)
            if (it->isObject())
                copyValues(*it, memberOrNew(targetInstances, it.name(), Json::objectValue));
    } else if (instances->isArray() && targetInstances.isArray()) {
        for (Json::ArrayIndex i = 0; i < instances->size() && i < targetInstances.size(); ++i)
            copyValues((*instances)[i], targetInstances[i]);
    }
}

}  // namespace

void DataSets::applyPending(const std::string& dataSet, const std::string& component, const Json::Value& pending) {
    Json::Value* target = writableComponent(dataSet, component);
    if (target)
        mergeInstances(pending, *target);
}

void DataSets::dropPendingComponent(const std::string& dataSet, const std::string& component) {
    Json::Value* comps = member(member(changes, dataSet), jsonkeys::COMPONENTS);
    if (!comps || !comps->isObject())
        return;
    comps->removeMember(component);
    if (comps->empty())
        changes.removeMember(dataSet);
}

// Removes the component from the overlay once it holds no value any more,
// so that isChanged() turns false when the last pending value goes.
void DataSets::prunePending(const std::string& dataSet, const std::string& component) {
    const Json::Value* pending = pendingComponent(dataSet, component);
    if (pending && !holdsPending(*pending))
        dropPendingComponent(dataSet, component);
}

Fcodes DataSets::commit() {
    return guarded("commit", [&] {
        for (auto ds = changes.begin(); ds != changes.end(); ++ds) {
            const Json::Value* comps = member(*ds, jsonkeys::COMPONENTS);
            if (!comps || !comps->isObject())
                continue;
            for (auto comp = comps->begin(); comp != comps->end(); ++comp)
                applyPending(ds.name(), comp.name(), *comp);
        }
        changes = Json::Value(Json::objectValue);
        return FC_OK;
    });
}

Fcodes DataSets::commitComponent(const std::string& dataSet, const std::string& component) {
    return guarded("commitComponent", [&] {
        const Json::Value* pending = pendingComponent(dataSet, component);
        if (pending)
            applyPending(dataSet, component, *pending);
        dropPendingComponent(dataSet, component);
        return FC_OK;
    });
}

Fcodes DataSets::rollback() {
    return guarded("rollback", [&] {
        changes = Json::Value(Json::objectValue);
        return FC_OK;
    });
}

Fcodes DataSets::rollbackComponent(const std::string& dataSet, const std::string& component) {
    return guarded("rollbackComponent", [&] {
        dropPendingComponent(dataSet, component);
        return FC_OK;
    });
}

Fcodes DataSets::touchDataSet(const std::string& dataSet) {
    return guarded("touchDataSet", [&] {
        const Json::Value* document = member(datasets, dataSet);
        if (!document) {
            DBG(DBG_ERROR) << "touchDataSet: Not found dataset=" << dataSet;
            return FC_NO_SUCH_NAME;
        }
        // The pending entry becomes a full copy of the committed document:
        // values pending before are replaced by the committed ones.
        Json::Value copy = *document;
        changes[dataSet].swap(copy);
        return FC_OK;
    });
}

Fcodes DataSets::untouchDataSet(const std::string& dataSet) {
    return guarded("untouchDataSet", [&] {
        changes.removeMember(dataSet);
        return FC_OK;
    });
}

Fcodes DataSets::touchComponent(const std::string& dataSet, const std::string& component) {
    return guarded("touchComponent", [&] {
        const Json::Value* comp = committedComponent(dataSet, component);
        if (!comp) {
            DBG(DBG_ERROR) << "touchComponent: Not found dataset=" << dataSet << " comp=" << component;
            return FC_NO_SUCH_NAME;
        }
        const Json::Value* pendingSet = member(changes, dataSet);
        const Json::Value* pendingComps = member(pendingSet, jsonkeys::COMPONENTS);
        if ((pendingSet && !pendingSet->isObject()) || (pendingComps && !pendingComps->isObject()))
            return FC_WRONG_TYPE;
        // A full copy of the committed component, as touchDataSet makes.
        Json::Value copy = *comp;
        changes[dataSet][jsonkeys::COMPONENTS][component].swap(copy);
        return FC_OK;
    });
}

Fcodes DataSets::untouchComponent(const std::string& dataSet, const std::string& component) {
    return guarded("untouchComponent", [&] {
        dropPendingComponent(dataSet, component);
        return FC_OK;
    });
}

Fcodes DataSets::untouchAt(const std::string& dataSet, const std::string& component, const std::string& property,
                           const Selector& selector) {
    return guarded("untouchProperty", [&] {
        Json::Value* pending = pendingComponent(dataSet, component);
        Json::Value* instance = pending ? dsjson::instanceOf(*pending, selector) : nullptr;
        if (instance)
            instance->removeMember(property);
        prunePending(dataSet, component);
        return FC_OK;
    });
}

Fcodes DataSets::untouchProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                                 const std::string& key) {
    return untouchAt(dataSet, component, property, Selector::byKey(key));
}

Fcodes DataSets::untouchProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                                 int index) {
    return untouchAt(dataSet, component, property, Selector::byIndex(index));
}

bool DataSets::isChanged() {
    return guarded("isChanged", [&] { return !changes.empty(); });
}

bool DataSets::isChangedDataSet(const std::string& dataSet) {
    return guarded("isChangedDataSet", [&] { return member(changes, dataSet) != nullptr; });
}

bool DataSets::isChangedComponent(const std::string& dataSet, const std::string& component) {
    return guarded("isChangedComponent", [&] { return pendingComponent(dataSet, component) != nullptr; });
}

// The instance (and property) is a member of the overlay along the path:
// "instances" by key, "instance" for the empty key, or an element of the
// "instances" array. Exactly what `changes` holds, so an element an index-form
// write put before its own instance (a null) counts too.
bool DataSets::changedAt(const std::string& dataSet, const std::string& component, const Selector& selector,
                         const std::string* property) const {
    const Json::Value* pending = pendingComponent(dataSet, component);
    const Json::Value* instance = nullptr;
    if (selector.isIndex())
        instance = dsjson::element(member(pending, jsonkeys::INSTANCES), selector.index);
    else if (selector.isSingle())
        instance = member(pending, jsonkeys::INSTANCE);
    else
        instance = member(member(pending, jsonkeys::INSTANCES), *selector.key);
    if (!instance)
        return false;
    return !property || member(*instance, *property) != nullptr;
}

bool DataSets::isChangedInstance(const std::string& dataSet, const std::string& component, const std::string& key) {
    return guarded("isChangedInstance", [&] { return changedAt(dataSet, component, Selector::byKey(key), nullptr); });
}

bool DataSets::isChangedInstance(const std::string& dataSet, const std::string& component, int index) {
    return guarded("isChangedInstance",
                   [&] { return changedAt(dataSet, component, Selector::byIndex(index), nullptr); });
}

bool DataSets::isChangedProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                                 const std::string& key) {
    return guarded("isChangedProperty", [&] { return changedAt(dataSet, component, Selector::byKey(key), &property); });
}

bool DataSets::isChangedProperty(const std::string& dataSet, const std::string& component, const std::string& property,
                                 int index) {
    return guarded("isChangedProperty",
                   [&] { return changedAt(dataSet, component, Selector::byIndex(index), &property); });
}

}  // namespace datacom
