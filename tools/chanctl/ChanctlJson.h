#pragma once

#include <json/json.h>

#include <string>
#include <vector>

#include "ChanctlFormat.h"
#include "datacom/Fcodes.h"

namespace datacom {
class MessageEvent;
}

// chanctl's --json output: one compact JSON object per answer, and per event
// when listening, each on one line, for scripts and front-end developers.
// Every object of an answer carries "fcode" (the number) and "result" (its
// text); values stay the texts the service sent.

// {"id","fcode","source","status","severity","description","time","params":{...}}
std::string eventJson(const datacom::MessageEvent& event);

// {"command","fcode","result","reply":{NAME: VALUE...}}; "reply" holds the
// answer's parameters, or {"text": ...} when the answer is free text.
std::string commandJson(const std::string& commandId, datacom::Fcodes code, const std::string& replyBody);

// {"dataset","component","property","instance","fcode","result"[,"value"]}
// from the words of a get (`set` false) or a set.
std::string valueJson(const std::vector<std::string>& words, bool set, datacom::Fcodes code, const std::string& value);

// {"fcode","result","loaded","channels":[{"row","title", LABEL: CELL...,
// "condition":{"fcode","names":[...]}}]}, the cells as the table shows them,
// "condition" where the channel's Fcode was read; without channel data
// "loaded" is false, "channels" empty and "hint" says how to load it.
std::string statusJson(const StatusView& view);
Json::Value statusValue(const StatusView& view);
