// Formulas of the older architecture's I/O sheet that are its own: which VCCO rail the standard draws
// from, which auxiliary rail the bank's receivers draw from, the standards the design's voltages allow
// and the banks' rails. The I/O physics and the device scales are the newer sheet's (IoFormulas.h,
// bound in the table).
#include <prsm/models/dravik/PRSMDravikIoModel.h>
#include <prsm/models/dravik/PRSMDravikIoCells.h>

#include "DravikIoFormulas.h"

#include <string>
#include <string_view>
#include <vector>

using Model = PRSMDravikIoModel;
using Data = Model::Data;
using Rail = Model::VccoRail;

namespace {

constexpr Rail kVccoRails[] = {Rail::VCCO12, Rail::VCCO135, Rail::VCCO15, Rail::VCCO18, Rail::VCCO25, Rail::VCCO33};

}  // namespace

// ---- The rails ------------------------------------------------------------------------------------------

std::string Model::computeVccoRail(Params& params, Data const& data) const {
    return prsm::io::vccoRail(*this, params, data, kVccoRails);
}

float Model::computeVcco(Params& params, Data const& data) const {
    return prsm::io::vcco(*this, params, data, kVccoRails);
}

std::string Model::computeReceiverRail(Params& params, Data const& data) const {
    std::string rail = data.getReceiverRailOrError(refBankType(params, data));
    return rail == "VCCAUX" || rail == "VCCAUXIO" ? rail : std::string("NONE");
}

float Model::computeReceiverVoltage(Params& params, Data const& data) const {
    std::string_view const rail = refReceiverRail(params, data);
    if (rail == "VCCAUXIO") return getVccauxio(params, data);
    return rail == "VCCAUX" ? getVccaux(params, data) : 0.0f;
}

float Model::computeVccauxPower(Params& params, Data const& data) const {
    if (refReceiverRail(params, data) != "VCCAUX") return 0.0f;
    return prsm::io::blockPower(*this, params, data, calculateReceiverComponent(params, data));
}

float Model::computeVccauxioPower(Params& params, Data const& data) const {
    if (refReceiverRail(params, data) != "VCCAUXIO") return 0.0f;
    return prsm::io::blockPower(*this, params, data, calculateReceiverComponent(params, data));
}

// ---- Validity ----------------------------------------------------------------------------------------

std::vector<std::string> Model::validListIoStandard(Params& params, Data const& data) const {
    return prsm::io::allowedStandards(*this, params, data, kVccoRails);
}

bool Model::isValidDataRate(Params& params, Data const& data) const {
    return prsm::io::dataRateAllowed(*this, params, data);
}

bool Model::isValidDriveStrength(Params& params, Data const& data) const {
    return prsm::io::driveStrengthAllowed(*this, params, data);
}

bool Model::isValidOdt(Params& params, Data const& data) const {
    return prsm::io::odtAllowed(*this, params, data);
}

bool Model::isValidExternalTermination(Params& params, Data const& data) const {
    return prsm::io::externalTerminationAllowed(*this, params, data);
}
