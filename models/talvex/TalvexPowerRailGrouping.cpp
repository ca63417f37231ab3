// Formulas of the power-rail grouping sheet.
//
// A rail's group label is the family's table entry under KEY (strategy and voltage grade). The
// regulator groups of the full-power-management strategy follow the device's power domains (PL, PMC,
// LPD, FPD, SYSTEM); those of the minimum-rails strategy follow the power-up steps 1 to 8, and which
// rail leads a step depends on how far the voltage grade lets the core rails share a regulator:
//
//   step   shared core (H, M)   own VCCINT (L, M_OD)   own VCCINT and VCCRAM (L_OD, DVS grades)
//   3      VCCAUX               VCCINT                 VCCINT
//   4A     VCCAUXHBM            -                      -
//   4B     MGTYAVCC             VCCAUX                 VCCRAM
//   5A     MGTYVCCAUX           MGTYAVCC               VCCAUX
//   5B     VCCHBM               VCCAUXHBM              -
//   6A     MGTYAVTT             MGTYVCCAUX             MGTYAVCC
//   6B     -                    VCCHBM                 VCCAUXHBM
//   7A     -                    MGTYAVTT               MGTYVCCAUX
//   7B     -                    -                      VCCHBM
//   8      -                    -                      MGTYAVTT
//
// A group without a rail ("-") is blank, as is every group of the strategy not chosen.
#include <prsm/models/talvex/PRSMTalvexPowerRailGroupingModel.h>
#include <prsm/models/talvex/PRSMTalvexPowerRailGroupingCells.h>

#include <prsm/framework/PRSMCellSupport.h>

#include <optional>

using Model = PRSMTalvexPowerRailGroupingModel;
using Rail = Model::Rail;
using Group = Model::Group;

namespace {

constexpr char kBlank[] = "__BLANK_LITERAL__";
constexpr char kFullPowerManagement[] = "FULL_POWER_MANAGEMENT";
constexpr char kMinimumRails[] = "MINIMUM_RAILS";
constexpr char kImageFolder[] = "prs/images/";
// The label the shipped tables give a rail that the family does not have.
constexpr char kNoRegulator[] = "N/A";

std::string yesNo(bool value) {
    return value ? "YES" : "NO";
}

// How far the voltage grade lets the core rails share the PMC's regulator under minimum rails.
enum class Arrangement { SharedCore, OwnVccint, OwnVccintAndVccram };

}  // namespace

// ---- Key, picture and voltage-grade flags ----

std::string Model::computeKey(Params& params, Data const& data) const {
    return getPowerRailConsolidation(params, data) + "_" + getVoltageGrade(params, data);
}

std::string Model::computeImage(Params& params, Data const& data) const {
    return kImageFolder + data.getImageName(getDeviceGrade(params, data), calculateKey(params, data));
}

std::string Model::computeIsDvs(Params& params, Data const& data) const {
    std::string const& grade = getVoltageGrade(params, data);
    return yesNo(grade == "L_DVS" || grade == "L_DVS_OD");
}

std::string Model::computeIsOverdrive(Params& params, Data const& data) const {
    std::string const& grade = getVoltageGrade(params, data);
    return yesNo(grade == "L_OD" || grade == "M_OD" || grade == "L_DVS_OD");
}

std::string Model::computeIsLGrage(Params& params, Data const& data) const {
    std::string const& grade = getVoltageGrade(params, data);
    return yesNo(grade == "L" || grade == "L_OD" || grade == "L_DVS" || grade == "L_DVS_OD");
}

// ---- Rails ----

std::string Model::computePowerRailGroup(Params& params, Data const& data, Rail rail) const {
    return data.getPowerRailGroup(getDeviceFamily(params, data), calculateKey(params, data),
                                  memberName(rail));
}

// ---- Design-wide counts ----
// A lone sheet holds no design: a block counts as one, present and used, when the family's table gives
// its supply rail a regulator, since the board has to power every block the device has.

namespace {

int present(Model const& model, Model::Params& params, Model::Data const& data, Rail rail) {
    return model.calculatePowerRailGroup(params, data, rail) == kNoRegulator ? 0 : 1;
}

}  // namespace

