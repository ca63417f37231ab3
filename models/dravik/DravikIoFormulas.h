#pragma once
// The older architecture's I/O follows the newer one's physics; it is written once, beside the newer
// architecture's I/O sheet.
#include <prsm/models/talvex/IoFormulas.h>
