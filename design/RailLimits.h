#pragma once
// The device's maximum current per rail from the device catalogue: what the rail's package balls and the
// device's characterisation allow, PARAM_VARS_FLOAT.<part>.<RAIL>_MAX_CURRENT in A.

#include <prsm/design/Design.h>

#include <string>
#include <vector>

namespace prsm::design {

// Each rail's maximum, looked up under the names catalogueNames() gives, first found first; 0 where the
// catalogue has none (or cannot be read): the rail is then not checked against the catalogue.
std::vector<double> railMaxCurrents(Device const& device, std::vector<std::string> const& rails);

}  // namespace prsm::design
