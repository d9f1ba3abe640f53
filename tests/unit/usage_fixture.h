// Arrangement of the usage query tests: an attached region with every trace
// recorded, builders for MEPs, MIPs, MA components and MaNets, and table rows
// of "call, result, trace lines" (as traced(true) writes them).
#ifndef TARV_TESTS_USAGE_FIXTURE_H
#define TARV_TESTS_USAGE_FIXTURE_H

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "fields.h"
#include "points.h"
#include "region_fixture.h"

namespace tarv::testing {

// A point or component: its MOID (all zero for a stale record behind an
// empty key) and the record fields the queries read.
struct Point {
    std::uint16_t cls;
    std::uint32_t md, ma, id;
    std::uint8_t slot = 0, port = 0;
    std::uint16_t vid = 0;
    std::uint32_t direction = mep::kDown;  // MEPs; the tagging of a component
};

inline std::string d5(const char* function, const std::string& text) {
    return "5 " + std::string(function) + ": " + text;
}

// One call of a table: the call as written, its result and its traces. A
// trace given as bare text is a level-5 debug trace of the called function.
struct Call {
    const char* text;
    const char* function;
    std::function<std::int64_t()> call;
    std::int64_t result;
    std::vector<std::string> traces;
};
#define CALL(function, args, result, ...) \
    Call { #function #args, #function, [] { return static_cast<std::int64_t>(function args); }, result, {__VA_ARGS__} }
inline void PrintTo(const Call& c, std::ostream* os) { *os << c.text; }

class UsageTest : public AttachedTest {
protected:
    // Points or components in slots at, at + 1, ... of their tables.
    template <typename Record>
    void put(Table keys, Table data, std::initializer_list<Point> points, std::uint32_t at, Record record) {
        for (const Point& p : points) put_key(keys, at, key_bytes(p.cls, {p.md, p.ma, p.id})), record(this->at(data, at++), p);
    }
    void meps(std::initializer_list<Point> points, std::uint32_t at = 0) {
        put(Table::MepMoidArray, Table::MepDataArray, points, at, [](std::uint8_t* r, const Point& p) {
            set(r, mep::bySlot, p.slot), set(r, mep::byPort, p.port), set(r, mep::wVid, p.vid);
            set(r, mep::eDirection, p.direction);
        });
    }
    void mips(std::initializer_list<Point> points, std::uint32_t at = 0) {
        put(Table::MipMoidArray, Table::MipDataArray, points, at,
            [](std::uint8_t* r, const Point& p) { set(r, mip::bySlot, p.slot), set(r, mip::byPort, p.port); });
    }
    void components(std::initializer_list<Point> points) {  // VLAN p.vid, tagging p.direction
        put(Table::MACompMoidArray, Table::MACompDataArray, points, 0,
            [](std::uint8_t* r, const Point& p) { set(r, macomp::eTagging, p.direction), set(r, macomp::wVid, p.vid); });
    }
    void manet(std::uint32_t at, std::uint32_t md, std::uint32_t ma, std::uint32_t period) {
        put_key(Table::MaNetMoidArray, at, key_bytes(TARV_CLASS_MANET, {md, ma}));
        set(this->at(Table::MaNetDataArray, at), manet::dwCcmPeriod, period);
    }

    void check(const Call& c) {
        fake().traces.clear();
        EXPECT_EQ(c.call(), c.result);
        std::vector<std::string> want;
        for (const std::string& t : c.traces)
            want.push_back(t.rfind("5 ", 0) == 0 || t.rfind("1/", 0) == 0 ? t : d5(c.function, t));
        EXPECT_EQ(traced(true), want);
    }
};

// A table of calls on the region that fixture F builds.
template <typename F>
class Calls : public F, public ::testing::WithParamInterface<Call> {};

}  // namespace tarv::testing

#endif
