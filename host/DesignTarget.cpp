#include <prsm/design/Estimate.h>
#include <prsm/host/DesignPoint.h>
#include <prsm/host/DesignTarget.h>
#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Suggest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <stdexcept>

namespace prsm::host {

namespace {

constexpr char const* kVariableForms =
    "a design's variables are BLOCK.CELL, static.CELL, board.CELL, *.CELL, rail.RAIL, load.NAME.power, "
    "load.NAME.current, device.process, junction_temperature, ambient_temperature and theta_ja";

// Runs `body`, turning the engine's and the library's exceptions into HostError.
template <typename Body>
auto guarded(Body&& body) {
    try {
        return body();
    } catch (...) {
        rethrowAsHostError();
    }
}

std::string numberText(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

}  // namespace

DesignEvaluation::DesignEvaluation(design::Design const& design,
                                   std::map<std::string, DesignTarget::Setting> const& settings,
                                   DesignOutputs const& outputs)
    : m_design(design), m_settings(settings), m_outputs(outputs), m_thermal(design.thermal) {
    std::string const* process = design.device.find("process");
    m_engine = &engineFor(process ? *process : "");
}

design::Estimator& DesignEvaluation::engineFor(std::string const& process) {
    std::unique_ptr<design::Estimator>& engine = m_engines[process];
    if (!engine) {
        design::Design design = m_design;
        if (!process.empty()) {
            auto const field = std::find_if(design.device.fields.begin(), design.device.fields.end(),
                                            [](auto const& f) { return f.first == "process"; });
            if (field != design.device.fields.end())
                field->second = process;
            else
                design.device.fields.emplace_back("process", process);
        }
        engine = std::make_unique<design::Estimator>(std::move(design));
        // Each point solved from the ambient, as `prsm estimate` solves a file: a row's every figure,
        // the solve's count of static calculations included, then depends on its settings alone, not
        // on the points a thread evaluated before it.
        engine->setThermalStart(design::Estimator::ThermalStartFrom::Ambient);
    }
    return *engine;
}

void DesignEvaluation::evaluate() {
    design::Report const& report = apply();
    m_corners.reset();
    m_note.clear();
    // A runaway is an answer, not a failure: the sweep keeps the row (the heat-sink boundary a user
    // sweeps theta_ja for), without figures.
    if (!report.complete && report.thermal.runaway && report.failures.size() == 1) {
        m_note = "thermal runaway";
        return;
    }
    if (!report.complete) {
        std::string message;
        for (std::string const& failure : report.failures) message += (message.empty() ? "" : "; ") + failure;
        throw std::runtime_error(message);
    }
}

std::string DesignEvaluation::read(std::string const& name) {
    DesignOutput const& output = m_outputs.at(name);
    design::Report const* report = m_report;
    if (output.from != ReportOf::Point) {
        // Two estimates from scratch, each corner with engines of its own: only when a corner is asked for.
        if (!m_corners) m_corners = design::estimateCorners(designAtPoint(m_design, m_settings, m_applied));
        report = output.from == ReportOf::TypicalCorner ? &m_corners->typical : &m_corners->worst;
    }
    double const value = report->complete ? output.read(*report) : std::nan("");
    if (output.quantity.type == CellType::Int && std::isfinite(value))
        return std::to_string(static_cast<long long>(value));
    return numberText(value);
}

design::Report const& DesignEvaluation::apply() {
    // Another process: its engine holds the settings of the last point it evaluated, so it starts over.
    std::string const* fileProcess = m_design.device.find("process");
    auto const process = m_pending.find("device.process");
    std::string const wanted = process != m_pending.end() ? process->second : fileProcess ? *fileProcess : "";
    std::string lower = wanted;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    if (process != m_pending.end() && lower != "typical" && lower != "max")
        throw design::DesignError("device.process: unknown process \"" + wanted + "\"; one of typical, max");
    if (design::Estimator* engine = &engineFor(wanted); engine != m_engine) {
        m_engine = engine;
        m_engine->clearInputs();
        m_engine->clearRailVoltages();
        m_engine->clearLoads();
        m_applied.clear();
    }
    bool inputsDropped = false, railsDropped = false, loadsDropped = false;
    for (auto const& [name, text] : m_applied) {
        if (m_pending.count(name) != 0) continue;
        DesignTarget::Setting::Kind const kind = m_settings.at(name).kind;
        if (kind == DesignTarget::Setting::Input) inputsDropped = true;
        if (kind == DesignTarget::Setting::Rail) railsDropped = true;
        if (kind == DesignTarget::Setting::LoadPower || kind == DesignTarget::Setting::LoadCurrent)
            loadsDropped = true;
    }
    if (inputsDropped) m_engine->clearInputs();
    if (railsDropped) m_engine->clearRailVoltages();  // the rails still set are set again below
    if (loadsDropped) m_engine->clearLoads();         // likewise the loads
    // Every input again when one was dropped or a `*.CELL` changed (it may cover a block's own
    // setting); otherwise only the inputs whose values changed.
    bool force = inputsDropped || m_applied.empty();
    for (auto const& [name, text] : m_pending) {
        auto const was = m_applied.find(name);
        if (name.compare(0, 2, "*.") == 0 && (was == m_applied.end() || was->second != text)) force = true;
    }
    design::Thermal thermal = m_thermal;
    // `*.CELL` first, so that a block's own setting of the same cell wins.
    for (int pass = 0; pass < 2; ++pass)
        for (auto const& [name, text] : m_pending) {
            DesignTarget::Setting const& setting = m_settings.at(name);
            bool const first = setting.kind != DesignTarget::Setting::Input || name.compare(0, 2, "*.") == 0;
            if ((pass == 0) != first) continue;
            double const number = std::strtod(text.c_str(), nullptr);
            switch (setting.kind) {
                case DesignTarget::Setting::Input: {
                    auto const was = m_applied.find(name);
                    if (!force && was != m_applied.end() && was->second == text) break;
                    for (std::string const& block : setting.blocks)
                        m_engine->setInput(block, setting.name, text);
                    break;
                }
                case DesignTarget::Setting::Rail:
                    m_engine->setRailVoltage(setting.name, number);
                    break;
                case DesignTarget::Setting::LoadPower:
                    m_engine->setLoad(setting.name, design::Estimator::LoadFigure::Power, number);
                    break;
                case DesignTarget::Setting::LoadCurrent:
                    m_engine->setLoad(setting.name, design::Estimator::LoadFigure::Current, number);
                    break;
                case DesignTarget::Setting::Junction:
                    thermal.junction = number;
                    break;
                case DesignTarget::Setting::Ambient:
                    thermal.junction.reset();
                    thermal.ambient = number;
                    break;
                case DesignTarget::Setting::ThetaJa:
                    thermal.junction.reset();
                    thermal.thetaJa = number;
                    break;
                case DesignTarget::Setting::Process:
                    break;  // the engine chosen above
            }
        }
    m_engine->setThermal(thermal);
    m_applied = m_pending;
    m_report = &m_engine->update();
    return *m_report;
}

bool namesDesignFile(std::string const& target) {
    return target.size() > 5 && target.compare(target.size() - 5, 5, ".json") == 0;
}

DesignTarget::DesignTarget(std::string const& path)
    : m_design(guarded([&] { return design::readDesignFile(path); })) {
    describe();
}

DesignTarget::DesignTarget(design::Design design) : m_design(std::move(design)) {
    describe();
}

void DesignTarget::describe() {
    // An engine checks what the file reader cannot (a rail in use without a voltage) and names the rails.
    std::vector<std::pair<std::string, double>> const rails =
        guarded([&] { return design::Estimator(m_design).railVoltages(); });

    auto variable = [&](std::string const& name, CellType type, std::string const& unit, Setting setting,
                        std::string const& description = "") {
        if (!m_settings.emplace(name, std::move(setting)).second) return;  // a setting's name wins
        m_variables.push_back({name, type, unit, description});
    };
    variable("junction_temperature", CellType::Float, "degC", {Setting::Junction, {}, {}});
    variable("ambient_temperature", CellType::Float, "degC", {Setting::Ambient, {}, {}});
    variable("theta_ja", CellType::Float, "degC/W", {Setting::ThetaJa, {}, {}});
    variable("device.process", CellType::String, "", {Setting::Process, {}, {}});
    for (auto const& [rail, volts] : rails)
        variable("rail." + rail, CellType::Float, "V", {Setting::Rail, {}, rail});
    // A load's figure as the file gives it: a power, or a current that follows its rail's voltage.
    for (design::Load const& load : m_design.loads) {
        bool const current = load.current.has_value();
        variable("load." + load.name + (current ? ".current" : ".power"), CellType::Float,
                 current ? "A" : "W", {current ? Setting::LoadCurrent : Setting::LoadPower, {}, load.name});
    }

    struct Shared {
        CellType type;
        std::string unit;
        std::vector<std::string> blocks;
        bool sameType = true;
    };
    std::map<std::string, Shared> everyBlock;
    std::vector<std::string> everyOrder;
    // An input the design sets, or takes from another block, is no variable of its own.
    auto blockInputs = [&](std::string const& block, design::Block const& given, bool isStatic) {
        Sheet const* sheet = SheetRegistry::instance().find(given.model);
        if (sheet == nullptr) return;
        for (CellInfo const& cell : sheet->cells()) {
            if (cell.category != CellCategory::UserInput ||
                design::designOwned(sheet->design(), cell.name) || given.reference(cell.name))
                continue;
            variable(block + "." + cell.name, cell.type, cellUnit(cell), {Setting::Input, {block}, cell.name},
                     cell.description);
            if (isStatic) continue;
            auto [it, added] = everyBlock.emplace(cell.name, Shared{cell.type, cellUnit(cell), {}, true});
            if (added) everyOrder.push_back(cell.name);
            if (it->second.type != cell.type) it->second.sameType = false;
            if (it->second.unit != cellUnit(cell)) it->second.unit.clear();
            it->second.blocks.push_back(block);
        }
    };
    for (design::Block const& block : m_design.blocks) blockInputs(block.name, block, false);
    if (m_design.staticSheet) blockInputs("static", *m_design.staticSheet, true);
    if (m_design.board) blockInputs("board", *m_design.board, true);
    // Every block that has the input; a cell whose type differs between sheets has no such variable.
    for (std::string const& cell : everyOrder) {
        Shared const& shared = everyBlock.at(cell);
        if (shared.sameType)
            variable("*." + cell, shared.type, shared.unit, {Setting::Input, shared.blocks, cell});
    }

    std::vector<std::string> railNames;
    for (auto const& [rail, volts] : rails) railNames.push_back(rail);
    // The scheme's groups and the rails the decoupling sheet counts for follow from the sheets' cells
    // and the rails in use, not from the file's keys: one estimate names them.
    if (m_design.supplies || m_design.decoupling) {
        design::Report const report = guarded([&] { return design::Estimator(m_design).estimate(); });
        for (design::SupplyGroup const& group : report.supplyGroups) m_groups.push_back(group.name);
        m_decoupling = report.decoupling;
    }
    m_outputs.emplace(m_design, railNames, m_groups, m_decoupling);
}

// `load.NAME.FIGURE` that is no variable: an unknown load, or a figure the file does not give it as.
std::string DesignTarget::notALoadFigure(std::string const& name) const {
    std::size_t const dot = name.rfind('.');  // a load's name may hold dots; its figure cannot
    bool const hasFigure = dot > 4;
    std::string const load = hasFigure ? name.substr(5, dot - 5) : name.substr(5);
    std::string const figure = hasFigure ? name.substr(dot + 1) : "";
    std::vector<std::string> loads;
    std::string known;
    for (design::Load const& l : m_design.loads) {
        if (l.name == load) {
            std::string const given = l.current ? "current" : "power";
            std::string const why = figure.empty() ? "a load's variable names its figure"
                                    : figure == "power" || figure == "current"
                                        ? "it is given as a " + given + " in " + m_design.source
                                        : "a load has no figure " + figure;
            return "load \"" + load + "\": " + why + "; sweep load." + load + "." + given;
        }
        loads.push_back(l.name);
        known += (known.empty() ? "" : ", ") + l.name;
    }
    return m_design.source + " has no load \"" + load + "\"" + didYouMean(suggestNames(load, loads)) +
           (known.empty() ? " (it has none)" : " (loads: " + known + ")") +
           "; a load's variable is load.NAME.power or load.NAME.current, as the file gives the load";
}

std::string DesignTarget::notAVariable(std::string const& variable) const {
    std::string const& name = variable;
    std::string const& source = m_design.source;
    std::size_t const dot = name.rfind('.');
    if (dot != std::string::npos) {
        std::string const block = name.substr(0, dot), cell = name.substr(dot + 1);
        bool const loadBlock = std::any_of(m_design.blocks.begin(), m_design.blocks.end(),
                                           [](design::Block const& b) { return b.name == "load"; });
        if (name.compare(0, 5, "load.") == 0 && !loadBlock) return notALoadFigure(name);
        if (block == "rail") {
            std::string used;
            for (Quantity const& variable : m_variables)
                if (variable.name.compare(0, 5, "rail.") == 0)
                    used += (used.empty() ? "" : ", ") + variable.name.substr(5);
            return "no block or load of " + source + " uses rail " + cell + " (rails in use: " + used + ")";
        }
        std::string model;
        design::Block const* given = nullptr;
        if (block == "static" && m_design.staticSheet) given = &*m_design.staticSheet;
        if (block == "board" && m_design.board) given = &*m_design.board;
        for (design::Block const& b : m_design.blocks)
            if (b.name == block) given = &b;
        if (given != nullptr) model = given->model;
        if (design::Input const* reference = given ? given->reference(cell) : nullptr)
            return "block \"" + block + "\": cell " + cell + " takes its value from cell " +
                   reference->fromCell + " of block \"" + reference->from + "\", and follows it";
        if (Sheet const* sheet = model.empty() ? nullptr : SheetRegistry::instance().find(model)) {
            CellInfo const* info = sheet->findCell(cell);
            if (info != nullptr && info->category != CellCategory::UserInput)
                return "block \"" + block + "\": " + cell + " is an " + toString(info->category) +
                       " cell of " + model + "; only input cells can be set or swept";
            if (info != nullptr) {
                design::DesignOwned const owned = design::designOwned(sheet->design(), cell);
                // A rail's voltage is a variable of its own: name it as one.
                std::string const what =
                    owned.kind == design::DesignOwned::RailVoltage
                        ? "the voltage of rail " + owned.subject + ": sweep rail." + owned.subject
                        : design::describe(owned);
                return "block \"" + block + "\": cell " + cell + " is " + what;
            }
            std::vector<std::string> names;
            for (CellInfo const& c : sheet->cells())
                if (c.category == CellCategory::UserInput) names.push_back(c.name);
            return "block \"" + block + "\" (" + model + ") has no input " + cell +
                   didYouMean(suggestNames(cell, names)) + "; `prsm cells " + model +
                   " --category input` lists the inputs";
        }
    }
    std::vector<std::string> names;
    for (Quantity const& variable : m_variables) names.push_back(variable.name);
    return source + " has no variable " + name + didYouMean(suggestNames(name, names)) + "; " +
           kVariableForms;
}

std::string DesignTarget::outputsHint() const {
    auto names = [](auto const& entries) {
        std::string list;
        for (auto const& entry : entries) list += (list.empty() ? "" : ", ") + entry.name;
        return list;
    };
    std::string hint =
        "a design's outputs are total_power, dynamic_power, static_power, junction_temperature, "
        "thermal_iterations, rail.RAIL.{voltage,dynamic_current,static_current,current,power}, "
        "region.REGION.{dynamic,static,total}, block.NAME.power, load.NAME.power";
    if (m_design.board) hint += ", board.{total_power,unsupplied_power}";
    if (!m_design.regulators.empty())
        hint += ", regulator.NAME.{load,margin,loss,input_power,powerup_current} (regulators: " +
                names(m_design.regulators) + "), supplies.{input_power,unregulated_power}";
    if (!m_groups.empty()) {
        std::string groups;
        for (std::string const& group : m_groups) groups += (groups.empty() ? "" : ", ") + group;
        hint += ", group.NAME.{current,power,powerup_current} (groups: " + groups + ")";
    }
    if (!m_decoupling.empty()) hint += ", " + decouplingHint();
    if (!m_design.budget.empty()) {
        design::Budget const& budget = m_design.budget;
        std::string limited = budget.totalPower ? "budget.total_power" : "";
        auto list = [&](char const* kind, std::string const& name) {
            limited += (limited.empty() ? "" : ", ") + std::string(kind) + name;
        };
        for (auto const& entry : budget.railCurrents) list("budget.rail.", entry.first);
        for (auto const& entry : budget.supplyCurrents) list("budget.supply.", entry.first);
        hint += ", " + limited + ", each with .headroom, budget.exceeded";
    }
    return hint + "; and the report's figures at either corner: corner.typical.NAME, corner.worst.NAME";
}

// decoupling.RAIL.*, with the rails, their step parts and the capacitor values there are.
std::string DesignTarget::decouplingHint() const {
    std::string rails, values;
    std::vector<std::string> seen;
    for (design::RailDecoupling const& counted : m_decoupling) {
        std::string parts;
        for (auto const& part : counted.stepParts) parts += (parts.empty() ? "" : ", ") + part.first;
        if (!parts.empty()) parts = " (parts: " + parts + ")";
        rails += (rails.empty() ? "" : ", ") + counted.rail + parts;
        for (design::CapacitorCount const& capacitor : counted.capacitors) {
            if (std::find(seen.begin(), seen.end(), capacitor.value) != seen.end()) continue;
            seen.push_back(capacitor.value);
            values += (values.empty() ? "" : ", ") + capacitor.value;
        }
    }
    return "decoupling.RAIL.{step_current,PART.step_current,VALUE.count,VALUE.whole_count} (rails: " + rails +
           "; values: " + values + ")";
}

std::string DesignTarget::conflict(std::vector<std::string> const& names) const {
    auto has = [&](char const* name) { return std::find(names.begin(), names.end(), name) != names.end(); };
    if (has("junction_temperature") && (has("ambient_temperature") || has("theta_ja")))
        return "junction_temperature is used as it is given, so it cannot be set together with "
               "ambient_temperature or theta_ja, from which the junction temperature is solved";
    return {};
}

std::unique_ptr<TargetEvaluation> DesignTarget::create() const {
    return createDesign();
}

std::unique_ptr<DesignEvaluation> DesignTarget::createDesign() const {
    return guarded([&] { return std::make_unique<DesignEvaluation>(m_design, m_settings, *m_outputs); });
}

}  // namespace prsm::host
