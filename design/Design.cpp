#include <prsm/design/Decoupling.h>
#include <prsm/design/Design.h>
#include <prsm/design/EditDistance.h>
#include <prsm/design/Grades.h>
#include <prsm/design/RailGroups.h>
#include <prsm/design/Rails.h>
#include <prsm/design/References.h>
#include <prsm/design/Regulators.h>
#include <prsm/design/SupplySheets.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/framework/PRSMSheetPresets.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>

namespace prsm::design {

namespace {

using Json = nlohmann::ordered_json;

char const* const kDeviceFields[] = {
    "part",          "internal_part", "family",  "package",       "grade", "speed_grade", "temperature_grade",
    "voltage_grade", "power_screen",  "process", "voltage_corner"};

std::string escapePointer(std::string const& token) {
    std::string out;
    for (char c : token) {
        if (c == '~')
            out += "~0";
        else if (c == '/')
            out += "~1";
        else
            out += c;
    }
    return out;
}

std::string typeName(Json const& value) {
    if (value.is_number_integer()) return "an integer";
    if (value.is_number()) return "a number";
    return std::string(value.is_string() ? "a string" : value.is_boolean() ? "a boolean" : value.type_name());
}

std::string formatNumber(double value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.17g", value);
    return buffer;
}

// Collects every problem of a file, one line each, before refusing it.
class Checker {
public:
    explicit Checker(std::string source) : m_source(std::move(source)) {}

    std::string const& source() const { return m_source; }

    void fail(std::string const& pointer, std::string const& message) {
        m_problems << m_source << ": " << (pointer.empty() ? "/" : pointer) << ": " << message << "\n";
        m_failed = true;
    }
    void finish() const {
        if (m_failed) {
            std::string text = m_problems.str();
            text.pop_back();
            throw DesignError(text);
        }
    }

