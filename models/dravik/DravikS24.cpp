// Formulas of the smaller module board: which regulator output feeds which device supply and board
// part, at what voltage and rating. The rules themselves are those of the larger board
// (SomFormulas.h).
//
// Regulators: the DA9062's four bucks and four LDOs, and the DA9131's two channels
// for the processor core (with the logic's 0.85 V supplies and the processor-side transceiver core on
// the same output) and the device's core. The LPDDR4 memory has no termination rail.
#include <prsm/models/dravik/PRSMDravikS24Model.h>
#include <prsm/models/dravik/PRSMDravikS24Cells.h>

#include <prsm/models/dravik/SomFormulas.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

using Model = PRSMDravikS24Model;
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
    {&Model::getFpgaMgtavccCurrent, 0.9f},         {&Model::getFpgaMgtavttCurrent, 1.2f},
    {&Model::getFpgaMgtvccauxCurrent, 1.8f},       {&Model::getFpgaVccadcCurrent, 1.8f},
    {&Model::getFpgaVccauxCurrent, 1.8f},          {&Model::getFpgaVccauxIoCurrent, 1.8f},
    {&Model::getFpgaVccbramCurrent, 0.85f},        {&Model::getFpgaVccintCurrent, 0.72f},
    {&Model::getFpgaVccintIoCurrent, 0.85f},       {&Model::getFpgaVcco12Current, 1.2f},
    {&Model::getFpgaVcco15Current, 1.5f},          {&Model::getFpgaVcco18Current, 1.8f},
    {&Model::getFpgaVcco25Current, 2.5f},          {&Model::getFpgaVcco33Current, 3.3f},
    {&Model::getFpgaVccoPsddr504Current, 1.1f},    {&Model::getFpgaVccoPsio0500Current, 1.8f},
    {&Model::getFpgaVccoPsio1501Current, 1.8f},    {&Model::getFpgaVccoPsio2502Current, 1.8f},
    {&Model::getFpgaVccoPsio3503Current, 1.8f},    {&Model::getFpgaVccPsadcCurrent, 1.8f},
    {&Model::getFpgaVccPsauxCurrent, 1.8f},        {&Model::getFpgaVccPsbattCurrent, 1.2f},
    {&Model::getFpgaVccPsddrPllCurrent, 1.8f},     {&Model::getFpgaVccPsintfpCurrent, 0.85f},
    {&Model::getFpgaVccPsintfpDdrCurrent, 0.85f},  {&Model::getFpgaVccPsintlpCurrent, 0.85f},
    {&Model::getFpgaVccPspllCurrent, 1.2f},        {&Model::getFpgaVpsMgtrafpgaVccCurrent, 0.85f},
    {&Model::getFpgaVpsMgtrafpgaVttCurrent, 1.8f},
};

// LPDDR4 rail voltages: core and I/O at 1.1 V, the second core rail (VPP cells) at 1.8 V.
constexpr float kMemoryVolts = 1.1f;
constexpr float kMemoryVppVolts = 1.8f;

Output output(Model const& model, Model::Params& params, Model::Data const& data, Converter converter) {
    switch (converter) {
        case Converter::DA9062_BUCK1:
            return {model.calculateRegLoad(params, data, Rail::VCC_PS_1V10), 1.1f, LoadSteps::Buck};
        case Converter::DA9062_BUCK2:
            return {model.calculateRegLoad(params, data, Rail::VCC_PS_1V20), 1.2f, LoadSteps::Buck};
        case Converter::DA9062_BUCK3:  // the 3.3 V rail and the linear outputs it feeds
            return {model.calculateDa9062Buck3Load(params, data), 3.3f, LoadSteps::Buck};
        case Converter::DA9062_BUCK4:
            return {model.calculateRegLoad(params, data, Rail::VCC_PL_1V80), 1.8f, LoadSteps::Buck};
        case Converter::DA9131_CH1:
            return {model.calculateRegLoad(params, data, Rail::VCC_PS_0V85), 0.85f, LoadSteps::Fifty};
        case Converter::DA9131_CH2:
            return {model.calculateRegLoad(params, data, Rail::VCC_PL_0V72), 0.72f, LoadSteps::Fifty};
    }
    return {0.0f, 0.0f, LoadSteps::Fifty};
}

float loss(Model const& model, Model::Params& params, Model::Data const& data, Converter converter) {
    return prsm::som::loss(model, params, data, &output, converter);
}

Rating rating(Limit limit) {
    switch (limit) {
        case Limit::DA9062_BUCK1:
            return {Rail::VCC_PS_1V10, 2.5f, 1.1f};
        case Limit::DA9062_BUCK2:
            return {Rail::VCC_PS_1V20, 1.0f, 1.2f};
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
        case Limit::DA9131_CH1:
            return {Rail::VCC_PS_0V85, 3.5f, 0.85f};
        case Limit::DA9131_CH2:
            return {Rail::VCC_PL_0V72, 3.2f, 0.72f};
    }
    return {Rail::VCC_3V3, 0.0f, 0.0f};
}

}  // namespace

// ---- Loads ----

