// The compiled half of the `prsm` Python package: sheets from the registry, set and read by name,
// calculated, and swept over NumPy arrays by the host's sweep core on several threads without the GIL.
#include <prsm/design/ReportFormat.h>
#include <prsm/host/Calculation.h>
#include <prsm/host/CellListing.h>
#include <prsm/host/DesignTarget.h>
#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Render.h>
#include <prsm/host/Suggest.h>
#include <prsm/host/Sweep.h>
#include <prsm/host/SweepTarget.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <dlfcn.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace py = pybind11;
using namespace prsm;
using namespace prsm::host;

namespace {

// QDI_DATADIR when set; otherwise the installed data (found relative to this module's folder) when
// it is there, else the source tree's data. The choice is made once, when the package is imported.
std::string chooseDataDir() {
    if (char const* set = std::getenv("QDI_DATADIR")) return set;
    struct stat info {};
    Dl_info self{};
    dladdr(reinterpret_cast<void*>(&chooseDataDir), &self);
    std::string folder = self.dli_fname != nullptr ? self.dli_fname : ".";
    folder = folder.substr(0, folder.find_last_of('/') == std::string::npos ? 0 : folder.find_last_of('/'));
    std::string installed = folder + "/" + PRSM_PY_INSTALLED_DATADIR;
    if (char* resolved = realpath(installed.c_str(), nullptr)) {
        installed = resolved;
        std::free(resolved);
    }
    std::string const dir =
        stat((installed + "/powercfg").c_str(), &info) == 0 ? installed : PRSM_PY_SOURCE_DATADIR;
    ::setenv("QDI_DATADIR", dir.c_str(), 1);
    return dir;
}

Sheet const& findSheet(std::string const& name) {
    if (Sheet const* sheet = SheetRegistry::instance().find(name)) return *sheet;
    std::vector<std::string> names;
    for (Sheet const* sheet : SheetRegistry::instance().sheets()) names.push_back(sheet->name());
    throw HostError(kExitBadInput, "unknown model " + name + didYouMean(suggestNames(name, names)) +
                                       "; prsm.models() lists them all");
}

// A library value text as the Python value of the cell's type.
py::object fromText(CellType type, std::string const& text) {
    switch (type) {
        case CellType::Int:
            return py::int_(std::strtol(text.c_str(), nullptr, 10));
        case CellType::Float:
            return py::float_(numberFromText(CellType::Float, text));
        case CellType::String:
            return py::str(text);
    }
    return py::none();
}

// The text that sets a cell to a Python value; InputError for a value of the wrong type.
std::string toCellText(Quantity const& quantity, py::handle value) {
    if (py::isinstance<py::bool_>(value))
        throw HostError(kExitBadInput, quantity.name + " takes " +
                                           (quantity.type == CellType::String ? "text" : "a number") +
                                           ", not a bool");
    if (py::isinstance<py::str>(value)) return textColumn(quantity, {value.cast<std::string>()}).cellText(0);
    if (quantity.type == CellType::String)
        throw HostError(kExitBadInput, quantity.name + " takes text, not " +
                                           py::repr(value).cast<std::string>() + " (a string input)");
    if (py::hasattr(value, "__index__"))
        return numberColumn(quantity, {static_cast<double>(value.attr("__index__")().cast<long long>())})
            .cellText(0);
    if (py::hasattr(value, "__float__"))
        return numberColumn(quantity, {value.attr("__float__")().cast<double>()}).cellText(0);
    throw HostError(kExitBadInput,
                    quantity.name + " takes a number, not " + py::repr(value).cast<std::string>());
}

// The sweep of `target` over flat columns of equal length, the settings not swept held fixed, as
// {output: NumPy array}; without `outputs`, the target's default ones (a design's totals).
// `outputsListing` says where the output names are listed.
py::dict sweepColumns(SweepTarget const& target,
                      std::vector<std::pair<std::string, std::string>> const& settings,
                      std::vector<std::string> const& names, py::list columns, py::object outputsArg,
                      unsigned threads, char const* outputsListing) {
    std::vector<Column> points;
    for (std::size_t i = 0; i < names.size(); ++i) {
        Quantity const* variable = target.findVariable(names[i]);
        if (variable == nullptr) throw HostError(kExitBadInput, target.notAVariable(names[i]));
        py::handle column = columns[i];
        if (py::isinstance<py::list>(column)) {
            std::vector<std::string> texts;
            for (py::handle item : column) {
                if (!py::isinstance<py::str>(item))
                    throw HostError(kExitBadInput, names[i] + " takes text or numbers, not " +
                                                       py::repr(item).cast<std::string>());
                texts.push_back(item.cast<std::string>());
            }
            points.push_back(textColumn(*variable, texts));
        } else {
            if (variable->type == CellType::String)
                throw HostError(kExitBadInput, names[i] + " takes text, not numbers (a string input)");
            auto array = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(column);
            if (!array) throw HostError(kExitBadInput, names[i] + " takes an array of numbers");
            std::vector<double> values(array.data(), array.data() + array.size());
            points.push_back(numberColumn(*variable, values));
        }
    }
    std::vector<Column> fixed;
    for (auto const& [input, text] : settings) {
        bool swept = false;
        for (std::string const& name : names) swept = swept || name == input;
        if (!swept) fixed.push_back(parseFixedValue(*target.findVariable(input), text));
    }
    std::vector<std::string> together = names;
    for (auto const& setting : settings) together.push_back(setting.first);
    if (std::string const why = target.conflict(together); !why.empty()) throw HostError(kExitBadInput, why);
    std::vector<Quantity> outputs;
    if (outputsArg.is_none()) {
        outputs = target.defaultOutputs();
    } else {
        for (py::handle item : outputsArg) {
            std::string const name = py::str(item);
            Quantity const* output = target.findOutput(name);
            if (output == nullptr)
                throw HostError(kExitBadInput, "no output of " + target.name() + " is called " + name + "; " +
                                                   outputsListing + " lists them");
            outputs.push_back(*output);
        }
    }

    SweepOptions options;
    options.threads = threads;
    bool interrupted = false;
    options.stopRequested = [&interrupted] {
        py::gil_scoped_acquire gil;
        interrupted = PyErr_CheckSignals() != 0;
        return interrupted;
    };
    SweepResult result;
    {
        py::gil_scoped_release release;
        result = runSweep(target, fixed, points, outputs, options);
    }
    if (interrupted) throw py::error_already_set();

    py::dict arrays;
    for (Column const& column : result.outputs) {
        std::size_t const n = column.size();
        if (column.quantity.type == CellType::Float) {
            py::array_t<double> array(static_cast<py::ssize_t>(n));
            std::copy(column.numbers.begin(), column.numbers.end(), array.mutable_data());
            arrays[py::str(column.quantity.name)] = array;
        } else if (column.quantity.type == CellType::Int &&
                   std::none_of(column.numbers.begin(), column.numbers.end(),
                                [](double v) { return std::isnan(v); })) {
            py::array_t<long long> array(static_cast<py::ssize_t>(n));
            for (std::size_t i = 0; i < n; ++i)
                array.mutable_data()[i] = static_cast<long long>(column.numbers[i]);
            arrays[py::str(column.quantity.name)] = array;
        } else if (column.quantity.type == CellType::Int) {  // a row without figures: NaN, as floats
            py::array_t<double> array(static_cast<py::ssize_t>(n));
            std::copy(column.numbers.begin(), column.numbers.end(), array.mutable_data());
            arrays[py::str(column.quantity.name)] = array;
        } else {
            py::list texts;
            for (std::string const& text : column.texts) texts.append(py::str(text));
            arrays[py::str(column.quantity.name)] =
                py::module_::import("numpy").attr("array")(texts, "object");
        }
    }
    // Why a row has no figures (a thermal runaway), when any has none.
    if (std::any_of(result.notes.begin(), result.notes.end(),
                    [](std::string const& n) { return !n.empty(); })) {
        py::list notes;
        for (std::string const& note : result.notes) notes.append(py::str(note));
        arrays["note"] = py::module_::import("numpy").attr("array")(notes, "object");
    }
    return arrays;
}

struct CellView {
    std::string name, type, category, unit, defaultValue, validValues, description;
};

// One parameter set of a sheet. The inputs the user set are kept apart, so every calculate starts from
// them alone and computed defaults always follow the inputs they derive from.
class PySheet {
public:
    explicit PySheet(std::string const& name)
        : m_target(std::make_shared<SheetTarget>(findSheet(name))), m_instance(m_target->sheet().create()) {}

