#include "subagent.h"

// clang-format off
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>
// clang-format on

#include <algorithm>
#include <exception>
#include <memory>
#include <vector>

#include "common/class_catalog.h"
#include "common/status.h"

namespace tarvagentx {
namespace {

struct Served {
    tarvtool::Options options;
    IfIndexMap map;
    bool attached = false;
    bool told = false;  // the reason the region cannot be attached was logged
};
Served* served = nullptr;  // set once by register_tables, for the handlers

constexpr char kSnapshotKey[] = "tarv-agentx-snapshot";

// Attaches the region the first time it exists: the mapping then lasts for
// the life of the process, as the library's does.
bool attach() {
    if (served->attached) return true;
    if (!tarvtool::region_exists(tarvtool::kDataRegion)) return false;
    try {
        (void)tarvtool::DataRegion::attach(served->options);
        served->attached = true;
        snmp_log(LOG_INFO, "attached %s\n", tarvtool::object_name(tarvtool::kDataRegion).c_str());
    } catch (const tarvtool::Failure& e) {
        if (!served->told) snmp_log(LOG_ERR, "%s; the tables stay empty\n", e.what());
        served->told = true;
    }
    return served->attached;
}

// The agent library owns a request's data and frees it through this.
void free_snapshot(void* p) { std::unique_ptr<std::vector<Instance>>(static_cast<std::vector<Instance>*>(p)).reset(); }

// The region as this request sees it: read at its first varbind, kept with
// the request until the agent library frees it.
const std::vector<Instance>& snapshot(netsnmp_agent_request_info* reqinfo) {
    if (void* kept = netsnmp_agent_get_list_data(reqinfo, kSnapshotKey); kept != nullptr)
        return *static_cast<const std::vector<Instance>*>(kept);
    auto read = std::make_unique<std::vector<Instance>>();
    if (attach()) {
        const tarvtool::Configuration c = tarvtool::Configuration::read();
        *read = instances(c, tarvtool::Alarms::read(c), served->map);
    }
    std::vector<Instance>* kept = read.release();
    netsnmp_agent_add_list_data(reqinfo, netsnmp_create_data_list(kSnapshotKey, kept, free_snapshot));
    return *kept;
}

std::vector<std::uint32_t> oid_of(const oid* name, std::size_t length) { return {name, name + length}; }

void answer(netsnmp_variable_list* vb, const Instance& i) {
    std::vector<oid> name(i.oid.begin(), i.oid.end());
    snmp_set_var_objid(vb, name.data(), name.size());
    switch (i.value.type) {
        case Value::Type::Integer: {
            const long v = static_cast<long>(i.value.number);
            snmp_set_var_typed_value(vb, ASN_INTEGER, &v, sizeof v);
            break;
        }
        case Value::Type::Unsigned: {
            const u_long v = static_cast<u_long>(i.value.number);
            snmp_set_var_typed_value(vb, ASN_UNSIGNED, &v, sizeof v);
            break;
        }
        case Value::Type::Octets:
            snmp_set_var_typed_value(vb, ASN_OCTET_STR, i.value.octets.data(), i.value.octets.size());
            break;
    }
}

// The table's full OID, dot1agCfmMib followed by its place.
std::vector<std::uint32_t> table_oid(const TableDef& t) {
    std::vector<std::uint32_t> full(std::begin(kCfmRoot), std::end(kCfmRoot));
    full.insert(full.end(), t.oid.begin(), t.oid.end());
    return full;
}

// GET: the instance, noSuchInstance for a served column of a row the region
// does not hold, noSuchObject for anything else in the table.
void get(netsnmp_agent_request_info* reqinfo, netsnmp_request_info* r, const TableDef& t,
         const std::vector<Instance>& all) {
    const auto asked = oid_of(r->requestvb->name, r->requestvb->name_length);
    const auto it = std::lower_bound(all.begin(), all.end(), asked,
                                     [](const Instance& i, const std::vector<std::uint32_t>& o) { return oid_less(i.oid, o); });
    if (it != all.end() && it->oid == asked) {
        answer(r->requestvb, *it);
        return;
    }
    const auto root = table_oid(t);
    const bool column = asked.size() > root.size() + 2 && asked[root.size()] == 1 &&
                        std::find(t.columns.begin(), t.columns.end(), asked[root.size() + 1]) != t.columns.end();
    netsnmp_set_request_error(reqinfo, r, column ? SNMP_NOSUCHINSTANCE : SNMP_NOSUCHOBJECT);
}

// GETNEXT: the first instance of the table after the OID asked; past the
// table's end the varbind stays unanswered and the agent goes on with the
// next registration.
void get_next(netsnmp_request_info* r, const TableDef& t, const std::vector<Instance>& all) {
    const auto asked = oid_of(r->requestvb->name, r->requestvb->name_length);
    const auto it = std::upper_bound(all.begin(), all.end(), asked,
                                     [](const std::vector<std::uint32_t>& o, const Instance& i) { return oid_less(o, i.oid); });
    const auto root = table_oid(t);
    if (it == all.end() || it->oid.size() < root.size() || !std::equal(root.begin(), root.end(), it->oid.begin()))
        return;
    answer(r->requestvb, *it);
}

int handle(netsnmp_mib_handler* handler, netsnmp_handler_registration* /*reg*/, netsnmp_agent_request_info* reqinfo,
           netsnmp_request_info* requests) {
    const auto& t = *static_cast<const TableDef*>(handler->myvoid);
    try {
        const std::vector<Instance>& all = snapshot(reqinfo);
        for (netsnmp_request_info* r = requests; r != nullptr; r = r->next) {
            if (r->processed != 0) continue;
            if (reqinfo->mode == MODE_GET)
                get(reqinfo, r, t, all);
            else if (reqinfo->mode == MODE_GETNEXT)
                get_next(r, t, all);
            else
                netsnmp_set_request_error(reqinfo, r, SNMP_ERR_NOTWRITABLE);
        }
    } catch (const std::exception& e) {
        snmp_log(LOG_ERR, "%s: %s\n", t.name, e.what());
        netsnmp_request_set_error_all(requests, SNMP_ERR_GENERR);
    }
    return SNMP_ERR_NOERROR;
}

}  // namespace

void register_tables(const tarvtool::Options& options, IfIndexMap map) {
    static Served state{options, std::move(map)};
    served = &state;
    for (const TableDef& t : tables()) {
        const auto full = table_oid(t);
        const std::vector<oid> name(full.begin(), full.end());
        netsnmp_mib_handler* handler = netsnmp_create_handler(t.name, handle);
        handler->myvoid = const_cast<TableDef*>(&t);  // NOLINT(cppcoreguidelines-pro-type-const-cast): read only
        netsnmp_handler_registration* reg =
            netsnmp_handler_registration_create(t.name, handler, name.data(), name.size(), HANDLER_CAN_RONLY);
        if (netsnmp_register_handler(reg) != MIB_REGISTERED_OK) snmp_log(LOG_ERR, "cannot register %s\n", t.name);
    }
}

}  // namespace tarvagentx
