#pragma once
// The one failure type of the host: a message for standard error and the exit status it ends with.

#include <stdexcept>
#include <string>

namespace prsm::host {

enum ExitCode : int {
    kExitOk = 0,
    kExitBadInput = 2,     // usage errors and inputs the host refuses
    kExitDataFailure = 3,  // a data file that fails to load, or a calculation that throws
    kExitOverBudget = 4,   // `estimate`: a complete estimate above a budget the design states
};

class HostError : public std::runtime_error {
public:
    // The message may hold several lines, one problem each.
    HostError(ExitCode code, std::string const& message) : std::runtime_error(message), m_code(code) {}
    ExitCode code() const { return m_code; }

private:
    ExitCode m_code;
};

}  // namespace prsm::host
