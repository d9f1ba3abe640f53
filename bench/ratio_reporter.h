// Reporting of benchmarks that come in pairs: "<case>/library" and
// "<case>/baseline", measured in the same run. After the usual table the
// reporter prints, per case, both times and the ratio baseline / library
// (above 1: the library is faster). With repetitions the median is used.
#ifndef TARV_BENCH_RATIO_REPORTER_H
#define TARV_BENCH_RATIO_REPORTER_H

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace tarv::bench {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    // Colours only on a terminal, so that a redirected report stays plain.
    explicit RatioReporter(const char* heading)
        : ConsoleReporter(isatty(STDOUT_FILENO) != 0 ? OO_Defaults : OO_Tabular), heading_(heading) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& r : runs) {
            if (r.error_occurred) continue;
            const bool median = r.run_type == Run::RT_Aggregate && r.aggregate_name == "median";
            if (r.run_type == Run::RT_Aggregate && !median) continue;
            const std::string name = r.run_name.function_name;
            if (median || ns_.count(name) == 0) ns_[name] = r.GetAdjustedRealTime() * to_ns(r.time_unit);
            const auto slash = name.rfind('/');
            if (slash != std::string::npos && order_.count(name.substr(0, slash)) == 0) {
                order_[name.substr(0, slash)] = order_.size();
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void Finalize() override {
        ConsoleReporter::Finalize();
        std::vector<std::string> cases(order_.size());
        for (const auto& [name, index] : order_) cases[index] = name;
        std::printf("\n%-24s %14s %14s %8s\n", heading_, "library ns", "baseline ns", "ratio");
        for (const std::string& c : cases) {
            const auto lib = ns_.find(c + "/library");
            const auto base = ns_.find(c + "/baseline");
            if (lib == ns_.end() || base == ns_.end()) continue;
            std::printf("%-24s %14.1f %14.1f %7.2fx\n", c.c_str(), lib->second, base->second,
                        base->second / lib->second);
        }
        std::fflush(stdout);
    }

private:
    static double to_ns(benchmark::TimeUnit u) {
        switch (u) {
            case benchmark::kNanosecond: return 1.0;
            case benchmark::kMicrosecond: return 1e3;
            case benchmark::kMillisecond: return 1e6;
            case benchmark::kSecond: return 1e9;
        }
        return 1.0;
    }
    const char* heading_;
    std::map<std::string, double> ns_;
    std::map<std::string, std::size_t> order_;
};

// Runs the registered benchmarks with the ratio report.
inline int run_with_ratios(int argc, char** argv, const char* heading) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter(heading);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}

}  // namespace tarv::bench

#endif
