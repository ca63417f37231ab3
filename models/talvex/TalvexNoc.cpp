// Formulas of the network-on-chip sheet.
//
// Path power: every unit a path's traffic touches (the master unit where it enters, the slave unit
// where it leaves, and the switches and bridges in between) costs its coefficient per Gb/s of raw
// bandwidth, the bandwidth including the packet overhead of the transaction size. Clock power: the
// clock buffers kept running, each at its coefficient per GHz. Both scale with VCC_SOC squared
// against the characterisation voltage of 0.88 V.
#include <prsm/models/talvex/PRSMTalvexNocModel.h>
#include <prsm/models/talvex/PRSMTalvexNocCells.h>

#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/framework/PRSMConfigHelpers.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <algorithm>
#include <climits>

using Model = PRSMTalvexNocModel;
using Data = Model::Data;
using PRSMHelperUtils::IFERROR;
using PRSMHelperUtils::MIN;
using PRSMHelperUtils::toIntSaturated;

namespace {

// The one device whose network is of the second generation; its coefficients carry a NOC2_ prefix.
constexpr char kNoc2Device[] = "ZQ10N60";
// The row of the device table that the clock-buffer count of PL-to-PL traffic is read from.
constexpr char kPlToPl[] = "PL_TO_PL";
// Used when the device has no clock-buffer entries.
constexpr int kDefaultTotalClockBuffers = 64;
constexpr int kDefaultDdrOnlyClockBuffers = 24;
// 0.88 V squared: the voltage the coefficients were characterised at.
constexpr double kCharacterisationVoltageSquared = 0.7744;
// One transaction-size byte in flits of the bandwidth overhead term.
constexpr double kFlitsPerByte = 0.0625;

// Each unit's coefficient, in the order of the Unit family, on either network generation.
constexpr Data::CommonDataKey kUnitCoefficients[] = {
    Data::CommonDataKey::NMU_DYNAMIC,  Data::CommonDataKey::NSU_DYNAMIC,  Data::CommonDataKey::NPS_DYNAMIC,
    Data::CommonDataKey::NPS6_DYNAMIC, Data::CommonDataKey::NCRB_DYNAMIC, Data::CommonDataKey::NIDB_DYNAMIC};
constexpr Data::CommonDataKey kNoc2UnitCoefficients[] = {
    Data::CommonDataKey::NOC2_NMU_DYNAMIC,  Data::CommonDataKey::NOC2_NSU_DYNAMIC,
    Data::CommonDataKey::NOC2_NPS_DYNAMIC,  Data::CommonDataKey::NOC2_NPS6_DYNAMIC,
    Data::CommonDataKey::NOC2_NCRB_DYNAMIC, Data::CommonDataKey::NOC2_NIDB_DYNAMIC};

// A count from the device table for the current device, or 0 when the table has no such entry.
int deviceCount(Model::Data const& data, std::string_view device, std::string_view path, char const* column) {
    return IFERROR(data.getDeviceDataOrError(device, path, column), 0);
}

// Gb/s of one direction: MB/s times 8/1000, plus `overhead` flits for every `size`-byte transaction.
// A size below one byte removes the direction rather than dividing by zero.
double directionBandwidth(float megabytesPerSecond, int size, double overhead) {
    if (size < 1) return 0.0;
    double const flits = size * kFlitsPerByte;
    return megabytesPerSecond * 8.0 / 1000.0 * (overhead + flits) / flits;
}

}  // namespace

// ---- Device ----

std::vector<std::string> Model::validListDevice(Params&, Data const& data) const {
    return PRSMHelperUtils::getCfgKeyVectorFromList(data.m__DeviceIntNames);
}

// A part the table does not list is taken to be an internal name already.
std::string Model::computeIntDeviceName(Params& params, Data const& data) const {
    std::string const& device = refDevice(params, data);
    auto const it = data.m__DeviceIntNames.find(device);
    if (it == data.m__DeviceIntNames.end() || it->second.empty()) return device;
    return it->second.front();
}

int Model::computeNoc2Device(Params& params, Data const& data) const {
    return std::string_view(refIntDeviceName(params, data)) == kNoc2Device ? 1 : 0;
}

// ---- Counts along the selected data path ----

int Model::defaultNumSwitches(Params& params, Data const& data) const {
    return deviceCount(data, refIntDeviceName(params, data), refDataPath(params, data), "AVG_SW");
}

int Model::defaultNumNps6(Params& params, Data const& data) const {
    return deviceCount(data, refIntDeviceName(params, data), refDataPath(params, data), "AVG_NPS6_SW");
}

int Model::defaultNumNidb(Params& params, Data const& data) const {
    return deviceCount(data, refIntDeviceName(params, data), refDataPath(params, data), "AVG_NIDB_SW");
}

int Model::defaultNumNcrb(Params& params, Data const& data) const {
    return deviceCount(data, refIntDeviceName(params, data), refDataPath(params, data), "AVG_NCRB_SW");
}

int Model::defaultNumClkBuffersPerPath(Params& params, Data const& data) const {
    return deviceCount(data, refIntDeviceName(params, data), refDataPath(params, data), "AVG_CLK_BUFFERS");
}

// ---- Coefficients ----

float Model::computeClkData(Params& params, Data const& data) const {
    // The clock keys are spelled with the letters transposed. A coefficient the file lacks is an error of
    // the data, reported as a missing key.
    return data.getCommonData(calculateNoc2Device(params, data) == 1 ? Data::CommonDataKey::NOC2_CLK_DYANMIC
                                                                     : Data::CommonDataKey::NOC_CLK_DYANMIC);
}

