// Formulas of the module catalogue: every output is the selected part's entry. A part the catalogue
// does not list has no figures: its counts are 0 and its names empty.
#include <prsm/models/dravik/PRSMDravikSomPartsModel.h>
#include <prsm/models/dravik/PRSMDravikSomPartsCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

using Model = PRSMDravikSomPartsModel;
using PRSMHelperUtils::IFERROR;

namespace {

int count(Model const& model, Model::Params& params, Model::Data const& data, char const* column) {
    return IFERROR(data.getPartCountsOrError(model.getPartName(params, data), column), 0);
}

std::string name(Model const& model, Model::Params& params, Model::Data const& data, char const* column) {
    return IFERROR(data.getPartNamesOrError(model.getPartName(params, data), column), "");
}

}  // namespace

int Model::computeEthernetCount(Params& params, Data const& data) const {
    return count(*this, params, data, "ETHERNET_COUNT");
}

int Model::computeMipiCount(Params& params, Data const& data) const {
    return count(*this, params, data, "MIPI_COUNT");
}

int Model::computeSdCardCount(Params& params, Data const& data) const {
    return count(*this, params, data, "SD_CARD_COUNT");
}

int Model::computeUsbCount(Params& params, Data const& data) const {
    return count(*this, params, data, "USB_COUNT");
}

int Model::computePinConnectorCount(Params& params, Data const& data) const {
    return count(*this, params, data, "PIN_CONNECTOR_COUNT");
}

int Model::computeMemorySize(Params& params, Data const& data) const {
    return count(*this, params, data, "MEMORY_SIZE");
}

int Model::computeIsStarterKit(Params& params, Data const& data) const {
    return count(*this, params, data, "IS_STARTER_KIT");
}

std::string Model::computeBaseDevice(Params& params, Data const& data) const {
    return name(*this, params, data, "BASE_DEVICE");
}

std::string Model::computeFamily(Params& params, Data const& data) const {
    return name(*this, params, data, "FAMILY");
}

std::string Model::computeModule(Params& params, Data const& data) const {
    return name(*this, params, data, "MODULE");
}