    std::string name() const { return m_target->name(); }
    std::string description() const { return m_target->sheet().description(); }

    std::vector<CellView> cells() const {
        std::vector<CellView> views;
        CellListing const listing = listCells(m_target->sheet(), "");
        std::vector<CellInfo> const& infos = m_target->sheet().cells();
        for (std::size_t i = 0; i < listing.rows.size() && i < infos.size(); ++i) {
            CellRow const& row = listing.rows[i];
            views.push_back({row.name, row.type, row.category, cellUnit(infos[i]), row.defaultValue,
                             row.validValues, row.description});
        }
        return views;
    }

    void set(std::string const& name, py::handle value) {
        Quantity const* variable = m_target->findVariable(name);
        if (variable == nullptr) throw HostError(kExitBadInput, m_target->notAVariable(name));
        std::string const text = toCellText(*variable, value);
        m_instance->set(name, text);
        for (auto& entry : m_inputs)
            if (entry.first == name) {
                entry.second = text;
                return;
            }
        m_inputs.emplace_back(name, text);
    }

    // An input reads the value it was set to, or its default for the inputs set; anything else reads
    // the value of the last calculate.
    py::object get(std::string const& name) {
        CellInfo const* cell = m_target->sheet().findCell(name);
        if (cell == nullptr) throw HostError(kExitBadInput, m_target->notAVariable(name));
        if (cell->category != CellCategory::UserInput) return fromText(cell->type, m_instance->get(name));
        for (auto const& entry : m_inputs)
            if (entry.first == name) return fromText(cell->type, entry.second);
        std::unique_ptr<SheetInstance> fresh = m_target->sheet().create();
        for (auto const& [input, text] : m_inputs) fresh->set(input, text);
        return fromText(cell->type, guarded([&] { return fresh->evaluate(name); }));
    }

