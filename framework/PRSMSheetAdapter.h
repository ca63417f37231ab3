#pragma once
// Adapts one generated model to the by-name sheet interface. Every generated model instantiates it
// once with its own cell list; nothing here is particular to a sheet.

#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace prsm {

// Parses a cell's text by the number rule of PRSMNumberText.h; throws std::invalid_argument naming the
// cell when the text breaks it or its value does not fit the cell's type.
int parseIntCell(std::string const& name, std::string const& text);
float parseFloatCell(std::string const& name, std::string const& text);
std::string formatFloatCell(float value);
// The number formatFloatCell's text reads back as: the double nearest to `value`'s nine significant digits.
double floatCellNumber(float value);
[[noreturn]] void throwUnknownCell(std::string const& sheet, std::string const& name);
// Call inside a catch block: a data file that could not be found, read or parsed becomes DataFileError
// naming the file; anything else is rethrown as it is.
[[noreturn]] void rethrowNamingTheDataFile();

// The `position`-th "."-separated part of a table key; empty when the key has fewer parts.
std::string_view keyPart(std::string_view key, std::size_t position);

// Appends {name, the values found at that key} to `missing` when no key of `table` holds `value` as
// its `position`-th part. A table whose keys do not hold the input's default there either is not
// selected by that input (or is not in the file) and has nothing to say. Defined in the library for
// the tables' value types (float, int, text, lists).
template <typename Map>
void appendIfNoRow(Map const& table, char const* name, std::size_t position, std::string_view byDefault,
                   std::string const& value, std::vector<MissingRow>& missing);

// A cell's description as constant data: a generated model lists its cells as an array of these, and
// the library turns them into CellInfo once, when it loads (no string objects to build in a long
// initializer in every model's source).
struct CellRow {
    char const* name;
    CellType type;
    CellCategory category;
    char const* declaredDefault;
    char const* rule;
    char const* validityKey;
    bool hasValidValues;
    char const* unit;
    char const* belowZeroWarning;
    char const* aboveZeroWarning;
    char const* noValueWarning;
    char const* outsideLow;
    char const* outsideHigh;
    char const* outsideWarning;
    char const* description;
};

std::vector<CellInfo> describeCells(CellRow const* rows, std::size_t count);

template <std::size_t N>
std::vector<CellInfo> describeCells(CellRow const (&rows)[N]) {
    return describeCells(rows, N);
}

template <typename Model>
class GeneratedSheet final : public Sheet {
public:
    using Params = typename Model::Params;
    using Data = typename Model::Data;
    using ValidValues = std::string (*)(Model const&, Params&, Data const&, std::string const&);
    using RowsLacking = std::vector<MissingRow> (*)(Data const&, std::string const& input,
                                                    std::string const& value);

    GeneratedSheet(std::string name, std::string description, std::vector<CellInfo> cells,
                   ValidValues validValues, RowsLacking rowsLacking = nullptr, SheetDesign design = {})
        : m_name(std::move(name)),
          m_description(std::move(description)),
          m_cells(std::move(cells)),
          m_validValues(validValues),
          m_rowsLacking(rowsLacking),
          m_design(std::move(design)) {
        SheetRegistry::instance().add(*this);
    }

    std::string const& name() const override { return m_name; }
    std::string const& description() const override { return m_description; }
    std::vector<CellInfo> const& cells() const override { return m_cells; }
    std::unique_ptr<SheetInstance> create() const override { return std::make_unique<Instance>(*this); }
    SheetDesign const& design() const override { return m_design; }

private:
    // A cell's enumerator, by its position in m_cells; resolved once, on first typed access.
    struct Slot {
        CellType type;
        int index;
    };
    std::vector<Slot> const& slots() const {
        std::call_once(m_slotsOnce, [this] {
            m_slots.reserve(m_cells.size());
            for (CellInfo const& cell : m_cells) {
                int index = 0;
                if (cell.type == CellType::Int)
                    index = static_cast<int>(Params::string_to_int_enum(cell.name));
                else if (cell.type == CellType::Float)
                    index = static_cast<int>(Params::string_to_float_enum(cell.name));
                m_slots.push_back({cell.type, index});
            }
        });
        return m_slots;
    }

    // The sheet's data, loaded on first use.
    static Data const& loadedData() {
        try {
            return Data::getGlobal();
        } catch (...) {
            rethrowNamingTheDataFile();
        }
    }

