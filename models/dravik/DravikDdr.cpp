// Formulas of the older architecture's memory interface that are its own: its HPIO banks, the interfaces
// the part's banks hold and its one VCCO rail. The interface's physics is the newer hard controllers'
// (DdrFormulas.h, bound in the table).
#include <prsm/models/dravik/PRSMDravikDdrModel.h>
#include <prsm/models/dravik/PRSMDravikDdrCells.h>

#include "DravikDdrFormulas.h"

using PRSMHelperUtils::IFERROR;
using Model = PRSMDravikDdrModel;
using Data = Model::Data;

// ---- Inputs and their rules -----------------------------------------------------------------------------

bool Model::isValidDataWidth(Params& params, Data const& data) const {
    return prsm::ddr::dataWidthAllowed(*this, params, data);
}

std::vector<std::string> Model::validListEcc(Params& params, Data const& data) const {
    return prsm::ddr::eccChoices(*this, params, data);
}

bool Model::isValidRanks(Params& params, Data const& data) const {
    return prsm::ddr::ranksAllowed(*this, params, data);
}

bool Model::isValidDataRate(Params& params, Data const& data) const {
    return prsm::memory::dataRateInRange(*this, params, data);
}

// The interfaces whose whole banks fit in the part's HPIO banks.
float Model::computeGetMaxInstanceCount(Params& params, Data const& data) const {
    int const banks = IFERROR(data.getPartBanksOrError(refDevice(params, data)),
                              IFERROR(data.getPartBanksOrError(Data::PartBanksKey::DEFAULT), 0));
    int const perInterface = calculateHpioBanks(params, data);
    return perInterface > 0 ? static_cast<float>(banks / perInterface) : 0.0f;
}

bool Model::isValidInstanceCount(Params& params, Data const& data) const {
    return prsm::memory::instanceCountInRange(*this, params, data);
}

bool Model::isValidVcco12(Params& params, Data const& data) const {
    return prsm::ddr::vccoAllowed(*this, params, data, "VCCO12", getVcco12(params, data));
}

// ---- Banks and the rails ---------------------------------------------------------------------------------

int Model::computeHpioBanks(Params& params, Data const& data) const {
    return prsm::ddr::wholeBanks(*this, params, data, IFERROR(data.getHpioBankOrError(Data::HpioBankKey::PINS), 0));
}

int Model::computeUsedHpioBanks(Params& params, Data const& data) const {
    return prsm::ddr::saturated(static_cast<double>(getInstanceCount(params, data)) *
                                calculateHpioBanks(params, data));
}

float Model::computeIoVoltage(Params& params, Data const& data) const {
    return prsm::ddr::onRail(*this, params, data, "VCCO12") ? getVcco12(params, data) : 0.0f;
}

float Model::computeInstancePower(Params& params, Data const& data) const {
    return calculateVccintInstancePower(params, data) + calculateVccintioInstancePower(params, data) +
           calculateVccauxioInstancePower(params, data) + calculateIoInstancePower(params, data);
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return calculateVccintPower(params, data) + calculateVccintioPower(params, data) +
           calculateVccauxioPower(params, data) + calculateVcco12Power(params, data);
}