int Model::getNumGty(Params& params, Data const& data) const {
    return present(*this, params, data, Rail::MGTYAVCC);
}
int Model::getUsedGty(Params& params, Data const& data) const {
    return getNumGty(params, data);
}
// The GTYP transceivers share the GTY analog supplies.
int Model::getNumGtyp(Params& params, Data const& data) const {
    return present(*this, params, data, Rail::MGTYAVCC);
}
int Model::getNumGtm(Params& params, Data const& data) const {
    return present(*this, params, data, Rail::MGTMAVCC);
}
int Model::getUsedGtm(Params& params, Data const& data) const {
    return getNumGtm(params, data);
}
int Model::getNumHbm(Params& params, Data const& data) const {
    return present(*this, params, data, Rail::VCCHBM);
}
int Model::getNumCpm5(Params& params, Data const& data) const {
    return present(*this, params, data, Rail::VCCCPM5);
}
int Model::getUsedCpm5(Params& params, Data const& data) const {
    return getNumCpm5(params, data);
}
int Model::getNumCpm5N(Params& params, Data const& data) const {
    return getNumCpm5(params, data);
}
// The hard network interface sits in the integrated-block domain, on VCCCPM5.
int Model::getNumHnic(Params& params, Data const& data) const {
    return getNumCpm5(params, data);
}
// The hard memory controllers' interfaces: DDR4 on the 1.2 V banks, LPDDR4 on the 1.1 V banks.
int Model::getUsedDdr4HardMc(Params& params, Data const& data) const {
    return present(*this, params, data, Rail::VCCO12);
}
int Model::getUsedLpddr4HardMc(Params& params, Data const& data) const {
    return present(*this, params, data, Rail::VCCO11);
}

std::string Model::computeGtyUsedGtmNotUsed(Params& params, Data const& data) const {
    return yesNo(getUsedGty(params, data) > 0 && getUsedGtm(params, data) == 0);
}

// ---- Regulator groups ----

namespace {

Arrangement arrangement(Model const& model, Model::Params& params, Model::Data const& data) {
    bool const dvs = model.calculateIsDvs(params, data) == "YES";
    bool const overdrive = model.calculateIsOverdrive(params, data) == "YES";
    bool const low = model.calculateIsLGrage(params, data) == "YES";
    if (dvs || (overdrive && low)) return Arrangement::OwnVccintAndVccram;
    if (overdrive || low) return Arrangement::OwnVccint;
    return Arrangement::SharedCore;
}

// The member of a step of the minimum-rails strategy that depends on the arrangement.
std::optional<Rail> byArrangement(Arrangement a, std::optional<Rail> sharedCore,
                                  std::optional<Rail> ownVccint, std::optional<Rail> ownVccintAndVccram) {
    switch (a) {
        case Arrangement::SharedCore:
            return sharedCore;
        case Arrangement::OwnVccint:
            return ownVccint;
        case Arrangement::OwnVccintAndVccram:
            return ownVccintAndVccram;
    }
    return std::nullopt;
}

// The first of the PMC's I/O rails set to `voltage`, if any.
std::optional<Rail> pmcIoAt(Model const& model, Model::Params& params, Model::Data const& data,
                            char const* voltage) {
    if (model.getVccofio(params, data) == voltage) return Rail::VCCOFIO;
    if (model.getVccopmio0(params, data) == voltage) return Rail::VCCOPMIO0;
    if (model.getVccopmio1(params, data) == voltage) return Rail::VCCOPMIO1;
    return std::nullopt;
}

// The rail whose label a group shows under its own strategy.
std::optional<Rail> memberRail(Model const& model, Model::Params& params, Model::Data const& data,
                               Group group) {
    constexpr std::nullopt_t none = std::nullopt;
    // The transceiver steps of the PL domain: the GTY supplies when no GTM transceiver is in use.
    auto const gt = [&](Rail gty, Rail gtm) {
        return model.calculateGtyUsedGtmNotUsed(params, data) == "YES" ? gty : gtm;
    };
    auto const byGrade = [&](std::optional<Rail> shared, std::optional<Rail> own, std::optional<Rail> both) {
        return byArrangement(arrangement(model, params, data), shared, own, both);
    };
    switch (group) {
        case Group::PL_1A:
        case Group::MIN_RAILS_1A:
            return Rail::VCCO33;
        case Group::PL_1B:
        case Group::MIN_RAILS_1B:
            return Rail::VCCO25;
        case Group::PL_1C:
        case Group::MIN_RAILS_1C:
            return Rail::VCCO18;
        case Group::PL_1D:
        case Group::MIN_RAILS_1D:
            return Rail::VCCO15;
        case Group::PL_1E:
        case Group::MIN_RAILS_1E:
            return Rail::VCCO135;
        case Group::PL_1F:
        case Group::MIN_RAILS_1F:
        case Group::SYSTEM_1A:
            return Rail::VCCO12;
        case Group::PL_1G:
        case Group::MIN_RAILS_1G:
        case Group::SYSTEM_1B:
            return Rail::VCCO11;
        case Group::PL_1H:
        case Group::MIN_RAILS_1H:
            return Rail::VCCO10;
        case Group::PL_2:
            return Rail::VCCINT;
        case Group::PL_3:
            return Rail::VCCRAM;
        case Group::PL_4:
            return gt(Rail::MGTYAVCC, Rail::MGTMAVCC);
        case Group::PL_5:
            return gt(Rail::MGTYVCCAUX, Rail::MGTMVCCAUX);
        case Group::PL_6:
            return gt(Rail::MGTYAVTT, Rail::MGTMAVTT);
        case Group::PMC_1A:
            return pmcIoAt(model, params, data, "3.3 V");
        case Group::PMC_1B:
            return pmcIoAt(model, params, data, "2.5 V");
        case Group::PMC_1C:
            return pmcIoAt(model, params, data, "1.8 V");
        case Group::PMC_2:
        case Group::MIN_RAILS_2:
            return Rail::VCCPMC;
        case Group::PMC_3:
            return Rail::VCCAUXPMC;
        case Group::LPD_1:
            return Rail::VCCOPMIO2;
        case Group::LPD_2:
            return Rail::VCCPSLP;
        case Group::LPD_3:
            return Rail::MGTYAVCC;
        case Group::LPD_4:
            return Rail::MGTYVCCAUX;
        case Group::LPD_5:
            return Rail::MGTYAVTT;
        case Group::FPD_1:
            return Rail::VCCPSFP;
        case Group::SYSTEM_2:
            return Rail::VCCSOC;
        case Group::SYSTEM_3:
            return Rail::VCCAUX;
        case Group::SYSTEM_4:
            return Rail::VCCAUXHBM;
        case Group::SYSTEM_5:
            return Rail::VCCHBM;
        case Group::MIN_RAILS_3:
            return byGrade(Rail::VCCAUX, Rail::VCCINT, Rail::VCCINT);
        case Group::MIN_RAILS_4A:
            return byGrade(Rail::VCCAUXHBM, none, none);
        case Group::MIN_RAILS_4B:
            return byGrade(Rail::MGTYAVCC, Rail::VCCAUX, Rail::VCCRAM);
        case Group::MIN_RAILS_5A:
            return byGrade(Rail::MGTYVCCAUX, Rail::MGTYAVCC, Rail::VCCAUX);
        case Group::MIN_RAILS_5B:
            return byGrade(Rail::VCCHBM, Rail::VCCAUXHBM, none);
        case Group::MIN_RAILS_6A:
            return byGrade(Rail::MGTYAVTT, Rail::MGTYVCCAUX, Rail::MGTYAVCC);
        case Group::MIN_RAILS_6B:
            return byGrade(none, Rail::VCCHBM, Rail::VCCAUXHBM);
        case Group::MIN_RAILS_7A:
            return byGrade(none, Rail::MGTYAVTT, Rail::MGTYVCCAUX);
        case Group::MIN_RAILS_7B:
            return byGrade(none, none, Rail::VCCHBM);
        case Group::MIN_RAILS_8:
            return byGrade(none, none, Rail::MGTYAVTT);
    }
    return none;
}

}  // namespace

