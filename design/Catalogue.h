#pragma once
// What the design engine reads from the device catalogue. Every look-up answers "unknown" (an empty
// name, NaN, 0) when the catalogue lacks the entry or cannot be read: the sheets then keep their own
// defaults, and the engine says so where it matters.

#include <string>

namespace prsm::design::catalogue {

// The internal name of a part (DEVICE.<family>.<part>, through the aliases); a module's base device is
// its own internal name. "" when unknown.
std::string internalPart(std::string const& part);

// The family of a part: the <family> of the DEVICE.<family>.<part> entry that lists it. "" when unknown.
std::string familyOf(std::string const& part);

// The architecture of a part: DEVICE_FAMILY.<architecture>.<family> of the family that lists it. "" when
// unknown.
std::string architectureOf(std::string const& part);

// A rail's nominal voltage (VOLTAGE.<RAIL>_NOMINAL) to the 7 digits a float holds; NaN when unknown.
double nominalVoltage(std::string const& rail);

// The highest junction temperature the device allows (THERMAL.MAX_JUNCTION_TEMP); 0 when unknown.
double maxJunctionTemperature();

}  // namespace prsm::design::catalogue
