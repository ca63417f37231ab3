#pragma once
// The decoupling-capacitor formula, written once for both package classes' sheets and for every rail
// and capacitor value: the count of capacitors of one value on one rail is M · load + B, the slope and
// offset read from the coefficient table COEFF.<rail>.<M_<C>uF | B_<C>uF>.<package> and the count left
// as a real number (the board designer rounds). The load is
// - for an ordinary rail, its step current in A, with the "ALL_PACKAGES" coefficients;
// - for VCCINT, two lines added up: the AI-engine part ("VCCINTAIE", VCCINT_AIE_STEP_CURRENT) and the
//   logic part ("VCCINTPL", VCCINT_PL_STEP_CURRENT), both with the coefficients of the PACKAGE_TYPE;
// - for a transceiver supply, the number of quads in use: the channels of its kind in use (GTY and
//   GTYP channels share the MGTY supplies, GTM channels have the MGTM ones), a quad for every four
//   channels or part thereof. A supply without a channel in use needs no capacitor at all.
// A coefficient the table lacks throws PRSMException naming the key.

#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cctype>
#include <string>
#include <string_view>

namespace prsm::decoupling {

inline constexpr char kAllPackages[] = "ALL_PACKAGES";
inline constexpr int kChannelsPerQuad = 4;

// M · load + B for one rail's coefficients; `capacitor` is written as in the output names ("0p1uF").
template <typename Data>
float line(Data const& data, std::string_view rail, char const* capacitor, std::string_view package,
           float load) {
    std::string coefficient = "M_";
    coefficient += capacitor;
    float const slope = data.getCoeff(rail, coefficient, package);
    coefficient[0] = 'B';
    return slope * load + data.getCoeff(rail, coefficient, package);
}

// Quads that `channels` channels occupy; a selection that does not begin with a count is none.
inline int quadsFor(std::string const& channels) {
    if (channels.empty() || !std::isdigit(static_cast<unsigned char>(channels[0]))) return 0;
    long count = 0;
    for (char c : channels) {
        if (!std::isdigit(static_cast<unsigned char>(c)) || count > 1000000) break;
        count = count * 10 + (c - '0');
    }
    return static_cast<int>((count + kChannelsPerQuad - 1) / kChannelsPerQuad);
}

// An ordinary rail: its step current.
template <typename Model>
float count(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, typename Model::Rail rail,
            char const* capacitor) {
    return line(data, Model::memberName(rail), capacitor, kAllPackages,
                model.getStepCurrent(params, data, rail));
}

// VCCINT: the AI-engine line and the logic line, keyed by package.
template <typename Model>
float count(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, typename Model::Vccint,
            char const* capacitor) {
    std::string const package = model.getPackageType(params, data);
    return line(data, "VCCINTAIE", capacitor, package, model.getVccintAieStepCurrent(params, data)) +
           line(data, "VCCINTPL", capacitor, package, model.getVccintPlStepCurrent(params, data));
}

// A transceiver supply: per quad in use.
template <typename Model>
float count(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
            typename Model::Transceiver supply, char const* capacitor) {
    std::string_view const name = Model::memberName(supply);
    int const quads = name.substr(0, 4) == "MGTM" ? quadsFor(model.getGtmChannelsUsed(params, data))
                                                  : quadsFor(model.getGtyChannelsUsed(params, data)) +
                                                        quadsFor(model.getGtypChannelsUsed(params, data));
    if (quads == 0) return 0.0f;
    return line(data, name, capacitor, kAllPackages, static_cast<float>(quads));
}

}  // namespace prsm::decoupling
