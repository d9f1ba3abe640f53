// tarvctl metrics: the region's state in the Prometheus text exposition
// format, on standard output or as DIR/tarv.prom for node_exporter's
// textfile collector, once or every --interval seconds.
//
// Every series is a gauge: the region holds states and last results, no
// counters. Objects are labelled by their identifiers (md, ma, mep, session,
// test); names are joined in through the tarv_md_info and tarv_ma_info
// series, so that renaming an MD does not start new alarm series.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commands.h"
#include "common/objects.h"
#include "common/records.h"
#include "common/status.h"
#include "stop.h"
#include "tarv/tarv.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

// A label value: the bytes as text views show them (control bytes and bytes
// from 0x7f as \xHH), then the format's escapes for backslash and quote.
std::string label_value(std::string_view raw) {
    std::string out;
    for (const char ch : raw) {
        const auto byte = static_cast<unsigned char>(ch);
        if (byte < 0x20 || byte >= 0x7f)
            out += fmt::format("\\\\x{:02x}", byte);
        else if (ch == '\\' || ch == '"')
            out += {'\\', ch};
        else
            out += ch;
    }
    return out;
}

// A text field's bytes up to its first zero.
std::string_view field_text(Bytes field) {
    std::string_view text(reinterpret_cast<const char*>(field.data()), field.size());
    return text.substr(0, text.find('\0'));
}

class Exposition {
public:
    // Starts a metric family: its HELP and TYPE lines.
    void family(std::string_view name, std::string_view help) {
        text_ += fmt::format("# HELP {} {}\n# TYPE {} gauge\n", name, help, name);
        name_ = name;
    }
    // One sample of the current family; `labels` already formatted.
    void sample(std::string_view labels, double v) {
        text_ += labels.empty() ? fmt::format("{} {}\n", name_, v) : fmt::format("{}{{{}}} {}\n", name_, labels, v);
    }
    [[nodiscard]] const std::string& text() const noexcept { return text_; }

private:
    std::string text_;
    std::string name_;
};

std::string mep_labels(const Mep& m) {
    return fmt::format(R"(md="{}",ma="{}",mep="{}",mep_id="{}",port="{}",vlan="{}")", m.md, m.ma, m.mep, m.id,
                       port_text(m.slot, m.port), m.vid);
}

// A decimal number of a result text scaled by 10 to the power `exponent`,
// converted once, so that "96.40" Mbit/s is exactly 96400000 bit/s (and
// 12050000 bytes per second).
double scaled(std::string_view digits, int exponent) {
    const std::string text = fmt::format("{}e{}", digits, exponent);
    double v = 0;
    (void)std::from_chars(text.data(), text.data() + text.size(), v);
    return v;
}

// "1/1/1 test 1: 96.40 Mbit/s, frame loss 0.25 %", a history result of this
// test: its rate in bytes per second and its frame loss as a ratio.
std::optional<std::pair<double, double>> parse_result(std::string_view text, const Throughput& t) {
    const std::string head = fmt::format("{}/{}/{} test {}: ", t.md, t.ma, t.mep, t.test);
    if (text.substr(0, head.size()) != head) return std::nullopt;
    text.remove_prefix(head.size());
    auto number = [&text](std::string_view after) -> std::optional<std::string_view> {
        const std::size_t end = text.find(after);
        const std::string_view digits = text.substr(0, end);
        if (end == std::string_view::npos || digits.empty() ||
            digits.find_first_not_of("0123456789.") != std::string_view::npos)
            return std::nullopt;
        text.remove_prefix(end + after.size());
        return digits;
    };
    const auto rate = number(" Mbit/s, frame loss ");
    const auto loss = rate ? number(" %") : std::nullopt;
    if (!loss || !text.empty()) return std::nullopt;
    return std::pair{scaled(*rate, 6) / 8, scaled(*loss, -2)};
}

void alarm_families(Exposition& out, std::string_view what, std::string_view who,
                    const std::vector<std::pair<std::string, std::uint16_t>>& words) {
    out.family(fmt::format("tarv_{}_alarm_bit", what),
               fmt::format("Alarm bits of each {}, by bit number (1 raised, 0 clear).", who));
    for (const auto& [labels, word] : words)
        for (unsigned bit = 0; bit < 16; ++bit)
            out.sample(fmt::format(R"({},bit="{}")", labels, bit), (unsigned{word} >> bit) & 1U);
    out.family(fmt::format("tarv_{}_alarm", what), fmt::format("Whether any alarm bit of the {} is raised.", who));
    for (const auto& [labels, word] : words) out.sample(labels, word != 0 ? 1 : 0);
}

