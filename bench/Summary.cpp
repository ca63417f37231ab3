// The console table of Google Benchmark, followed by the figures that the targets compare: heap
// allocations per evaluation, the logic-element sheet against its straight-line limit, data loading
// against libconfig's own parse, and two threads against one. With repetitions the median is used.
#include "BenchSupport.h"

#include <unistd.h>
#include <cstdio>
#include <map>
#include <ostream>
#include <set>

namespace prsm::bench {
namespace {

struct Result {
    double nanoseconds = 0;     // wall time per iteration
    double cpuNanoseconds = 0;  // CPU time of all threads over all their iterations
    std::map<std::string, double> counters;
    bool isMedian = false;
    bool failed = false;
};

double toNanoseconds(double value, benchmark::TimeUnit unit) {
    switch (unit) {
        case benchmark::kNanosecond:
            return value;
        case benchmark::kMicrosecond:
            return value * 1e3;
        case benchmark::kMillisecond:
            return value * 1e6;
        case benchmark::kSecond:
            return value * 1e9;
    }
    return value;
}

std::string format(char const* pattern, double value) {
    char text[64];
    std::snprintf(text, sizeof text, pattern, value);
    return text;
}

class SummaryReporter final : public benchmark::ConsoleReporter {
public:
    SummaryReporter() : ConsoleReporter(isatty(STDOUT_FILENO) ? OO_Color : OO_None) {}

    void ReportRuns(std::vector<Run> const& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (Run const& run : runs) {
            bool const median = run.run_type == Run::RT_Aggregate;
            if (median && run.aggregate_name != "median") continue;
            Result& result = m_results[run.run_name.str()];
            if (result.isMedian && !median) continue;
            result.isMedian = median;
            result.failed = run.error_occurred;
            result.nanoseconds = toNanoseconds(run.GetAdjustedRealTime(), run.time_unit);
            result.cpuNanoseconds = toNanoseconds(run.GetAdjustedCPUTime(), run.time_unit);
            result.counters.clear();
            for (auto const& [name, counter] : run.counters) result.counters[name] = counter.value;
        }
    }

    void Finalize() override {
        ConsoleReporter::Finalize();
        std::ostream& out = GetOutputStream();
        out << "\n==== Targets ====\n";
        allocations(out);
        limit(out);
        speedups(out);
        loading(out);
        threads(out);
        out.flush();
    }

private:
    Result const* find(std::string const& name) const {
        auto const it = m_results.find(name);
        return it == m_results.end() || it->second.failed ? nullptr : &it->second;
    }

    std::string allocs(std::string const& name) const {
        Result const* result = find(name);
        if (result == nullptr) return "-";
        auto const it = result->counters.find("allocs");
        return it == result->counters.end() ? "-" : format("%.3g", it->second);
    }

    void allocations(std::ostream& out) const {
        out << "\nHeap allocations per call (target: 0 for calculate)\n";
        char line[256];
        std::snprintf(line, sizeof line, "%-24s %10s %14s %16s %12s %12s %8s\n", "sheet", "calculate",
                      "set_calculate", "write_calculate", "evaluate", "set_by_name", "target");
        out << line;
        for (SheetPlan const& plan : sheetPlans()) {
            if (!plan.error.empty()) {
                out << plan.name << ": not measured (" << plan.error << ")\n";
                continue;
            }
            std::string const calc = allocs("calculate/" + plan.name);
            if (calc == "-" && find("typed/calculate/" + plan.name) == nullptr) continue;  // filtered out
            std::string const write = allocs("typed/write_calculate/" + plan.name);
            std::string const setCalc = allocs("set_calculate/" + plan.name);
            char const* verdict = "-";
            if (calc != "-") verdict = calc == "0" && (write == "-" || write == "0") ? "met" : "MISSED";
            std::snprintf(line, sizeof line, "%-24s %10s %14s %16s %12s %12s %8s\n", plan.name.c_str(),
                          calc.c_str(), setCalc.c_str(), write.c_str(),
                          allocs("evaluate_by_name/" + plan.name).c_str(),
                          allocs("set_by_name/" + plan.name).c_str(), verdict);
            out << line;
        }
    }

    void limit(std::ostream& out) const {
        Result const* real = find("typed/calculate/TalvexCleLogic");
        Result const* bound = find("limit/straight_line/TalvexCleLogic");
        if (real == nullptr || bound == nullptr || bound->cpuNanoseconds <= 0) return;
        double const ratio = real->cpuNanoseconds / bound->cpuNanoseconds;
        out << "\nLogic-element calculate against its straight-line limit, CPU time (target: at most 10 "
               "times)\n"
            << "  calculate " << format("%.1f", real->cpuNanoseconds) << " ns, straight line "
            << format("%.1f", bound->cpuNanoseconds) << " ns: " << format("%.1f", ratio) << " times, "
            << (ratio <= 10 ? "met" : "MISSED") << "\n";
    }