    void unset(std::string const& name) {
        for (auto it = m_inputs.begin(); it != m_inputs.end(); ++it)
            if (it->first == name) {
                m_inputs.erase(it);
                return;
            }
    }

    void reset() {
        m_inputs.clear();
        m_instance = m_target->sheet().create();
    }

    py::dict calculate() {
        guarded([&] {
            m_instance->resetUserInputs();
            for (auto const& [input, text] : m_inputs) m_instance->set(input, text);
            m_instance->calculate();
            return std::string();
        });
        return outputs();
    }

    py::dict outputs() const {
        py::dict values;
        for (Quantity const& output : m_target->outputs())
            values[py::str(output.name)] = fromText(output.type, m_instance->get(output.name));
        return values;
    }

    py::dict inputs() const {
        py::dict values;
        for (auto const& [input, text] : m_inputs)
            values[py::str(input)] = fromText(m_target->findVariable(input)->type, text);
        return values;
    }

    std::string reflect() const { return m_instance->reflect(); }

    // The sweep over flat columns of equal length (the Python side broadcasts and reshapes).
    py::dict sweepFlat(std::vector<std::string> const& names, py::list columns, py::object outputs,
                       unsigned threads) {
        return sweepColumns(*m_target, m_inputs, names, columns, outputs, threads, "Sheet.cells");
    }

    // The warnings `prsm calc` prints for the last calculate: invalid inputs, values the sheet's
    // table asks to warn about, a string input without a row of its own.
    std::vector<std::string> warnings() {
        std::vector<ResolvedInput> resolved;
        for (auto const& [input, text] : m_inputs)
            resolved.push_back({m_target->sheet().findCell(input), text});
        CalcResult const result = [&] {
            try {
                return readCalculation(m_target->sheet(), *m_instance, resolved);
            } catch (...) {
                throw HostError(kExitDataFailure,
                                "calculating " + m_target->name() + " failed: " + describeCurrentException());
            }
        }();
        std::vector<std::string> lines = result.warnings;
        for (std::string& line : invalidInputWarnings(result)) lines.push_back(std::move(line));
        return lines;
    }

private:
    // Runs a library call, turning whatever it throws into a DataError with the library's message.
    template <typename Call>
    std::string guarded(Call call) {
        try {
            return call();
        } catch (HostError const&) {
            throw;
        } catch (...) {
            throw HostError(kExitDataFailure,
                            "calculating " + m_target->name() + " failed: " + describeCurrentException());
        }
    }

