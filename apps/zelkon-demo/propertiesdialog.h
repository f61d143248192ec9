// The property page of a filter field in a dialog, as a host that designs at run time shows it.
#pragma once

class FilterForm;
class QDialog;
class QMenuBar;
class QWidget;

namespace zelkon {
class Control;
} // namespace zelkon

// The page of the control's class in a dialog with OK, Cancel and Apply; nullptr for a class
// without a page.
QDialog *propertiesDialog(zelkon::Control *control, QWidget *parent);
// Adds Edit > Edit properties..., which opens the page of the filter field holding the focus.
void addEditPropertiesMenu(QMenuBar *bar, FilterForm *form);
