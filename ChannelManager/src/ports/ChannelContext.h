#pragma once

class ChannelRunBook;
class ChannelStore;
class IChannelEvents;
class Mediator;

// What every part of the channel logic works with for one operation: the
// channel rows (and their lock), the media mediator, the manager's side
// (events, SAP withdrawal) and the run book the manager lends. Made by
// ConfigChannelTarnevel and lent by reference to the parts it makes.
struct ChannelContext {
    ChannelStore& store;
    Mediator& mediator;
    IChannelEvents& events;
    ChannelRunBook& runBook;
};
