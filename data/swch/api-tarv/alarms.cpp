// Alarm queries: the alarm word of every MEP slot, the MOID and detail text
// behind one slot's alarm, the PM and MEP hardware alarm blocks, the keys of
// the PM slots, and the text that names the source of a Y.1731 PM alarm.
#include <cstring>

#include "fields.h"
#include "platform/lanx.h"
#include "region.h"
#include "tarv/tarv.h"
#include "trace.h"

namespace tarv {
namespace {

constexpr std::uint16_t kAlarmBit2 = 0x0004;

// ---------------------------------------------------------------------------
// PM key getters: one copy rule over three tables of 15-byte PM keys.
// ---------------------------------------------------------------------------

enum class PmKeys : std::uint8_t { Alarm, Session, OldSession };

struct PmKeyTable {
    const char* function;
    Table table;
};

constexpr PmKeyTable kPmKeyTables[] = {
    {"Tarv__GetPMAlarmMoid", Table::PMAlarmMoidArray},
    {"Tarv__GetPMSessionMoid", Table::PMSessionMoidArray},
    {"Tarv__GetPMSessionOldMoid", Table::PMSessionOldMoidArray},
};
static_assert(info(Table::PMAlarmMoidArray).entry == TARV_PM_KEY_SIZE &&
              info(Table::PMSessionMoidArray).entry == TARV_PM_KEY_SIZE &&
              info(Table::PMSessionOldMoidArray).entry == TARV_PM_KEY_SIZE);
static_assert(info(Table::PMAlarmMoidArray).slots == TARV_PM_SLOTS &&
              info(Table::PMSessionMoidArray).slots == TARV_PM_SLOTS &&
              info(Table::PMSessionOldMoidArray).slots == TARV_PM_SLOTS);

// Copies slot `index` as stored, empty or not. An index past the table is
// refused with a trace: nothing is read, pKey is not written.
void copy_pm_key(PmKeys which, std::uint32_t index, TARV_PM_KEY* pKey) noexcept {
    const PmKeyTable& v = kPmKeyTables[static_cast<std::size_t>(which)];
    const std::uint8_t* region = attached_region(v.function);
    if (region == nullptr) return;
    const TableInfo& ti = info(v.table);
    if (index >= ti.slots) {
        TARV_ERROR(v.function, trace::kNotFound, "PM slot index %lu out of range, last slot is %lu",
                   static_cast<unsigned long>(index), static_cast<unsigned long>(ti.slots - 1));
        return;
    }
    std::memcpy(pKey, entry(region, v.table, index), ti.entry);
}

// ---------------------------------------------------------------------------
// Alarm source text: what sprintf("S%hd,P%hd,%s%d,%s,L%d,Id%hd,MAID:") and
// then strncat of at most 20 characters of the MD name, "/" and at most 24
// characters of the MA name produce, built without the C library's
// formatting (a reporter asks for it per alarm). Every value is an integer
// of at most 32 bits, so the text is exact in every case.
// ---------------------------------------------------------------------------

constexpr std::uint32_t kMdNameChars = 20;
constexpr std::uint32_t kMaNameChars = 24;
static_assert(md::acMdName.size == kMdNameChars && manet::acMaName.size == kMaNameChars,
              "a name is cut at its field's width, so it is never read past its field");

// The widest formatted part: "S255,P255,Svid65535,Up,L-2147483648,Id-32768,MAID:".
constexpr std::uint32_t kWidestHead = 5 + 5 + 10 + 3 + 13 + 9 + 5;
static_assert(kWidestHead == 50);
static_assert(kWidestHead + kMdNameChars + 1 + kMaNameChars + 1 == TARV_MEP_ALARM_INFO_SIZE);

class AlarmText {
public:
    void put(const char* s, std::size_t n) noexcept {
        std::memcpy(text_ + length_, s, n);
        length_ += n;
    }
    template <std::size_t N>
    void put(const char (&s)[N]) noexcept {
        put(s, N - 1);
    }
    // Decimal, as %d prints an int (and %hd a short, after the conversion).
    void put_int(std::int32_t value) noexcept {
        std::uint32_t u = static_cast<std::uint32_t>(value);
        if (value < 0) {
            text_[length_++] = '-';
            u = 0u - u;
        }
        char digits[10];
        std::size_t n = 0;
        do {
            digits[n++] = static_cast<char>('0' + u % 10u);
            u /= 10u;
        } while (u != 0);
        while (n > 0) text_[length_++] = digits[--n];
    }
    // The characters of a name field up to its first zero byte, at most
    // `max` of them (the field's width), as strncat appends them.
    void put_name(const std::uint8_t* field, std::size_t max) noexcept {
        std::size_t n = 0;
        while (n < max && field[n] != 0) ++n;
        put(reinterpret_cast<const char*>(field), n);
    }
    // The text and its terminator, from the first byte of `out`; the bytes
    // after the terminator are not written.
    void copy_to(char* out) noexcept {
        text_[length_] = '\0';
        std::memcpy(out, text_, length_ + 1);
    }

private:
    // Written from the start, up to length_, before any byte of it is read;
    // not cleared beforehand, as the text is built once per alarm.
    // cppcheck-suppress uninitMemberVarPrivate
    char text_[TARV_MEP_ALARM_INFO_SIZE];
    std::size_t length_ = 0;
};

// Key of `w_class` made of the first `size` bytes of `moid` (its class
// replaced): the MaNet and MD keys of a MEP's MOID.
void parent_key(std::uint8_t* key, const std::uint8_t* moid, std::uint32_t size, std::uint16_t w_class) noexcept {
    std::memcpy(key, moid, size);
    store_le<std::uint16_t>(key + moid::kClassOffset, w_class);
}

}  // namespace
}  // namespace tarv

