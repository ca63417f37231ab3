// Formulas of the general-purpose I/O sheet that are its own: which VCCO rail the standard draws from,
// the standards the design's voltages allow and the banks per rail and bank type.
// The I/O physics is shared with the older architecture's I/O sheet (IoFormulas.h, bound in the table).
#include <prsm/models/talvex/PRSMTalvexIoModel.h>
#include <prsm/models/talvex/PRSMTalvexIoCells.h>

#include "IoFormulas.h"

#include <string>
#include <string_view>
#include <vector>

using Model = PRSMTalvexIoModel;
using Data = Model::Data;
using Rail = Model::VccoRail;

namespace {

constexpr Rail kVccoRails[] = {Rail::VCCO10, Rail::VCCO11, Rail::VCCO12, Rail::VCCO135,
                               Rail::VCCO15, Rail::VCCO18, Rail::VCCO25, Rail::VCCO33};

}  // namespace

// ---- The standard's rail --------------------------------------------------------------------------------

std::string Model::computeVccoRail(Params& params, Data const& data) const {
    return prsm::io::vccoRail(*this, params, data, kVccoRails);
}

float Model::computeVcco(Params& params, Data const& data) const {
    return prsm::io::vcco(*this, params, data, kVccoRails);
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

// ---- Banks per rail and bank type ---------------------------------------------------------------------

// The block's banks count in the one group of its rail and bank type (<rail>_<bank type>).
int Model::computeUsedBanks(Params& params, Data const& data, BankGroup member) const {
    std::string_view const group = memberName(member);
    std::string_view const rail = refVccoRail(params, data);
    std::string_view const bank = refBankType(params, data);
    bool const mine = group.size() == rail.size() + 1 + bank.size() && group.substr(0, rail.size()) == rail &&
                      group[rail.size()] == '_' && group.substr(rail.size() + 1) == bank;
    return mine ? calculateBanksUsed(params, data) : 0;
}
