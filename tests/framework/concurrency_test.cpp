// Several threads race to the first use of every registered sheet (its data file, its model, its
// dispatch tables and the common settings are all loaded on first use), each with its own parameter
// sets; the same sets evaluated afterwards one by one on this thread must give the same text for every
// cell, bit for bit. CTest runs each test in a process of its own, so in the suite this test is the
// first user of every singleton. Under ThreadSanitizer it also proves the first loads free of races.
#include <prsm/framework/PRSMException.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using prsm::CellCategory;
using prsm::CellInfo;
using prsm::CellType;
using prsm::Sheet;

constexpr int kThreads = 6;

std::vector<std::string> splitChoices(std::string const& list) {
    std::vector<std::string> choices;
    std::istringstream in(list);
    for (std::string item; std::getline(in, item, ',');)
        if (!item.empty()) choices.push_back(item);
    return choices;
}

// Parameter set `k` of a sheet, written through the registry by cell name: numeric inputs take their
// declared default (1 when it is not a number) scaled by a factor that depends on k and on the input's
// place; a string input with a list of choices takes the choice that k and its place point at. Every
// cell is then read back. A throw ends the record with its message: the same set must throw the same.
std::string evaluateSet(Sheet const& sheet, int k) {
    std::ostringstream record;
    try {
        auto instance = sheet.create();
        int place = 0;
        for (CellInfo const& cell : sheet.cells()) {
            if (cell.category != CellCategory::UserInput) continue;
            ++place;
            if (cell.type == CellType::String) {
                if (!cell.hasValidValues) continue;
                std::vector<std::string> const choices = splitChoices(instance->validValues(cell.name));
                if (!choices.empty()) instance->set(cell.name, choices[(k + place) % choices.size()]);
                continue;
            }
            char* end = nullptr;
            double base = std::strtod(cell.declaredDefault.c_str(), &end);
            if (cell.declaredDefault.empty() || *end != '\0' || base <= 0) base = 1;
            double const factor = 1 + 0.25 * ((k + place) % 5);
            if (cell.type == CellType::Int)
                instance->set(cell.name, std::to_string(static_cast<long>(base * factor + 0.5)));
            else
                instance->set(cell.name, std::to_string(base * factor));
        }
        instance->calculate();
        for (CellInfo const& cell : sheet.cells())
            record << cell.name << '=' << instance->evaluate(cell.name) << '\n';
        record << instance->reflect();
    } catch (PRSMException const& e) {
        record << "throws " << e.what();
    } catch (std::exception const& e) {
        record << "throws " << e.what();
    }
    return record.str();
}

TEST(Concurrency, FirstUseFromManyThreadsMatchesASequentialRun) {
    std::vector<Sheet const*> const sheets = prsm::SheetRegistry::instance().sheets();
    ASSERT_GT(sheets.size(), 1u);

    // results[t][s]: thread t's set (number t) of sheet s. Each thread starts at another sheet, so
    // every sheet sees several first users at once; all threads wait to start together.
    std::vector<std::vector<std::string>> results(kThreads, std::vector<std::string>(sheets.size()));
    std::atomic<int> waiting{kThreads};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            waiting.fetch_sub(1);
            while (waiting.load() > 0) std::this_thread::yield();
            for (std::size_t i = 0; i < sheets.size(); ++i) {
                std::size_t const s = (i + static_cast<std::size_t>(t)) % sheets.size();
                results[t][s] = evaluateSet(*sheets[s], t);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();

    for (std::size_t s = 0; s < sheets.size(); ++s) {
        for (int t = 0; t < kThreads; ++t)
            EXPECT_EQ(results[t][s], evaluateSet(*sheets[s], t)) << sheets[s]->name() << ", set " << t;
        // The sets are distinct: with a numeric input, two of them differ (in their inputs at least).
        bool numericInput = false;
        for (CellInfo const& cell : sheets[s]->cells())
            numericInput |= cell.category == CellCategory::UserInput && cell.type != CellType::String;
        if (numericInput && results[0][s].rfind("throws", 0) != 0) {
            EXPECT_NE(results[0][s], results[1][s]) << sheets[s]->name();
        }
    }
}

}  // namespace