using namespace tarv;

extern "C" TARV_API void Tarv__GetAlarms(uint16_t* awAlarms) {
    // Not attached: every slot answers as an empty one.
    const std::uint8_t* region = attached_region("Tarv__GetAlarms");
    for (std::uint32_t slot = 0; slot < info(Table::MepMoidArray).slots; ++slot) {
        std::uint16_t word = 0;
        // Only the class field tells here whether the slot holds a MEP.
        if (region != nullptr && load_le<std::uint16_t>(entry(region, Table::MepMoidArray, slot)) != 0) {
            const std::uint8_t* mep = entry(region, Table::MepDataArray, slot);
            word = get(mep, mep::wAlarmBits);
            if (get(mep, mep::bAlarmBit2Enabled) == 0) word = static_cast<std::uint16_t>(word & ~kAlarmBit2);
        }
        awAlarms[slot] = word;
    }
}

extern "C" TARV_API void Tarv__GetDetailsForAlarm(uint32_t wMepMoidArrayIndex, TARV_MOID* pMoid, char* pText) {
    constexpr char kFunction[] = "Tarv__GetDetailsForAlarm";
    const std::uint8_t* region = attached_region(kFunction);
    if (region == nullptr) return;
    const std::uint32_t slot = wMepMoidArrayIndex;
    const bool inside = slot < info(Table::MepMoidArray).slots;
    const std::uint8_t* current = inside ? entry(region, Table::MepMoidArray, slot) : nullptr;
    const std::uint8_t* old = inside ? entry(region, Table::MepOldMoidArray, slot) : nullptr;
    if (inside && !key_empty(current, TARV_MOID_SIZE)) {
        std::memcpy(pMoid, current, TARV_MOID_SIZE);
    } else if (inside && !key_empty(old, TARV_MOID_SIZE)) {
        std::memcpy(pMoid, old, TARV_MOID_SIZE);
    } else {
        TARV_DEBUG(trace::kOutcome, kFunction, "MEP index %d not found!", static_cast<int>(slot));
    }
    TARV_DEBUG(trace::kDetail, kFunction, "wMepMoidArrayIndex=%d", static_cast<int>(slot));
    if (!inside) return;  // a slot past the table has no text either
    // At most 80 of the 81 bytes are read, terminated or not.
    const char* text = reinterpret_cast<const char*>(entry(region, Table::MepAlarmTextArray, slot));
    if (text[0] != '\0') {
        std::strncpy(pText, text, alarm_text::kMaxChars);
    } else {
        TARV_DEBUG(trace::kSuspicious, kFunction, "String is NULL\n");
    }
}

extern "C" TARV_API void Tarv__GetPMAlarms(void* pBlock) {
    const std::uint8_t* region = attached_region("Tarv__GetPMAlarms");
    if (region == nullptr) return;
    std::memcpy(pBlock, entry(region, Table::PMAlarmBlock, 0), info(Table::PMAlarmBlock).bytes());
}

extern "C" TARV_API void Tarv__GetMEPHWAlarms(void* pBlock) {
    const std::uint8_t* region = attached_region("Tarv__GetMEPHWAlarms");
    if (region == nullptr) return;
    std::memcpy(pBlock, entry(region, Table::MepHWAlarmBlock, 0), info(Table::MepHWAlarmBlock).bytes());
}

