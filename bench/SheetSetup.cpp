#include "BenchSupport.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>

namespace prsm::bench {
namespace {

std::string formatValue(CellType type, double value) {
    char text[40];
    if (type == CellType::Int)
        std::snprintf(text, sizeof text, "%ld", std::lround(value));
    else
        std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

// A second value for the input: the first candidate that differs from the default, that the input's
// rule accepts and with which the sheet still calculates.
void chooseToggle(SheetPlan& plan, CellInfo const& input) {
    auto instance = plan.sheet->create();
    instance->calculate();
    std::string const first = instance->evaluate(input.name);
    double const value = std::strtod(first.c_str(), nullptr);
    double const candidates[] = {value * 2, value * 0.5, value + 1, value - 1, 1, 0.5, 0};
    std::string fallback;
    for (double const candidate : candidates) {
        std::string const text = formatValue(input.type, candidate);
        if (text == first) continue;
        if (fallback.empty()) fallback = text;
        try {
            auto probe = plan.sheet->create();
            probe->set(input.name, text);
            if (probe->isValid(input.name) != 1) continue;
            probe->calculate();
        } catch (std::exception const&) {
            continue;
        }
        plan.toggleText[0] = first;
        plan.toggleText[1] = text;
        plan.toggleChecked = true;
        return;
    }
    plan.toggleText[0] = first;
    plan.toggleText[1] = fallback;
}

SheetPlan planFor(Sheet const& sheet) {
    SheetPlan plan;
    plan.sheet = &sheet;
    plan.name = sheet.name();
    try {
        auto instance = sheet.create();
        instance->calculate();
    } catch (std::exception const& e) {
        plan.error = std::string("calculate on default inputs throws: ") + e.what();
        return plan;
    }
    for (CellInfo const& cell : sheet.cells()) {
        if (!plan.hasToggle && cell.category == CellCategory::UserInput && cell.type != CellType::String) {
            plan.hasToggle = true;
            plan.toggleInput = cell.name;
            plan.toggleType = cell.type;
        }
        if (!plan.hasFloatOutput && cell.category == CellCategory::ModelOutput &&
            cell.type == CellType::Float) {
            plan.hasFloatOutput = true;
            plan.floatOutput = cell.name;
        }
    }
    if (plan.hasToggle) {
        try {
            chooseToggle(plan, *sheet.findCell(plan.toggleInput));
        } catch (std::exception const& e) {
            plan.hasToggle = false;
            std::fprintf(stderr, "%s: no second value for %s: %s\n", plan.name.c_str(),
                         plan.toggleInput.c_str(), e.what());
        }
    }
    return plan;
}

}  // namespace

std::vector<SheetPlan> const& sheetPlans() {
    static std::vector<SheetPlan> const plans = [] {
        std::vector<SheetPlan> all;
        for (Sheet const* sheet : SheetRegistry::instance().sheets()) all.push_back(planFor(*sheet));
        return all;
    }();
    return plans;
}

SheetPlan const* findPlan(std::string const& name) {
    for (SheetPlan const& plan : sheetPlans())
        if (plan.name == name) return &plan;
    return nullptr;
}

std::string dataRoot() {
    char const* variable = std::getenv("QDI_DATADIR");
    std::string dirs = variable != nullptr ? variable : PRSM_BENCH_SOURCE_DATADIR;
    return dirs.substr(0, dirs.find(':'));
}

}  // namespace prsm::bench
