#pragma once
// The spreadsheet function library: everything in namespace PRSMHelperUtils that cell formulas use.

#include <prsm/sheetfunc/PRSMNumericFunctions.h>
#include <prsm/sheetfunc/PRSMTextFunctions.h>
