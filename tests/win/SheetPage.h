#pragma once

// The page of the property sheet's test; the resource compiler reads it too.
#define IDD_SHEETPAGE    900
#define IDC_SHEET_TEXT   901
#define IDC_SHEET_CHECK  902
#define IDC_SHEET_FIRST  903
#define IDC_SHEET_SECOND 904
#define IDC_SHEET_LEVEL  905
#define IDC_SHEET_NUMBER 906
#define IDC_SHEET_LIST   907