    // The member as an object, or null after reporting why not.
    Json const* object(Json const& parent, char const* key, std::string const& pointer, bool required) {
        auto const it = parent.find(key);
        if (it == parent.end()) {
            if (required) fail(pointer, std::string("missing \"") + key + "\"");
            return nullptr;
        }
        if (!it->is_object()) {
            fail(pointer + "/" + key, "an object expected, found " + typeName(*it));
            return nullptr;
        }
        return &*it;
    }
    std::optional<double> number(Json const& value, std::string const& pointer) {
        if (!value.is_number()) {
            fail(pointer, "a number expected, found " + typeName(value));
            return std::nullopt;
        }
        double const x = value.get<double>();
        if (!std::isfinite(x)) {
            fail(pointer, "a finite number expected");
            return std::nullopt;
        }
        return x;
    }
    std::optional<std::string> string(Json const& value, std::string const& pointer) {
        if (!value.is_string()) {
            fail(pointer, "a string expected, found " + typeName(value));
            return std::nullopt;
        }
        return value.get<std::string>();
    }
    void onlyKeys(Json const& object, std::string const& pointer, std::set<std::string> const& known) {
        for (auto const& [key, value] : object.items()) {
            (void)value;
            if (known.count(key) == 0) {
                std::string list;
                for (std::string const& k : known) list += (list.empty() ? "" : ", ") + k;
                fail(pointer + "/" + escapePointer(key), "unknown key \"" + key + "\"; known: " + list);
            }
        }
    }

private:
    std::string m_source;
    std::ostringstream m_problems;
    bool m_failed = false;
};

// The closest of `names` to a misspelt one, as " (did you mean X?)", or "" when none is close.
std::string closest(std::string const& wrong, std::vector<std::string> const& names) {
    std::string best;
    std::size_t bestDistance = std::max<std::size_t>(2, wrong.size() / 4) + 1;
    for (std::string const& name : names)
        if (std::size_t const distance = editDistance(wrong, name); distance < bestDistance)
            bestDistance = distance, best = name;
    return best.empty() ? std::string() : " (did you mean " + best + "?)";
}

std::vector<std::string> modelNames() {
    std::vector<std::string> names;
    for (Sheet const* sheet : SheetRegistry::instance().sheets()) names.push_back(sheet->name());
    return names;
}

std::vector<std::string> inputNames(Sheet const& sheet) {
    std::vector<std::string> names;
    for (CellInfo const& cell : sheet.cells())
        if (cell.category == CellCategory::UserInput) names.push_back(cell.name);
    return names;
}

// "logic, io, ...": the regions for a message.
std::string regionList() {
    std::string list;
    for (std::string const& name : regionNames()) list += (list.empty() ? "" : ", ") + name;
    return list;
}

bool knownRegion(std::string const& region) {
    std::vector<std::string> const& names = regionNames();
    return std::find(names.begin(), names.end(), region) != names.end();
}

}  // namespace

DesignOwned designOwned(SheetDesign const& design, std::string const& cell) {
    for (auto const& [input, rail] : design.voltageInputs)
        if (input == cell) return {DesignOwned::RailVoltage, rail};
    for (auto const& [input, field] : design.deviceInputs)
        if (input == cell) return {DesignOwned::DeviceField, field};
    if (cell == design.temperatureInput) return {DesignOwned::JunctionTemperature};
    for (auto const& [input, selector] : design.feeds)
        if (input == cell) return {DesignOwned::FedPower, selector};
    for (auto const& [input, rail] : design.boardCurrents)
        if (input == cell) return {DesignOwned::BoardCurrent, rail};
    return {};
}

std::string describe(DesignOwned const& owned) {
    switch (owned.kind) {
        case DesignOwned::None:
            return {};
        case DesignOwned::RailVoltage:
            return "the voltage of rail " + owned.subject + ": set it once under /rails";
        case DesignOwned::DeviceField:
            return "taken from /device/" + owned.subject;
        case DesignOwned::JunctionTemperature:
            return "the junction temperature: set it under /thermal";
        case DesignOwned::FedPower:
            return "summed from the design's dynamic power (" + owned.subject + ")";
        case DesignOwned::BoardCurrent:
            return "the device's total current on rail " + owned.subject + ", which the design sets";
    }
    return {};
}

namespace {

// The combined grade becomes its parts, as if the file gave them one by one; a voltage corner is one the
// engine knows.
void readGrades(Checker& check, Device& device) {
    if (std::string const* grade = device.find("grade")) {
        std::optional<GradeParts> const parts = splitGrade(*grade);
        if (!parts)
            check.fail("/device/grade", "\"" + *grade +
                                            "\" is not a grade of the form -S<speed><voltage>-<temperature> "
                                            "(\"-S2M-E\") or -<speed>-<temperature> (\"-2-E\")");
        for (char const* field : {"speed_grade", "voltage_grade", "temperature_grade"})
            if (device.find(field))
                check.fail(
                    std::string("/device/") + field,
                    std::string(field) + " is part of /device/grade: give the grade whole or by parts");
        if (parts) {
            device.fields.emplace_back("speed_grade", parts->speed);
            if (!parts->voltage.empty()) device.fields.emplace_back("voltage_grade", parts->voltage);
            device.fields.emplace_back("temperature_grade", parts->temperature);
        }
    }
    if (std::string const* corner = device.find("voltage_corner")) {
        std::vector<std::string> const& corners = voltageCorners();
        if (std::find(corners.begin(), corners.end(), *corner) == corners.end())
            check.fail("/device/voltage_corner",
                       "unknown voltage corner \"" + *corner + "\"; one of nominal, max, min");
    }
}

enum class Role { Block, Static, Board, Supplies, Decoupling };

char const* roleName(Role role) {
    switch (role) {
        case Role::Static:
            return "static";
        case Role::Board:
            return "board";
        case Role::Supplies:
            return "supplies";
        case Role::Decoupling:
            return "decoupling";
        case Role::Block:
            break;
    }
    return "";
}

// The inputs that a block's preset sets, as inputs read from the file at `pointer`: those the block's
// own "inputs" set, and those the design owns (a rail voltage, a device field), are left out.
std::vector<Input> readPreset(Checker& check, Sheet const& sheet, std::string const& preset,
                              std::string const& pointer, std::string const& who, Json const* own) {
    Sheet const* presets = findPresetSheet(sheet);
    if (presets == nullptr) {
        check.fail(pointer, who + ": " + sheet.name() + " has no presets");
        return {};
    }
    // The preset sheet's data is needed to read a file that names a preset: a failure to load it is a
    // data failure, not a problem of the file.
    auto const reading = [&](std::string const& what, auto read) {
        try {
            return read();
        } catch (PRSMException const& e) {
            throw DataFileError(check.source() + ": " + pointer + ": reading " + what +
                                " failed: " + e.what());
        } catch (std::exception const& e) {
            throw DataFileError(check.source() + ": " + pointer + ": reading " + what +
                                " failed: " + e.what());
        }
    };
    std::vector<std::string> const names =
        reading("the presets of " + presets->name(), [&] { return presetNames(*presets); });
    if (std::find(names.begin(), names.end(), preset) == names.end()) {
        std::string choices;
        for (std::string const& name : names) choices += (choices.empty() ? "" : ",") + name;
        check.fail(pointer, who + ": " + sheet.name() + " has no preset " + preset + closest(preset, names) +
                                "; choose " + describeChoices(choices, names.size()));
        return {};
    }
    std::vector<Input> inputs;
    for (auto const& [cell, text] : reading("preset " + preset + " of " + presets->name(),
                                            [&] { return prsm::presetInputs(sheet, *presets, preset); }))
        if ((own == nullptr || !own->contains(cell)) && !designOwned(sheet.design(), cell))
            inputs.push_back({cell, text, pointer});
    return inputs;
}

// An input's value taken from another block: the block's name and its cell (by default the input's name).
std::optional<std::pair<std::string, std::string>> readReference(Checker& check, Json const& value,
                                                                 std::string const& pointer,
                                                                 std::string const& cell) {
    check.onlyKeys(value, pointer, {"from", "cell"});
    std::optional<std::string> from, fromCell = cell;
    if (auto it = value.find("from"); it == value.end())
        check.fail(pointer, "missing \"from\": the block to take the value from");
    else
        from = check.string(*it, pointer + "/from");
    if (auto it = value.find("cell"); it != value.end()) fromCell = check.string(*it, pointer + "/cell");
    if (from && from->empty()) check.fail(pointer + "/from", "the block to take the value from has no name");
    if (!from || from->empty() || !fromCell) return std::nullopt;
    return std::make_pair(*from, *fromCell);
}

// A sheet of the design: a block, or the sheet of one role. The supplies and decoupling sheets may be
// left out of their objects (`model` then names the default the device leads to).
Block readBlock(Checker& check, Json const& json, std::string const& pointer, Role role,
                std::string const& defaultModel = "") {
    bool const isStatic = role == Role::Static;
    Block block;
    block.pointer = pointer;
    if (!json.is_object()) {
        check.fail(pointer, "a block object expected, found " + typeName(json));
        return block;
    }
    if (role == Role::Block)
        check.onlyKeys(json, pointer, {"name", "model", "count", "preset", "inputs"});
    else if (role == Role::Decoupling)
        check.onlyKeys(json, pointer, {"model", "inputs", "step_fraction", "rail_step_fractions"});
    else
        check.onlyKeys(json, pointer,
                       role == Role::Supplies ? std::set<std::string>{"model", "inputs"}
                                              : std::set<std::string>{"model", "preset", "inputs"});
    if (role == Role::Block) {
        if (auto it = json.find("name"); it == json.end())
            check.fail(pointer, "missing \"name\"");
        else if (auto name = check.string(*it, pointer + "/name")) {
            if (name->empty()) check.fail(pointer + "/name", "a block name may not be empty");
            block.name = *name;
        }
    } else {
        block.name = roleName(role);
    }
    std::string const who = "block \"" + block.name + "\"";
    Sheet const* sheet = nullptr;
    bool const supplyRole = role == Role::Supplies || role == Role::Decoupling;
    if (auto it = json.find("model"); it == json.end() && supplyRole && !defaultModel.empty()) {
        block.model = defaultModel;
        sheet = SheetRegistry::instance().find(defaultModel);
    } else if (it == json.end()) {
        check.fail(pointer, who + ": missing \"model\"" +
                                (role == Role::Supplies ? " (no rail-grouping sheet serves the part)"
                                 : role == Role::Decoupling
                                     ? " (no decoupling sheet lists the device's package: name one)"
                                     : ""));
    } else if (auto model = check.string(*it, pointer + "/model")) {
        block.model = *model;
        sheet = SheetRegistry::instance().find(*model);
        if (sheet == nullptr)
            check.fail(pointer + "/model", who + ": unknown model " + *model + closest(*model, modelNames()) +
                                               "; `prsm models` lists them");
        else if (role == Role::Supplies && !RailGrouping::fits(*sheet))
            check.fail(pointer + "/model",
                       who + ": " + *model + " is not a rail-grouping sheet: it has no regulator groups");
        else if (role == Role::Decoupling && !DecouplingCells::fits(*sheet))
            check.fail(pointer + "/model",
                       who + ": " + *model + " is not a decoupling sheet: it has no load-step inputs");
        else if (isStatic && !sheet->design().isStatic())
            check.fail(pointer + "/model",
                       who + ": " + *model + " does not declare itself a static-power sheet");
        else if (role == Role::Board && !sheet->design().isBoard())
            check.fail(pointer + "/model",
                       who + ": " + *model +
                           " is not a module board: its table declares no device currents ([design] "
                           "board_currents)");
        else if (role == Role::Block && sheet->design().isBoard())
            check.fail(pointer + "/model", who + ": " + *model + " is a module board: name it under /board");
        else if (!isStatic && sheet->design().isStatic())
            check.fail(pointer + "/model",
                       who + ": " + *model + " is the static-power sheet: name it under /static");
    }
    if (auto it = json.find("count"); it != json.end()) {
        if (!it->is_number_integer() || it->get<long long>() < 0 || it->get<long long>() > 1000000000)
            check.fail(pointer + "/count",
                       who + ": the instance count is a whole number from 0, found " + it->dump());
        else
            block.count = it->get<int>();
    }
    Json const* inputs = check.object(json, "inputs", pointer, false);
    if (auto it = json.find("preset"); it != json.end())
        if (auto preset = check.string(*it, pointer + "/preset"); preset && sheet != nullptr)
            block.inputs = readPreset(check, *sheet, *preset, pointer + "/preset", who, inputs);
    if (inputs == nullptr) return block;
    for (auto const& [cell, value] : inputs->items()) {
        std::string const at = pointer + "/inputs/" + escapePointer(cell);
        if (sheet == nullptr) continue;
        CellInfo const* info = sheet->findCell(cell);
        if (info == nullptr) {
            check.fail(at,
                       who + ": " + block.model + " has no cell " + cell + closest(cell, inputNames(*sheet)));
            continue;
        }
        if (info->category != CellCategory::UserInput) {
            check.fail(at, who + ": cell " + cell + " is an " + toString(info->category) + ", not an input");
            continue;
        }
        if (DesignOwned const owned = designOwned(sheet->design(), cell)) {
            check.fail(at, who + ": cell " + cell + " is " + describe(owned));
            continue;
        }
        if (role == Role::Decoupling && DecouplingCells::isStepInput(cell)) {
            check.fail(at,
                       who + ": cell " + cell +
                           " is a rail's load step, which the design sets from the rail's dynamic current "
                           "(step_fraction, rail_step_fractions)");
            continue;
        }
        if (value.is_object()) {  // {"from": block, "cell": cell}: checked once every block is read
            if (auto reference = readReference(check, value, at, cell))
                block.inputs.push_back({cell, "", at, reference->first, reference->second});
            continue;
        }
        std::string text;
        switch (info->type) {
            case CellType::String:
                if (!value.is_string()) {
                    check.fail(at, who + ": cell " + cell + " takes a string, found " + typeName(value));
                    continue;
                }
                text = value.get<std::string>();
                break;
            case CellType::Int:
                if (value.is_number_integer() && value.get<long long>() >= -2147483647LL &&
                    value.get<long long>() <= 2147483647LL) {
                    text = std::to_string(value.get<long long>());
                } else {
                    check.fail(at, who + ": cell " + cell + " takes a whole number, found " +
                                       typeName(value) +
                                       (value.is_number() ? " (" + value.dump() + ")" : ""));
                    continue;
                }
                break;
            case CellType::Float:
                if (!value.is_number()) {
                    check.fail(at, who + ": cell " + cell + " takes a number, found " + typeName(value));
                    continue;
                }
                text = formatNumber(value.get<double>());
                break;
        }
        block.inputs.push_back({cell, text, at});
    }
    return block;
}

// A decoupling's load steps: a fraction of each rail's dynamic current, and rails with one of their own.
void readStepFractions(Checker& check, Json const& json, Decoupling& decoupling) {
    if (!json.is_object()) return;
    auto fraction = [&](Json const& value, std::string const& at) -> std::optional<double> {
        std::optional<double> x = check.number(value, at);
        if (x && *x < 0) {
            check.fail(at, "a load step is a fraction of the dynamic current, not negative");
            return std::nullopt;
        }
        return x;
    };
    if (auto it = json.find("step_fraction"); it != json.end())
        if (auto x = fraction(*it, "/decoupling/step_fraction")) decoupling.stepFraction = *x;
    if (Json const* rails = check.object(json, "rail_step_fractions", "/decoupling", false))
        for (auto const& [rail, value] : rails->items()) {
            std::string const at = "/decoupling/rail_step_fractions/" + escapePointer(rail);
            if (!isKnownRail(rail))
                check.fail(at, "unknown rail " + rail);
            else if (auto x = fraction(value, at))
                decoupling.railFractions.emplace_back(rail, *x);
        }
}

}  // namespace

double Decoupling::fractionOf(std::string const& rail) const {
    for (auto const& [name, fraction] : railFractions)
        if (name == rail) return fraction;
    return stepFraction;
}

std::string const* Device::find(std::string const& field) const {
    for (auto const& entry : fields)
        if (entry.first == field) return &entry.second;
    return nullptr;
}

Design parseDesign(std::string const& text, std::string const& source) {
    Checker check(source);
    Json json;
    try {
        json = Json::parse(text);
    } catch (Json::parse_error const& e) {
        check.fail("", std::string("not valid JSON: ") + e.what());
        check.finish();
    }
    Design design;
    design.source = source;
    if (!json.is_object()) {
        check.fail("", "a design is a JSON object, found " + typeName(json));
        check.finish();
    }
    check.onlyKeys(json, "",
                   {"schema_version", "description", "device", "thermal", "rails", "static", "board",
                    "blocks", "loads", "regulators", "supplies", "decoupling", "budget"});

    if (auto it = json.find("schema_version"); it == json.end())
        check.fail("", "missing \"schema_version\" (this build reads version " +
                           std::to_string(kSchemaVersion) + ")");
    else if (!it->is_number_integer() || it->get<long long>() != kSchemaVersion)
        check.fail("/schema_version", "version " + it->dump() + " is not one this build reads (" +
                                          std::to_string(kSchemaVersion) + ")");

    if (auto it = json.find("description"); it != json.end())
        if (auto text = check.string(*it, "/description")) design.description = *text;

    if (Json const* device = check.object(json, "device", "", true)) {
        std::set<std::string> known(std::begin(kDeviceFields), std::end(kDeviceFields));
        check.onlyKeys(*device, "/device", known);
        for (char const* field : kDeviceFields)
            if (auto it = device->find(field); it != device->end())
                if (auto value = check.string(*it, std::string("/device/") + field))
                    design.device.fields.emplace_back(field, *value);
        if (device->find("part") == device->end()) check.fail("/device", "missing \"part\"");
        readGrades(check, design.device);
    }

    if (Json const* thermal = check.object(json, "thermal", "", true)) {
        check.onlyKeys(*thermal, "/thermal",
                       {"junction_temperature", "ambient_temperature", "theta_ja", "max_ambient_temperature"});
        bool const hasJunction = thermal->contains("junction_temperature");
        bool const hasAmbient = thermal->contains("ambient_temperature") || thermal->contains("theta_ja");
        if (hasJunction && hasAmbient)
            check.fail("/thermal", "give either junction_temperature, or ambient_temperature and theta_ja");
        else if (hasJunction) {
            design.thermal.junction =
                check.number(thermal->at("junction_temperature"), "/thermal/junction_temperature");
        } else if (thermal->contains("ambient_temperature") && thermal->contains("theta_ja")) {
            if (auto ta = check.number(thermal->at("ambient_temperature"), "/thermal/ambient_temperature"))
                design.thermal.ambient = *ta;
            if (auto theta = check.number(thermal->at("theta_ja"), "/thermal/theta_ja")) {
                if (*theta < 0) check.fail("/thermal/theta_ja", "a thermal resistance is not negative");
                design.thermal.thetaJa = *theta;
            }
        } else {
            check.fail("/thermal", "give either junction_temperature, or ambient_temperature and theta_ja");
        }
        if (auto it = thermal->find("max_ambient_temperature"); it != thermal->end()) {
            if (!thermal->contains("theta_ja"))
                check.fail("/thermal/max_ambient_temperature",
                           "a maximum ambient needs theta_ja to solve the junction from");
            else
                design.thermal.maxAmbient = check.number(*it, "/thermal/max_ambient_temperature");
        }
    }

    if (Json const* rails = check.object(json, "rails", "", false)) {
        for (auto const& [rail, value] : rails->items()) {
            std::string const at = "/rails/" + escapePointer(rail);
            if (!isKnownRail(rail)) {
                check.fail(at, "unknown rail " + rail);
                continue;
            }
            if (auto v = check.number(value, at)) {
                if (*v < 0)
                    check.fail(at, "rail " + rail + ": a voltage is not negative");
                else
                    design.rails.emplace_back(rail, *v);
            }
        }
    }

    if (auto it = json.find("static"); it != json.end())
        design.staticSheet = readBlock(check, *it, "/static", Role::Static);

    // The module board: its name, or {"model": ..., "inputs": {...}} for its own inputs (memory traffic).
    if (auto it = json.find("board"); it != json.end()) {
        if (it->is_string()) {
            Json const named{{"model", it->get<std::string>()}};
            design.board = readBlock(check, named, "/board", Role::Board);
        } else {
            design.board = readBlock(check, *it, "/board", Role::Board);
        }
    }

    std::set<std::string> names;
    if (auto it = json.find("blocks"); it == json.end() || !it->is_array()) {
        check.fail(it == json.end() ? "" : "/blocks",
                   it == json.end() ? "missing \"blocks\"" : "an array of blocks expected");
    } else {
        for (std::size_t i = 0; i < it->size(); ++i) {
            std::string const pointer = "/blocks/" + std::to_string(i);
            Block block = readBlock(check, (*it)[i], pointer, Role::Block);
            if (!block.name.empty() && !names.insert(block.name).second)
                check.fail(pointer + "/name",
                           "block \"" + block.name + "\": the name is used by an earlier block");
            design.blocks.push_back(std::move(block));
        }
    }

    if (auto it = json.find("loads"); it != json.end()) {
        if (!it->is_array()) check.fail("/loads", "an array of loads expected");
        for (std::size_t i = 0; it->is_array() && i < it->size(); ++i) {
            std::string const pointer = "/loads/" + std::to_string(i);
            Json const& entry = (*it)[i];
            if (!entry.is_object()) {
                check.fail(pointer, "a load object expected, found " + typeName(entry));
                continue;
            }
            check.onlyKeys(entry, pointer, {"name", "rail", "power", "current", "region", "tag"});
            Load load;
            load.pointer = pointer;
            if (auto n = entry.find("name"); n != entry.end())
                if (auto name = check.string(*n, pointer + "/name")) load.name = *name;
            if (load.name.empty()) load.name = "load " + std::to_string(i);
            if (!names.insert(load.name).second)
                check.fail(pointer + "/name",
                           "load \"" + load.name + "\": the name is used by an earlier block or load");
            if (auto r = entry.find("rail"); r == entry.end())
                check.fail(pointer, "load \"" + load.name + "\": missing \"rail\"");
            else if (auto rail = check.string(*r, pointer + "/rail")) {
                if (!isKnownRail(*rail))
                    check.fail(pointer + "/rail", "load \"" + load.name + "\": unknown rail " + *rail);
                load.rail = *rail;
            }
            bool const hasPower = entry.contains("power"), hasCurrent = entry.contains("current");
            if (hasPower == hasCurrent)
                check.fail(pointer, "load \"" + load.name + "\": give either power (W) or current (A)");
            else if (hasPower) {
                if (auto p = check.number(entry.at("power"), pointer + "/power")) load.power = *p;
            } else if (auto c = check.number(entry.at("current"), pointer + "/current")) {
                load.current = *c;
            }
            if (auto g = entry.find("region"); g == entry.end())
                check.fail(pointer, "load \"" + load.name + "\": missing \"region\"");
            else if (auto region = check.string(*g, pointer + "/region")) {
                if (!knownRegion(*region))
                    check.fail(pointer + "/region", "load \"" + load.name + "\": unknown region " + *region +
                                                        "; one of " + regionList());
                load.region = *region;
            }
            if (auto t = entry.find("tag"); t != entry.end())
                if (auto tag = check.string(*t, pointer + "/tag")) load.tag = *tag;
            design.loads.push_back(std::move(load));
        }
    }
    if (auto it = json.find("regulators"); it != json.end())
        design.regulators =
            readRegulators(*it, [&](std::string const& at, std::string const& why) { check.fail(at, why); });
    if (auto it = json.find("supplies"); it != json.end())
        design.supplies =
            readBlock(check, *it, "/supplies", Role::Supplies, defaultGroupingSheet(design.device));
    if (auto it = json.find("decoupling"); it != json.end()) {
        design.decoupling.emplace();
        design.decoupling->sheet =
            readBlock(check, *it, "/decoupling", Role::Decoupling, defaultDecouplingSheet(design.device));
        readStepFractions(check, *it, *design.decoupling);
    }
    if (Json const* budget = check.object(json, "budget", "", false)) {
        check.onlyKeys(*budget, "/budget", {"total_power", "rails", "supplies"});
        auto limit = [&](Json const& value, std::string const& at) -> std::optional<double> {
            std::optional<double> x = check.number(value, at);
            if (x && *x < 0) {
                check.fail(at, "a budget is not negative");
                return std::nullopt;
            }
            return x;
        };
        if (auto it = budget->find("total_power"); it != budget->end())
            design.budget.totalPower = limit(*it, "/budget/total_power");
        if (Json const* rails = check.object(*budget, "rails", "/budget", false))
            for (auto const& [rail, value] : rails->items()) {
                std::string const at = "/budget/rails/" + escapePointer(rail);
                if (!isKnownRail(rail))
                    check.fail(at, "unknown rail " + rail);
                else if (auto amps = limit(value, at))
                    design.budget.railCurrents.emplace_back(rail, *amps);
            }
        // A supply's name is checked when the design is set up: the groups are its scheme's.
        if (Json const* supplies = check.object(*budget, "supplies", "/budget", false))
            for (auto const& [name, value] : supplies->items())
                if (auto amps = limit(value, "/budget/supplies/" + escapePointer(name)))
                    design.budget.supplyCurrents.emplace_back(name, *amps);
    }
    for (ReferenceProblem const& problem : checkReferences(design))
        check.fail(problem.pointer, problem.message);
    check.finish();
    return design;
}

Design readDesignFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw DesignError(path + ": cannot be read");
    std::ostringstream text;
    text << file.rdbuf();
    return parseDesign(text.str(), path);
}

}  // namespace prsm::design
