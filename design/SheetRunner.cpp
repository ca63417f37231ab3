#include <prsm/design/DeclaredWarnings.h>
#include <prsm/design/Grades.h>
#include <prsm/design/SheetRunner.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace prsm::design {

SheetRunner::SheetRunner(Block const& given, Sheet const& sheet, Design const& design,
                         std::vector<Warning>& deviceWarnings)
    : m_given(&given), m_sheet(&sheet), m_instance(sheet.create()) {
    m_device = deviceInputs(design.device, sheet, *m_instance, given.name, deviceWarnings);
    for (auto const& [cell, text] : m_device) m_instance->set(cell, text);
    for (Input const& input : given.inputs) {
        if (input.isReference()) continue;  // copied in at each calculation
        try {
            m_instance->set(input.cell, input.text);
        } catch (std::invalid_argument const& e) {
            throw DesignError(design.source + ": " + input.pointer + ": block \"" + given.name +
                              "\": " + e.what());
        }
    }
}

void SheetRunner::setInput(std::string const& name, std::string const& cell, std::string const& text) {
    CellInfo const* info = m_sheet->findCell(cell);
    if (info == nullptr || info->category != CellCategory::UserInput)
        throw DesignError("block \"" + name + "\": " + cell + " is not an input of " + m_given->model);
    if (DesignOwned const owned = designOwned(m_sheet->design(), cell))
        throw DesignError("block \"" + name + "\": cell " + cell + " is " + describe(owned));
    if (Input const* reference = m_given->reference(cell))
        throw DesignError("block \"" + name + "\": cell " + cell + " takes its value from block \"" +
                          reference->from + "\"");
    try {
        m_instance->set(cell, text);
    } catch (std::invalid_argument const& e) {
        throw DesignError("block \"" + name + "\": " + e.what());
    }
    auto const it =
        std::find_if(m_changes.begin(), m_changes.end(), [&](auto const& e) { return e.first == cell; });
    if (it != m_changes.end())
        it->second = text;
    else
        m_changes.emplace_back(cell, text);
    invalidate();
}

bool SheetRunner::clearInputs() {
    if (m_changes.empty()) return false;
    m_changes.clear();
    invalidate();
    return true;
}

bool SheetRunner::isGiven(std::string const& cell) const {
    return std::any_of(m_given->inputs.begin(), m_given->inputs.end(),
                       [&](Input const& input) { return input.cell == cell; }) ||
           std::any_of(m_changes.begin(), m_changes.end(),
                       [&](auto const& change) { return change.first == cell; });
}

void SheetRunner::restore(std::vector<double> const& voltage) {
    m_instance->resetUserInputs();
    for (auto const& [cell, text] : m_device) m_instance->set(cell, text);
    for (Input const& input : m_given->inputs)
        if (!input.isReference()) m_instance->set(input.cell, input.text);
    for (auto const& [cell, text] : m_changes) m_instance->set(cell, text);
    for (auto const& [cell, rail] : m_voltageCells) m_instance->setNumber(cell, voltage[rail]);
}

void SheetRunner::copyLinks(std::vector<SheetRunner> const& runners) {
    for (Link const& link : m_links) {
        SheetRunner const& source = runners[link.source];
        copyLinked(link, *source.m_sheet, *source.m_instance, *m_sheet, *m_instance);
    }
}

void SheetRunner::fail(std::string why) {
    m_error = std::move(why);
    m_dirty = false;
    m_changed = true;
}

double SheetRunner::number(std::size_t cell) const {
    double value = m_instance->storedNumber(cell);
    if (value >= kFloatNotSet) value = m_instance->evaluateNumber(cell);  // not computed by calculate()
    return value;
}

void SheetRunner::checkValidity(std::vector<double> const& power) {
    m_warnings.clear();
    m_validityDue = false;
    if (!m_error.empty()) return;
    std::string const& name = m_given->name;
    std::string const failure = failureOf([&] {
        // A block that draws nothing on any rail; with a list input out of its list that is usually why
        // (an unknown instance type has no capacitance row), and the design's totals lack it.
        bool const drawsNothing =
            !power.empty() && std::all_of(power.begin(), power.end(), [](double p) { return p == 0; });
        for (CellInfo const& cell : m_sheet->cells()) {
            if (cell.category != CellCategory::UserInput || cell.validityKey.empty()) continue;
            if (m_instance->isValid(cell.name) != 0) continue;
            std::string message = "value " + m_instance->evaluate(cell.name) + " is not valid";
            std::string const rule =
                cell.hasValidValues ? describeChoices(m_instance->validValues(cell.name)) : cell.rule;
            if (!rule.empty()) message += " (" + rule + ")";
            if (cell.hasValidValues && drawsNothing)
                message += "; the block gives 0 W and contributes nothing";
            m_warnings.push_back({name, cell.name, message});
        }
        for (auto& [cell, message] : declaredWarnings(*m_sheet, *m_instance))
            m_warnings.push_back({name, cell, std::move(message)});
    });
    if (!failure.empty()) m_warnings.push_back({name, "", "validity not checked: " + failure});
}

}  // namespace prsm::design
