#pragma once
// Turns whatever the library throws into one line for standard error, or into a HostError with its exit
// status. The library's exception stands outside std::exception and the configuration library's exceptions
// carry their details in accessors.

#include <string>

namespace prsm::host {

// Describes the exception being handled; call only inside a catch block.
std::string describeCurrentException();

// Throws the exception being handled as a HostError, with its exit status: a design the engine refuses
// is bad input (2), what the library or its data throws is a data failure (3). A HostError, and what is
// no exception of the library or the standard, passes as it is. Call only inside a catch block.
[[noreturn]] void rethrowAsHostError();

}  // namespace prsm::host
