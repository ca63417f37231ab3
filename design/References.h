#pragma once
// Inputs that take their value from another block's cell ({"from": "video clock", "cell": "HD_COUNT"}).
// The models never read one another; the engine copies the value across, calculating the blocks in an
// order in which every block comes after the blocks it reads from.

#include <prsm/design/Design.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace prsm::design {

struct ReferenceProblem {
    std::string pointer;  // JSON pointer of the offending value
    std::string message;
};

// Checks the references of a design whose blocks have been read: the block and cell referred to exist,
// the cell's type fits the input (int from int, float from int or float, string from string), the cell
// is not an input the design itself sets, and no block reads from itself through others.
std::vector<ReferenceProblem> checkReferences(Design const& design);

// One input of a reader copied from a cell of the block it reads from.
struct Link {
    std::size_t source;      // the block read from, as an index of Design::blocks
    std::size_t sourceCell;  // position in the source sheet's cells()
    std::size_t targetCell;  // position in the reader sheet's cells()
};

// The links of one reader (a block, the static sheet or the board), its references resolved against the
// design's blocks. The references must have passed checkReferences.
std::vector<Link> resolveLinks(Block const& reader, Sheet const& readerSheet, Design const& design);

// Copies a linked value from the source's calculated parameter set into the reader's.
void copyLinked(Link const& link, Sheet const& sourceSheet, SheetInstance& source, Sheet const& readerSheet,
                SheetInstance& reader);

// A number cell of a calculated parameter set; one the calculation did not reach (an input left to its
// default, a figure off its path) is evaluated.
double calculatedNumber(Sheet const& sheet, SheetInstance& instance, std::size_t cell);

// The design's blocks in calculation order: every block after the blocks it reads from, file order
// otherwise. `links[b]` are block b's links; there are no cycles.
std::vector<std::size_t> calculationOrder(std::vector<std::vector<Link>> const& links);

// For each block, the blocks that read from it directly.
std::vector<std::vector<std::size_t>> readersOf(std::vector<std::vector<Link>> const& links);

}  // namespace prsm::design
