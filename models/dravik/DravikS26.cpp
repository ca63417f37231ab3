// Formulas of the larger module board: which regulator output feeds which device supply and board
// part, at what voltage and rating. The rules themselves (load keys, efficiency fallback, losses,
// over-limit power, the linear outputs' draw, memory and storage loads) are in SomFormulas.h.
//
// Regulators: the DA9062's four bucks and four LDOs, the DA9130 for the device's core, the
// DA9131's two channels for the processor core and the video codec, the MPS3805A's two outputs for
// the processor-side transceiver core and the transceiver termination, and the TPS51200 for the
// memory termination.
#include <prsm/models/dravik/PRSMDravikS26Model.h>
#include <prsm/models/dravik/PRSMDravikS26Cells.h>

#include <prsm/models/dravik/SomFormulas.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

using Model = PRSMDravikS26Model;
using Rail = Model::Rail;
using Part = Model::Part;
using Converter = Model::Converter;
using Limit = Model::Limit;
using Total = Model::Total;
using prsm::som::LoadSteps;
using prsm::som::Output;
using Rating = prsm::som::Rating<Model>;

namespace {

// The device's supplies and the voltage each one runs at (the bank voltage for the I/O banks).
prsm::som::Supply<Model> const kSupplies[] = {
    {&Model::getFpgaMgtavccCurrent, 0.9f},          {&Model::getFpgaMgtavttCurrent, 1.2f},
    {&Model::getFpgaMgtvccauxCurrent, 1.8f},        {&Model::getFpgaVccadcCurrent, 1.8f},
    {&Model::getFpgaVccauxCurrent, 1.8f},           {&Model::getFpgaVccauxIoCurrent, 1.8f},
    {&Model::getFpgaVccbramCurrent, 0.85f},         {&Model::getFpgaVccintCurrent, 0.72f},
    {&Model::getFpgaVccintIoCurrent, 0.85f},        {&Model::getFpgaVccintVcuCurrent, 0.9f},
    {&Model::getFpgaVcco12Current, 1.2f},           {&Model::getFpgaVcco15Current, 1.5f},
    {&Model::getFpgaVcco18Current, 1.8f},           {&Model::getFpgaVcco25Current, 2.5f},
    {&Model::getFpgaVcco33Current, 3.3f},           {&Model::getFpgaVccoPsddr504Current, 1.2f},
    {&Model::getFpgaVccoPsio0500Current, 1.8f},     {&Model::getFpgaVccoPsio1501Current, 1.8f},
    {&Model::getFpgaVccoPsio2502Current, 1.8f},     {&Model::getFpgaVccoPsio3503Current, 1.8f},
    {&Model::getFpgaVccPsadcCurrent, 1.8f},         {&Model::getFpgaVccPsauxCurrent, 1.8f},
    {&Model::getFpgaVccPsbattCurrent, 1.2f},        {&Model::getFpgaVccPsddrPllCurrent, 1.8f},
    {&Model::getFpgaVccPsintfpCurrent, 0.85f},      {&Model::getFpgaVccPsintfpDdrCurrent, 0.85f},
    {&Model::getFpgaVccPsintlpCurrent, 0.85f},      {&Model::getFpgaVccPspllCurrent, 1.2f},
    {&Model::getFpgaVpsMgtrafpgaVccCurrent, 0.85f}, {&Model::getFpgaVpsMgtrafpgaVttCurrent, 1.8f},
};

// DDR4 rail voltages.
constexpr float kDdrVddVolts = 1.2f;
constexpr float kDdrVppVolts = 2.5f;
constexpr float kDdrVttVolts = 0.6f;

Output output(Model const& model, Model::Params& params, Model::Data const& data, Converter converter) {
    switch (converter) {
        case Converter::DA9062_BUCK1:
            return {model.calculateRegLoad(params, data, Rail::VCC_PS_1V20), 1.2f, LoadSteps::Buck};
        case Converter::DA9062_BUCK2:
            return {model.calculateRegLoad(params, data, Rail::VCC_PL_0V85), 0.85f, LoadSteps::Buck};
        case Converter::DA9062_BUCK3:  // the 3.3 V rail and the linear outputs it feeds
            return {model.calculateDa9062Buck3Load(params, data), 3.3f, LoadSteps::Buck};
        case Converter::DA9062_BUCK4:
            return {model.calculateRegLoad(params, data, Rail::VCC_PL_1V80), 1.8f, LoadSteps::Buck};
        case Converter::DA9130:
            return {model.calculateRegLoad(params, data, Rail::VCC_PL_0V72), 0.72f, LoadSteps::Fifty};
        case Converter::DA9131_CH1:
            return {model.calculateRegLoad(params, data, Rail::VCC_PS_0V85), 0.85f, LoadSteps::Fifty};
        case Converter::DA9131_CH2:
            return {model.calculateRegLoad(params, data, Rail::VCCINT_VCU_0V90), 0.9f, LoadSteps::Fifty};
        case Converter::MPM_A:
            return {model.calculateRegLoad(params, data, Rail::MGTRAVCC_0V85), 0.85f, LoadSteps::Module};
        case Converter::MPM_B:
            return {model.calculateRegLoad(params, data, Rail::VMGTAVTT_1V20), 1.2f, LoadSteps::Module};
    }
    return {0.0f, 0.0f, LoadSteps::Fifty};
}

float loss(Model const& model, Model::Params& params, Model::Data const& data, Converter converter) {
    return prsm::som::loss(model, params, data, &output, converter);
}

Rating rating(Limit limit) {
    switch (limit) {
        case Limit::DA9062_BUCK1:
            return {Rail::VCC_PS_1V20, 2.5f, 1.2f};
        case Limit::DA9062_BUCK2:
            return {Rail::VCC_PL_0V85, 0.35f, 0.85f};
        case Limit::DA9062_BUCK3:
            return {Rail::VCC_3V3, 2.0f, 3.3f};
        case Limit::DA9062_BUCK4:
            return {Rail::VCC_PL_1V80, 0.6f, 1.8f};
        case Limit::DA9062_LDO1:
            return {Rail::MGTRAVTT_1V80, 0.1f, 1.8f};
        case Limit::DA9062_LDO2:
            return {Rail::VCC_PS_1V80, 0.3f, 1.8f};
        case Limit::DA9062_LDO3:
            return {Rail::VMGTAVCC_0V90, 0.3f, 0.9f};
        case Limit::DA9062_LDO4:
            return {Rail::VCC_2V5, 0.3f, 2.5f};
        case Limit::DA9130:
            return {Rail::VCC_PL_0V72, 6.5f, 0.72f};
        case Limit::DA9131_CH1:
            return {Rail::VCC_PS_0V85, 3.5f, 0.85f};
        case Limit::DA9131_CH2:
            return {Rail::VCCINT_VCU_0V90, 3.2f, 0.9f};
        case Limit::MPS3805A_A:
            return {Rail::MGTRAVCC_0V85, 0.3f, 0.85f};
        case Limit::MPS3805A_B:
            return {Rail::VMGTAVTT_1V20, 0.6f, 1.2f};
        case Limit::TPS51200DRCT:
            return {Rail::DDR4VTT_0V60, 2.0f, 0.6f};
    }
    return {Rail::VCC_3V3, 0.0f, 0.0f};
}

}  // namespace

