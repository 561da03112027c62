#pragma once

#include "datacom/Export.h"

#include "datacom/IDataHolder.h"
#include "datacom/MessageEvent.h"

namespace datacom {

/// A data holder without stores: every operation answers FC_UNSUPPORTED
/// (row operations 0, look-ups nothing) and events handed to it are dropped.
/// The base of processes and test peers that need the messaging engine but
/// only a few of the holder's operations: they override those.
class DATACOM_API NullDataHolder : public IDataHolder {
public:
    void init(const std::string&) override {}
    Fcodes acceptChanges() override { return FC_UNSUPPORTED; }
    Fcodes deleteRow(const std::string&, int) override { return FC_UNSUPPORTED; }
    Fcodes doExecute(const std::string&, std::string&) override { return FC_UNSUPPORTED; }
    Fcodes doHandle(MessageEvent*) override { return FC_UNSUPPORTED; }
    Fcodes execute(const std::string&, std::string&) override { return FC_UNSUPPORTED; }
    Fcodes getIntParam(const std::string&, int, const std::string&, int&) override { return FC_UNSUPPORTED; }
    Fcodes getNewIntParam(const std::string&, int, const std::string&, int&) override { return FC_UNSUPPORTED; }
    Fcodes getNewStringParam(const std::string&, int, const std::string&, std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getParamState(const std::string&, int, const std::string&, unsigned&) override { return FC_UNSUPPORTED; }
    Fcodes getParamType(const std::string&, const std::string&, int&) override { return FC_UNSUPPORTED; }
    int getFirstRowIndex(const std::string&) override { return 0; }
    int getNextRowIndex(const std::string&, int) override { return 0; }
    int getLastRowIndex(const std::string&) override { return 0; }
    int getRowsNum(const std::string&) override { return 0; }
    Fcodes getStringParam(const std::string&, int, const std::string&, std::string&) override { return FC_UNSUPPORTED; }
    Fcodes handle(MessageEvent* event) override {
        delete event;
        return FC_UNSUPPORTED;
    }
    int newRow(const std::string&, int) override { return 0; }
    int appendNewRow(const std::string&) override { return 0; }
    Fcodes requestAddRow(const std::string&, const std::string&, int, int&, unsigned, unsigned) override {
        return FC_UNSUPPORTED;
    }
    Fcodes requestCommand(const std::string&, const std::string&, std::string&, unsigned, unsigned) override {
        return FC_UNSUPPORTED;
    }
    Fcodes requestNextRowId(const std::string&, const std::string&, int, int&, unsigned, unsigned) override {
        return FC_UNSUPPORTED;
    }
    Fcodes requestRemoteIntParam(const std::string&, const std::string&, int, const std::string&, int&, unsigned,
                                 unsigned) override {
        return FC_UNSUPPORTED;
    }
    Fcodes requestRemoteStringParam(const std::string&, const std::string&, int, const std::string&, std::string&,
                                    unsigned, unsigned) override {
        return FC_UNSUPPORTED;
    }
    Fcodes requestGetIntParam(const std::string&, const std::string&, const std::string&, const std::string&, int&,
                              const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes requestGetTextParam(const std::string&, const std::string&, const std::string&, const std::string&,
                               std::string&, const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes requestSetRemoteIntParam(const std::string&, const std::string&, const std::string&, const std::string&, int,
                                    const std::string&, unsigned, unsigned) override {
        return FC_UNSUPPORTED;
    }
    Fcodes requestSetRemoteStringParam(const std::string&, const std::string&, const std::string&, const std::string&,
                                       const std::string&, const std::string&, unsigned, unsigned) override {
        return FC_UNSUPPORTED;
    }
    Fcodes rollbackChanges() override { return FC_UNSUPPORTED; }
    Fcodes setIntParam(const std::string&, int, const std::string&, int) override { return FC_UNSUPPORTED; }
    Fcodes setStringParam(const std::string&, int, const std::string&, const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes initIntParam(const std::string&, int, const std::string&, int) override { return FC_UNSUPPORTED; }
    Fcodes initStringParam(const std::string&, int, const std::string&, const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes addColumnToTable(const std::string&, const std::string&, const std::string&, const std::string&,
                            const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes addDataSet(const std::string&, DataSet*) override { return FC_UNSUPPORTED; }
    DataSet* getDataSet(const std::string&) override { return nullptr; }
    DataSet* findDataSetWithTable(const std::string&) override { return nullptr; }
    DataTable* findDataTable(const std::string&) override { return nullptr; }
    std::vector<std::string> getColumnNames(const std::string&) override { return {}; }
    Fcodes findDataSetWithComponent(std::string&, const std::string&) override { return FC_UNSUPPORTED; }
    bool hasInstance(const std::string&, const std::string&, int) override { return false; }
    bool hasInstance(const std::string&, const std::string&, const std::string&) override { return false; }
    Fcodes getProperties(const std::string&, const std::string&, std::vector<std::string>&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getInstances(const std::string&, const std::string&, std::vector<std::string>&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getIntParam(const std::string&, const std::string&, const std::string&, int&, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getIntParam(const std::string&, const std::string&, const std::string&, int&, const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getTextParam(const std::string&, const std::string&, const std::string&, std::string&, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getTextParam(const std::string&, const std::string&, const std::string&, std::string&,
                        const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getBoolParam(const std::string&, const std::string&, const std::string&, bool&, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getBoolParam(const std::string&, const std::string&, const std::string&, bool&,
                        const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes setIntParam(const std::string&, const std::string&, const std::string&, int, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes setIntParam(const std::string&, const std::string&, const std::string&, int, const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes setTextParam(const std::string&, const std::string&, const std::string&, const std::string&, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes setTextParam(const std::string&, const std::string&, const std::string&, const std::string&,
                        const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes setBoolParam(const std::string&, const std::string&, const std::string&, bool, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes setBoolParam(const std::string&, const std::string&, const std::string&, bool, const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getDefValue(const std::string&, const std::string&, std::string&) override { return FC_UNSUPPORTED; }
    IDataSets* createDataSets() override { return nullptr; }
    Fcodes loadDataSet(const std::string&) override { return FC_UNSUPPORTED; }
    Fcodes loadDataSet(const std::string&, const std::string&) override { return FC_UNSUPPORTED; }
    Fcodes storeDataSet(const std::string&, const std::string&) override { return FC_UNSUPPORTED; }
    Fcodes deleteDataSet(const std::string&) override { return FC_UNSUPPORTED; }
    Fcodes updateDataSet(const std::string&, const std::string&, bool, bool, bool) override { return FC_UNSUPPORTED; }
    Fcodes addInstance(const std::string&, const std::string&, const std::string&) override { return FC_UNSUPPORTED; }
    Fcodes appendInstance(const std::string&, const std::string&, int&) override { return FC_UNSUPPORTED; }
    Fcodes removeInstance(const std::string&, const std::string&, int) override { return FC_UNSUPPORTED; }
    Fcodes removeInstance(const std::string&, const std::string&, const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes clearComponent(const std::string&, const std::string&) override { return FC_UNSUPPORTED; }
    Fcodes getInstancesByParameter(const std::string&, const std::string&, const std::string&, const std::string&,
                                   std::vector<std::string>&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getInstancesByParameter(const std::string&, const std::string&, const std::string&, int,
                                   std::vector<std::string>&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getInstancesByKey(const std::string&, const std::string&, const std::string&,
                             std::vector<std::string>&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getComponentPropertyDefault(const std::string&, const std::string&, const std::string&,
                                       std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getNewIntParam(const std::string&, const std::string&, const std::string&, int&, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getNewIntParam(const std::string&, const std::string&, const std::string&, int&,
                          const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getNewTextParam(const std::string&, const std::string&, const std::string&, std::string&, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getNewTextParam(const std::string&, const std::string&, const std::string&, std::string&,
                           const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getNewBoolParam(const std::string&, const std::string&, const std::string&, bool&, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes getNewBoolParam(const std::string&, const std::string&, const std::string&, bool&,
                           const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes initIntParam(const std::string&, const std::string&, const std::string&, int, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes initIntParam(const std::string&, const std::string&, const std::string&, int, const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes initTextParam(const std::string&, const std::string&, const std::string&, const std::string&, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes initTextParam(const std::string&, const std::string&, const std::string&, const std::string&,
                         const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes initBoolParam(const std::string&, const std::string&, const std::string&, bool, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes initBoolParam(const std::string&, const std::string&, const std::string&, bool,
                         const std::string&) override {
        return FC_UNSUPPORTED;
    }
    Fcodes commit() override { return FC_UNSUPPORTED; }
    Fcodes commitComponent(const std::string&, const std::string&) override { return FC_UNSUPPORTED; }
    Fcodes rollback() override { return FC_UNSUPPORTED; }
    Fcodes rollbackComponent(const std::string&, const std::string&) override { return FC_UNSUPPORTED; }
    Fcodes touchDataSet(const std::string&) override { return FC_UNSUPPORTED; }
    Fcodes untouchDataSet(const std::string&) override { return FC_UNSUPPORTED; }
    Fcodes touchComponent(const std::string&, const std::string&) override { return FC_UNSUPPORTED; }
    Fcodes untouchComponent(const std::string&, const std::string&) override { return FC_UNSUPPORTED; }
    bool isChanged() override { return false; }
    bool isChangedDataSet(const std::string&) override { return false; }
    bool isChangedComponent(const std::string&, const std::string&) override { return false; }
    bool isChangedInstance(const std::string&, const std::string&, int) override { return false; }
    bool isChangedInstance(const std::string&, const std::string&, const std::string&) override { return false; }
    bool isChangedProperty(const std::string&, const std::string&, const std::string&, int) override { return false; }
    bool isChangedProperty(const std::string&, const std::string&, const std::string&, const std::string&) override {
        return false;
    }
    Fcodes untouchProperty(const std::string&, const std::string&, const std::string&, int) override {
        return FC_UNSUPPORTED;
    }
    Fcodes untouchProperty(const std::string&, const std::string&, const std::string&, const std::string&) override {
        return FC_UNSUPPORTED;
    }
};

}  // namespace datacom
