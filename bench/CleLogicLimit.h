#pragma once
// A limit to compare the logic-element sheet against: the same formulas as one straight-line
// function over plain floats, with every table value looked up once beforehand. No caching, no
// defaults, no lookups by name: what a hand-written evaluation of the sheet would cost.

#include <prsm/models/talvex/PRSMTalvexCleLogicModel.h>

#include <string>
#include <string_view>

namespace prsm::bench {

struct CleLogicInputs {
    int instanceCount = 0, lutOfmuxCount = 0, bypOfmuxCount = 0, lookaheadOfmuxCount = 0;
    float clockFreq = 0, toggleRate = 0, vccint = 0, lutWeProb = 0;
    float sigA[6] = {}, sigOp = 0, sigQ = 0, sigOfmux = 0, sigByp = 0, sigCout[4] = {};
    std::string instanceType;
};

// Table values for one device and one instance type.
struct CleLogicTables {
    float lutCap[6] = {}, opCap = 0, intCap[5] = {}, cLram = 0, clsrl = 0;
    float regCap = 0;  // of the instance type; 0 when it is not a register type
    float vpow = 0, bypCap = 0, ofmuxCap = 0, coutCap[4] = {};
    float scale = 1;
};

struct CleLogicOutputs {
    float kpeLogicPower, logicPower, lutComponent, ofmuxComponent, memoryWriteComponent, lutInstancePower,
        regInstancePower, ofmuxInstancePower, bypInstancePower, bypComponent, bypOfmuxComponent, bypPower,
        lookaheadInstancePower, lookaheadComponent, lookaheadOfmuxComponent, lookaheadPower;
};

// The inputs of a parameter set whose defaults have been applied (by a calculate).
CleLogicInputs cleLogicInputsOf(PRSMTalvexCleLogicParams const& params);
CleLogicTables lookUpCleLogicTables(PRSMTalvexCleLogicData const& data, std::string const& device,
                                    std::string const& instanceType);

void cleLogicStraightLine(CleLogicInputs const& in, CleLogicTables const& t, CleLogicOutputs& out);

}  // namespace prsm::bench
