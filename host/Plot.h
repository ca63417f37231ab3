#pragma once
// Pictures of a sweep through gnuplot: one line per output, or per value of the second variable, with
// the axes labelled with their units and a title saying what was held fixed. No axis mixes units: a
// second unit goes on a right-hand axis, and three or more get one panel each.

#include <prsm/host/Sweep.h>

#include <cstddef>
#include <iosfwd>
#include <string>

namespace prsm::host {

// The picture's terminal for a path ending in .png or .svg, tall enough for `panels` plots stacked.
// Throws HostError(kExitBadInput) for another name.
std::string plotTerminal(std::string const& picturePath, std::size_t panels = 1);

// The outputs a plot can draw: the numeric ones. Throws HostError(kExitBadInput) when there are none.
void checkPlottable(std::vector<Quantity> const& outputs);

// A self-contained gnuplot script (the data inline) that draws `result` into `picturePath`.
std::string gnuplotScript(SweepResult const& result, std::string const& picturePath);

// The gnuplot program: $PRSM_GNUPLOT when set, else `gnuplot` on PATH; empty when there is none.
std::string findGnuplot();

// Draws the picture. Without gnuplot it writes the script beside the picture (FILE.gp) and says on
// `err` how to get the picture; that is not a failure. Throws HostError(kExitDataFailure) when gnuplot
// runs and fails.
void drawPlot(SweepResult const& result, std::string const& picturePath, std::ostream& err);

}  // namespace prsm::host
