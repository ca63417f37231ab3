#pragma once
// The older architecture's memory interface follows the newer hard controllers' physics; it is written
// once, beside the newer architecture's memory-controller sheet.
#include <prsm/models/talvex/DdrFormulas.h>
