// The CFM configuration and MEP state of the region as the objects of the
// IEEE8021-CFM-MIB tables the subagent serves: every instance, named by its
// full OID and sorted, built from one reading of the region.
#ifndef TARV_AGENTX_CFM_MIB_H
#define TARV_AGENTX_CFM_MIB_H

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "common/objects.h"

namespace tarvagentx {

using Oid = std::vector<std::uint32_t>;

// The MIB module's root, dot1agCfmMib.
inline constexpr std::uint32_t kCfmRoot[] = {1, 3, 111, 2, 802, 1, 1, 8};

// One served table: its OID below the root's dot1agMIBObjects (1) and the
// columns it answers; the others are left out (noSuchObject).
struct TableDef {
    const char* name;
    Oid oid;
    std::vector<std::uint32_t> columns;
};

// dot1agCfmMdTable, dot1agCfmMaNetTable, dot1agCfmMaCompTable,
// dot1agCfmMaMepListTable, dot1agCfmMepTable, in OID order.
[[nodiscard]] const std::vector<TableDef>& tables();

struct Value {
    enum class Type : std::uint8_t { Integer, Unsigned, Octets };
    Type type;
    std::int64_t number;
    std::vector<std::uint8_t> octets;
};

struct Instance {
    Oid oid;
    Value value;
};

// How the switch numbers its interfaces: a port slot/port is ifIndex
// slot * 1000 + port and LAG n is 10000 + n, unless a map file says
// otherwise for it.
class IfIndexMap {
public:
    // Lines "SLOT/PORT IFINDEX" or "lag N IFINDEX"; '#' starts a comment.
    // Throws tarvtool::Failure (kExitIo, kExitUsage) naming the line.
    static IfIndexMap load(const std::string& path);

    [[nodiscard]] std::int64_t ifindex(std::uint8_t slot, std::uint8_t port) const;

private:
    std::map<std::pair<std::uint8_t, std::uint8_t>, std::int64_t> entries_;
};

// Every instance of the served tables, sorted by OID, one per OID.
[[nodiscard]] std::vector<Instance> instances(const tarvtool::Configuration& c, const tarvtool::Alarms& a,
                                              const IfIndexMap& map);

// Orders OIDs as SNMP does: lexicographically, a prefix first.
[[nodiscard]] bool oid_less(std::span<const std::uint32_t> a, std::span<const std::uint32_t> b);

}  // namespace tarvagentx

#endif
