#include "datacom/Fcodes.h"

#include <cstdint>
#include <map>
#include <sstream>
#include <utility>

namespace datacom {

namespace {

// The value-to-text table, in its fixed order.
const std::pair<Fcodes, const char*> kFcodeRows[] = {
    {FC_OK, "OK"},
    {FC_HEADER_ERROR, "Message Header Error"},
    {FC_BODY_ERROR, "Message Body Error"},
    {FC_ACCESS_DENIED, "Access Denied"},
    {FC_NO_SUCH_NAME, "No Such Name"},
    {FC_WRONG_TYPE, "Wrong Type"},
    {FC_BAD_VALUE, "Bad Value"},
    {FC_COMM_ERROR, "Communication Error"},
    {FC_UNSUPPORTED, "Unsupported Request"},
    {FC_UNAVAILABLE, "Unavailable"},
    {FC_DATA_STREAM, "Data Stream"},
    {FC_LOS, "LOS"},
};

const std::map<uint32_t, std::string>& fcodeTable() {
    static const std::map<uint32_t, std::string> table(std::begin(kFcodeRows), std::end(kFcodeRows));
    return table;
}

}  // namespace

std::string fcodeText(Fcodes code) {
    const auto& table = fcodeTable();
    auto exact = table.find(code);
    if (exact != table.end())
        return exact->second;

    std::string joined;
    if ((code & FC_OK) != 0) {
        for (const auto& row : kFcodeRows) {
            if (row.first != FC_OK && (code & row.first) == row.first) {
                if (!joined.empty())
                    joined += ", ";
                joined += row.second;
            }
        }
    }
    if (joined.empty()) {
        std::ostringstream unknown;
        unknown << "Unknown Fcode 0x" << std::hex << static_cast<uint32_t>(code);
        joined = unknown.str();
    }
    return joined;
}

}  // namespace datacom