// ---- Loads ----

float Model::computeRegLoadCalc(Params& params, Data const& data, Rail rail) const {
    switch (rail) {
        case Rail::DDR4VTT_0V60:
            return calculateLoad(params, data, Part::DDR4_VTT);
        case Rail::MGTRAVCC_0V85:
            return getFpgaVpsMgtrafpgaVccCurrent(params, data);
        case Rail::MGTRAVTT_1V80:
            return getFpgaVpsMgtrafpgaVttCurrent(params, data);
        case Rail::VCCINT_VCU_0V90:
            return getFpgaVccintVcuCurrent(params, data);
        case Rail::VCC_2V5:
            return getFpgaVcco25Current(params, data) + calculateLoad(params, data, Part::DDR4_VPP);
        case Rail::VCC_3V3:
            return getFpgaVcco33Current(params, data) + calculateLoad(params, data, Part::EMMC_VCC) +
                   calculateLoad(params, data, Part::EEPROM_VCC) + calculateLoad(params, data, Part::TPM_VDD);
        case Rail::VCC_PL_0V72:
            return getFpgaVccintCurrent(params, data);
        case Rail::VCC_PL_0V85:
            return getFpgaVccbramCurrent(params, data) + getFpgaVccintIoCurrent(params, data);
        case Rail::VCC_PL_1V80:
            return getFpgaVccauxCurrent(params, data) + getFpgaVccauxIoCurrent(params, data) +
                   getFpgaVccadcCurrent(params, data) + getFpgaMgtvccauxCurrent(params, data) +
                   getFpgaVcco18Current(params, data);
        case Rail::VCC_PS_0V85:
            return getFpgaVccPsintfpCurrent(params, data) + getFpgaVccPsintlpCurrent(params, data) +
                   getFpgaVccPsintfpDdrCurrent(params, data);
        case Rail::VCC_PS_1V20:  // also the input of the termination output
            return getFpgaVccoPsddr504Current(params, data) + getFpgaVccPspllCurrent(params, data) +
                   getFpgaVccPsbattCurrent(params, data) + getFpgaVcco12Current(params, data) +
                   calculateLoad(params, data, Part::DDR4_VDD) +
                   calculateLoad(params, data, Part::DDR4_VDDQ) +
                   calculateRegLoad(params, data, Rail::DDR4VTT_0V60);
        case Rail::VCC_PS_1V80:
            return getFpgaVccPsauxCurrent(params, data) + getFpgaVccPsadcCurrent(params, data) +
                   getFpgaVccPsddrPllCurrent(params, data) + getFpgaVccoPsio0500Current(params, data) +
                   getFpgaVccoPsio1501Current(params, data) + getFpgaVccoPsio2502Current(params, data) +
                   getFpgaVccoPsio3503Current(params, data) + calculateLoad(params, data, Part::EMMC_VCCQ) +
                   calculateLoad(params, data, Part::QSPI_VCC);
        case Rail::VMGTAVCC_0V90:
            return getFpgaMgtavccCurrent(params, data);
        case Rail::VMGTAVTT_1V20:
            return getFpgaMgtavttCurrent(params, data);
    }
    return 0.0f;
}

