// Formulas of the older architecture's transceiver sheet. The lane law is the newer transceivers'
// (LinkFormulas.h): a bias per running half lane and per PLL plus an energy per symbol on AVCC, the
// coding sublayer's energy per bit; every lane here is NRZ, so a symbol is a bit. Figures are given at
// the rails' nominal voltages and follow (V / nominal)^VPOW on the rail the family draws them from.
#include <prsm/models/dravik/PRSMDravikGtModel.h>
#include <prsm/models/dravik/PRSMDravikGtCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include "DravikLinkFormulas.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

using PRSMHelperUtils::IFERROR;
using prsm::link::rateLimit;
using Model = PRSMDravikGtModel;
using Data = Model::Data;
using Role = Model::Role;

namespace {

bool hasQuadPll(Data const& data, std::string_view family) {
    return IFERROR(data.getLanePowerOrError(family, "LC_PLL_AVCC"), -1.0f) >= 0.0f;
}

}  // namespace

// ---- The part's quads (the lane and quad counts are prsm::link's) ---------------------------------

int Model::computeAvailableQuads(Params& params, Data const& data) const {
    return IFERROR(data.getQuadsOrError(refDevice(params, data), refGtType(params, data)), 0);
}

bool Model::isValidLanes(Params& params, Data const& data) const {
    return prsm::link::lanesFit(*this, params, data);
}

// ---- Clocking and line rate ---------------------------------------------------------------------------

std::string Model::defaultPllType(Params& params, Data const& data) const {
    return hasQuadPll(data, refGtType(params, data)) ? "LC" : "RING";
}

std::vector<std::string> Model::validListPllType(Params& params, Data const& data) const {
    std::vector<std::string> choices = data.getDropdownLists("PLL_TYPE_LIST");
    if (!hasQuadPll(data, refGtType(params, data)))
        choices.erase(std::remove(choices.begin(), choices.end(), "LC"), choices.end());
    return choices;
}

// The family's limit; a ring PLL lowers it to its own.
float Model::computeGetMaxLineRate(Params& params, Data const& data) const {
    float const limit = rateLimit(*this, params, data, "MAX");
    if (refPllType(params, data) != "RING") return limit;
    return std::min(limit, rateLimit(*this, params, data, "MAX_RING"));
}

bool Model::isValidLineRate(Params& params, Data const& data) const {
    return prsm::link::lineRateInRange(*this, params, data);
}

// ---- One link at nominal voltages (on its family's rails: LinkFormulas.h) -------------------------------

float Model::computeNominalPower(Params& params, Data const& data, Role role) const {
    switch (role) {
        case Role::AVCC:
            return prsm::link::avccPower(*this, params, data, getLineRate(params, data));
        case Role::AVTT:
            return prsm::link::avttPower(*this, params, data);
        case Role::VCCAUX:
            return prsm::link::vccauxPower(*this, params, data);
        case Role::PCS:
            return prsm::link::pcsPower(*this, params, data);
    }
    return 0.0f;
}
