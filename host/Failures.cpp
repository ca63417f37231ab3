#include <prsm/design/Design.h>
#include <prsm/framework/PRSMData.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>

#include <libconfig.h++>

#include <exception>

namespace prsm::host {

std::string describeCurrentException() {
    try {
        throw;
    } catch (libconfig::ParseException const& e) {
        // The library parses data text from memory, so the exception knows no file: the loader does.
        std::string const detail = PRSMData::lastLoadFailure();
        if (!detail.empty()) return detail;
        std::string const file = e.getFile() != nullptr ? e.getFile() : "a data file";
        return "data file " + file + " does not parse at line " + std::to_string(e.getLine()) + ": " +
               e.getError();
    } catch (libconfig::FileIOException const&) {
        std::string const detail = PRSMData::lastLoadFailure();
        return detail.empty() ? "a data file could not be found or read" : detail;
    } catch (libconfig::SettingException const& e) {
        return std::string("data setting ") + e.getPath() + ": " + e.what();
    } catch (PRSMException const& e) {
        return e.what();
    } catch (std::exception const& e) {
        return e.what();
    } catch (...) {
        return "unknown failure";
    }
}

void rethrowAsHostError() {
    try {
        throw;
    } catch (HostError const&) {
        throw;
    } catch (design::DesignError const& e) {
        throw HostError(kExitBadInput, e.what());
    } catch (PRSMException const& e) {
        throw HostError(kExitDataFailure, e.what());
    } catch (std::exception const& e) {
        throw HostError(kExitDataFailure, e.what());
    }
}

}  // namespace prsm::host