// A group of the strategy not chosen is blank; so is a group that has no rail in this arrangement.
std::string Model::computePowerRailGroup(Params& params, Data const& data, Group group) const {
    bool const minimumRails = memberName(group).substr(0, 10) == "MIN_RAILS_";
    if (getPowerRailConsolidation(params, data) != (minimumRails ? kMinimumRails : kFullPowerManagement))
        return kBlank;
    std::optional<Rail> const rail = memberRail(*this, params, data, group);
    return rail ? calculatePowerRailGroup(params, data, *rail) : kBlank;
}

// ---- The two steps whose tolerance follows the voltage grade ----
// Where the step holds a core or auxiliary rail: DC 1 % and AC ripple 2 %; where it holds a transceiver
// supply: DC 2 % and 10 mV peak to peak.

namespace {

bool step5aHoldsCoreOrAux(Model const& model, Model::Params& params, Model::Data const& data) {
    return model.getVoltageGrade(params, data) == "L_OD" || model.calculateIsDvs(params, data) == "YES";
}

bool step4bHoldsCoreOrAux(Model const& model, Model::Params& params, Model::Data const& data) {
    std::string const& grade = model.getVoltageGrade(params, data);
    return grade == "L" || grade == "M_OD" || grade == "L_OD" || model.calculateIsDvs(params, data) == "YES";
}

}  // namespace

std::string Model::computeMinRails4bDc(Params& params, Data const& data) const {
    return step4bHoldsCoreOrAux(*this, params, data) ? "1%" : "2%";
}

std::string Model::computeMinRails4bAcRipple(Params& params, Data const& data) const {
    return step4bHoldsCoreOrAux(*this, params, data) ? "2%" : "10mV pk-pk";
}

std::string Model::computeMinRails5aDc(Params& params, Data const& data) const {
    return step5aHoldsCoreOrAux(*this, params, data) ? "1%" : "2%";
}

std::string Model::computeMinRails5aAcRipple(Params& params, Data const& data) const {
    return step5aHoldsCoreOrAux(*this, params, data) ? "2%" : "10mV pk-pk";
}
