#include "oxa/package/Package.h"

#include "oxa/controls/ButtonOxa.h"
#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/DBCheckBoxOxa.h"
#include "oxa/controls/DBComboBoxOxa.h"
#include "oxa/controls/DBEditOxa.h"
#include "oxa/controls/DBLookupComboBoxOxa.h"
#include "oxa/controls/DateTimePickerOxa.h"
#include "oxa/controls/EditOxa.h"
#include "oxa/controls/ErrorProvider.h"
#include "oxa/controls/LabeledEditOxa.h"
#include "oxa/controls/MaskEditOxa.h"
#include "oxa/controls/MemoOxa.h"
#include "oxa/controls/NumEditOxa.h"
#include "oxa/controls/OxaEditCis.h"
#include "oxa/controls/OxaPopupMenu.h"
#include "oxa/controls/StringGridOxa.h"
#include "oxa/diary/DayListView.h"
#include "oxa/diary/EnhancedMonthCalendar.h"
#include "oxa/grids/CheckDBGrid.h"
#include "oxa/grids/CheckDBGridOxa.h"
#include "oxa/grids/CheckTreeView.h"
#include "oxa/grids/CheckTreeViewOxa.h"
#include "oxa/grids/DBGridOxa.h"
#include "oxa/grids/StringGridCheck.h"
#include "oxa/grids/StringListValues.h"
#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/RVPopupMenu.h"
#include "oxa/richtext/RVToolBar.h"
#include "oxa/spreadsheet/XLSfile.h"
#include "oxa/utilities/BackgroundWorker.h"
#include "oxa/utilities/ExecApp.h"

namespace oxa {

// The units register in the library's unit order.
void RegisterAll()
{
    RegisterMaskEditOxa();
    RegisterDateTimePickerOxa();
    RegisterOxaPopupMenu();
    RegisterEditOxa();
    RegisterComboBoxOxa();
    RegisterStringGridOxa();
    RegisterExecApp();
    RegisterMemoOxa();
    RegisterLabeledEditOxa();
    RegisterEnhancedMonthCalendar();
    RegisterDayListView();
    RegisterXLSfile();
    RegisterButtonOxa();
    RegisterOxaEditCis();
    RegisterNumEditOxa();
    RegisterErrorProvider();
    RegisterBackgroundWorker();
    RegisterDBGridOxa();
    RegisterCheckDBGrid();
    RegisterCheckDBGridOxa();
    RegisterStringListValues();
    RegisterDBEditOxa();
    RegisterDBLookupComboBoxOxa();
    RegisterDBComboBoxOxa();
    RegisterDBCheckBoxOxa();
    RegisterStringGridCheck();
    RegisterCheckTreeView();
    RegisterCheckTreeViewOxa();
    RegisterOxaRichView();
    RegisterRVPopupMenu();
    RegisterRVToolBar();
}

} // namespace oxa