    // Each sheet's typed calculate against the figure recorded before the table lookups were
    // resolved at load (bench/README.md, median of 5, CPU ns, same machine).
    void speedups(std::ostream& out) const {
        static std::map<std::string, double> const before = {
            {"TalvexAie", 886},   {"TalvexAie2", 1024}, {"TalvexCleLogic", 2289}, {"TalvexClock", 446},
            {"TalvexDpll", 830},  {"TalvexMmcm", 1272}, {"TalvexNoc", 545},       {"TalvexPspll", 329},
            {"TalvexX5Pll", 722}, {"TalvexXpll", 622}};
        bool header = false;
        char line[256];
        for (auto const& [sheet, figure] : before) {
            Result const* now = find("typed/calculate/" + sheet);
            if (now == nullptr || now->cpuNanoseconds <= 0) continue;
            if (!header) {
                out << "\nTyped calculate against the recorded figure, CPU ns (target: at least 3 times "
                       "faster)\n";
                std::snprintf(line, sizeof line, "%-24s %10s %10s %8s %8s\n", "sheet", "before", "now",
                              "speed-up", "target");
                out << line;
                header = true;
            }
            double const speedup = figure / now->cpuNanoseconds;
            std::snprintf(line, sizeof line, "%-24s %10.0f %10.1f %8.2f %8s\n", sheet.c_str(), figure,
                          now->cpuNanoseconds, speedup, speedup >= 3 ? "met" : "MISSED");
            out << line;
        }
    }

    void loading(std::ostream& out) const {
        std::set<std::string> files;
        std::string const prefix = "load/libconfig_parse/";
        for (auto const& [name, result] : m_results)
            if (name.compare(0, prefix.size(), prefix) == 0) files.insert(name.substr(prefix.size()));
        if (files.empty()) return;
        out << "\nLoading a data file, CPU microseconds (target: data object at most 1.5 times libconfig's "
               "parse)\n";
        char line[256];
        std::snprintf(line, sizeof line, "%-40s %10s %7s %7s %9s %12s %6s %8s\n", "file", "libconfig",
                      "locate", "head", "readFile", "data object", "ratio", "target");
        out << line;
        for (std::string const& file : files) {
            Result const* parse = find(prefix + file);
            Result const* read = find("load/data_readFile/" + file);
            Result const* object = find("load/data_object/" + file);
            auto const us = [](Result const* r) {
                return r == nullptr ? std::string("-") : format("%.1f", r->cpuNanoseconds / 1e3);
            };
            std::string ratio = "-", verdict = "no class";
            if (parse != nullptr && object != nullptr && parse->cpuNanoseconds > 0) {
                double const value = object->cpuNanoseconds / parse->cpuNanoseconds;
                ratio = format("%.2f", value);
                verdict = value <= 1.5 ? "met" : "MISSED";
            }
            std::snprintf(line, sizeof line, "%-40s %10s %7s %7s %9s %12s %6s %8s\n", file.c_str(),
                          us(parse).c_str(), us(find("load/data_locate/" + file)).c_str(),
                          us(find("load/head_read/" + file)).c_str(), us(read).c_str(), us(object).c_str(),
                          ratio.c_str(), verdict.c_str());
            out << line;
        }
    }

    // Wall-clock evaluations per second; the CPU time of one evaluation with one and with two threads
    // (equal times: the threads do not slow each other down); and the cores the run actually got, CPU
    // time over wall time (below the thread count: other processes held the cores).
    void threads(std::ostream& out) const {
        out << "\nThroughput, evaluations per second (target: two threads at least 1.8 times one)\n";
        char line[256];
        std::snprintf(line, sizeof line, "%-24s %12s %12s %7s %8s %14s %14s %8s %8s\n", "sheet", "1 thread",
                      "2 threads", "ratio", "target", "CPU ns/eval 1", "CPU ns/eval 2", "cores 1", "cores 2");
        out << line;
        for (SheetPlan const& plan : sheetPlans()) {
            Result const* one = find("throughput/" + plan.name + "/real_time/threads:1");
            Result const* two = find("throughput/" + plan.name + "/real_time/threads:2");
            if (one == nullptr || two == nullptr) continue;
            double const rate1 =
                one->counters.count("items_per_second") ? one->counters.at("items_per_second") : 0;
            double const rate2 =
                two->counters.count("items_per_second") ? two->counters.at("items_per_second") : 0;
            if (rate1 <= 0) continue;
            double const ratio = rate2 / rate1;
            auto const cores = [](Result const* r) {
                return r->nanoseconds > 0 ? r->cpuNanoseconds / r->nanoseconds : 0;
            };
            std::snprintf(line, sizeof line, "%-24s %12.4g %12.4g %7.2f %8s %14.1f %14.1f %8.2f %8.2f\n",
                          plan.name.c_str(), rate1, rate2, ratio, ratio >= 1.8 ? "met" : "MISSED",
                          one->cpuNanoseconds, two->cpuNanoseconds, cores(one), cores(two));
            out << line;
        }
    }

    std::map<std::string, Result> m_results;
};

}  // namespace

benchmark::BenchmarkReporter& summaryReporter() {
    static SummaryReporter reporter;
    return reporter;
}

}  // namespace prsm::bench