std::string render(const DataRegion* region, const std::string& where) {
    Exposition out;
    out.family("tarv_region_attached", "Whether the OAM data region exists and is attached (1) or not (0).");
    out.sample(fmt::format(R"(region="{}")", label_value(where)), region != nullptr ? 1 : 0);
    if (region == nullptr) return out.text();

    const Configuration c = Configuration::read();
    out.family("tarv_objects", "Objects the region holds, by class.");
    const std::pair<const char*, std::size_t> counts[] = {
        {"md", c.mds.size()},   {"ma", c.mas.size()},
        {"mep", c.meps.size()}, {"mip", c.mips.size()},
        {"pm_session", c.pm.size()}, {"throughput_test", c.throughput.size()},
        {"bandwidth_notification", c.bwn.size()}};
    for (const auto& [name, n] : counts) out.sample(fmt::format(R"(class="{}")", name), static_cast<double>(n));

    const TransferList mds = TransferList::read(class_of(cls::kMd));
    out.family("tarv_md_info", "Name and level of each MD; the value is always 1.");
    for (std::size_t i = 0; i < mds.size(); ++i)
        out.sample(fmt::format(R"(md="{}",name="{}",level="{}")", key_ids(mds.def(), mds.key(i)).id[0],
                               label_value(field_text(bytes(mds.record(i), field::acMdName))),
                               std::int64_t{value(mds.record(i), field::eMdLevel)} - 1),
                   1);
    const TransferList mas = TransferList::read(class_of(cls::kMaNet));
    out.family("tarv_ma_info", "Name of each MA; the value is always 1.");
    for (std::size_t i = 0; i < mas.size(); ++i) {
        const KeyIds k = key_ids(mas.def(), mas.key(i));
        out.sample(fmt::format(R"(md="{}",ma="{}",name="{}")", k.id[0], k.id[1],
                               label_value(field_text(bytes(mas.record(i), field::acMaName)))),
                   1);
    }

    std::array<std::uint16_t, TARV_MEP_SLOTS> mep_words{};
    Tarv__GetAlarms(mep_words.data());
    std::vector<std::pair<std::string, std::uint16_t>> words;
    for (const Mep& m : c.meps) {
        const std::vector<std::uint8_t> key = make_key(class_of(cls::kMep), {m.md, m.ma, m.mep});
        const std::uint32_t slot =
            tarv::find_slot(region->bytes().data(), tarv::Table::MepMoidArray, key.data(), (m.mep - 1) & 0xFFFFu);
        words.emplace_back(mep_labels(m), slot < TARV_MEP_SLOTS ? mep_words[slot] : 0);
    }
    alarm_families(out, "mep", "MEP (as Tarv__GetAlarms reports it)", words);

    std::array<std::uint8_t, TARV_PM_ALARM_BLOCK_SIZE> block{};
    Tarv__GetPMAlarms(block.data());
    words.clear();
    for (const PmSession& s : c.pm)
        words.emplace_back(fmt::format(R"(md="{}",ma="{}",mep="{}",session="{}")", s.md, s.ma, s.mep, s.session),
                           s.session < TARV_PM_SLOTS ? le16(block.data() + std::size_t{s.session} * 2) : 0);
    alarm_families(out, "pm_session", "PM session", words);

    auto test_labels = [](const Throughput& t) {
        return fmt::format(R"(md="{}",ma="{}",mep="{}",test="{}")", t.md, t.ma, t.mep, t.test);
    };
    out.family("tarv_throughput_test_running", "Whether the throughput test is running (enabled by the controller).");
    for (const Throughput& t : c.throughput) out.sample(test_labels(t), t.status == 2 ? 1 : 0);
    // The last result of each test: the history record with the highest id.
    std::vector<std::pair<const Throughput*, std::pair<double, double>>> last;
    for (const Throughput& t : c.throughput) {
        std::uint32_t best = 0;
        std::optional<std::pair<double, double>> found;
        for (const HistoryRecord& h : c.history)
            if (const auto r = parse_result(h.result, t); r && h.id >= best) {
                best = h.id;
                found = r;
            }
        if (found) last.emplace_back(&t, *found);
    }
    out.family("tarv_throughput_rate_bytes_per_second", "Rate the throughput test measured last, in bytes per second.");
    for (const auto& [t, r] : last) out.sample(test_labels(*t), r.first);
    out.family("tarv_throughput_frame_loss_ratio", "Frame loss the throughput test measured last, as a ratio.");
    for (const auto& [t, r] : last) out.sample(test_labels(*t), r.second);
    return out.text();
}

