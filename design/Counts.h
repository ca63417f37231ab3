#pragma once
// Used-block counts (LUTs, flip-flops, block RAMs active and asleep): each block sheet declares which
// counts one instance makes up, the engine sums them over the design as it sums power, and the static
// sheet declares which of its inputs receive them. Nothing here names a sheet or a count.

#include <prsm/design/Estimate.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

class DeviceResources;

// The counts one block makes up, and its shares per instance as its last calculation left them.
struct BlockCounts {
    struct Entry {
        std::size_t count;      // index into CountTally's counts
        std::size_t cell;       // the cell of one instance's share
        std::size_t whenInput;  // the gating string input, or the sheet's cell count when none
        SheetCount const* declared;
    };
    std::vector<Entry> entries;
    std::vector<double> perInstance;
};

// The counts the design's blocks declare, and their sums over the design.
class CountTally {
public:
    struct Count {
        std::string name;
        std::string resource;  // the device resource it takes up; empty when none
        double total = 0;      // summed over the blocks by add() since the last clear()
    };

    // Registers the counts a block's sheet declares and says where to read them.
    BlockCounts declare(Sheet const& sheet);
    // Reads a calculated block's share of each of its counts (0 while its gate is shut).
    static void measure(BlockCounts& counts, Sheet const& sheet, SheetInstance& instance);

    void clear();
    void add(BlockCounts const& counts, double instances);

    std::vector<Count> const& counts() const { return m_counts; }
    // The index of a count some block declares, or counts().size() when none does.
    std::size_t find(std::string const& name) const;

private:
    std::vector<Count> m_counts;
};

// The static sheet's inputs that receive the design's counts, and what each receives in one estimate.
class CountFeeder {
public:
    explicit CountFeeder(Sheet const& staticSheet);

    // Works out each input's value. An input the design sets itself (`givenByDesign`) keeps that value.
    void prepare(CountTally const& tally, DeviceResources const& device,
                 std::function<bool(std::string const&)> const& givenByDesign);
    // Writes the values into a fresh parameter set of the static sheet.
    void feed(SheetInstance& instance) const;
    // What each fed or given input holds after the calculation, and a warning for each given value that
    // differs from what the blocks add up to.
    void describe(SheetInstance& instance, std::vector<std::pair<std::string, double>>& held,
                  std::vector<Warning>& warnings) const;

private:
    struct Fed {
        std::size_t cell;  // in the static sheet's cells()
        CountFeed const* declared;
        std::optional<double> value;  // none: no block declares its counts, or a share's resource is unknown
        bool given = false;
    };
    Sheet const& m_sheet;
    std::vector<Fed> m_fed;
};

}  // namespace prsm::design
