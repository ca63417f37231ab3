// Formulas of the DDR memory-controller sheet that are its own: the part's hard controllers, its XPIO
// banks and its two VCCO rails. The interface's physics is shared with the older architecture's memory
// interface (DdrFormulas.h) and the memory stacks (MemoryFormulas.h), bound in the table.
#include <prsm/models/talvex/PRSMTalvexDdrmcModel.h>
#include <prsm/models/talvex/PRSMTalvexDdrmcCells.h>

#include "DdrFormulas.h"

using PRSMHelperUtils::IFERROR;
using Model = PRSMTalvexDdrmcModel;
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

float Model::computeGetMaxInstanceCount(Params& params, Data const& data) const {
    int const controllers = IFERROR(data.getControllersOrError(refDevice(params, data)),
                                    IFERROR(data.getControllersOrError(Data::ControllersKey::DEFAULT), 0));
    return static_cast<float>(controllers);
}
bool Model::isValidInstanceCount(Params& params, Data const& data) const {
    return prsm::memory::instanceCountInRange(*this, params, data);
}

bool Model::isValidVcco12(Params& params, Data const& data) const {
    return prsm::ddr::vccoAllowed(*this, params, data, "VCCO12", getVcco12(params, data));
}
bool Model::isValidVcco11(Params& params, Data const& data) const {
    return prsm::ddr::vccoAllowed(*this, params, data, "VCCO11", getVcco11(params, data));
}

// ---- Banks and controllers ---------------------------------------------------------------------------------

int Model::computeXpioBanks(Params& params, Data const& data) const {
    return prsm::ddr::wholeBanks(*this, params, data, IFERROR(data.getXpioBankOrError(Data::XpioBankKey::PINS), 0));
}

int Model::computeUsedDdrmc(Params& params, Data const& data) const {
    return getInstanceCount(params, data);
}

namespace {

int banksOnRail(Model const& model, Model::Params& params, Data const& data, std::string_view rail) {
    if (!prsm::ddr::onRail(model, params, data, rail)) return 0;
    return prsm::ddr::saturated(static_cast<double>(model.getInstanceCount(params, data)) *
                                model.calculateXpioBanks(params, data));
}

}  // namespace

int Model::computeUsedVcco12XpioBanks(Params& params, Data const& data) const {
    return banksOnRail(*this, params, data, "VCCO12");
}
int Model::computeUsedVcco11XpioBanks(Params& params, Data const& data) const {
    return banksOnRail(*this, params, data, "VCCO11");
}

// ---- The rails ------------------------------------------------------------------------------------------

float Model::computeIoVoltage(Params& params, Data const& data) const {
    if (prsm::ddr::onRail(*this, params, data, "VCCO12")) return getVcco12(params, data);
    if (prsm::ddr::onRail(*this, params, data, "VCCO11")) return getVcco11(params, data);
    return 0.0f;
}

float Model::computeInstancePower(Params& params, Data const& data) const {
    return calculateVccsocInstancePower(params, data) + calculateVccintioInstancePower(params, data) +
           calculateVccauxInstancePower(params, data) + calculateIoInstancePower(params, data);
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return calculateVccsocPower(params, data) + calculateVccintioPower(params, data) +
           calculateVccauxPower(params, data) + calculateVcco12Power(params, data) +
           calculateVcco11Power(params, data);
}
