// Port usage, endpoint service resolution, VLAN/VFI usage, VLAN translation
// and C-VID registration checks, each family on a region built so that every
// one of its rules decides some row.
#include "usage_fixture.h"

namespace tarv::testing {
namespace {

constexpr std::uint32_t kUp = mep::kUp, kC = macomp::kCVlan, kS = macomp::kSVlan, kVfi = macomp::kVfi;

class Presence : public UsageTest {
protected:
    void SetUp() override {
        UsageTest::SetUp();
        // MEPs on 1/4; of class 0 on 1/5 (live by key, not by class); stale on 1/6; on 2/24, 3/7; Up on 1/8;
        // on 44/4 (300 & 0xFF). MIPs on 1/4, 1/9; of class 0 on 1/10.
        meps({{532, 1, 1, 1, 1, 4}, {0, 1, 1, 2, 1, 5}, {0, 0, 0, 0, 1, 6}, {532, 1, 1, 4, 2, 24},
              {532, 1, 1, 5, 3, 7}, {532, 1, 1, 6, 1, 8, 0, kUp}, {532, 1, 1, 7, 44, 4}});
        mips({{575, 1, 1, 1, 1, 4}, {575, 1, 1, 2, 1, 9}, {0, 1, 1, 3, 1, 10}});
    }
};
using PresenceCalls = Calls<Presence>;
TEST_P(PresenceCalls, AnswersAndTraces) { check(GetParam()); }

const std::vector<Call> kPresence = {
    CALL(Tarv__IsMPEnabledOnPort, (1, 4), 1, "MEP is enabled on Slot 1, Port 4."),
    CALL(Tarv__IsMPEnabledOnPort, (1, 9), 1, "OAM is enabled on Slot 1, Port 9."),
    CALL(Tarv__IsOamEnabledOnPort, (1, 9), 1, "OAM is enabled on S/P 1/9"),
    CALL(Tarv__IsOamEnabledOnPort, (1, 5), 1, "OAM is enabled on S/P 1/5"),
    CALL(Tarv__IsOamEnabledOnPortOpt, (1, 5), 0, "OAM is NOT enabled on Slot 1, Port 5."),
    CALL(Tarv__IsOamEnabledOnPortOpt, (44, 4), 1, "OAM is enabled on Slot 44, Port 4."),
    CALL(Tarv__IsMPEnabledOnPort, (1, 10), 0, "OAM is NOT enabled on Slot 1, Port 10."),
    CALL(Tarv__IsOamEnabledOnPort, (1, 6), 0, "OAM is NOT enabled on S/P 1/6"),
    CALL(Tarv__IsOamEnabledOnPort, (300, 4), 0, "OAM is NOT enabled on S/P 300/4"),
    CALL(Tarv__IsOamEnabledOnPortOpt, (1, 260), 0, "OAM is NOT enabled on Slot 1, Port 260."),
    // One Down MEP by its MOID; slots 2 and 3 match ports 24 and 23 only.
    CALL(Tarv__IsOamEnabledForMepOnPort, (2, 7, make_moid(532, 1, 1, 4)), 1,
         "OAM is enabled for requested MEP on S/P 2/7"),
    CALL(Tarv__IsOamEnabledForMepOnPort, (3, 7, make_moid(532, 1, 1, 5)), 0,
         "OAM is NOT enabled for requested MEP  on S/P 3/7"),
    CALL(Tarv__IsOamEnabledForMepOnPort, (1, 8, make_moid(532, 1, 1, 6)), 0,
         "OAM is NOT enabled for requested MEP  on S/P 1/8"),
    CALL(Tarv__IsOamEnabledForMepOnPort, (1, 4, make_moid(532, 1, 1, 6)), 0,
         "OAM is NOT enabled for requested MEP  on S/P 1/4"),
    CALL(Tarv__IsOamEnabledForMepOnPort, (1, 4, make_moid(575, 1, 1, 1)), 0,
         "OAM is NOT enabled for requested MEP  on S/P 1/4"),
    CALL(Tarv__IsOamEnabledForMepOnPort, (1, 4, make_moid(532, 1, 1, 1)), 1,
         "OAM is enabled for requested MEP on S/P 1/4"),
};
INSTANTIATE_TEST_SUITE_P(Usage, PresenceCalls, ::testing::ValuesIn(kPresence));

class VlanUse : public UsageTest {
protected:
    void SetUp() override {
        UsageTest::SetUp();
        // Components: MA 1/1 S-tagged first, C-tagged second; MA 1/2 VFI; a stale S-tagged record behind an
        // empty key (MA 0/0 for scans that compare empty entries); MA 1/3 C-tagged first, S-tagged second.
        components({{573, 1, 1, 1, 0, 0, 100, kS}, {573, 1, 1, 2, 0, 0, 200, kC}, {573, 1, 2, 3, 0, 0, 300, kVfi},
                    {0, 0, 0, 0, 0, 0, 400, kS}, {573, 1, 3, 5, 0, 0, 500, kC}, {573, 1, 3, 6, 0, 0, 500, kS}});
        // MEPs by slot: 3 has no component, 5 is stale, 9 is a Down MEP after the Up MEP of slot 4 on the
        // same port, 11 belongs to MA 0/0, 12 is neither Up nor Down, 13 is an Up MEP of an S-tagged MA.
        meps({{532, 1, 1, 1, 1, 4, 100}, {532, 1, 1, 2, 1, 4, 200}, {532, 1, 2, 3, 2, 24, 300},
              {532, 1, 9, 4, 1, 5, 600}, {532, 1, 3, 5, 1, 6, 500, kUp}, {0, 0, 0, 0, 1, 7, 100},
              {532, 1, 1, 7, 3, 23, 100}, {532, 1, 1, 8, 1, 8, 100, kUp}, {532, 1, 3, 9, 3, 23, 500},
              {532, 1, 3, 10, 1, 6, 500}, {532, 1, 3, 11, 1, 11, 700, kUp}, {532, 0, 0, 12, 1, 12, 400, kUp},
              {532, 1, 3, 13, 1, 13, 500, 0}, {532, 1, 1, 14, 1, 14, 100, kUp}});
        mips({{575, 1, 1, 1, 1, 4}, {575, 1, 2, 2, 1, 9}, {575, 0, 0, 3, 1, 10}});
    }
};
using VlanCalls = Calls<VlanUse>;
TEST_P(VlanCalls, AnswersAndTraces) { check(GetParam()); }

std::string mip_s(const char* text) { return d5("Tarv__IsOamEnabledOnMIPPortSVlan", text); }
std::string mip_c(const char* text) { return d5("Tarv__IsOamEnabledOnMIPPortCVlan", text); }
std::string no_parent(const char* test) {
    return "1/0 " + std::string(test) + ": MEP exists without it's parent MAComp\n";
}

const std::vector<Call> kVlanUse = {
    // Endpoint tests: the first non-empty component of the MA, by MD and MaNet id only.
    CALL(Tarv__IsEndpointCTagged, (make_moid(532, 1, 1, 2)), 0),
    CALL(Tarv__IsEndpointSTagged, (make_moid(0, 1, 1, 77)), 1),
    CALL(Tarv__IsEndpointVfi, (make_moid(532, 1, 2, 3)), 1),
    CALL(Tarv__IsEndpointVfi, (make_moid(532, 1, 9, 4)), 0, no_parent("Tarv__IsEndpointVfi")),
    // MIP tests: any component of the MA, empty entries compared too.
    CALL(Tarv__IsOamEnabledOnMIPPortCVlan, (1, 4, 200), 1, "Svlan 200 is in use by OAM on S/P 1/4"),
    CALL(Tarv__IsOamEnabledOnMIPPortSVlan, (1, 4, 200), 0, "Svlan 200 is not in use by OAM on S/P 1/4"),
    CALL(Tarv__IsOamEnabledOnMIPPortSVlan, (1, 10, 400), 1, "Svlan 400 is in use by OAM on S/P 1/10"),
    // Per-port MEP queries.
    CALL(Tarv__IsOamEnabledOnPortSVlan, (3, 7, 100), 1, "Svlan 100 is in use by OAM on S/P 3/7"),
    CALL(Tarv__IsOamEnabledOnPortSVlan, (1, 6, 500), 0, "Svlan 500 is not in use by OAM on S/P 1/6"),
    CALL(Tarv__IsOamEnabledOnPortSVlan, (1, 7, 100), 0, "Svlan 100 is not in use by OAM on S/P 1/7"),
    CALL(Tarv__IsOamEnabledOnPortSVlan, (1, 5, 600), 0, no_parent("Tarv__IsEndpointSTagged"),
         "Svlan 600 is not in use by OAM on S/P 1/5"),
    CALL(Tarv__IsOamEnabledOnPortVfi, (2, 7, 300), 1, "vfi 300 is in use by OAM on S/P 2/7"),
    CALL(Tarv__IsOamEnabledOnPortVfi, (1, 9, 300), 0, "vfi 300 is not in use by OAM on S/P 1/9"),
    CALL(Tarv__IsOamEnabledOnCVlanPort, (1, 6, 500), 1, "Cvlan 500 is in use by MEP on S/P 1/6"),
    CALL(Tarv__IsOamEnabledOnCVlanPort, (1, 4, 200), 1, mip_c("Svlan 200 is in use by OAM on S/P 1/4"),
         "Cvlan 200 is in use by MIP on S/P 1/4"),
    CALL(Tarv__IsOamEnabledOnCVlanPort, (3, 7, 500), 0, mip_c("Svlan 500 is not in use by OAM on S/P 3/7"),
         "Cvlan 500 is not in use by OAM on S/P 3/7"),
    // Switch-wide: non-empty components only.
    CALL(Tarv__IsOamEnabledOnSVlan, (100), 1, "Svlan 100 is in use by OAM"),
    CALL(Tarv__IsOamEnabledOnSVlan, (400), 0),
    CALL(Tarv__IsOamEnabledOnVfi, (300), 1, "Vfi 300 is in use by OAM"),
    CALL(Tarv__IsOamEnabledOnCVlan, (100), 0, "Cvlan 100 is not in use by OAM"),
    // Tagging check: any component of the MA, the port as given, no trace.
    CALL(Tarv__CheckTagging, (1, 6, 500, 0), 24631),
    CALL(Tarv__CheckTagging, (1, 4, 200, 0), 0),
    CALL(Tarv__CheckTagging, (1, 6, 500, 2), 0),
    CALL(Tarv__CheckTagging, (3, 7, 100, 0), 0),
    // VLAN translation: MEPs of either direction, stale ones examined too.
    CALL(Tarv__IsVidTranslationUsedByOam, (1, 8, 100), 1, "vlan: 100 is in use by a Down MEP(S1/P8)\n"),
    CALL(Tarv__IsVidTranslationUsedByOam, (1, 7, 100), 0, no_parent("Tarv__IsEndpointSTagged"),
         mip_s("Svlan 100 is not in use by OAM on S/P 1/7")),
    CALL(Tarv__IsVidTranslationUsedByOam, (1, 10, 400), 1, mip_s("Svlan 400 is in use by OAM on S/P 1/10"),
         "vlan: 400 is in use by a MIP(S1/P10)\n"),
    // C-VID registration: Down MEPs, then Up MEPs, then MIPs.
    CALL(Tarv__IsCVidRegistrationsUsedByOam, (3, 23, 500, 0, 7, 8, 0), 1,
         "vlan: 500 is in use by a Down MEP(S3/P23)\n"),
    CALL(Tarv__IsCVidRegistrationsUsedByOam, (1, 6, 500, 0, 7, 8, 0), 1, "vlan: 500 is in use by a Down MEP(S1/P6)\n"),
    CALL(Tarv__IsCVidRegistrationsUsedByOam, (1, 11, 700, 0, 7, 8, 0), 1, "vlan: 700 is in use by a Up MEP(S1/P11)\n"),
    CALL(Tarv__IsCVidRegistrationsUsedByOam, (1, 8, 5, 100, 7, 8, 1), 1, "vlan: 100 is in use by a Up MEP(S1/P8)\n"),
    CALL(Tarv__IsCVidRegistrationsUsedByOam, (1, 8, 5, 100, 7, 8, 2), 0,
         mip_c("Svlan 5 is not in use by OAM on S/P 1/8")),
    CALL(Tarv__IsCVidRegistrationsUsedByOam, (1, 12, 9, 400, 7, 8, 1), 1, "vlan: 400 is in use by a Up MEP(S1/P12)\n"),
    CALL(Tarv__IsCVidRegistrationsUsedByOam, (1, 7, 100, 0, 7, 8, 0), 0, no_parent("Tarv__IsEndpointCTagged"),
         mip_c("Svlan 100 is not in use by OAM on S/P 1/7")),
    CALL(Tarv__IsCVidRegistrationsUsedByOam, (1, 13, 500, 0, 7, 8, 0), 0,
         mip_c("Svlan 500 is not in use by OAM on S/P 1/13")),
    CALL(Tarv__IsCVidRegistrationsUsedByOam, (1, 14, 100, 0, 7, 8, 0), 0,
         mip_c("Svlan 100 is not in use by OAM on S/P 1/14")),
    CALL(Tarv__IsCVidRegistrationsUsedByOam, (1, 4, 100, 0, 7, 8, 0), 0,
         mip_c("Svlan 100 is not in use by OAM on S/P 1/4")),
    CALL(Tarv__IsCVidRegistrationsUsedByOam, (1, 4, 200, 0, 7, 8, 0), 1, mip_c("Svlan 200 is in use by OAM on S/P 1/4"),
         "vlan: 200 is in use by a MIP(S1/P4)\n"),
};
INSTANTIATE_TEST_SUITE_P(Usage, VlanCalls, ::testing::ValuesIn(kVlanUse));

}  // namespace
}  // namespace tarv::testing