    std::shared_ptr<SheetTarget> m_target;
    std::unique_ptr<SheetInstance> m_instance;
    std::vector<std::pair<std::string, std::string>> m_inputs;  // as set, in the order first set
};

// A whole design: read from a file or from a dict, estimated by the design engine. Settings made with
// set() (the variables of a design sweep: "BLOCK.CELL", "rail.VCCINT", "junction_temperature", ...)
// apply on top of the design as given; the engine recalculates only the blocks they touch.
class PyDesign {
public:
    explicit PyDesign(std::shared_ptr<DesignTarget> target)
        : m_target(std::move(target)), m_evaluation(m_target->createDesign()) {}

    static PyDesign load(std::string const& path) { return PyDesign(std::make_shared<DesignTarget>(path)); }

    static PyDesign fromJson(std::string const& text, std::string const& source) {
        return PyDesign(
            std::make_shared<DesignTarget>(readDesign([&] { return design::parseDesign(text, source); })));
    }

    std::string source() const { return m_target->name(); }

    std::vector<std::string> variables() const { return names(m_target->variables()); }
    std::vector<std::string> outputNames() const { return names(m_target->outputs()); }

    void set(std::string const& name, py::handle value) {
        Quantity const* variable = m_target->findVariable(name);
        if (variable == nullptr) throw HostError(kExitBadInput, m_target->notAVariable(name));
        std::string const text = toCellText(*variable, value);
        std::vector<std::string> names{name};
        for (auto const& entry : m_settings)
            if (entry.first != name) names.push_back(entry.first);
        if (std::string const why = m_target->conflict(names); !why.empty())
            throw HostError(kExitBadInput, why);
        for (auto& entry : m_settings)
            if (entry.first == name) {
                entry.second = text;
                return;
            }
        m_settings.emplace_back(name, text);
    }

    void unset(std::string const& name) {
        for (auto it = m_settings.begin(); it != m_settings.end(); ++it)
            if (it->first == name) {
                m_settings.erase(it);
                return;
            }
    }

    void reset() { m_settings.clear(); }

    py::dict sweepFlat(std::vector<std::string> const& names, py::list columns, py::object outputs,
                       unsigned threads) {
        return sweepColumns(*m_target, m_settings, names, columns, outputs, threads, "Design.outputs");
    }

    py::dict settings() const {
        py::dict values;
        // A float as the design takes it: the number its text says (0.85, as a file would give it).
        for (auto const& [name, text] : m_settings) {
            CellType const type = m_target->findVariable(name)->type;
            values[py::str(name)] = type == CellType::Float ? py::float_(std::strtod(text.c_str(), nullptr))
                                                            : fromText(type, text);
        }
        return values;
    }

    // The report as `prsm estimate --json` prints it, as Python data.
    py::object estimate(bool partial) {
        std::string json;
        std::string failures;
        try {
            m_evaluation->reset();
            for (auto const& [name, text] : m_settings) m_evaluation->set(name, text);
            design::Report const& report = m_evaluation->apply();
            json = design::toJson(report);
            for (std::string const& failure : report.failures)
                failures += (failures.empty() ? "" : "\n") + failure;
            if (!report.complete && !partial)
                throw HostError(kExitDataFailure, "estimating " + m_target->name() + " failed: " + failures);
        } catch (HostError const&) {
            throw;
        } catch (design::DesignError const& e) {
            throw HostError(kExitBadInput, e.what());
        } catch (...) {
            throw HostError(kExitDataFailure,
                            "estimating " + m_target->name() + " failed: " + describeCurrentException());
        }
        return py::module_::import("json").attr("loads")(json);
    }

private:
    template <typename Read>
    static design::Design readDesign(Read read) {
        try {
            return read();
        } catch (design::DesignError const& e) {
            throw HostError(kExitBadInput, e.what());
        }
    }

