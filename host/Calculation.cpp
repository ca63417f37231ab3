#include <prsm/host/Calculation.h>
#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>

#include <memory>

namespace prsm::host {

CalcResult runCalculation(Sheet const& sheet, std::vector<ResolvedInput> const& inputs) {
    std::unique_ptr<SheetInstance> const instance = sheet.create();
    try {
        for (ResolvedInput const& input : inputs) instance->set(input.cell->name, input.text);
    } catch (std::invalid_argument const& e) {
        throw HostError(kExitBadInput, e.what());  // resolveInputs checks first; kept for safety
    }

    CalcResult result;
    result.model = sheet.name();
    try {
        instance->calculate();
        for (CellInfo const& cell : sheet.cells()) {
            if (cell.category == CellCategory::ModelOutput)
                result.outputs.push_back({cell.name, cell.type, instance->evaluate(cell.name)});
            if (cell.category != CellCategory::UserInput) continue;
            std::string value = instance->evaluate(cell.name);
            if (!cell.validityKey.empty()) {
                bool const valid = instance->isValid(cell.name) != 0;
                std::string const choices =
                    !valid && cell.hasValidValues ? instance->validValues(cell.name) : "";
                result.checks.push_back({cell.name, cell.type, value, cell.rule, choices, valid});
            }
            result.inputs.push_back({cell.name, cell.type, std::move(value)});
        }
        result.dump = instance->reflect();
    } catch (...) {
        throw HostError(kExitDataFailure,
                        "calculating " + sheet.name() + " failed: " + describeCurrentException());
    }
    return result;
}

}  // namespace prsm::host
