/// \file
/// Form files: a host saves a whole form of controls and loads it back.
#pragma once

#include <zelkon/common/global.h>

#include <QList>
#include <QString>

class QWidget;

namespace zelkon {

class Control;

/// Stores each Control child of `form` (class, name, Index, geometry and the property bag written
/// by WriteProperties). Saving is atomic: a failed save leaves an older file as it was.
ZELKON_EXPORT void saveForm(const QWidget &form, const QString &path);
/// Creates the saved controls as children of `form` and calls ReadProperties on each. A damaged
/// or foreign file throws zelkon::Error naming the file and the place of the fault, and leaves
/// `form` as it was.
ZELKON_EXPORT QList<Control *> loadForm(QWidget &form, const QString &path);

} // namespace zelkon