float Model::computeLoadCalc(Params& params, Data const& data, Part part) const {
    switch (part) {
        case Part::DDR4_VDD:
            return prsm::som::memoryRailLoad(*this, params, data, "VDD", "", kDdrVddVolts);
        case Part::DDR4_VDDQ:
            return prsm::som::memoryRailLoad(*this, params, data, "VDDQ", "", kDdrVddVolts);
        case Part::DDR4_VPP:
            return prsm::som::memoryRailLoad(*this, params, data, "VPP", "", kDdrVppVolts);
        case Part::DDR4_VTT:
            return prsm::som::memoryRailLoad(*this, params, data, "VTT", "", kDdrVttVolts);
        default:
            return prsm::som::commonPartLoad(*this, params, data, part);
    }
}

// ---- Regulators ----

std::string Model::computeLoadKey(Params& params, Data const& data, Converter converter) const {
    return prsm::som::outputLoadKey(*this, params, data, &output, converter);
}

float Model::computeEfficiencyCalc(Params& params, Data const& data, Converter converter) const {
    std::string const& key = calculateLoadKeyString(params, data, converter);
    switch (converter) {
        case Converter::DA9062_BUCK1:
        case Converter::DA9062_BUCK2:
        case Converter::DA9062_BUCK3:
        case Converter::DA9062_BUCK4:
            return prsm::som::buckEfficiency<Model>(data, key, converter);
        case Converter::DA9130:
        case Converter::DA9131_CH1:
        case Converter::DA9131_CH2:
            return prsm::som::efficiency(data.getDa913XDataTableOrError(key, memberName(converter)));
        case Converter::MPM_A:
        case Converter::MPM_B:
            return prsm::som::efficiency(data.getMpmDataTableOrError(key, memberName(converter)));
    }
    return 0.5f;
}

float Model::computeDa9062PowerCalc(Params& params, Data const& data, Da9062Loss member) const {
    return prsm::som::da9062MemberPower(*this, params, data, &output, member);
}

float Model::computeOverlimitCalc(Params& params, Data const& data, Limit limit) const {
    return prsm::som::ratingOverLimit(*this, params, data, rating(limit));
}

// ---- Totals ----

float Model::computePowerCalc(Params& params, Data const& data, Total total) const {
    switch (total) {
        case Total::DA9062:
            return prsm::som::da9062Power(*this, params, data);
        case Total::DA9130:
            return loss(*this, params, data, Converter::DA9130);
        case Total::DA9131:
            return loss(*this, params, data, Converter::DA9131_CH1) +
                   loss(*this, params, data, Converter::DA9131_CH2);
        case Total::DDR4:
            return (calculateLoad(params, data, Part::DDR4_VDD) +
                    calculateLoad(params, data, Part::DDR4_VDDQ)) *
                       kDdrVddVolts +
                   calculateLoad(params, data, Part::DDR4_VPP) * kDdrVppVolts +
                   calculateLoad(params, data, Part::DDR4_VTT) * kDdrVttVolts;
        case Total::EMMC:
            return prsm::som::emmcPower(*this, params, data);
        case Total::FPGA:
            return prsm::som::devicePower(*this, params, data, kSupplies);
        case Total::MISC:
            return prsm::som::miscPower(*this, params, data);
        case Total::MPS3805A_A:
            return loss(*this, params, data, Converter::MPM_A);
        case Total::MPS3805A_B:
            return loss(*this, params, data, Converter::MPM_B);
        case Total::TPS51200DRCT:  // the termination current's drop from the 1.2 V rail
            return calculateRegLoad(params, data, Rail::DDR4VTT_0V60) * (kDdrVddVolts - kDdrVttVolts);
        case Total::TOTAL_SOM:
            return calculatePower(params, data, Total::FPGA) + calculatePower(params, data, Total::DDR4) +
                   calculatePower(params, data, Total::EMMC) + calculatePower(params, data, Total::MISC) +
                   calculatePower(params, data, Total::DA9062) + calculatePower(params, data, Total::DA9130) +
                   calculatePower(params, data, Total::DA9131) +
                   calculatePower(params, data, Total::MPS3805A_A) +
                   calculatePower(params, data, Total::MPS3805A_B) +
                   calculatePower(params, data, Total::TPS51200DRCT);
    }
    return 0.0f;
}
