// The subagent's side of net-snmp: one handler per served table, answering
// GET and GETNEXT (GETBULK arrives as GETNEXT) from a reading of the region
// taken once per request.
#ifndef TARV_AGENTX_SUBAGENT_H
#define TARV_AGENTX_SUBAGENT_H

#include "cfm_mib.h"
#include "common/region_access.h"

namespace tarvagentx {

// Registers the tables with the agent library. The region is attached at
// the first request that finds it; until then the tables are empty.
void register_tables(const tarvtool::Options& options, IfIndexMap map);

}  // namespace tarvagentx

#endif