float Model::computeRegLoadCalc(Params& params, Data const& data, Rail rail) const {
    switch (rail) {
        case Rail::MGTRAVCC_0V85:  // a branch of the processor core output
            return getFpgaVpsMgtrafpgaVccCurrent(params, data);
        case Rail::MGTRAVTT_1V80:
            return getFpgaVpsMgtrafpgaVttCurrent(params, data);
        case Rail::VCC_2V5:
            return getFpgaVcco25Current(params, data);
        case Rail::VCC_3V3:
            return getFpgaVcco33Current(params, data) + calculateLoad(params, data, Part::EMMC_VCC) +
                   calculateLoad(params, data, Part::EEPROM_VCC) + calculateLoad(params, data, Part::TPM_VDD);
        case Rail::VCC_PL_0V72:
            return getFpgaVccintCurrent(params, data);
        case Rail::VCC_PL_0V85:  // a branch of the processor core output
            return getFpgaVccbramCurrent(params, data) + getFpgaVccintIoCurrent(params, data);
        case Rail::VCC_PL_1V80:
            return getFpgaVccauxCurrent(params, data) + getFpgaVccauxIoCurrent(params, data) +
                   getFpgaVccadcCurrent(params, data) + getFpgaMgtvccauxCurrent(params, data) +
                   getFpgaVcco18Current(params, data);
        case Rail::VCC_PS_0V85:
            return getFpgaVccPsintfpCurrent(params, data) + getFpgaVccPsintlpCurrent(params, data) +
                   getFpgaVccPsintfpDdrCurrent(params, data) +
                   calculateRegLoad(params, data, Rail::MGTRAVCC_0V85) +
                   calculateRegLoad(params, data, Rail::VCC_PL_0V85);
        case Rail::VCC_PS_1V10:
            return getFpgaVccoPsddr504Current(params, data) + calculateLoad(params, data, Part::DDR4_VDD) +
                   calculateLoad(params, data, Part::DDR4_VDDQ);
        case Rail::VCC_PS_1V20:
            return getFpgaVccPspllCurrent(params, data) + getFpgaVccPsbattCurrent(params, data) +
                   getFpgaVcco12Current(params, data) + calculateRegLoad(params, data, Rail::VMGTAVTT_1V20);
        case Rail::VCC_PS_1V80:
            return getFpgaVccPsauxCurrent(params, data) + getFpgaVccPsadcCurrent(params, data) +
                   getFpgaVccPsddrPllCurrent(params, data) + getFpgaVccoPsio0500Current(params, data) +
                   getFpgaVccoPsio1501Current(params, data) + getFpgaVccoPsio2502Current(params, data) +
                   getFpgaVccoPsio3503Current(params, data) + calculateLoad(params, data, Part::EMMC_VCCQ) +
                   calculateLoad(params, data, Part::QSPI_VCC) + calculateLoad(params, data, Part::DDR4_VPP);
        case Rail::VMGTAVCC_0V90:
            return getFpgaMgtavccCurrent(params, data);
        case Rail::VMGTAVTT_1V20:  // a branch of the 1.2 V output
            return getFpgaMgtavttCurrent(params, data);
    }
    return 0.0f;
}

// The memory's two grade-dependent rails carry the larger of the commercial and industrial figures:
// the board is sized for either grade of memory.
float Model::computeLoadCalc(Params& params, Data const& data, Part part) const {
    using PRSMHelperUtils::MAX;
    switch (part) {
        case Part::DDR4_VDD:
            return MAX(calculateLoad(params, data, Part::DDR4_VDD_CGRADE),
                       calculateLoad(params, data, Part::DDR4_VDD_IGRADE));
        case Part::DDR4_VPP:
            return MAX(calculateLoad(params, data, Part::DDR4_VPP_CGRADE),
                       calculateLoad(params, data, Part::DDR4_VPP_IGRADE));
        case Part::DDR4_VDDQ:
            return prsm::som::memoryRailLoad(*this, params, data, "VDDQ", "", kMemoryVolts);
        case Part::DDR4_VDD_CGRADE:
            return prsm::som::memoryRailLoad(*this, params, data, "VDD", "_CGRADE", kMemoryVolts);
        case Part::DDR4_VDD_IGRADE:
            return prsm::som::memoryRailLoad(*this, params, data, "VDD", "_IGRADE", kMemoryVolts);
        case Part::DDR4_VPP_CGRADE:
            return prsm::som::memoryRailLoad(*this, params, data, "VPP", "_CGRADE", kMemoryVppVolts);
        case Part::DDR4_VPP_IGRADE:
            return prsm::som::memoryRailLoad(*this, params, data, "VPP", "_IGRADE", kMemoryVppVolts);
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
        case Converter::DA9131_CH1:
        case Converter::DA9131_CH2:
            return prsm::som::efficiency(data.getDa913XDataTableOrError(key, memberName(converter)));
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
        case Total::DA9131:
            return loss(*this, params, data, Converter::DA9131_CH1) +
                   loss(*this, params, data, Converter::DA9131_CH2);
        case Total::LPDDR4:
            return (calculateLoad(params, data, Part::DDR4_VDD) +
                    calculateLoad(params, data, Part::DDR4_VDDQ)) *
                       kMemoryVolts +
                   calculateLoad(params, data, Part::DDR4_VPP) * kMemoryVppVolts;
        case Total::EMMC:
            return prsm::som::emmcPower(*this, params, data);
        case Total::FPGA:
            return prsm::som::devicePower(*this, params, data, kSupplies);
        case Total::MISC:
            return prsm::som::miscPower(*this, params, data);
        case Total::TOTAL_SOM:
            return calculatePower(params, data, Total::FPGA) + calculatePower(params, data, Total::LPDDR4) +
                   calculatePower(params, data, Total::EMMC) + calculatePower(params, data, Total::MISC) +
                   calculatePower(params, data, Total::DA9062) + calculatePower(params, data, Total::DA9131);
    }
    return 0.0f;
}
