#pragma once
// The sheet a design's "supplies" or "decoupling" takes when the file names none, found among the
// registered sheets by their layout, never by name.

#include <prsm/design/Design.h>

#include <string>

namespace prsm::design {

// The rail-grouping sheet of the part's architecture (any, for a part the catalogue does not know); ""
// when none is registered.
std::string defaultGroupingSheet(Device const& device);

// The decoupling sheet of the part's architecture whose package input lists the device's package; ""
// when the design gives no package or no sheet lists it.
std::string defaultDecouplingSheet(Device const& device);

}  // namespace prsm::design
