#pragma once
// The older architecture's transceivers follow the newer ones' lane law and rail voltage factor; both are
// written once, beside the newer architecture's transceiver sheet.
#include <prsm/models/talvex/LinkFormulas.h>
