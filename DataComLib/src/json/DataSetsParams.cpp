// DataSets: the typed parameter family (get, getNew, set, init; int, text,
// bool; index and key forms); the rule a written value meets is ValueRules.
#include <ostream>

#include "json/DataSets.h"
#include "json/JsonDataSetKeys.h"
#include "json/ValueRules.h"

namespace datacom {

using dsjson::member;
using dsjson::ParamPath;
using dsjson::Selector;

namespace {

// The library's convertibility test for the requested kind, and delivery.
bool convertible(const Json::Value& v, const int&) {
    return v.isConvertibleTo(Json::intValue);
}
bool convertible(const Json::Value& v, const std::string&) {
    return v.isConvertibleTo(Json::stringValue);
}
bool convertible(const Json::Value& v, const bool&) {
    return v.isConvertibleTo(Json::booleanValue);
}
void deliver(const Json::Value& v, int& out) {
    out = v.asInt();
}
void deliver(const Json::Value& v, std::string& out) {
    out = v.asString();
}
void deliver(const Json::Value& v, bool& out) {
    out = v.asBool();
}

// True when `node` is absent, null, or of the kind a pending path needs.
bool fitsOrAbsent(const Json::Value* node, Json::ValueType kind) {
    return !node || node->isNull() || node->type() == kind;
}

}  // namespace

const Json::Value* DataSets::pendingValue(const std::string& dataSet, const std::string& component,
                                          const std::string& property, const Selector& selector) const {
    const Json::Value* pending = pendingComponent(dataSet, component);
    if (!pending)
        return nullptr;
    const Json::Value* instance = dsjson::instanceOf(*pending, selector);
    const Json::Value* value = instance ? member(*instance, property) : nullptr;
    return value && !value->isNull() ? value : nullptr;
}

template <typename T>
Fcodes DataSets::readCommitted(const char* op, const std::string& dataSet, const std::string& component,
                               const std::string& property, const Selector& selector, T& value) {
    return guarded(op, [&] {
        const Json::Value* comp = committedComponent(dataSet, component);
        const Json::Value* instance = comp ? dsjson::instanceOf(*comp, selector) : nullptr;
        const Json::Value* found = instance ? member(*instance, property) : nullptr;
        if (!found) {
            if (gDbgLevel <= DBG_WARN)
                DBG(DBG_ERROR) << ParamPath{op, dataSet, component, property, selector} << " No such name.";
            return FC_NO_SUCH_NAME;
        }
        if (!convertible(*found, value)) {
            DBG(DBG_ERROR) << ParamPath{op, dataSet, component, property, selector} << " wrong type.";
            return FC_WRONG_TYPE;
        }
        deliver(*found, value);
        return FC_OK;
    });
}

// Takes the pending value when there is one, else the committed read through
// the virtual interface (the lock is recursive, so that nests).
template <typename T, typename Fallback>
Fcodes DataSets::readPending(const char* op, const std::string& dataSet, const std::string& component,
                             const std::string& property, const Selector& selector, T& value,
                             Fallback&& committedRead) {
    bool pending = false;
    Fcodes result = guarded(op, [&] {
        const Json::Value* found = pendingValue(dataSet, component, property, selector);
        if (!found)
            return FC_OK;
        pending = true;
        if (!convertible(*found, value)) {
            DBG(DBG_ERROR) << ParamPath{op, dataSet, component, property, selector} << " wrong type.";
            return FC_WRONG_TYPE;
        }
        deliver(*found, value);
        return FC_OK;
    });
    return pending || !isOk(result) ? result : committedRead();
}

// Every node the pending write would pass through must be absent or of the
// right kind, so that the write cannot throw half-way.
bool DataSets::pendingPathFits(const std::string& dataSet, const std::string& component,
                               const Selector& selector) const {
    const Json::Value* ds = member(changes, dataSet);
    const Json::Value* comps = member(ds, jsonkeys::COMPONENTS);
    const Json::Value* comp = member(comps, component);
    if (!fitsOrAbsent(ds, Json::objectValue) || !fitsOrAbsent(comps, Json::objectValue) ||
        !fitsOrAbsent(comp, Json::objectValue))
        return false;
    if (selector.isSingle())
        return fitsOrAbsent(member(comp, jsonkeys::INSTANCE), Json::objectValue);
    const Json::Value* instances = member(comp, jsonkeys::INSTANCES);
    if (selector.isIndex())
        return fitsOrAbsent(instances, Json::arrayValue) &&
               fitsOrAbsent(dsjson::element(instances, selector.index), Json::objectValue);
    return fitsOrAbsent(instances, Json::objectValue) &&
           fitsOrAbsent(member(instances, *selector.key), Json::objectValue);
}

Json::Value& DataSets::pendingInstance(const std::string& dataSet, const std::string& component,
                                       const Selector& selector) {
    Json::Value& comp = changes[dataSet][jsonkeys::COMPONENTS][component];
    if (selector.isSingle())
        return comp[jsonkeys::INSTANCE];
    if (selector.isIndex()) {
        Json::Value& instances = comp[jsonkeys::INSTANCES];
        if (instances.isNull())
            instances = Json::Value(Json::arrayValue);
        return instances[static_cast<Json::ArrayIndex>(selector.index)];
    }
    return comp[jsonkeys::INSTANCES][*selector.key];
}

Fcodes DataSets::writeParam(const char* op, bool pending, const std::string& dataSet, const std::string& component,
                            const std::string& property, const Selector& selector, const Json::Value& offered) {
    return guarded(op, [&] {
        const ParamPath path{op, dataSet, component, property, selector};
        Json::Value* comp = writableComponent(dataSet, component);
        Json::Value* instance = comp ? dsjson::instanceOf(*comp, selector) : nullptr;
        const Json::Value* definition = comp ? member(member(*comp, jsonkeys::PROPERTIES), property) : nullptr;
        if (!instance) {
            DBG(DBG_ERROR) << path << " No such name.";
            return FC_NO_SUCH_NAME;
        }
        // A property without a definition has no type to admit anything.
        const Json::Value undefined;
        Json::Value stored;
        Fcodes admitted = dsjson::admitValue(path, definition ? *definition : undefined, member(*instance, property),
                                             offered, stored);
        if (!isOk(admitted))
            return admitted;
        if (!pending) {
            (*instance)[property].swap(stored);
            return FC_OK;
        }
        if (!pendingPathFits(dataSet, component, selector)) {
            DBG(DBG_ERROR) << path << " pending values of a different shape.";
            return FC_WRONG_TYPE;
        }
        pendingInstance(dataSet, component, selector)[property].swap(stored);
        return FC_OK;
    });
}

// ---- the public family: one line each ----

// NOLINTBEGIN(bugprone-macro-parentheses): T and SEL_T are types, which cannot be parenthesized
#define DS_READ(NAME, T, SEL_T, sel, SEL)                                                                      \
    Fcodes DataSets::NAME(const std::string& d, const std::string& c, const std::string& p, T& v, SEL_T sel) { \
        return readCommitted(#NAME, d, c, p, SEL(sel), v);                                                     \
    }
#define DS_READ_NEW(NAME, BASE, T, SEL_T, sel, SEL)                                                            \
    Fcodes DataSets::NAME(const std::string& d, const std::string& c, const std::string& p, T& v, SEL_T sel) { \
        return readPending(#NAME, d, c, p, SEL(sel), v, [&] { return BASE(d, c, p, v, sel); });                \
    }
#define DS_WRITE(NAME, PENDING, T, SEL_T, sel, SEL)                                                           \
    Fcodes DataSets::NAME(const std::string& d, const std::string& c, const std::string& p, T v, SEL_T sel) { \
        return writeParam(#NAME, PENDING, d, c, p, SEL(sel), Json::Value(v));                                 \
    }
// NOLINTEND(bugprone-macro-parentheses)
// Each accessor twice: by row index and by key, the selector named as the header names it.
#define DS_BOTH_FORMS(MACRO, ...)                     \
    MACRO(__VA_ARGS__, int, index, Selector::byIndex) \
    MACRO(__VA_ARGS__, const std::string&, key, Selector::byKey)

DS_BOTH_FORMS(DS_READ, getIntParam, int)
DS_BOTH_FORMS(DS_READ, getTextParam, std::string)
DS_BOTH_FORMS(DS_READ, getBoolParam, bool)
DS_BOTH_FORMS(DS_READ_NEW, getNewIntParam, getIntParam, int)
DS_BOTH_FORMS(DS_READ_NEW, getNewTextParam, getTextParam, std::string)
DS_BOTH_FORMS(DS_READ_NEW, getNewBoolParam, getBoolParam, bool)
DS_BOTH_FORMS(DS_WRITE, setIntParam, true, int)
DS_BOTH_FORMS(DS_WRITE, setTextParam, true, const std::string&)
DS_BOTH_FORMS(DS_WRITE, setBoolParam, true, bool)
DS_BOTH_FORMS(DS_WRITE, initIntParam, false, int)
DS_BOTH_FORMS(DS_WRITE, initTextParam, false, const std::string&)
DS_BOTH_FORMS(DS_WRITE, initBoolParam, false, bool)

Fcodes DataSets::initInt64Param(const std::string& d, const std::string& c, const std::string& p, int64_t v,
                                const std::string& key) {
    return writeParam("initInt64Param", false, d, c, p, Selector::byKey(key), Json::Value(static_cast<Json::Int64>(v)));
}

}  // namespace datacom
