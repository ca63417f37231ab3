#pragma once
// The older architecture's DSP slice is built as the newer one's (pre-adder, multiplier, accumulator,
// pipeline registers); its formulas are written once, beside the newer architecture's DSP sheet.
#include <prsm/models/talvex/DspFormulas.h>
