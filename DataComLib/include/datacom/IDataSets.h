#pragma once

#include "datacom/Export.h"

#include <json/json.h>

#include <cstdint>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"

namespace datacom {

/// The JSON dataset store as the data holder and the channel logic see it:
/// named dataset documents of components, typed property definitions and the
/// property values of their instances, with a pending overlay of changed values
/// that is committed or rolled back as a whole.
///
/// Addressing: a parameter is (dataset, component, property) plus the instance,
/// either a key (`const std::string&`: a non-empty key is a member of an
/// "instances" object, the empty key the component's single "instance") or an
/// index (`int`: an element of an "instances" array; never the single instance).
/// Every operation is thread-safe and never throws; results are Fcodes.
class DATACOM_API IDataSets {
public:
    virtual ~IDataSets() = default;

    /// Documents.
    virtual Fcodes loadDataSet(const std::string& file) = 0;
    virtual Fcodes loadDataSet(const std::string& name, const std::string& file) = 0;
    virtual Fcodes storeDataSet(const std::string& name, const std::string& file) = 0;
    virtual Fcodes addDataSet(const std::string& name) = 0;
    virtual Fcodes deleteDataSet(const std::string& name) = 0;
    virtual Fcodes updateDataSet(const std::string& source, const std::string& reference, bool keepExtras,
                                 bool addMissing, bool takeReferenceInstances) = 0;
    virtual Fcodes findDataSetWithComponent(std::string& dataSetName, const std::string& component) = 0;

    /// Components and instances.
    virtual Fcodes addComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual Fcodes deleteComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual Fcodes loadComponent(const std::string& dataSet, const std::string& component, const std::string& text) = 0;
    virtual Fcodes getComponentSize(const std::string& dataSet, const std::string& component, int& size) = 0;
    virtual Fcodes addInstance(const std::string& dataSet, const std::string& component, const std::string& key) = 0;
    virtual Fcodes appendInstance(const std::string& dataSet, const std::string& component, int& index) = 0;
    virtual Fcodes removeInstance(const std::string& dataSet, const std::string& component, int index) = 0;
    virtual Fcodes removeInstance(const std::string& dataSet, const std::string& component, const std::string& key) = 0;
    virtual Fcodes clearComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual bool hasInstance(const std::string& dataSet, const std::string& component, const std::string& key) = 0;
    virtual bool hasInstance(const std::string& dataSet, const std::string& component, int index) = 0;

    /// Queries over the committed documents.
    virtual Fcodes getProperties(const std::string& dataSet, const std::string& component,
                                 std::vector<std::string>& names) = 0;
    virtual Fcodes getInstances(const std::string& dataSet, const std::string& component,
                                std::vector<std::string>& keys) = 0;
    virtual Fcodes getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                           const std::string& property, const std::string& value,
                                           std::vector<std::string>& keys) = 0;
    virtual Fcodes getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                           const std::string& property, int value, std::vector<std::string>& keys) = 0;
    virtual Fcodes getInstancesByKey(const std::string& dataSet, const std::string& component,
                                     const std::string& keyPrefix, std::vector<std::string>& keys) = 0;
    virtual Fcodes getComponentProperty(const std::string& dataSet, const std::string& component,
                                        const std::string& property, std::string& type, std::string& access,
                                        std::string& defaultValue, std::vector<std::string>& values) = 0;
    virtual Fcodes getComponentPropertyDefault(const std::string& dataSet, const std::string& component,
                                               const std::string& property, std::string& defaultValue) = 0;

    /// Typed parameters: get reads committed values, getNew the pending value
    /// or else the committed one, set writes pending values, init writes
    /// committed values and leaves the pending overlay alone.
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
    /// A committed integer beyond 32 bits (counters of long runs), by key; the
    /// checks of initIntParam. Read it back as text: the int reads refuse it.
    virtual Fcodes initInt64Param(const std::string& dataSet, const std::string& component, const std::string& property,
                                  int64_t value, const std::string& key) = 0;

    /// Change tracking of the pending overlay.
    virtual Fcodes touchDataSet(const std::string& dataSet) = 0;
    virtual Fcodes untouchDataSet(const std::string& dataSet) = 0;
    virtual Fcodes touchComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual Fcodes untouchComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual bool isChanged() = 0;
    virtual bool isChangedDataSet(const std::string& dataSet) = 0;
    virtual bool isChangedComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual bool isChangedInstance(const std::string& dataSet, const std::string& component,
                                   const std::string& key) = 0;
    virtual bool isChangedInstance(const std::string& dataSet, const std::string& component, int index) = 0;
    virtual bool isChangedProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, const std::string& key) = 0;
    virtual bool isChangedProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int index) = 0;

    /// JSON request interface (request value in, response value out).
    virtual Fcodes setParams(const Json::Value& request, Json::Value& response) = 0;
    virtual Fcodes getParams(const Json::Value& request, Json::Value& response) = 0;
    virtual Fcodes fetchPropertyNames(const Json::Value& request, Json::Value& response) = 0;
    virtual Fcodes fetchComponentKeys(const Json::Value& request, Json::Value& response) = 0;

    virtual Fcodes commit() = 0;
    virtual Fcodes commitComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual Fcodes rollback() = 0;
    virtual Fcodes rollbackComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual Fcodes untouchProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, const std::string& key) = 0;
    virtual Fcodes untouchProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int index) = 0;

    /// Notification hooks for the request interface; a store that wants to
    /// refresh values before they are read overrides them.
    virtual void onGetDataset(const std::string& dataSet) = 0;
    virtual void onGetComponent(const std::string& dataSet, const std::string& component) = 0;
    virtual void onGetComponentEntry(const std::string& dataSet, const std::string& component,
                                     const std::string& key) = 0;
    virtual void onGetComponentEntry(const std::string& dataSet, const std::string& component, int index) = 0;
    virtual void onGetComponentValue(const std::string& dataSet, const std::string& component,
                                     const std::string& property, const std::string& key) = 0;
    virtual void onGetComponentValue(const std::string& dataSet, const std::string& component,
                                     const std::string& property, int index) = 0;

    /// The store's recursive mutex, for callers that need several operations
    /// to see one consistent state.
    virtual void lock() = 0;
    virtual void unlock() = 0;
};

}  // namespace datacom