    static std::vector<std::string> names(std::vector<Quantity> const& quantities) {
        std::vector<std::string> list;
        for (Quantity const& quantity : quantities) list.push_back(quantity.name);
        return list;
    }

    std::shared_ptr<DesignTarget> m_target;
    std::unique_ptr<DesignEvaluation> m_evaluation;
    std::vector<std::pair<std::string, std::string>> m_settings;  // as set, in the order first set
};

}  // namespace

PYBIND11_MODULE(_core, module) {
    module.doc() = "Power models of programmable-logic blocks (compiled core of the prsm package)";
    std::string const dataDir = chooseDataDir();

    static py::exception<HostError> error(module, "Error", PyExc_Exception);
    static py::exception<HostError> inputError(module, "InputError",
                                               py::make_tuple(error, py::handle(PyExc_ValueError)));
    static py::exception<HostError> dataError(module, "DataError",
                                              py::make_tuple(error, py::handle(PyExc_RuntimeError)));
    py::register_exception_translator([](std::exception_ptr raised) {
        try {
            if (raised) std::rethrow_exception(raised);
        } catch (HostError const& e) {
            (e.code() == kExitBadInput ? inputError : dataError)(e.what());
        }
    });

    module.def(
        "data_dir", [dataDir] { return dataDir; }, "The data directory the models read (QDI_DATADIR)");
    module.def(
        "models",
        [] {
            py::dict models;
            for (Sheet const* sheet : SheetRegistry::instance().sheets())
                models[py::str(sheet->name())] = sheet->description();
            return models;
        },
        "Every model, sorted by name, with its one-line description");

    py::class_<CellView>(module, "Cell")
        .def_readonly("name", &CellView::name)
        .def_readonly("type", &CellView::type)
        .def_readonly("category", &CellView::category)
        .def_readonly("unit", &CellView::unit)
        .def_readonly("default", &CellView::defaultValue)
        .def_readonly("valid_values", &CellView::validValues)
        .def_readonly("description", &CellView::description)
        .def("__repr__", [](CellView const& cell) {
            return "<Cell " + cell.name + ": " + cell.type + " " + cell.category +
                   (cell.unit.empty() ? "" : " (" + cell.unit + ")") + ">";
        });

    py::class_<PySheet>(module, "_Sheet")
        .def(py::init<std::string const&>(), py::arg("name"))
        .def_property_readonly("name", &PySheet::name)
        .def_property_readonly("description", &PySheet::description)
        .def_property_readonly("cells", &PySheet::cells)
        .def("set", &PySheet::set, py::arg("name"), py::arg("value"))
        .def("get", &PySheet::get, py::arg("name"))
        .def("unset", &PySheet::unset, py::arg("name"))
        .def("reset", &PySheet::reset)
        .def("calculate", &PySheet::calculate)
        .def_property_readonly("outputs", &PySheet::outputs)
        .def_property_readonly("inputs", &PySheet::inputs)
        .def("reflect", &PySheet::reflect)
        .def("_warnings", &PySheet::warnings)
        .def("_sweep_flat", &PySheet::sweepFlat, py::arg("names"), py::arg("columns"), py::arg("outputs"),
             py::arg("threads"));

    py::class_<PyDesign>(module, "_Design")
        .def_static("_load", &PyDesign::load, py::arg("path"))
        .def_static("_from_text", &PyDesign::fromJson, py::arg("text"), py::arg("source"))
        .def_property_readonly("source", &PyDesign::source)
        .def_property_readonly("variables", &PyDesign::variables)
        .def_property_readonly("outputs", &PyDesign::outputNames)
        .def_property_readonly("settings", &PyDesign::settings)
        .def("set", &PyDesign::set, py::arg("name"), py::arg("value"))
        .def("unset", &PyDesign::unset, py::arg("name"))
        .def("reset", &PyDesign::reset)
        .def("estimate", &PyDesign::estimate, py::arg("partial") = false)
        .def("_sweep_flat", &PyDesign::sweepFlat, py::arg("names"), py::arg("columns"), py::arg("outputs"),
             py::arg("threads"));
}
