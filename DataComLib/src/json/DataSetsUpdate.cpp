// DataSets::updateDataSet: brings a saved dataset document up to the layout
// of a newer reference document loaded into the same store.
#include "json/DataSets.h"
#include "json/JsonDataSetKeys.h"

namespace datacom {

using dsjson::member;

namespace {

// One log line for a value derived from a definition: "Adding int value=5" or,
// for an untyped default, "Adding default value".
std::string addingText(const char* how, const Json::Value& value) {
    std::string text = std::string("updateDataSet: Adding ") + how;
    if (std::string(how) != "default value")
        text += "=" + dsjson::compactText(value);
    return text;
}

}  // namespace

// Gives every instance of `target` a value for each property that the
// reference defines and the source lacked; existing values are kept.
void DataSets::addMissingProperties(const std::string& source, const std::string& name, Json::Value& target,
                                    const Json::Value& model) {
    const Json::Value* modelProps = member(model, jsonkeys::PROPERTIES);
    if (!modelProps || !modelProps->isObject())
        return;
    std::vector<std::string> missing;
    for (auto it = modelProps->begin(); it != modelProps->end(); ++it)
        if (!member(member(target, jsonkeys::PROPERTIES), it.name()))
            missing.push_back(it.name());
    if (!member(target, jsonkeys::PROPERTIES)) {
        DBG(DBG_INFO) << "updateDataSet: No properties in comp=" << name << ". Adding...";
        target[jsonkeys::PROPERTIES] = *modelProps;
    }
    for (const std::string& property : missing) {
        const Json::Value& definition = (*modelProps)[property];
        if (!member(target[jsonkeys::PROPERTIES], property)) {
            DBG(DBG_INFO) << "updateDataSet: Adding property=" << property << " in comp=" << name;
            target[jsonkeys::PROPERTIES][property] = definition;
        }
        const char* how = nullptr;
        const Json::Value derived = dsjson::derivedDefault(definition, &how);
        Json::Value* instances = member(target, jsonkeys::INSTANCES);
        Json::Value* single = member(target, jsonkeys::INSTANCE);
        if (instances && instances->isArray()) {
            for (Json::ArrayIndex i = 0; i < instances->size(); ++i) {
                Json::Value& instance = (*instances)[i];
                if (instance.isObject() && !member(instance, property)) {
                    DBG(DBG_INFO) << addingText(how, derived) << " ind=" << i << " prop=" << property
                                  << " to comp=" << name;
                    instance[property] = derived;
                }
            }
        } else if (instances && instances->isObject()) {
            DBG(DBG_INFO) << "updateDataSet: Values are objects with keys in comp=" << name;
            for (auto it = instances->begin(); it != instances->end(); ++it) {
                DBG(DBG_INFO) << "updateDataSet: Testing value key=" << it.name();
                const Json::Value* existing = member(*it, property);
                if (existing) {
                    DBG(DBG_INFO) << "updateDataSet: Found value=" << dsjson::compactText(*existing);
                } else if (it->isObject()) {
                    DBG(DBG_INFO) << addingText(how, derived) << " key=" << it.name() << " prop=" << property
                                  << " to comp=" << name;
                    (*it)[property] = derived;
                }
            }
        }
        if (single && single->isObject()) {
            DBG(DBG_INFO) << "updateDataSet: Testing single instance in comp=" << name;
            const Json::Value* existing = member(*single, property);
            if (existing) {
                DBG(DBG_INFO) << "updateDataSet: Found value=" << dsjson::compactText(*existing);
            } else {
                if (std::string(how) == "default value")
                    DBG(DBG_INFO) << "updateDataSet: Adding default single instance prop=" << property;
                else
                    DBG(DBG_INFO) << addingText(how, derived) << " single instance prop=" << property;
                (*single)[property] = derived;
            }
        }
        if (!instances && !single)
            DBG(DBG_INFO) << "updateDataSet: No values in comp=" << name << " in src_dataset=" << source;
    }
}

// Removes definitions the reference no longer has, with their values.
void DataSets::removeExtraProperties(const std::string& name, Json::Value& target, const Json::Value& model) {
    DBG(DBG_INFO) << "updateDataSet: Removing non-existent properties from comp=" << name;
    Json::Value* properties = member(target, jsonkeys::PROPERTIES);
    if (!properties || !properties->isObject())
        return;
    const Json::Value* modelProps = member(model, jsonkeys::PROPERTIES);
    for (const std::string& property : properties->getMemberNames()) {
        DBG(DBG_INFO) << "updateDataSet: Testing property=" << property << " from comp=" << name;
        if (member(modelProps, property))
            continue;
        DBG(DBG_INFO) << "updateDataSet: Removing property=" << property;
        properties->removeMember(property);
        DBG(DBG_INFO) << "updateDataSet: Removing non-existent values prop=" << property;
        Json::Value* instances = member(target, jsonkeys::INSTANCES);
        if (instances && instances->isArray()) {
            for (Json::ArrayIndex i = 0; i < instances->size(); ++i) {
                if (member((*instances)[i], property)) {
                    DBG(DBG_INFO) << "updateDataSet: Removing value from ind=" << i;
                    (*instances)[i].removeMember(property);
                }
            }
        } else if (instances && instances->isObject()) {
            for (auto it = instances->begin(); it != instances->end(); ++it) {
                if (member(*it, property)) {
                    DBG(DBG_INFO) << "updateDataSet: Removing value from key=" << it.name();
                    it->removeMember(property);
                }
            }
        }
        Json::Value* single = member(target, jsonkeys::INSTANCE);
        if (member(single, property)) {
            DBG(DBG_INFO) << "updateDataSet: Removing value from single inst prop=" << property;
            single->removeMember(property);
        }
    }
}

// Reconciliation of the instance containers: a source component that has no
// instances at all ("instances" nor "instance") takes the reference's
// containers whole. Existing source instances are the device's own settings
// and are never replaced.
void DataSets::takeInstances(const std::string& reference, const std::string& name, Json::Value& target,
                             const Json::Value& model) {
    if (!member(model, jsonkeys::PROPERTIES)) {
        DBG(DBG_WARN) << "updateDataSet: No properties in comp=" << name << " in ref_dataset=" << reference;
        return;
    }
    if (member(target, jsonkeys::INSTANCES) || member(target, jsonkeys::INSTANCE))
        return;
    for (const char* container : {jsonkeys::INSTANCES, jsonkeys::INSTANCE}) {
        const Json::Value* taken = member(model, container);
        if (taken) {
            DBG(DBG_INFO) << "updateDataSet: Taking " << container << " of comp=" << name
                          << " from ref_dataset=" << reference;
            target[container] = *taken;
        }
    }
}

Fcodes DataSets::updateDataSet(const std::string& source, const std::string& reference, bool keepExtras,
                               bool addMissing, bool takeReferenceInstances) {
    return guarded("updateDataSet", [&] {
        try {
            DBG(DBG_INFO) << "updateDataSet: src=" << source << " ref=" << reference;
            Json::Value* src = member(datasets, source);
            const Json::Value* ref = member(datasets, reference);
            if (!src || !ref) {
                DBG(DBG_ERROR) << "updateDataSet: Not found src=" << source << " OR ref=" << reference;
                return FC_NO_SUCH_NAME;
            }
            Json::Value* targets = member(*src, jsonkeys::COMPONENTS);
            const Json::Value* models = member(*ref, jsonkeys::COMPONENTS);
            if (!targets || !targets->isObject() || !models || !models->isObject()) {
                DBG(DBG_ERROR) << "updateDataSet: Not found Components in src=" << source << " OR ref=" << reference;
                return FC_NO_SUCH_NAME;
            }
            for (auto it = models->begin(); it != models->end(); ++it) {
                const std::string name = it.name();
                Json::Value* target = member(*targets, name);
                if (!target) {
                    DBG(DBG_INFO) << "updateDataSet: Adding comp=" << name << " to src_dataset=" << source;
                    (*targets)[name] = *it;
                    continue;
                }
                DBG(DBG_INFO) << "updateDataSet: Updating existing comp=" << name << " in src_dataset=" << source;
                if (addMissing)
                    addMissingProperties(source, name, *target, *it);
                if (!keepExtras)
                    removeExtraProperties(name, *target, *it);
                if (takeReferenceInstances)
                    takeInstances(reference, name, *target, *it);
            }
            if (!keepExtras) {
                DBG(DBG_INFO) << "updateDataSet: Looking for components to remove from src_dataset=" << source;
                for (const std::string& name : targets->getMemberNames()) {
                    DBG(DBG_INFO) << "updateDataSet: Looking to Remove comp=" << name;
                    if (!member(*models, name)) {
                        DBG(DBG_INFO) << "updateDataSet: Removing comp=" << name << " from src_dataset=" << source;
                        targets->removeMember(name);
                    }
                }
            }
            return FC_OK;
        } catch (...) {
            DBG(DBG_ERROR) << "updateDataSet: Exc: Couldn't update dataset src=" << source;
            return FC_BODY_ERROR;
        }
    });
}

}  // namespace datacom
