// Uses the installed library as a host would: one sheet through its classes, every sheet by name.
#include <prsm/prsm.h>

#include <iostream>

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
    return watts > 0.0f ? 0 : 1;
}
