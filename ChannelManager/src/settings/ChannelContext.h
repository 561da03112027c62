#pragma once

namespace datacom {
class DataHolder;
}
class IChannelEvents;

// What every part of the channel logic works with for one operation: the
// holder (datasets, its recursive lock, and the engine the mediator client
// sends through) and the manager's side (events, SAP withdrawal, run book).
// Made by ConfigChannelTarnevel and lent by reference to the parts it calls.
struct ChannelContext {
    datacom::DataHolder& holder;
    IChannelEvents& events;
};
