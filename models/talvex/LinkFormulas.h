#pragma once
// What the transceiver and hard link-IP sheets share: a figure given at a rail's nominal voltage follows
// (V / nominal)^VPOW at the rail's voltage. Both sheets' data hold NOMINAL_VOLTAGE.<rail> and
// VOLTAGE_SCALING.VPOW.

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>
#include <string_view>

namespace prsm::link {

// 1 when the file gives the rail no nominal voltage; a file without VPOW keeps the square law.
template <typename Data>
float railVoltageFactor(Data const& data, std::string_view rail, float volts) {
    float const nominal = PRSMHelperUtils::IFERROR(data.getNominalVoltageOrError(rail), 0.0f);
    if (nominal <= 0.0f) return 1.0f;
    float const vpow =
        PRSMHelperUtils::IFERROR(data.getVoltageScalingOrError(Data::VoltageScalingKey::VPOW), 2.0f);
    return std::pow(volts / nominal, vpow);
}

}  // namespace prsm::link