// Writes DIR/tarv.prom as the textfile collector needs it: never half
// written, so through a temporary file in DIR, synced, then renamed.
void write_textfile(const std::string& dir, const std::string& text) {
    const std::string target = dir + "/tarv.prom";
    std::string temp = dir + "/.tarv.prom.XXXXXX";
    const int fd = mkstemp(temp.data());
    if (fd < 0) throw Failure(kExitIo, fmt::format("cannot create a file in '{}': {}", dir, error_text(errno)));
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
    }
    const int error = done < text.size() ? errno : 0;
    const bool ok = error == 0 && fchmod(fd, 0644) == 0 && fsync(fd) == 0;
    const int saved = ok ? 0 : (error != 0 ? error : errno);
    if (close(fd) != 0 || !ok || rename(temp.c_str(), target.c_str()) != 0) {
        const int why = saved != 0 ? saved : errno;
        unlink(temp.c_str());
        throw Failure(kExitIo, fmt::format("cannot write '{}': {}", target, error_text(why)));
    }
}

int metrics(const Options& options, const std::string& textfile, double interval) {
    catch_stop_signals();
    std::unique_ptr<DataRegion> region;
    const std::string where = options.region_file.empty() ? object_name(kDataRegion) : "file " + options.region_file;
    do {
        // A region file must be usable; shared memory may come later.
        if (region == nullptr && (!options.region_file.empty() || region_exists(kDataRegion)))
            region = std::make_unique<DataRegion>(DataRegion::attach(options));
        const std::string text = render(region.get(), where);
        if (textfile.empty()) {
            fmt::print("{}", text);
            (void)std::fflush(stdout);
        } else {
            write_textfile(textfile, text);
        }
    } while (interval > 0 && sleep_ms(std::max(1U, static_cast<std::uint32_t>(interval * 1000))));
    return kExitOk;
}

}  // namespace

void add_metrics(CLI::App& app, const Options& options, Commands& commands) {
    struct Args {
        std::string textfile;
        double interval = 0;
    };
    auto args = std::make_shared<Args>();
    CLI::App* cmd = app.add_subcommand("metrics", "The region's state as Prometheus metrics");
    cmd->footer(
        "Print the region's state in the Prometheus text exposition format, every series a gauge: "
        "tarv_region_attached; tarv_objects by class; tarv_md_info and tarv_ma_info (names); per MEP "
        "(labels md, ma, mep, mep_id, port, vlan) tarv_mep_alarm_bit by bit and tarv_mep_alarm; per PM "
        "session tarv_pm_session_alarm_bit and tarv_pm_session_alarm; per throughput test "
        "tarv_throughput_test_running and, from its last history result, "
        "tarv_throughput_rate_bytes_per_second and tarv_throughput_frame_loss_ratio. A missing "
        "shared-memory region gives tarv_region_attached 0 and nothing else.\n"
        "--textfile DIR writes DIR/tarv.prom instead, atomically, for node_exporter's textfile collector. "
        "--interval repeats until interrupted (SIGINT, SIGTERM; exit status 0).");
    cmd->add_option("--textfile", args->textfile, "Write DIR/tarv.prom (temporary file, fsync, rename)")
        ->type_name("DIR")
        ->check(CLI::ExistingDirectory);
    cmd->add_option("--interval", args->interval, "Seconds between rounds (default 0: once)")
        ->check(CLI::Range(0.0, 86400.0));
    commands.add(cmd, [&options, args] { return metrics(options, args->textfile, args->interval); });
}

}  // namespace tarvctl
