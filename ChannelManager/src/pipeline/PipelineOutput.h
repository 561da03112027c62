#pragma once

#include <set>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"

struct ChannelSnapshot;

// What a pipeline run decided, in the order its sections decided it: the
// mediator writes, the store writes, the events and the few requests to
// other peers, applied afterwards in that order by the configurator; the
// components the run enabled; and the bitrates the run settled on, which the
// later sections use. Sections only append; nothing here talks to a peer.
class PipelineOutput {
public:
    enum class Kind {
        Write,          // a mediator parameter
        TurnOff,        // "Enable" = 0, unless the mediator reports the component off already
        Store,          // a value of "ChannelDataSet", committed
        Event,          // an event of the channel to the manager
        KlvSdiSource,   // the device manager's "Toggle KLVoSDI Input"
        FollowKlv,      // the KLV branches follow the channel's ingest settings
        MakeDirectory,  // a directory (and its parents) under the root, for files a component writes
    };
    enum class Type { Text, Int, Bool };
    struct Action {
        Kind kind;
        std::string component;  // a mediator component, a table or an event name
        std::string parameter;  // a parameter or a property
        std::string instance;   // a store write's row; an event's description
        Type type = Type::Text;
        std::string text;  // the value as text (as the failure line shows it)
        int number = 0;    // the value of an integer or a flag
    };
    // The bitrates a run settles on (section 15 and 16), first as the snapshot holds them.
    struct Bitrates {
        int total = 0, max = 0, video = 0;
        int overheadPercent = 0;  // "MuxRate Overhead Percent"
    };

    // A pipeline run over a snapshot.
    explicit PipelineOutput(const ChannelSnapshot& snapshot, const char* operation = "configChannel");
    // An operation of its own on one channel row, with the assembly it read.
    PipelineOutput(const std::string& rowId, const char* operation, const std::string& assembly, bool assemblyRead);

    void put(const std::string& component, const std::string& parameter, const std::string& value);
    void put(const std::string& component, const std::string& parameter, int value);
    void put(const std::string& component, const std::string& parameter, bool value) {
        putNumber(component, parameter, value ? 1 : 0);
    }
    void put(const std::string& component, const std::string& parameter, const char* value) {
        put(component, parameter, std::string(value));
    }
    // "Enable" = true, and the component counts as used by this run.
    void enable(const std::string& component);
    void turnOff(const std::string& component);
    void store(const char* table, const char* property, const std::string& instance, const std::string& value);
    void store(const char* table, const char* property, const std::string& instance, int value);
    void storeFlag(const char* table, const char* property, const std::string& instance, bool value);
    void event(const char* name, const std::string& description);
    void klvSdiSource(bool sdi);
    void followKlv();
    void makeDirectory(const std::string& logicalPath);

    // Logs "<operation>: rowId=<row> Unknown <what>=<value>".
    void unknown(const char* what, const std::string& value) const;
    // True when `component` may be written: always for the components every
    // assembly holds, otherwise when the assembly names it.
    bool present(const std::string& component) const;
    // True for a component that not every assembly holds.
    static bool assemblyChecked(const std::string& component);
    // The per-channel component name: "<base>CH0" / "<base>CH1".
    std::string comp(const std::string& base) const { return base + suffix; }

    const std::vector<Action>& actions() const { return list; }
    // The mediator writes as "component/parameter=value", in order.
    std::vector<std::string> writes() const;

    const std::string rowId;
    const char* const operation;
    const int channel;         // 0 = "H.264", 1 = "HEVC"
    const std::string suffix;  // "CH0" / "CH1"
    const std::string assembly;
    const bool assemblyRead;
    std::set<std::string> enabled;  // components this run enabled
    Bitrates bitrates;
    datacom::Fcodes result = datacom::FC_OK;

private:
    void putNumber(const std::string& component, const std::string& parameter, int value);

    std::vector<Action> list;
};
