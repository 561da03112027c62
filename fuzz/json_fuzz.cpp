// The JSON data set store on a hostile document: loaded from a file (named
// and by its "dataset" member), walked with the typed reads and writes,
// committed and rolled back, and merged with updateDataSet in both directions
// against the channel document as a reference. The same text is also offered
// as a request to the store's JSON request interface.
#include <jsoncpp/json/json.h>

#include <fstream>
#include <memory>
#include <vector>

#include "FuzzStores.h"
#include "FuzzSupport.h"
#include "datacom/DataSetsFactory.h"
#include "datacom/IDataSets.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace {

constexpr const char* kFuzzed = "Fuzzed";
constexpr const char* kReference = "Reference";
constexpr const char* kChannels = "Channels";

// Component names of the document, read by the test itself (at most a few).
std::vector<std::string> componentsOf(const std::string& text) {
    std::vector<std::string> names;
    Json::Value document;
    Json::Reader reader;
    if (!reader.parse(text, document) || !document.isObject() || !document.isMember("components") ||
        !document["components"].isObject())
        return names;
    for (const std::string& name : document["components"].getMemberNames())
        if (names.size() < 6)
            names.push_back(name);
    return names;
}

// Every typed operation on the first few properties and instances of a component.
void walkComponent(IDataSets& store, const std::string& component) {
    std::vector<std::string> properties, keys;
    store.getProperties(kFuzzed, component, properties);
    store.getInstances(kFuzzed, component, keys);
    if (properties.size() > 6)
        properties.resize(6);
    if (keys.size() > 3)
        keys.resize(3);
    keys.push_back("");  // the single instance
    int size = 0;
    store.getComponentSize(kFuzzed, component, size);
    for (const std::string& property : properties) {
        std::string type, access, defaultValue, text;
        std::vector<std::string> values, found;
        store.getComponentProperty(kFuzzed, component, property, type, access, defaultValue, values);
        store.getInstancesByParameter(kFuzzed, component, property, "7", found);
        store.getInstancesByParameter(kFuzzed, component, property, 7, found);
        int number = 0;
        bool flag = false;
        for (const std::string& key : keys) {
            store.getTextParam(kFuzzed, component, property, text, key);
            store.getIntParam(kFuzzed, component, property, number, key);
            store.getBoolParam(kFuzzed, component, property, flag, key);
            store.setTextParam(kFuzzed, component, property, "7", key);
            store.setIntParam(kFuzzed, component, property, 7, key);
            store.setBoolParam(kFuzzed, component, property, true, key);
            store.getNewTextParam(kFuzzed, component, property, text, key);
            store.isChangedProperty(kFuzzed, component, property, key);
        }
        for (int index = 0; index < 2; ++index) {
            store.getTextParam(kFuzzed, component, property, text, index);
            store.setTextParam(kFuzzed, component, property, "true", index);
            store.getNewIntParam(kFuzzed, component, property, number, index);
            store.initTextParam(kFuzzed, component, property, "5", index);
            store.isChangedInstance(kFuzzed, component, index);
        }
    }
    int index = 0;
    store.addInstance(kFuzzed, component, "Fuzz key");
    store.appendInstance(kFuzzed, component, index);
    store.removeInstance(kFuzzed, component, 0);
    store.touchComponent(kFuzzed, component);
    store.commitComponent(kFuzzed, component);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool written = [] {
        fuzz::usePrivateRoot();
        std::ofstream(sysmgtPath("/etc/sysmgt/fuzz_reference.json")) << fuzz::kJsonDoc;
        return true;
    }();
    (void)written;
    fuzz::Input input(data, size);
    const uint8_t flags = input.byte();
    const std::string text = input.rest();
    std::ofstream(sysmgtPath("/tmp/fuzz_document.json"), std::ios::binary | std::ios::trunc) << text;

    std::unique_ptr<IDataSets> store(DataSetsFactory().createDataSets());
    fuzz::check(isOk(store->loadDataSet(kReference, "/etc/sysmgt/fuzz_reference.json")), "the reference loads");
    fuzz::check(isOk(store->loadDataSet(kChannels, "/etc/sysmgt/fuzz_reference.json")), "the channels load");
    store->loadDataSet("/tmp/fuzz_document.json");  // under its own "dataset" name, when it has one
    store->loadDataSet(kFuzzed, "/tmp/fuzz_document.json");

    const std::vector<std::string> components = componentsOf(text);
    for (const std::string& component : components)
        walkComponent(*store, component);
    if (flags & 0x01)
        store->commit();
    else
        store->rollback();

    const bool keepExtras = flags & 0x02, addMissing = flags & 0x04, takeInstances = flags & 0x08;
    store->updateDataSet(kFuzzed, kReference, keepExtras, addMissing, takeInstances);
    store->updateDataSet(kChannels, kFuzzed, keepExtras, addMissing, takeInstances);
    std::string found;
    for (const std::string& component : components)
        store->findDataSetWithComponent(found, component);

    // The same text as a request of the JSON interface, against the channels.
    Json::Value request, response;
    Json::Reader reader;
    if (reader.parse(text, request)) {
        store->getParams(request, response);
        store->fetchPropertyNames(request, response);
        store->fetchComponentKeys(request, response);
        if (flags & 0x10)
            store->setParams(request, response);
    }
    store->deleteDataSet(kFuzzed);
    return 0;
}
