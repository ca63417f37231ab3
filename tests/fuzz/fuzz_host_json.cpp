// The host's JSON input from arbitrary bytes: parsed into assignments, checked against a sheet,
// calculated and rendered as the table and as JSON, the way `prsm calc <model> -i <file> [--json]` does.
// The first byte picks the sheet; the rest is the file. On the shipped data.
//
// Every failure the host reports is a HostError (an exit status 2 or 3); anything else that ends the
// process is a finding.
#include "FuzzSupport.h"

#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/host/Calculation.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Inputs.h>
#include <prsm/host/Render.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    ::setenv("QDI_DATADIR", PRSM_SHIPPED_DATADIR, 1);
    prsm::fuzz::quietStreams();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    using namespace prsm::host;
    static std::vector<prsm::Sheet const*> const sheets = prsm::SheetRegistry::instance().sheets();
    if (size == 0) return 0;
    prsm::Sheet const& sheet = *sheets[bytes[0] % sheets.size()];
    std::string const content(reinterpret_cast<char const*>(bytes) + 1, size - 1);
    try {
        std::vector<Assignment> const fromFile = parseInputJson(content, "fuzz.json");
        std::vector<ResolvedInput> const inputs = resolveInputs(sheet, mergeAssignments(fromFile, {}));
        CalcResult const result = runCalculation(sheet, inputs);
        (void)renderCalcTable(result);
        (void)calcJson(result).dump(2);
        (void)invalidInputWarnings(result);
    } catch (HostError const&) {
    }
    return 0;
}
