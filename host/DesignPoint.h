#pragma once
// A design file with a sweep point's settings written into it, as the user would edit the file: what a
// point's corners are estimated from, since a corner sets up engines of its own.

#include <prsm/design/Design.h>
#include <prsm/host/DesignTarget.h>

#include <map>
#include <string>

namespace prsm::host {

// `design` with `values` (variable -> text, checked against its type) set as `settings` say: a block's
// input among its inputs, a rail under /rails, a load's power or current, the process and the thermal
// conditions. A block's own `BLOCK.CELL` wins over `*.CELL`, as on the engine.
design::Design designAtPoint(design::Design design,
                             std::map<std::string, DesignTarget::Setting> const& settings,
                             std::map<std::string, std::string> const& values);

}  // namespace prsm::host
