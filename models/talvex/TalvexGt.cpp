// Formulas of the transceiver sheet. A lane's analog power is a bias (mW) plus an energy per symbol
// (pJ, so mW per GBd) times its symbol rate, for each half of the lane that runs; a PAM4 lane carries two
// bits a symbol and pays PAM4_FACTOR on its rate terms. An LC PLL serves a quad of four lanes, a ring PLL
// one lane. The coding sublayer switches with the bits of each direction (the law in LinkFormulas.h). Every figure is given at the
// rails' nominal voltages and follows (V / nominal)^VPOW on the rail the family draws it from.
#include <prsm/models/talvex/PRSMTalvexGtModel.h>
#include <prsm/models/talvex/PRSMTalvexGtCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include "LinkFormulas.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

using PRSMHelperUtils::IFERROR;
using prsm::link::rateLimit;
using Model = PRSMTalvexGtModel;
using Data = Model::Data;
using Role = Model::Role;

namespace {

bool hasPam4(Model const& model, Model::Params& params, Data const& data) {
    return rateLimit(model, params, data, "MAX_PAM4") > 0.0f;
}

bool isPam4(Model const& model, Model::Params& params, Data const& data) {
    return model.refModulation(params, data) == "PAM4";
}

}  // namespace

// ---- The part's quads (the lane and quad counts are prsm::link's) ---------------------------------

int Model::computeAvailableQuads(Params& params, Data const& data) const {
    return IFERROR(
        data.getQuadsOrError(refDevice(params, data), refPackage(params, data), refGtType(params, data)), 0);
}

bool Model::isValidLanes(Params& params, Data const& data) const {
    return prsm::link::lanesFit(*this, params, data);
}

// The packages of the part: the second level of QUADS below it.
std::vector<std::string> Model::validListPackage(Params& params, Data const& data) const {
    std::string const prefix = refDevice(params, data) + ".";
    std::vector<std::string> packages;
    for (auto const& entry : data.m_Quads) {
        std::string const& key = entry.first;
        if (key.compare(0, prefix.size(), prefix) != 0) continue;
        std::string package = key.substr(prefix.size(), key.find('.', prefix.size()) - prefix.size());
        if (std::find(packages.begin(), packages.end(), package) == packages.end())
            packages.push_back(std::move(package));
    }
    std::sort(packages.begin(), packages.end());
    return packages;
}

// ---- Line rate and modulation ----------------------------------------------------------------------

std::string Model::defaultModulation(Params& params, Data const& data) const {
    bool const beyondNrz = getLineRate(params, data) > rateLimit(*this, params, data, "MAX_NRZ");
    return hasPam4(*this, params, data) && beyondNrz ? "PAM4" : "NRZ";
}

// PAM4 only for a family that has a PAM4 limit.
std::vector<std::string> Model::validListModulation(Params& params, Data const& data) const {
    std::vector<std::string> choices = data.getDropdownLists("MODULATION_LIST");
    if (!hasPam4(*this, params, data))
        choices.erase(std::remove(choices.begin(), choices.end(), "PAM4"), choices.end());
    return choices;
}

// The modulation's limit; a ring PLL lowers it to its own.
float Model::computeGetMaxLineRate(Params& params, Data const& data) const {
    float const limit = rateLimit(*this, params, data, isPam4(*this, params, data) ? "MAX_PAM4" : "MAX_NRZ");
    if (refPllType(params, data) != "RING") return limit;
    return std::min(limit, rateLimit(*this, params, data, "MAX_RING"));
}

bool Model::isValidLineRate(Params& params, Data const& data) const {
    return prsm::link::lineRateInRange(*this, params, data);
}

float Model::computeSymbolRate(Params& params, Data const& data) const {
    return getLineRate(params, data) / (isPam4(*this, params, data) ? 2.0f : 1.0f);
}

// ---- One link at nominal voltages (on its family's rails: LinkFormulas.h) ----------------------------

namespace {

// The symbols a lane's rate terms see: a PAM4 symbol costs PAM4_FACTOR (1 when the file has none).
float weightedSymbolRate(Model const& model, Model::Params& params, Data const& data) {
    float const pam4 =
        isPam4(model, params, data)
            ? IFERROR(data.getLanePowerOrError(model.refGtType(params, data), "PAM4_FACTOR"), 1.0f)
            : 1.0f;
    return model.calculateSymbolRate(params, data) * pam4;
}

}  // namespace

float Model::computeNominalPower(Params& params, Data const& data, Role role) const {
    switch (role) {
        case Role::AVCC:
            return prsm::link::avccPower(*this, params, data, weightedSymbolRate(*this, params, data));
        case Role::AVTT:
            return prsm::link::avttPower(*this, params, data);
        case Role::VCCAUX:
            return prsm::link::vccauxPower(*this, params, data);
        case Role::PCS:
            return prsm::link::pcsPower(*this, params, data);
    }
    return 0.0f;
}
