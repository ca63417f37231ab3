// Uses the installed libraries as a host would: one sheet through its classes, every sheet by name, and
// a small design through the design engine. Only the stable interface is installed.
#include <prsm/design/Estimate.h>
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/models/talvex/PRSMTalvexCleLogicModel.h>

#include <iostream>

// Private headers are out of reach of an installed consumer.
#if __has_include(<prsm/framework/PRSMDataText.h>) || __has_include(<prsm/framework/PRSMDataSupport.h>) || \
    __has_include(<prsm/framework/PRSMTableIndex.h>) || __has_include(<prsm/framework/PRSMCellSupport.h>) || \
    __has_include(<prsm/framework/PRSMSheetAdapter.h>) || __has_include(<prsm/design/Counts.h>) ||          \
    __has_include(<prsm/models/talvex/PRSMTalvexCleLogicCells.h>) ||                                        \
    __has_include(<prsm/models/talvex/PRSMTalvexCleLogicDataIndexes.h>)
#error "a private header of prsm is installed"
#endif

int main() {
    PRSMTalvexCleLogicParams params;
    params[PRSMTalvexCleLogicParams::INSTANCE_COUNT] = 1000;
    PRSMTalvexCleLogicModel::getGlobal().calculate(params);
    float const watts = params[PRSMTalvexCleLogicParams::LOGIC_POWER];
    std::cout << "LOGIC_POWER of 1000 look-up tables: " << watts << " W\n";
    for (prsm::Sheet const* sheet : prsm::SheetRegistry::instance().sheets()) {
        auto instance = sheet->create();
        instance->calculate();
    }
    std::cout << PRSMCommonParamControlData::getGlobal().getDevice("TALVEX_COMPUTE", "ZQVC1902") << "\n";

    prsm::design::Estimator estimator(prsm::design::parseDesign(R"({"schema_version": 1,
        "device": {"part": "ZQVC1902"}, "thermal": {"ambient_temperature": 40, "theta_ja": 1.0},
        "static": {"model": "TalvexStatic"},
        "blocks": [{"name": "logic", "model": "TalvexCleLogic", "inputs": {"INSTANCE_COUNT": 1000}}]})",
                                                                "consumer.json"));
    prsm::design::Report const& report = estimator.estimate();
    std::cout << "a 1000-LUT design: " << report.totalPower << " W at " << report.thermal.junction << " degC\n";
    return watts > 0.0f && report.complete && report.staticPower > 0 ? 0 : 1;
}
