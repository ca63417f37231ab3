#include "CleLogicLimit.h"

#include "BenchSupport.h"

#include <cmath>
#include <cstdio>

namespace prsm::bench {

using Params = PRSMTalvexCleLogicParams;

CleLogicInputs cleLogicInputsOf(Params const& p) {
    CleLogicInputs in;
    in.instanceCount = p[Params::INSTANCE_COUNT];
    in.lutOfmuxCount = p[Params::LUT_OFMUX_INSTANCE_COUNT];
    in.bypOfmuxCount = p[Params::BYP_OFMUX_INSTANCE_COUNT];
    in.lookaheadOfmuxCount = p[Params::LOOKAHEAD_OFMUX_INSTANCE_COUNT];
    in.clockFreq = p[Params::CLOCK_FREQ];
    in.toggleRate = p[Params::TOGGLE_RATE];
    in.vccint = p[Params::VCCINT];
    in.lutWeProb = p[Params::LUT_WE_PROB];
    Params::FloatEnum const a[6] = {Params::A1_SIG_RATE, Params::A2_SIG_RATE, Params::A3_SIG_RATE,
                                    Params::A4_SIG_RATE, Params::A5_SIG_RATE, Params::A6_SIG_RATE};
    for (int i = 0; i < 6; ++i) in.sigA[i] = p[a[i]];
    in.sigOp = p[Params::OP_SIG_RATE];
    in.sigQ = p[Params::Q_SIG_RATE];
    in.sigOfmux = p[Params::OFMUX_SIG_RATE];
    in.sigByp = p[Params::BYP_SIG_RATE];
    in.sigCout[0] = p[Params::COUTB_SIG_RATE];
    in.sigCout[1] = p[Params::COUTD_SIG_RATE];
    in.sigCout[2] = p[Params::COUTF_SIG_RATE];
    in.sigCout[3] = p[Params::COUTH_SIG_RATE];
    in.instanceType = p[Params::INSTANCE_TYPE];
    return in;
}

CleLogicTables lookUpCleLogicTables(PRSMTalvexCleLogicData const& data, std::string const& device,
                                    std::string const& instanceType) {
    CleLogicTables t;
    char const* const pins[6] = {"A1", "A2", "A3", "A4", "A5", "A6"};
    char const* const internal[5] = {"A1INT", "A2INT", "A3INT", "A4INT", "A5INT"};
    for (int i = 0; i < 6; ++i) t.lutCap[i] = data.getLutCap(pins[i]);
    for (int i = 0; i < 5; ++i) t.intCap[i] = data.getLutCap(internal[i]);
    t.opCap = data.getLutCap("OP");
    t.cLram = data.getLutCap("C_LRAM");
    t.clsrl = data.getLutCap("CLSRL");
    t.regCap = instanceType.compare(0, 3, "REG") == 0 ? data.getRegCap(instanceType) : 0.0f;
    t.vpow = data.getMiscCap("VPOW");
    t.bypCap = data.getMiscCap("BYP");
    t.ofmuxCap = data.getMiscCap("OFMUX");
    char const* const couts[4] = {"COUTB", "COUTD", "COUTF", "COUTH"};
    for (int i = 0; i < 4; ++i) t.coutCap[i] = data.getLookaheadCap(couts[i]);
    float scale = data.getBlockPowerScaleOrError(device, "CLE_LOGIC_VCCINT");
    if (scale == 3.4028235e38f) scale = data.getBlockPowerScaleOrError("DEFAULT", "CLE_LOGIC_VCCINT");
    t.scale = scale == 3.4028235e38f ? 1.0f : scale;
    return t;
}

namespace {

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

}  // namespace

// The formulas in the model's evaluation order of operands, so that every float rounds the same way.
void cleLogicStraightLine(CleLogicInputs const& in, CleLogicTables const& t, CleLogicOutputs& out) {
    std::string_view const type = in.instanceType;
    bool const isLut = startsWith(type, "LUT");
    bool const isReg = startsWith(type, "REG");
    bool const isByp = startsWith(type, "BYP");
    bool const isOfmux = startsWith(type, "OFMUX");
    bool const isLookahead = startsWith(type, "LOOKAHEAD");

    float freqA[6];
    for (int i = 0; i < 6; ++i) freqA[i] = in.sigA[i] * 0.5f;

    float lutCapFreq = 0.0f;
    if (isLut) {
        float intComponent[6];
        for (int k = 0; k < 5; ++k) {
            float capacitance = 0.0f;
            for (int j = k; j < 5; ++j) capacitance += t.intCap[j];
            intComponent[k] = freqA[k] * capacitance;
        }
        intComponent[5] = 0.0f;
        float maxInt = -3.4028235e38f;
        for (int k = 5; k >= 0; --k)
            if (intComponent[k] > maxInt) maxInt = intComponent[k];
        float sum = 0.0f;
        for (int i = 0; i < 6; ++i) sum += freqA[i] * t.lutCap[i];
        lutCapFreq = sum + (in.sigOp * 0.5f) * t.opCap + maxInt;
    }
    float const bypCapFreq = isByp ? (in.sigByp * 0.5f) * t.bypCap : 0.0f;
    float lookaheadCapFreq = 0.0f;
    if (isLookahead) {
        lookaheadCapFreq = (in.sigCout[0] * 0.5f) * t.coutCap[0] + (in.sigCout[1] * 0.5f) * t.coutCap[1] +
                           (in.sigCout[2] * 0.5f) * t.coutCap[2] + (in.sigCout[3] * 0.5f) * t.coutCap[3];
    }
    float const ofmuxCapFreq = (in.sigOfmux * 0.5f) * t.ofmuxCap;
    float const regCapFreq = isReg ? in.sigQ * t.regCap : 0.0f;
    float memoryWriteCapFreq = 0.0f;
    if (type == "LUT_DRAM")
        memoryWriteCapFreq = t.cLram * in.clockFreq * in.lutWeProb;
    else if (type == "LUT_SRL")
        memoryWriteCapFreq = in.sigOp * t.clsrl * in.lutWeProb;

    float const p = std::pow(in.vccint, t.vpow);
    double const scale = static_cast<double>(t.scale);
    auto const component = [p, scale](float capFreq) {
        return static_cast<float>(static_cast<double>(capFreq * p) * 0.001 * scale);
    };

    out.lutComponent = component(lutCapFreq);
    out.memoryWriteComponent = component(memoryWriteCapFreq);
    out.regInstancePower = component(regCapFreq);
    out.bypInstancePower = out.bypComponent = component(bypCapFreq);
    out.lookaheadInstancePower = out.lookaheadComponent = component(lookaheadCapFreq);
    out.ofmuxComponent = component(in.lutOfmuxCount * ofmuxCapFreq);
    out.bypOfmuxComponent = component(in.bypOfmuxCount * ofmuxCapFreq);
    out.lookaheadOfmuxComponent = component(in.lookaheadOfmuxCount * ofmuxCapFreq);
    int const muxes = in.bypOfmuxCount + in.lookaheadOfmuxCount + in.lutOfmuxCount;
    out.ofmuxInstancePower = component(muxes * ofmuxCapFreq);
    out.lutInstancePower = out.lutComponent + out.memoryWriteComponent + out.ofmuxComponent;
    out.bypPower = out.bypComponent + out.bypOfmuxComponent;
    out.lookaheadPower = out.lookaheadComponent + out.lookaheadOfmuxComponent;

    float perInstance = 0.0f;
    if (isReg)
        perInstance = out.regInstancePower;
    else if (isLut)
        perInstance = out.lutInstancePower;
    else if (isOfmux)
        perInstance = out.ofmuxInstancePower;
    else if (isByp)
        perInstance = out.bypInstancePower;
    else if (isLookahead)
        perInstance = out.lookaheadInstancePower;
    out.logicPower = static_cast<float>(in.instanceCount * perInstance * 0.001);

    // The legacy estimator's figure.
    float pinCap = 0.0f;
    for (int i = 0; i < 6; ++i) pinCap += t.lutCap[i];
    pinCap += t.opCap;
    float intCap = 0.0f;
    for (int i = 0; i < 5; ++i) intCap += t.intCap[i];
    float const kpeCap = (pinCap + intCap) * 1.01f;
    float const switched = in.vccint * in.vccint * kpeCap * in.toggleRate;
    float const lutKpe = static_cast<float>(in.clockFreq * switched * 0.5 * 0.001 * scale);
    float kpe = 0.0f;
    if (type == "REG_FF")
        kpe = out.regInstancePower;
    else if (type == "LUT_LOGIC")
        kpe = lutKpe;
    else if (type == "LUT_DRAM" || type == "LUT_SRL")
        kpe = lutKpe + out.memoryWriteComponent;
    out.kpeLogicPower = static_cast<float>(in.instanceCount * kpe * 0.001);
}

// Every instance type of the shipped list, each on every device of the scale table plus one without a
// row: the straight line must give the model's outputs bit for bit.
bool checkCleLogicLimit(std::string& message) {
    PRSMTalvexCleLogicModel const& model = PRSMTalvexCleLogicModel::getGlobal();
    PRSMTalvexCleLogicData const& data = PRSMTalvexCleLogicData::getGlobal();
    std::vector<std::string> types = data.getDropdownLists("INSTANCE_TYPE_LIST");
    types.push_back("UNKNOWN_TYPE");
    char const* const devices[] = {"ZQVC1902", "ZQVC2802", "NO_SUCH_DEVICE"};
    int checked = 0;
    for (std::string const& type : types) {
        for (char const* device : devices) {
            Params params;
            params[Params::INSTANCE_TYPE] = type;
            params[Params::DEVICE] = device;
            params[Params::INSTANCE_COUNT] = 3;
            params[Params::LUT_OFMUX_INSTANCE_COUNT] = 2;
            params[Params::CLOCK_FREQ] = 350.0f;
            params[Params::A3_SIG_RATE] = 61.0f;
            model.calculate(params);
            CleLogicOutputs out{};
            cleLogicStraightLine(cleLogicInputsOf(params), lookUpCleLogicTables(data, device, type), out);
            struct {
                char const* name;
                float limit;
                Params::FloatEnum cell;
            } const pairs[] = {
                {"KPE_LOGIC_POWER", out.kpeLogicPower, Params::KPE_LOGIC_POWER},
                {"LOGIC_POWER", out.logicPower, Params::LOGIC_POWER},
                {"LUT_COMPONENT", out.lutComponent, Params::LUT_COMPONENT},
                {"OFMUX_COMPONENT", out.ofmuxComponent, Params::OFMUX_COMPONENT},
                {"MEMORY_WRITE_COMPONENT", out.memoryWriteComponent, Params::MEMORY_WRITE_COMPONENT},
                {"LUT_INSTANCE_POWER", out.lutInstancePower, Params::LUT_INSTANCE_POWER},
                {"REG_INSTANCE_POWER", out.regInstancePower, Params::REG_INSTANCE_POWER},
                {"OFMUX_INSTANCE_POWER", out.ofmuxInstancePower, Params::OFMUX_INSTANCE_POWER},
                {"BYP_INSTANCE_POWER", out.bypInstancePower, Params::BYP_INSTANCE_POWER},
                {"BYP_COMPONENT", out.bypComponent, Params::BYP_COMPONENT},
                {"BYP_OFMUX_COMPONENT", out.bypOfmuxComponent, Params::BYP_OFMUX_COMPONENT},
                {"BYP_POWER", out.bypPower, Params::BYP_POWER},
                {"LOOKAHEAD_INSTANCE_POWER", out.lookaheadInstancePower, Params::LOOKAHEAD_INSTANCE_POWER},
                {"LOOKAHEAD_COMPONENT", out.lookaheadComponent, Params::LOOKAHEAD_COMPONENT},
                {"LOOKAHEAD_OFMUX_COMPONENT", out.lookaheadOfmuxComponent, Params::LOOKAHEAD_OFMUX_COMPONENT},
                {"LOOKAHEAD_POWER", out.lookaheadPower, Params::LOOKAHEAD_POWER},
            };
            for (auto const& pair : pairs) {
                if (pair.limit != params[pair.cell]) {
                    char text[256];
                    std::snprintf(text, sizeof text, "%s for %s on %s: straight line %.9g, model %.9g",
                                  pair.name, type.c_str(), device, static_cast<double>(pair.limit),
                                  static_cast<double>(params[pair.cell]));
                    message = text;
                    return false;
                }
                ++checked;
            }
        }
    }
    message = std::to_string(checked) + " outputs agree bit for bit";
    return true;
}

}  // namespace prsm::bench
