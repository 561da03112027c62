// DataSets: the pending overlay — commit, rollback, touch/untouch and the
// isChanged family.
#include "json/DataSets.h"
#include "json/JsonDataSetKeys.h"

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

// Copies the pending values of a component into `target` (the committed
// component, or a copy of it). Values go only into instances that exist in
// `target`: one removed since the set is skipped rather than recreated.
void mergeInstances(const Json::Value& pending, Json::Value& target) {
    const Json::Value* single = member(pending, jsonkeys::INSTANCE);
    Json::Value* targetSingle = const_cast<Json::Value*>(member(target, jsonkeys::INSTANCE));
    if (single && targetSingle)
        copyValues(*single, *targetSingle);
    const Json::Value* instances = member(pending, jsonkeys::INSTANCES);
    Json::Value* targetInstances = const_cast<Json::Value*>(member(target, jsonkeys::INSTANCES));
    if (!instances || !targetInstances)
        return;
    if (instances->isObject() && targetInstances->isObject()) {
        for (auto it = instances->begin(); it != instances->end(); ++it) {
            Json::Value* into = const_cast<Json::Value*>(member(*targetInstances, it.name()));
            if (into)
                copyValues(*it, *into);
        }
    } else if (instances->isArray() && targetInstances->isArray()) {
        for (Json::ArrayIndex i = 0; i < instances->size() && i < targetInstances->size(); ++i)
            copyValues((*instances)[i], (*targetInstances)[i]);
    }
}

}  // namespace

void DataSets::applyPending(const std::string& dataSet, const std::string& component, const Json::Value& pending) {
    Json::Value* target = writableComponent(dataSet, component);
    if (target)
        mergeInstances(pending, *target);
}

void DataSets::dropPendingComponent(const std::string& dataSet, const std::string& component) {
    Json::Value* comps = const_cast<Json::Value*>(member(member(changes, dataSet), jsonkeys::COMPONENTS));
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
        // The copy keeps values already pending: touching must not undo an edit.
        Json::Value copy = *document;
        const Json::Value* pendingComps = member(member(changes, dataSet), jsonkeys::COMPONENTS);
        Json::Value* copyComps = const_cast<Json::Value*>(member(copy, jsonkeys::COMPONENTS));
        if (pendingComps && pendingComps->isObject() && copyComps)
            for (auto it = pendingComps->begin(); it != pendingComps->end(); ++it) {
                Json::Value* into = const_cast<Json::Value*>(member(*copyComps, it.name()));
                if (into)
                    mergeInstances(*it, *into);
            }
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
        Json::Value copy = *comp;
        const Json::Value* pending = pendingComponent(dataSet, component);
        if (pending)
            mergeInstances(*pending, copy);
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
        const Json::Value* pending = pendingComponent(dataSet, component);
        Json::Value* instance = pending ? const_cast<Json::Value*>(dsjson::instanceOf(*pending, selector)) : nullptr;
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

// The instance (and property) exists in the overlay; padding nulls of an
// index-form array do not count.
bool DataSets::changedAt(const std::string& dataSet, const std::string& component, const Selector& selector,
                         const std::string* property) const {
    const Json::Value* pending = pendingComponent(dataSet, component);
    const Json::Value* instance = pending ? dsjson::instanceOf(*pending, selector) : nullptr;
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
