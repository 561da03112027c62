#pragma once

namespace datacom {

/// Message types carried in the Type attribute of a message header.
namespace msgtype {
constexpr const char* COMMAND = "COMMAND";
constexpr const char* GET = "GET";
constexpr const char* SET = "SET";
constexpr const char* EVENT = "EVENT";
constexpr const char* ACK = "ACK";
constexpr const char* NACK = "NACK";
constexpr const char* NO_REPLY = "NO_REPLY";
constexpr const char* RESPONSE = "RESPONSE";
}  // namespace msgtype

}  // namespace datacom
