#include <prsm/host/Suggest.h>
#include <prsm/host/SweepTarget.h>

namespace prsm::host {

namespace {

Quantity const* findIn(std::vector<Quantity> const& quantities, std::string const& name) {
    for (Quantity const& quantity : quantities)
        if (quantity.name == name) return &quantity;
    return nullptr;
}

class SheetEvaluation final : public TargetEvaluation {
public:
    explicit SheetEvaluation(std::unique_ptr<SheetInstance> instance) : m_instance(std::move(instance)) {}
    void reset() override { m_instance->resetUserInputs(); }
    void set(std::string const& name, std::string const& text) override { m_instance->set(name, text); }
    void evaluate() override { m_instance->calculate(); }
    std::string read(std::string const& name) override { return m_instance->evaluate(name); }

private:
    std::unique_ptr<SheetInstance> m_instance;
};

}  // namespace

Quantity const* SweepTarget::findVariable(std::string const& name) const {
    return findIn(variables(), name);
}

Quantity const* SweepTarget::findOutput(std::string const& name) const {
    return findIn(outputs(), name);
}

std::string SweepTarget::outputsHint() const {
    return "`prsm cells " + name() + " --category output` lists the outputs";
}

std::string cellUnit(CellInfo const& cell) {
    return cell.unit;
}

SheetTarget::SheetTarget(Sheet const& sheet) : m_sheet(sheet) {
    for (CellInfo const& cell : sheet.cells()) {
        Quantity quantity{cell.name, cell.type, cellUnit(cell), cell.description};
        if (cell.category == CellCategory::UserInput) m_variables.push_back(quantity);
        if (cell.category == CellCategory::ModelOutput) m_outputs.push_back(quantity);
    }
}

std::string SheetTarget::notAVariable(std::string const& name) const {
    if (CellInfo const* cell = m_sheet.findCell(name))
        return name + " is an " + toString(cell->category) + " cell of " + m_sheet.name() +
               "; only input cells can be set or swept";
    std::vector<std::string> names;
    for (Quantity const& variable : m_variables) names.push_back(variable.name);
    return m_sheet.name() + " has no cell " + name + didYouMean(suggestNames(name, names)) +
           "; `prsm cells " + m_sheet.name() + " --category input` lists the inputs";
}

std::unique_ptr<TargetEvaluation> SheetTarget::create() const {
    return std::make_unique<SheetEvaluation>(m_sheet.create());
}

}  // namespace prsm::host