// A unit's coefficient: NOC2_<UNIT>_DYNAMIC on the second-generation network, else <UNIT>_DYNAMIC.
float Model::computeData(Params& params, Data const& data, Unit unit) const {
    auto const index = static_cast<std::size_t>(unit);
    return data.getCommonData(calculateNoc2Device(params, data) == 1 ? kNoc2UnitCoefficients[index]
                                                                     : kUnitCoefficients[index]);
}

// ---- Path power ----

float Model::computePwrScaleFactor(Params& params, Data const& data) const {
    double const vcc = getVccSoc(params, data);
    return static_cast<float>(vcc * vcc / kCharacterisationVoltageSquared);
}

// A write costs two flits of overhead per transaction (request and response), a read one.
float Model::computeRawBw(Params& params, Data const& data) const {
    double const read =
        directionBandwidth(getBandwithRead(params, data), getTransactionReadSize(params, data), 1.0);
    double const write =
        directionBandwidth(getBandwithWrite(params, data), getTransactionWriteSize(params, data), 2.0);
    return static_cast<float>(read + write);
}

// The master and slave units are crossed once per path; switches and bridges as many times as the
// path crosses them.
float Model::computePwr(Params& params, Data const& data, Unit unit) const {
    float const coefficientOfUnit = calculateData(params, data, unit);
    float const bandwidth = calculateRawBw(params, data);
    switch (unit) {
        case Unit::NPS:
            return coefficientOfUnit * (getNumSwitches(params, data) * bandwidth);
        case Unit::NPS6:
            return coefficientOfUnit * (getNumNps6(params, data) * bandwidth);
        case Unit::NIDB:
            return coefficientOfUnit * (getNumNidb(params, data) * bandwidth);
        case Unit::NCRB:
            return coefficientOfUnit * (getNumNcrb(params, data) * bandwidth);
        default:
            return coefficientOfUnit * bandwidth;
    }
}

float Model::computeTotalPathPwr(Params& params, Data const& data) const {
    float const units = calculateNmuPwr(params, data) + calculateNsuPwr(params, data) +
                        calculateNpsPwr(params, data) + calculateNps6Pwr(params, data) +
                        calculateNidbPwr(params, data) + calculateNcrbPwr(params, data);
    return calculatePwrScaleFactor(params, data) * units;
}

// ---- Clock buffers ----

int Model::computeTotalClockBuffers(Params& params, Data const& data) const {
    return IFERROR(data.getClockBufferMaxOrError(refIntDeviceName(params, data)), kDefaultTotalClockBuffers);
}

int Model::computeDdrOnlyClockBuffers(Params& params, Data const& data) const {
    return IFERROR(data.getClockBufferDdrOrError(refIntDeviceName(params, data)),
                   kDefaultDdrOnlyClockBuffers);
}

// Any path other than PL-to-PL uses the per-path count. PL-to-PL paths share buffers by groups of four:
// up to four paths, or any multiple of four, need one group's buffers; otherwise one group more than
// the whole groups.
int Model::defaultNumClockBuffers(Params& params, Data const& data) const {
    // Path counts are inputs of any size: sums and products are formed in 64 bits, and a count beyond
    // the int range saturates.
    long long const otherPaths = static_cast<long long>(getNumCpmPaths(params, data)) +
                                 getNum2ddrPaths(params, data) + getNumAiePaths(params, data) +
                                 getNumPs2aiePaths(params, data);
    if (otherPaths >= 1) return getNumClkBuffersPerPath(params, data);
    int const plPaths = getNum2plPaths(params, data);
    int const perGroup = deviceCount(data, refIntDeviceName(params, data), kPlToPl, "AVG_CLK_BUFFERS");
    if (plPaths < 4 || plPaths % 4 == 0) return perGroup;
    long long const count = (PRSMHelperUtils::QUOTIENT(plPaths, 4) + 1LL) * perGroup;
    return static_cast<int>(std::clamp<long long>(count, INT_MIN, INT_MAX));
}

int Model::computeUsedClkBuffers(Params& params, Data const& data) const {
    auto const total = static_cast<float>(calculateTotalClockBuffers(params, data));
    if (getIsClockGatingDisabled(params, data) == 1) return toIntSaturated(total);
    int const imported = getNumImportedClkBuffers(params, data);
    if (imported >= 1) return toIntSaturated(MIN(static_cast<float>(imported), total));
    auto const wanted = static_cast<float>(getNumClockBuffers(params, data));
    long long const paths = static_cast<long long>(getNumCpmPaths(params, data)) +
                            getNumPlPaths(params, data) + getNumAiePaths(params, data);
    if (paths >= 1 || getNumPs2aiePaths(params, data) > 0) return toIntSaturated(MIN(wanted, total));
    // Only DDR traffic: the buffers of the memory-controller columns are all that run.
    return toIntSaturated(MIN(wanted, static_cast<float>(calculateDdrOnlyClockBuffers(params, data))));
}

float Model::computeNocClkPwr(Params& params, Data const& data) const {
    float const perBuffer = getNocClk(params, data) / 1000.0f * calculateClkData(params, data);
    return calculatePwrScaleFactor(params, data) *
           (static_cast<float>(calculateUsedClkBuffers(params, data)) * perBuffer);
}

// A network that carries no traffic is not clocked either: no path power, no power at all.
float Model::computeVccSocPwr(Params& params, Data const& data) const {
    float const paths = calculateTotalPathPwr(params, data);
    if (!(paths > 0.0f)) return 0.0f;
    return calculateNocClkPwr(params, data) + paths;
}
