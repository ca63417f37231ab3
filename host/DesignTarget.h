#pragma once
// A whole design as a sweep target. Its variables are a block's input (`BLOCK.CELL`, the block named as
// in the design file; `static.CELL` for the static-power sheet; `*.CELL` for every block that has the
// input), a rail's voltage (`rail.RAIL`), an extra load's figure (`load.NAME.power|current`), the
// device's process and the thermal conditions (`junction_temperature`, `ambient_temperature`,
// `theta_ja`); its outputs the report's figures (host/DesignOutputs.h). docs/sweeps.md lists them.

#include <prsm/design/Corners.h>
#include <prsm/design/Design.h>
#include <prsm/host/DesignOutputs.h>
#include <prsm/host/SweepTarget.h>

#include <map>
#include <optional>

#include <prsm/design/Estimate.h>

namespace prsm::host {

class DesignEvaluation;

class DesignTarget final : public SweepTarget {
public:
    // Reads and checks the design file. Throws HostError(kExitBadInput) for a design that is refused.
    explicit DesignTarget(std::string const& path);
    // The same for a design already read.
    explicit DesignTarget(design::Design design);

    std::string const& name() const override { return m_design.source; }
    std::vector<Quantity> const& variables() const override { return m_variables; }
    std::vector<Quantity> const& outputs() const override { return m_outputs->quantities(); }
    std::string notAVariable(std::string const& name) const override;
    std::unique_ptr<TargetEvaluation> create() const override;
    std::unique_ptr<DesignEvaluation> createDesign() const;
    char const* kind() const override { return "design"; }
    std::vector<Quantity> const& defaultOutputs() const override { return m_outputs->totals(); }
    std::string outputsHint() const override;
    std::string conflict(std::vector<std::string> const& names) const override;
    std::string restDescription() const override { return "everything else as the design file gives it"; }

    // What setting a variable does: a block's input, a rail's voltage, a load's figure, the process or
    // a thermal quantity.
    struct Setting {
        enum Kind { Input, Rail, LoadPower, LoadCurrent, Junction, Ambient, ThetaJa, Process } kind;
        std::vector<std::string> blocks;  // Input: the blocks ("static" for the static sheet)
        std::string name;                 // Input: the cell; Rail: the rail; LoadPower, LoadCurrent: the load
    };

private:
    void describe();
    std::string notALoadFigure(std::string const& name) const;
    std::string decouplingHint() const;

    design::Design m_design;
    std::vector<Quantity> m_variables;
    std::vector<std::string> m_groups;  // the regulator groups of the design's scheme that feed its rails
    std::vector<design::RailDecoupling> m_decoupling;  // the rails the decoupling sheet counts for
    std::optional<DesignOutputs> m_outputs;
    std::map<std::string, Setting> m_settings;
};

// One engine for one thread. A point's settings are collected by set() and applied by apply(): only
// what differs from the previous point reaches the engine, so a block whose inputs did not change keeps
// its figures and the engine's update() recalculates the others and the static sheet. Whatever is not
// set is as the design file gives it.
class DesignEvaluation final : public TargetEvaluation {
public:
    DesignEvaluation(design::Design const& design,
                     std::map<std::string, DesignTarget::Setting> const& settings,
                     DesignOutputs const& outputs);

    void reset() override { m_pending.clear(); }
    void set(std::string const& name, std::string const& text) override { m_pending[name] = text; }
    // apply(), then throws std::runtime_error naming the failures when the report is not complete.
    void evaluate() override;
    // A corner's figure estimates the point's two corners first, once per point.
    std::string read(std::string const& name) override;
    std::string note() const override { return m_note; }
    // The settings made since reset() on the design as the file gives it; the report, complete or not.
    // Throws design::DesignError for a value the engine refuses.
    design::Report const& apply();

private:
    // The engine of the process the point asks for: one per process seen, since the process reaches
    // every sheet when an engine is set up.
    design::Estimator& engineFor(std::string const& process);

    design::Design const& m_design;
    std::map<std::string, std::unique_ptr<design::Estimator>> m_engines;  // process -> its engine
    design::Estimator* m_engine = nullptr;
    std::map<std::string, DesignTarget::Setting> const& m_settings;
    DesignOutputs const& m_outputs;
    design::Thermal const m_thermal;
    std::map<std::string, std::string> m_pending;
    std::map<std::string, std::string> m_applied;
    design::Report const* m_report = nullptr;
    std::optional<design::CornerReports> m_corners;  // the point's, once a corner's figure is read
    std::string m_note;
};

// Whether a `prsm sweep` target names a design file rather than a model: it ends in ".json".
bool namesDesignFile(std::string const& target);

}  // namespace prsm::host
