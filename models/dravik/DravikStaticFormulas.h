#pragma once
// The older architecture's static sheet computes its rails' leakage by the rules both architectures
// share; they are written once, beside the newer architecture's static sheet.
#include <prsm/models/talvex/LeakageFormulas.h>
