/// \file
/// The class registry: controls and public objects created by name.
#pragma once

#include <zelkon/common/global.h>

#include <QString>
#include <QStringList>

class QObject;
class QWidget;

namespace zelkon {

class Control;

/// Makes a control of a registered class.
using ControlFactory = Control *(*)(QWidget *parent);
/// Makes a non-visual object of a registered programmatic name.
using ObjectFactory = QObject *(*)(QObject *parent);

/// Registration happens once per class, from the class's own source file (see the macros below).
ZELKON_EXPORT bool registerControlClass(const QString &className, ControlFactory factory);
/// Registers an object class under its programmatic name ("ADODB.Recordset"); false when the name
/// is taken.
ZELKON_EXPORT bool registerObjectClass(const QString &progId, ObjectFactory factory);

/// Creates a control by its class name; nullptr for an unknown name. Names compare exactly.
ZELKON_EXPORT Control *createControl(const QString &className, QWidget *parent = nullptr);
/// Creates a public non-visual object by its programmatic name; nullptr for an unknown one.
/// Programmatic names compare without regard to case.
ZELKON_EXPORT QObject *createObject(const QString &progId, QObject *parent = nullptr);
/// The class names createControl() knows, the controls of this build.
ZELKON_EXPORT QStringList controlClassNames();
/// The programmatic names createObject() knows.
ZELKON_EXPORT QStringList objectClassNames();

} // namespace zelkon

/// Registers the control class `Class` under its own name; write it once in the class's source
/// file, at namespace scope.
#define ZELKON_REGISTER_CONTROL(Class) \
    [[maybe_unused]] static const bool zelkonRegistered##Class = ::zelkon::registerControlClass( \
        QStringLiteral(#Class), \
        [](QWidget *parent) -> ::zelkon::Control * { return new Class(parent); })

/// Registers the object class `Class` under the programmatic name `progId`; write it once in the
/// class's source file, at namespace scope.
#define ZELKON_REGISTER_OBJECT(Class, progId) \
    [[maybe_unused]] static const bool zelkonRegistered##Class = ::zelkon::registerObjectClass( \
        QStringLiteral(progId), [](QObject *parent) -> QObject * { return new Class(parent); })
