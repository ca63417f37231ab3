// Cells of a registered sheet set by name from arbitrary text, then calculated and read back: the way a
// host drives the library. The first bytes pick the sheet; then each step picks a cell (or makes up a
// name) and a text. On the shipped data.
//
// Documented failures: std::invalid_argument from set (unknown cell, text that does not parse) and
// PRSMException from a calculation (a missing key). Anything else that ends the process is a finding.
#include "FuzzSupport.h"

#include <prsm/framework/PRSMException.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    ::setenv("QDI_DATADIR", PRSM_SHIPPED_DATADIR, 1);
    prsm::fuzz::quietStreams();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    static std::vector<prsm::Sheet const*> const sheets = prsm::SheetRegistry::instance().sheets();
    FuzzedDataProvider in(bytes, size);
    prsm::Sheet const& sheet = *sheets[in.ConsumeIntegralInRange<std::size_t>(0, sheets.size() - 1)];
    std::vector<prsm::CellInfo> const& cells = sheet.cells();
    auto instance = sheet.create();

    int const steps = in.ConsumeIntegralInRange<int>(0, 16);
    for (int step = 0; step < steps && in.remaining_bytes() > 0; ++step) {
        std::string const name = in.ConsumeBool()
                                     ? cells[in.ConsumeIntegralInRange<std::size_t>(0, cells.size() - 1)].name
                                     : in.ConsumeRandomLengthString(32);
        std::string const text = in.ConsumeRandomLengthString(64);
        try {
            instance->set(name, text);
        } catch (std::invalid_argument const&) {
        }
    }

    try {
        instance->calculate();
        for (prsm::CellInfo const& cell : cells) {
            (void)instance->evaluate(cell.name);
            (void)instance->get(cell.name);
            if (cell.category != prsm::CellCategory::UserInput) continue;
            (void)instance->isValid(cell.name);
            if (cell.hasValidValues) (void)instance->validValues(cell.name);
        }
        (void)instance->reflect();
        instance->resetUserInputs();
        instance->calculate();
    } catch (PRSMException const&) {
    }
    return 0;
}
