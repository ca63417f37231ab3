#pragma once
// The device's resources (LUTs, flip-flops, block RAMs, UltraRAMs, DSPs) from the device catalogue,
// PARAM_VARS_INT.<part>.<RESOURCE>, and the design's use of them.

#include <prsm/design/Design.h>
#include <prsm/design/Estimate.h>

#include <map>
#include <string>
#include <vector>

namespace prsm::design {

class CountTally;

// The names the catalogue may list the design's device under, in the order they are looked up: the part
// in its package (<part>_<package>: what the package bonds out), the part, the part an alias stands for,
// then the internal part (a module's base device).
std::vector<std::string> catalogueNames(Device const& device);

class DeviceResources {
public:
    // Looks the resources up under the part in its package (<part>_<package>: what the package bonds
    // out), the part, the part an alias stands for, then the internal part (a module's base device). A
    // catalogue that lists none leaves every resource unknown; a listed 0 means the device has none.
    DeviceResources(Device const& device, std::vector<std::string> const& resources);
    // The device's count of a resource; 0 when the catalogue does not give it.
    double available(std::string const& resource) const;
    bool knows(std::string const& resource) const { return m_available.count(resource) != 0; }

private:
    std::map<std::string, double> m_available;
};

// One row per resource the design's blocks take up, in the order the counts were declared.
std::vector<ResourceUse> resourceUse(CountTally const& tally, DeviceResources const& device);

// A warning for each resource the design uses beyond the device's count of it.
std::vector<Warning> overUse(std::vector<ResourceUse> const& use, std::string const& part);

}  // namespace prsm::design
