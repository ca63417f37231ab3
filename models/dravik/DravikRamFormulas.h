#pragma once
// The older architecture's block RAM and UltraRAM work as the newer one's: an array behind two ports.
// Their formulas are written once, beside the newer architecture's memory sheets; here the array sits
// on VCCBRAM instead of VCCRAM.
#include <prsm/models/talvex/RamFormulas.h>
