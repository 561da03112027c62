#include "FuzzStores.h"

#include <chrono>
#include <fstream>
#include <memory>

#include "FuzzSupport.h"
#include "TestDocuments.h"
#include "datacom/DataSet.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace fuzz {

const char* const kTabularDoc =
    "<DataSet ID=\"Channels\" Version=\"3\">\n"
    "\t<Table Name=\"ChannelsTable\">\n"
    "\t\t<Columns>\n"
    "\t\t\t<Column Name=\"Bitrate\" Access=\"RW\" Type=\"int\" Value=\"8000\" />\n"
    "\t\t\t<Column Name=\"Mode\" Access=\"RW\" Type=\"enum\" Value=\"0\"  >\n"
    "\t\t\t\t<Value Index=\"0\" Text=\"CBR\" />\n"
    "\t\t\t\t<Value Index=\"1\" Text=\"VBR\" />\n"
    "\t\t\t</Column>\n"
    "\t\t\t<Column Name=\"State\" Access=\"RO\" Type=\"str\" Value=\"0\" />\n"
    "\t\t</Columns>\n"
    "\t\t\t<Row ID=\"1\" >\n"
    "\t\t\t<Item Name=\"Bitrate\" Value=\"6000\" />\n"
    "\t\t\t<Item Name=\"Mode\" Value=\"VBR\" />\n"
    "\t\t\t<Item Name=\"State\" Value=\"Stopped\" />\n"
    "\t\t\t</Row>\n"
    "\t\t\t<Row ID=\"2\" >\n"
    "\t\t\t<Item Name=\"Bitrate\" Value=\"4000\" />\n"
    "\t\t\t<Item Name=\"Mode\" Value=\"CBR\" />\n"
    "\t\t\t<Item Name=\"State\" Value=\"Playing\" />\n"
    "\t\t\t</Row>\n"
    "\t</Table>\n"
    "\t<Table Name=\"Targets\">\n"
    "\t\t<Columns>\n"
    "\t\t\t<Column Name=\"Host\" Access=\"WO\" Type=\"str\" Value=\"0\" />\n"
    "\t\t\t<Column Name=\"Port\" Access=\"RW\" Type=\"int\" Value=\"5004\" />\n"
    "\t\t</Columns>\n"
    "\t\t\t<Row ID=\"1\" >\n"
    "\t\t\t<Item Name=\"Host\" Value=\"239.0.0.9\" />\n"
    "\t\t\t<Item Name=\"Port\" Value=\"1234\" />\n"
    "\t\t\t</Row>\n"
    "\t</Table>\n"
    "</DataSet>\n";

const char* const kJsonDoc = testdoc::kChannelDoc;

Fcodes FuzzHolder::handle(MessageEvent* event) {
    ++queued;
    return DataHolder::handle(event);
}

Fcodes FuzzHolder::execute(const std::string& command, std::string& result) {
    ++queued;
    return DataHolder::execute(command, result);
}

// The event is borrowed: the worker destroys it after this returns.
Fcodes FuzzHolder::doHandle(MessageEvent*) {
    ran();
    return FC_OK;
}

Fcodes FuzzHolder::doExecute(const std::string& command, std::string& result) {
    Fcodes code = DataHolder::doExecute(command, result);
    ran();
    return code;
}

void FuzzHolder::ran() {
    std::lock_guard<std::mutex> guard(doneMutex);
    ++done;
    doneChanged.notify_all();
}

bool FuzzHolder::drain() {
    std::unique_lock<std::mutex> guard(doneMutex);
    return doneChanged.wait_for(guard, std::chrono::seconds(10), [&] { return done == queued.load(); });
}

FuzzHolder& servedHolder() {
    static FuzzHolder* holder = [] {
        usePrivateRoot();
        std::ofstream(sysmgtPath("/etc/sysmgt/fuzz_channels.xml")) << kTabularDoc;
        std::ofstream(sysmgtPath("/etc/sysmgt/fuzz_channels.json")) << kJsonDoc;
        auto* made = new FuzzHolder();
        made->init("tFuzz");
        auto* channels = new DataSet();
        check(isOk(channels->load("/etc/sysmgt/fuzz_channels.xml")), "the tabular data set loads");
        made->addDataSet(channels->getId(), channels);
        check(isOk(made->loadDataSet("/etc/sysmgt/fuzz_channels.json")), "the JSON data set loads");
        return made;
    }();
    return *holder;
}

}  // namespace fuzz
