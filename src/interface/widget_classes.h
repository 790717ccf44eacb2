#pragma once
// The classes that an interface file may name beside Qt's own.

#include <QString>
#include <QStringList>

class QWidget;

namespace zq {

namespace platform {
class Runtime;
}

/// A new object of the class, or null when it is none of ours. Views take their time and threads from `runtime`.
QWidget* makeWidget(const QString& className, platform::Runtime& runtime, QWidget* parent);
/// The names, sorted.
QStringList widgetClasses();

}  // namespace zq
