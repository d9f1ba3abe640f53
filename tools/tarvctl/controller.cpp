#include "controller.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "common/status.h"
#include "tarv/tarv.h"

namespace tarvctl {

MutableBytes ListWriter::add(std::initializer_list<std::uint32_t> ids, std::uint8_t session) {
    const std::vector<std::uint8_t> key = make_key(def_, ids, session);
    bytes_.insert(bytes_.end(), key.begin(), key.end());
    bytes_.resize(bytes_.size() + def_.record);
    return MutableBytes(bytes_).last(def_.record);
}

void ListWriter::add(Bytes key, Bytes record) {
    bytes_.insert(bytes_.end(), key.begin(), key.end());
    bytes_.insert(bytes_.end(), record.begin(), record.end());
}

MutableBytes ListWriter::single() {
    bytes_.assign(def_.record, 0);
    return bytes_;
}

void ListWriter::write() {
    if (def_.rule != Rule::Singleton) bytes_.resize(bytes_.size() + def_.key);  // the terminator
    const std::int32_t result = Tarv__SetConfig(def_.id, bytes_.data());
    if (result != 0)
        throw Failure(kExitIo, fmt::format("Tarv__SetConfig refused class {} (result {})", def_.id, result));
}

void put_mep_alarm(std::uint8_t* region, std::uint32_t slot, std::uint16_t bits, std::string_view text) {
    using tarv::Table;
    tarv::set(tarv::entry(region, Table::MepDataArray, slot), tarv::mep::wAlarmBits, bits);
    auto* out = tarv::entry(region, Table::MepAlarmTextArray, slot);
    const std::size_t n = std::min<std::size_t>(text.size(), tarv::alarm_text::kMaxChars);
    std::memset(out, 0, tarv::alarm_text::kMaxChars + 1);
    std::memcpy(out, text.data(), n);
}

void put_mep_old_moid(std::uint8_t* region, std::uint32_t slot, Bytes moid) {
    std::memcpy(tarv::entry(region, tarv::Table::MepOldMoidArray, slot), moid.data(), TARV_MOID_SIZE);
}

void put_pm_alarm(std::uint8_t* region, std::uint32_t slot, Bytes key, std::uint16_t word) {
    using tarv::Table;
    std::memcpy(tarv::entry(region, Table::PMSessionOldMoidArray, slot), key.data(), TARV_PM_KEY_SIZE);
    std::memcpy(tarv::entry(region, Table::PMAlarmMoidArray, slot), key.data(), TARV_PM_KEY_SIZE);
    store_le16(tarv::entry(region, Table::PMAlarmBlock, slot), word);
}

void put_throughput_status(std::uint8_t* region, std::uint32_t slot, std::uint32_t status) {
    tarv::set(tarv::entry(region, tarv::Table::ThroughputDataArray, slot), tarv::throughput::eEnableStatus, status);
}

}  // namespace tarvctl
