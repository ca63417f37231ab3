#pragma once
// The older architecture's logic clocks run their network as the newer ones' do; the shared parts are
// written once, beside the newer architecture's logic-clock sheet.
#include <prsm/models/talvex/LogicClockFormulas.h>
