#include <prsm/framework/PRSMData.h>
#include <prsm/framework/PRSMParams.h>

PRSMParams::~PRSMParams() = default;
std::string PRSMParams::className() const {
    return "PRSMParams";
}

PRSMData::~PRSMData() = default;
std::string PRSMData::className() const {
    return "PRSMData";
}
