#include "pipeline/PipelineOutput.h"

#include "datacom/DbgPrintClient.h"
#include "model/ChannelSnapshot.h"
#include "pipeline/TextTables.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/MediatorNames.h"

using namespace datacom;

using namespace vocab;

namespace {
// Whole-name search: "Srt Sender CH0" must not match "Srt Sender CH0 2".
bool assemblyNames(const std::string& assembly, const std::string& component) {
    for (size_t at = assembly.find(component); at != std::string::npos; at = assembly.find(component, at + 1)) {
        const size_t end = at + component.size();
        const bool startsName = at == 0 || assembly[at - 1] == '\n' || assembly[at - 1] == ',' ||
                                assembly[at - 1] == ';' || assembly[at - 1] == '=' || assembly[at - 1] == '\t';
        const bool endsName = end == assembly.size() || assembly[end] == '\n' || assembly[end] == ',' ||
                              assembly[end] == ';' || assembly[end] == '\r' || assembly[end] == '\t';
        if (startsName && endsName)
            return true;
    }
    return false;
}
}  // namespace

PipelineOutput::PipelineOutput(const ChannelSnapshot& s, const char* operation)
    : rowId(s.rowId),
      operation(operation),
      channel(s.channel),
      suffix(s.suffix),
      assembly(s.assembly),
      assemblyRead(s.assemblyRead) {
    bitrates.total = s.totalBitrate;
    bitrates.max = s.maxBitrate;
    bitrates.overheadPercent = s.overheadPercent;
}

PipelineOutput::PipelineOutput(const std::string& rowId, const char* operation, const std::string& assembly,
                               bool assemblyRead)
    : rowId(rowId),
      operation(operation),
      channel(channelIndex(rowId) == 1 ? 1 : 0),
      suffix(channelIndex(rowId) == 1 ? "CH1" : "CH0"),
      assembly(assembly),
      assemblyRead(assemblyRead) {}

void PipelineOutput::put(const std::string& component, const std::string& parameter, const std::string& value) {
    list.push_back({Kind::Write, component, parameter, "", Type::Text, value, 0});
}

void PipelineOutput::putNumber(const std::string& component, const std::string& parameter, int value) {
    list.push_back({Kind::Write, component, parameter, "", Type::Int, std::to_string(value), value});
}

void PipelineOutput::put(const std::string& component, const std::string& parameter, int value) {
    putNumber(component, parameter, value);
}

void PipelineOutput::enable(const std::string& component) {
    put(component, med::PARAM_ENABLE, true);
    enabled.insert(component);
}

void PipelineOutput::turnOff(const std::string& component) {
    list.push_back({Kind::TurnOff, component, med::PARAM_ENABLE, "", Type::Int, "0", 0});
}

void PipelineOutput::store(const char* table, const char* property, const std::string& instance,
                           const std::string& value) {
    list.push_back({Kind::Store, table, property, instance, Type::Text, value, 0});
}

void PipelineOutput::store(const char* table, const char* property, const std::string& instance, int value) {
    list.push_back({Kind::Store, table, property, instance, Type::Int, std::to_string(value), value});
}

void PipelineOutput::storeFlag(const char* table, const char* property, const std::string& instance, bool value) {
    list.push_back({Kind::Store, table, property, instance, Type::Bool, value ? "true" : "false", value ? 1 : 0});
}

void PipelineOutput::event(const char* name, const std::string& description) {
    list.push_back({Kind::Event, name, "", description, Type::Text, "", 0});
}

void PipelineOutput::klvSdiSource(bool sdi) {
    list.push_back({Kind::KlvSdiSource, "", "", "", Type::Bool, sdi ? "true" : "false", sdi ? 1 : 0});
}

void PipelineOutput::followKlv() {
    list.push_back({Kind::FollowKlv, "", "", "", Type::Text, "", 0});
}

void PipelineOutput::makeDirectory(const std::string& logicalPath) {
    list.push_back({Kind::MakeDirectory, "", "", "", Type::Text, logicalPath, 0});
}

void PipelineOutput::unknown(const char* what, const std::string& value) const {
    DBG(DBG_ERROR) << operation << ": rowId=" << rowId << " Unknown " << what << "=" << value;
}

bool PipelineOutput::assemblyChecked(const std::string& component) {
    for (const char* prefix : pipeline::ASSEMBLY_CHECKED)
        if (component.compare(0, std::char_traits<char>::length(prefix), prefix) == 0)
            return true;
    return false;
}

bool PipelineOutput::present(const std::string& component) const {
    return !assemblyChecked(component) || (assemblyRead && assemblyNames(assembly, component));
}

std::vector<std::string> PipelineOutput::writes() const {
    std::vector<std::string> out;
    for (const Action& a : list)
        if (a.kind == Kind::Write)
            out.push_back(a.component + "/" + a.parameter + "=" + a.text);
    return out;
}