extern "C" TARV_API void Tarv__GetPMAlarmMoid(uint32_t lIndex, TARV_PM_KEY* pKey) {
    copy_pm_key(PmKeys::Alarm, lIndex, pKey);
}

extern "C" TARV_API void Tarv__GetPMSessionMoid(uint32_t lIndex, TARV_PM_KEY* pKey) {
    copy_pm_key(PmKeys::Session, lIndex, pKey);
}

extern "C" TARV_API void Tarv__GetPMSessionOldMoid(uint32_t lIndex, TARV_PM_KEY* pKey) {
    copy_pm_key(PmKeys::OldSession, lIndex, pKey);
}

extern "C" TARV_API uint32_t Tarv__GetMepInfoAbout1731Alarm(TARV_PM_KEY PmKey, char* pInfo) {
    constexpr char kFunction[] = "Tarv__GetMepInfoAbout1731Alarm";
    const std::uint8_t* region = attached_region(kFunction);
    if (region == nullptr) return 0;

    std::uint8_t pm[TARV_PM_KEY_SIZE];
    std::memcpy(pm, &PmKey, sizeof pm);
    const std::uint32_t session = pm[moid::kSessionIdOffset];
    if (session == 0 || session >= info(Table::PMSessionMoidArray).slots) {
        TARV_DEBUG(trace::kEnter, kFunction, "The session id is illegal!");
        return 0;
    }
    if (std::memcmp(entry(region, Table::PMSessionMoidArray, session), pm, sizeof pm) != 0) {
        TARV_DEBUG(trace::kEnter, kFunction, "Can not find the PM session!");
        return 0;
    }

    std::uint8_t mep_moid[TARV_MOID_SIZE];
    parent_key(mep_moid, pm, TARV_MOID_SIZE, TARV_CLASS_MEP);
    const std::uint32_t mep_slot =
        find_slot(region, Table::MepMoidArray, mep_moid, slot_hint(mep_moid, TARV_MOID_SIZE));
    if (mep_slot == kNotFound) {
        TARV_DEBUG(trace::kEnter, kFunction, "Can not find the MEP!");
        return 0;
    }
    std::uint8_t mep[TARV_MEP_RECORD_SIZE];
    std::memcpy(mep, entry(region, Table::MepDataArray, mep_slot), sizeof mep);

    // Asked before the MA and MD checks, also when those then fail.
    const bool c_vid = Lanx__GetSwitchMode() == 2 ||
                       Lanx__GetPbPortType(get(mep, mep::bySlot), get(mep, mep::byPort)) == 3;

    TARV_MANET_KEY manet_key;
    parent_key(reinterpret_cast<std::uint8_t*>(&manet_key), pm, TARV_MANET_KEY_SIZE, TARV_CLASS_MANET);
    if (Tarv__DoesMANetExist(manet_key) == 0) {
        TARV_DEBUG(trace::kEnter, kFunction, "Can not find the MA!");
        return 0;
    }
    // Cleared first: an MA removed between the two calls leaves an empty name.
    std::uint8_t manet[TARV_MANET_RECORD_SIZE] = {};
    Tarv__ReadMANet(manet_key, manet);

    std::uint8_t md_key[6];
    parent_key(md_key, pm, sizeof md_key, TARV_CLASS_MD);
    const std::uint32_t md_slot = find_slot(region, Table::MdMoidArray, md_key, slot_hint(md_key, sizeof md_key));
    if (md_slot == kNotFound) {
        TARV_DEBUG(trace::kEnter, kFunction, "Can not find the MD!");
        return 0;
    }
    std::uint8_t md[TARV_MD_RECORD_SIZE];
    std::memcpy(md, entry(region, Table::MdDataArray, md_slot), sizeof md);

    AlarmText text;
    text.put("S");
    text.put_int(static_cast<std::int16_t>(get(mep, mep::bySlot)));
    text.put(",P");
    text.put_int(static_cast<std::int16_t>(get(mep, mep::byPort)));
    text.put(",");
    text.put(c_vid ? "Cvid" : "Svid", 4);
    text.put_int(get(mep, mep::wVid));
    text.put(get(mep, mep::eDirection) == 1 ? ",Dn,L" : ",Up,L", 5);
    text.put_int(static_cast<std::int32_t>(get(md, md::eMdLevel) - 1u));
    text.put(",Id");
    text.put_int(static_cast<std::int16_t>(get(mep, mep::wMepId)));
    text.put(",MAID:");
    text.put_name(md + md::acMdName.offset, kMdNameChars);
    text.put("/");
    text.put_name(manet + manet::acMaName.offset, kMaNameChars);
    text.copy_to(pInfo);
    return 1;
}
