#pragma once

#include "datacom/Export.h"

#include <map>
#include <string>

namespace datacom {

/// The named text parameters shared by events and commands: unique names,
/// kept and printed in name order.
class DATACOM_API MessageParams {
public:
    using ParamMap = std::map<std::string, std::string>;

    /// Inserts or overwrites.
    void addParam(const std::string& name, const std::string& value) { params[name] = value; }
    /// 1 and the value when the name exists; 0 and `value` untouched otherwise.
    int getParam(const std::string& name, std::string& value) const;
    void removeParam(const std::string& name) { params.erase(name); }
    void clearParams() { params.clear(); }
    void cleanUpRelations() { params.clear(); }
    ParamMap::const_iterator getParamsBegin() const { return params.begin(); }
    ParamMap::const_iterator getParamsEnd() const { return params.end(); }

    ParamMap params;

protected:
    /// Appends one `<Parameter Name="n" Value="v" />` line per parameter, each
    /// after `indent`.
    void appendParams(std::string& out, const char* indent) const;
    /// Merges every well-formed Parameter element of `text` into the map; a
    /// parameter without Name or Value is reported ("...tag=Name" + `where`)
    /// and skipped.
    void parseParams(const std::string& text, const char* where);
};

}  // namespace datacom