    class Instance final : public SheetInstance {
    public:
        explicit Instance(GeneratedSheet const& sheet) : m_sheet(sheet) {}

        void set(std::string const& name, std::string const& text) override {
            if (auto const i = Params::string_to_int_enum(name); i < Params::LastInt)
                m_params[i] = parseIntCell(name, text);
            else if (auto const f = Params::string_to_float_enum(name); f < Params::LastFloat)
                m_params[f] = parseFloatCell(name, text);
            else if (auto const s = Params::string_to_string_enum(name); s < Params::LastString)
                m_params[s] = text;
            else
                throwUnknownCell(m_sheet.name(), name);
        }

        std::string get(std::string const& name) const override {
            if (auto const i = Params::string_to_int_enum(name); i < Params::LastInt)
                return std::to_string(m_params[i]);
            if (auto const f = Params::string_to_float_enum(name); f < Params::LastFloat)
                return formatFloatCell(m_params[f]);
            if (auto const s = Params::string_to_string_enum(name); s < Params::LastString)
                return m_params[s];
            throwUnknownCell(m_sheet.name(), name);
        }

        std::string evaluate(std::string const& name) override {
            Model const& model = Model::getGlobal();
            Data const& data = loadedData();
            if (Params::string_to_int_enum(name) < Params::LastInt)
                return std::to_string(model.intDispatchTable(m_params, data, name));
            if (Params::string_to_float_enum(name) < Params::LastFloat)
                return formatFloatCell(model.floatDispatchTable(m_params, data, name));
            if (Params::string_to_string_enum(name) < Params::LastString)
                return model.stringDispatchTable(m_params, data, name);
            throwUnknownCell(m_sheet.name(), name);
        }

        int isValid(std::string const& input) override {
            CellInfo const* cell = m_sheet.findCell(input);
            if (cell == nullptr || cell->validityKey.empty()) return 1;
            return Model::getGlobal().intDispatchTable(m_params, loadedData(), cell->validityKey);
        }

        std::string validValues(std::string const& input) override {
            return m_sheet.m_validValues(Model::getGlobal(), m_params, loadedData(), input);
        }

        void calculate() override {
            loadedData();  // the model fetches it again, loaded
            Model::getGlobal().calculate(m_params);
        }
        void resetUserInputs() override { m_params.resetUserInputs(); }
        std::string reflect() const override { return m_params.reflect(); }

        std::vector<MissingRow> tablesWithoutRow(std::string const& input) override {
            auto const s = Params::string_to_string_enum(input);
            if (m_sheet.m_rowsLacking == nullptr || s >= Params::LastString || m_params[s] == kStringNotSet)
                return {};
            return m_sheet.m_rowsLacking(loadedData(), input, m_params[s]);
        }

        double storedNumber(std::size_t cell) const override {
            Slot const slot = m_sheet.slots().at(cell);
            if (slot.type == CellType::Int)
                return m_params[static_cast<typename Params::IntEnum>(slot.index)];
            if (slot.type == CellType::Float)
                return m_params[static_cast<typename Params::FloatEnum>(slot.index)];
            return 0.0;
        }
        double evaluateNumber(std::size_t cell) override {
            Slot const slot = m_sheet.slots().at(cell);
            if (slot.type == CellType::String) return 0.0;
            Model const& model = Model::getGlobal();
            std::string const& name = m_sheet.m_cells[cell].name;
            if (slot.type == CellType::Int) return model.intDispatchTable(m_params, loadedData(), name);
            return floatCellNumber(model.floatDispatchTable(m_params, loadedData(), name));
        }
        void setNumber(std::size_t cell, double value) override {
            Slot const slot = m_sheet.slots().at(cell);
            if (slot.type == CellType::Int)
                m_params[static_cast<typename Params::IntEnum>(slot.index)] = static_cast<int>(value);
            else if (slot.type == CellType::Float)
                m_params[static_cast<typename Params::FloatEnum>(slot.index)] = static_cast<float>(value);
        }

    private:
        GeneratedSheet const& m_sheet;
        Params m_params;
    };

    std::string m_name;
    std::string m_description;
    std::vector<CellInfo> m_cells;
    ValidValues m_validValues;
    RowsLacking m_rowsLacking;
    SheetDesign m_design;
    mutable std::once_flag m_slotsOnce;
    mutable std::vector<Slot> m_slots;
};

}  // namespace prsm
