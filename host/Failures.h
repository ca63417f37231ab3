#pragma once
// Turns whatever the library throws into one line for standard error. The library's exception stands
// outside std::exception and the configuration library's exceptions carry their details in accessors.

#include <string>

namespace prsm::host {

// Describes the exception being handled; call only inside a catch block.
std::string describeCurrentException();

}  // namespace prsm::host
