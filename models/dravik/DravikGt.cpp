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
using Rail = Model::Rail;
using Role = Model::Role;
using GtFamily = Model::GtFamily;

namespace {

// The rail each role draws from, per family: the quads' three analog rails, then the coding sublayer's
// digital rail (the fabric's VCCINT, or the processing system's full-power domain for the PS-GTR).
struct FamilyRails {
    std::string_view family;
    Rail rails[4];  // in the order of Role
};

constexpr FamilyRails kFamilyRails[] = {
    {"GTH", {Rail::MGTAVCC, Rail::MGTAVTT, Rail::MGTVCCAUX, Rail::VCCINT}},
    {"GTY", {Rail::MGTYAVCC, Rail::MGTYAVTT, Rail::MGTYVCCAUX, Rail::VCCINT}},
    {"PSGTR", {Rail::VCCPSGTA, Rail::VTTPSGTA, Rail::VCCPSAUX, Rail::VCCPSINTFP}},
};

FamilyRails const* familyRails(std::string_view family) {
    for (FamilyRails const& entry : kFamilyRails)
        if (entry.family == family) return &entry;
    return nullptr;
}

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

float Model::computeGetMinLineRate(Params& params, Data const& data) const {
    return rateLimit(*this, params, data, "MIN");
}

// The family's limit; a ring PLL lowers it to its own.
float Model::computeGetMaxLineRate(Params& params, Data const& data) const {
    float const limit = rateLimit(*this, params, data, "MAX");
    if (refPllType(params, data) != "RING") return limit;
    return std::min(limit, rateLimit(*this, params, data, "MAX_RING"));
}

bool Model::isValidLineRate(Params& params, Data const& data) const {
    float const rate = getLineRate(params, data);
    return rate > 0.0f && rate >= calculateGetMinLineRate(params, data) &&
           rate <= calculateGetMaxLineRate(params, data);
}

// ---- One link at nominal voltages, then on its rails ------------------------------------------------------

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

float Model::computeDeviceScale(Params& params, Data const& data) const {
    std::string_view const family = refGtType(params, data);
    return IFERROR(data.getBlockPowerScaleOrError(refDevice(params, data), family),
                   IFERROR(data.getBlockPowerScaleOrError("DEFAULT", family), 1.0f));
}

// The role's figure on the rail its family draws it from, at the rail's voltage.
float Model::computeInstancePower(Params& params, Data const& data, Role role) const {
    FamilyRails const* rails = familyRails(refGtType(params, data));
    if (rails == nullptr) return 0.0f;
    Rail const rail = rails->rails[static_cast<int>(role)];
    float const factor = prsm::link::railVoltageFactor(data, memberName(rail), getRail(params, data, rail));
    return calculateNominalPower(params, data, role) * factor * calculateDeviceScale(params, data);
}

float Model::computeInstancePower(Params& params, Data const& data) const {
    return calculateAvccInstancePower(params, data) + calculateAvttInstancePower(params, data) +
           calculateVccauxInstancePower(params, data) + calculatePcsInstancePower(params, data);
}

// The roles the block's family draws from this rail, for all the links, in W.
float Model::computePower(Params& params, Data const& data, Rail rail) const {
    FamilyRails const* rails = familyRails(refGtType(params, data));
    if (rails == nullptr) return 0.0f;
    float milliwatts = 0.0f;
    for (Role role : {Role::AVCC, Role::AVTT, Role::VCCAUX, Role::PCS})
        if (rails->rails[static_cast<int>(role)] == rail) milliwatts += calculateInstancePower(params, data, role);
    return static_cast<float>(getInstanceCount(params, data)) * milliwatts * 0.001f;
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return static_cast<float>(getInstanceCount(params, data)) * calculateInstancePower(params, data) * 0.001f;
}
