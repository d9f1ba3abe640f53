// Fuzzes the alarm queries and the Y.1731 alarm source text on arbitrary
// region contents, indices, keys and switch answers.
//
// The MEP, alarm, PM, MaNet and MD tables are filled from the input
// (fuzz_support.h), then the platform's answers (fuzz::set_platform), then
// each operation is read from the rest:
//   op:u8 % 5
//   0  Tarv__GetAlarms
//   1  Tarv__GetDetailsForAlarm: index (Input::number)
//   2  Tarv__GetPMAlarms and Tarv__GetMEPHWAlarms
//   3  a PM key getter: which:u8 % 3, index (Input::number)
//   4  Tarv__GetMepInfoAbout1731Alarm: a PM key as fuzz::read_key reads it
//      from the PM session table
// Every answer is checked against its rule written out here, the alarm
// source text against what sprintf and strncat make of the records; every
// buffer is exactly as long as what may be written to it and ends at a
// guard page.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "fields.h"
#include "fuzz_support.h"

namespace {

using namespace tarv;
using tarv::fuzz::Input;

constexpr char kTarget[] = "alarms";

constexpr Table kTables[] = {
    Table::MepMoidArray,       Table::MepDataArray,      Table::MepOldMoidArray,      Table::MepAlarmTextArray,
    Table::PMAlarmBlock,       Table::MepHWAlarmBlock,   Table::PMAlarmMoidArray,     Table::PMSessionMoidArray,
    Table::PMSessionOldMoidArray, Table::MaNetMoidArray, Table::MaNetDataArray,       Table::MdMoidArray,
    Table::MdDataArray,
};

void alarms(const std::uint8_t* region) {
    static thread_local fuzz::Guarded words(32 * sizeof(std::uint16_t));
    auto* out = reinterpret_cast<std::uint16_t*>(words.take(32 * sizeof(std::uint16_t)));
    CALL(Tarv__GetAlarms, (out));
    for (std::uint32_t s = 0; s < 32; ++s) {
        const std::uint8_t* mep = entry(region, Table::MepDataArray, s);
        std::uint16_t want = 0;
        if (load_le<std::uint16_t>(entry(region, Table::MepMoidArray, s)) != 0) {
            want = get(mep, mep::wAlarmBits);
            if (get(mep, mep::bAlarmBit2Enabled) == 0) want = static_cast<std::uint16_t>(want & ~4u);
        }
        if (out[s] != want) fuzz::fail(kTarget, "Tarv__GetAlarms: wrong word");
    }
}

void details(std::uint8_t* region, Input& in) {
    static thread_local fuzz::Guarded moid_buffer(TARV_MOID_SIZE), text_buffer(TARV_ALARM_TEXT_SIZE);
    const std::uint32_t index = in.number();
    std::uint8_t* moid = moid_buffer.take(TARV_MOID_SIZE);
    std::uint8_t* text = text_buffer.take(TARV_ALARM_TEXT_SIZE);
    CALL(Tarv__GetDetailsForAlarm, (index, reinterpret_cast<TARV_MOID*>(moid), reinterpret_cast<char*>(text)));

    std::uint8_t want_moid[TARV_MOID_SIZE];
    std::memset(want_moid, fuzz::Guarded::kFill, sizeof want_moid);
    char want_text[TARV_ALARM_TEXT_SIZE];
    std::memset(want_text, fuzz::Guarded::kFill, sizeof want_text);
    if (index < 32) {
        const std::uint8_t* current = entry(region, Table::MepMoidArray, index);
        const std::uint8_t* old = entry(region, Table::MepOldMoidArray, index);
        if (!key_empty(current, TARV_MOID_SIZE))
            std::memcpy(want_moid, current, TARV_MOID_SIZE);
        else if (!key_empty(old, TARV_MOID_SIZE))
            std::memcpy(want_moid, old, TARV_MOID_SIZE);
        const char* stored = reinterpret_cast<const char*>(entry(region, Table::MepAlarmTextArray, index));
        if (stored[0] != '\0') {
            // strncpy: the characters up to the first zero, then zeros.
            std::size_t n = 0;
            for (; n < sizeof want_text && stored[n] != '\0'; ++n) want_text[n] = stored[n];
            std::memset(want_text + n, 0, sizeof want_text - n);
        }
    }
    if (std::memcmp(moid, want_moid, sizeof want_moid) != 0) fuzz::fail(kTarget, "Tarv__GetDetailsForAlarm: wrong MOID");
    if (std::memcmp(text, want_text, sizeof want_text) != 0) fuzz::fail(kTarget, "Tarv__GetDetailsForAlarm: wrong text");
}

void blocks(const std::uint8_t* region) {
    static thread_local fuzz::Guarded pm(TARV_PM_ALARM_BLOCK_SIZE), hw(TARV_MEP_HW_ALARM_BLOCK_SIZE);
    std::uint8_t* pm_out = pm.take(TARV_PM_ALARM_BLOCK_SIZE);
    std::uint8_t* hw_out = hw.take(TARV_MEP_HW_ALARM_BLOCK_SIZE);
    CALL(Tarv__GetPMAlarms, (pm_out));
    CALL(Tarv__GetMEPHWAlarms, (hw_out));
    if (std::memcmp(pm_out, entry(region, Table::PMAlarmBlock, 0), TARV_PM_ALARM_BLOCK_SIZE) != 0 ||
        std::memcmp(hw_out, entry(region, Table::MepHWAlarmBlock, 0), TARV_MEP_HW_ALARM_BLOCK_SIZE) != 0)
        fuzz::fail(kTarget, "alarm blocks differ");
}

void pm_key(std::uint8_t* region, Input& in) {
    static thread_local fuzz::Guarded key_buffer(TARV_PM_KEY_SIZE);
    struct Getter {
        void (*get)(uint32_t, TARV_PM_KEY*);
        Table table;
        const char* name;
    };
    static constexpr Getter kGetters[] = {
        {Tarv__GetPMAlarmMoid, Table::PMAlarmMoidArray, "Tarv__GetPMAlarmMoid"},
        {Tarv__GetPMSessionMoid, Table::PMSessionMoidArray, "Tarv__GetPMSessionMoid"},
        {Tarv__GetPMSessionOldMoid, Table::PMSessionOldMoidArray, "Tarv__GetPMSessionOldMoid"}};
    const Getter& g = kGetters[in.u8() % 3u];
    const std::uint32_t index = in.number();
    std::uint8_t* out = key_buffer.take(TARV_PM_KEY_SIZE);
    fuzz::note(g.name);
    g.get(index, reinterpret_cast<TARV_PM_KEY*>(out));
    if (index < 9 ? std::memcmp(out, entry(region, g.table, index), TARV_PM_KEY_SIZE) != 0
                  : !fuzz::untouched(out, TARV_PM_KEY_SIZE))
        fuzz::fail(kTarget, "PM key getter: wrong key");
}

// The slot of the parent object of class w_class whose key is the first
// `size` bytes of the PM key with the class replaced, or kNotFound.
std::uint32_t parent(const std::uint8_t* region, Table keys, const std::uint8_t* pm, std::uint32_t size,
                     std::uint16_t w_class) {
    std::uint8_t key[TARV_MOID_SIZE];
    std::memcpy(key, pm, size);
    store_le<std::uint16_t>(key, w_class);
    return fuzz::expected_slot(region, keys, key);
}

// The alarm source text as the C library formats it, or an empty text when
// a link of session, MEP, MaNet and MD is missing.
std::size_t expected_source(const std::uint8_t* region, const std::uint8_t* pm, char* text) {
    const std::uint32_t session = pm[14];
    if (session == 0 || session > 8 || std::memcmp(entry(region, Table::PMSessionMoidArray, session), pm, 15) != 0)
        return 0;
    const std::uint32_t mep_slot = parent(region, Table::MepMoidArray, pm, 14, TARV_CLASS_MEP);
    const std::uint32_t manet_slot = parent(region, Table::MaNetMoidArray, pm, 10, TARV_CLASS_MANET);
    const std::uint32_t md_slot = parent(region, Table::MdMoidArray, pm, 6, TARV_CLASS_MD);
    if (mep_slot == kNotFound || manet_slot == kNotFound || md_slot == kNotFound) return 0;
    const std::uint8_t* mep = entry(region, Table::MepDataArray, mep_slot);
    const std::uint8_t* md = entry(region, Table::MdDataArray, md_slot);
    const std::uint8_t* manet = entry(region, Table::MaNetDataArray, manet_slot);
    const auto& f = testing::fake();
    const auto type = f.port_types.find({get(mep, mep::bySlot), get(mep, mep::byPort)});
    const bool c_vid = f.switch_mode == 2 || (type != f.port_types.end() && type->second == 3);
    std::snprintf(text, 200, "S%hd,P%hd,%s%d,%s,L%d,Id%hd,MAID:", static_cast<short>(get(mep, mep::bySlot)),
                  static_cast<short>(get(mep, mep::byPort)), c_vid ? "Cvid" : "Svid", get(mep, mep::wVid),
                  get(mep, mep::eDirection) == 1 ? "Dn" : "Up", static_cast<int>(get(md, md::eMdLevel) - 1u),
                  static_cast<short>(get(mep, mep::wMepId)));
    std::strncat(text, reinterpret_cast<const char*>(md + md::acMdName.offset), md::acMdName.size);
    std::strcat(text, "/");
    std::strncat(text, reinterpret_cast<const char*>(manet + manet::acMaName.offset), manet::acMaName.size);
    return std::strlen(text) + 1;
}

void alarm_source(std::uint8_t* region, Input& in) {
    static thread_local fuzz::Guarded info_buffer(TARV_MEP_ALARM_INFO_SIZE);
    const TARV_PM_KEY key = fuzz::read_key<TARV_PM_KEY>(region, Table::PMSessionMoidArray, in);
    char want[200] = {};
    // A replay without comparisons hands out the longest text's buffer.
    const std::size_t length = fuzz::checking
                                   ? expected_source(region, reinterpret_cast<const std::uint8_t*>(&key), want)
                                   : TARV_MEP_ALARM_INFO_SIZE;
    if (length > TARV_MEP_ALARM_INFO_SIZE) fuzz::fail(kTarget, "the alarm source text is longer than its limit");
    // Exactly the text and its terminator: a byte more written faults.
    std::uint8_t* out = info_buffer.take(length);
    const std::uint32_t answer = CALL(Tarv__GetMepInfoAbout1731Alarm, (key, reinterpret_cast<char*>(out)));
    if (answer != (length != 0 ? 1u : 0u)) fuzz::fail(kTarget, "Tarv__GetMepInfoAbout1731Alarm: wrong answer");
    if (std::memcmp(out, want, length) != 0) fuzz::fail(kTarget, "Tarv__GetMepInfoAbout1731Alarm: wrong text");
}

bool prepare(Input& in, std::uint8_t*& region) {
    region = fuzz::attached_region(/*read_write=*/false);
    fuzz::fill_region(region, kTables, in);
    fuzz::set_platform(in);
    return true;
}

constexpr fuzz::Op kOps[] = {
    {[](std::uint8_t* r, Input&) { alarms(r); }},
    {details},
    {[](std::uint8_t* r, Input&) { blocks(r); }},
    {pm_key},
    {alarm_source},
};

}  // namespace

const tarv::fuzz::Target tarv::fuzz::alarms_target{kTarget, prepare, kOps, {}};
TARV_FUZZ_ENTRY(alarms_target)
