#include "interface/interface_loader.h"

#include <QFile>
#include <QStringList>
#include <QUiLoader>
#include <QXmlStreamReader>

#include "controls/awakes_from_nib.h"
#include "interface/widget_classes.h"

/// In a static library nothing refers to the compiled-in files, so the linker would leave them out. What it calls is
/// declared in the global namespace.
static void linkInterfaces() {
  Q_INIT_RESOURCE(interface);
}

namespace zq {

namespace {

/// Qt's loader with our classes. Left to itself it says on the terminal that it does not know a class, and goes on
/// without the widget.
class Loader final : public QUiLoader {
 public:
  explicit Loader(platform::Runtime& runtime) : runtime_(runtime) {}

  const QStringList& unknownClasses() const { return unknownClasses_; }

  QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
    QWidget* widget = makeWidget(className, runtime_, parent);
    if (widget == nullptr && availableWidgets().contains(className)) {
      return QUiLoader::createWidget(className, parent, name);
    }
    if (widget == nullptr) {
      unknownClasses_.append(name.isEmpty() ? className : className + " (" + name + ")");
      widget = new QWidget(parent);
    }
    widget->setObjectName(name);
    return widget;
  }

 private:
  platform::Runtime& runtime_;
  QStringList unknownClasses_;
};

Error cannotLoad(const QString& path, const QString& why) {
  return {"The interface \"" + path.toStdString() + "\" cannot be loaded", why.toStdString()};
}

/// Where the XML breaks, which Qt's loader would tell the terminal only; empty when it does not.
QString brokenAt(QIODevice& file) {
  QXmlStreamReader xml(&file);
  bool isInterface = false;
  while (!xml.atEnd()) {
    xml.readNext();
    if (xml.isStartElement() && xml.name() == QLatin1String("ui")) isInterface = true;
  }
  file.seek(0);
  if (xml.hasError()) return QString("line %1: %2").arg(xml.lineNumber()).arg(xml.errorString());
  return isInterface ? QString() : QString("it has no \"ui\" element");
}

// A container may add its own insides while it awakes; those are no part of the interface.
void awake(QWidget& root) {
  QWidgetList widgets{&root};
  widgets.append(root.findChildren<QWidget*>());
  for (QWidget* widget : widgets) {
    if (auto* sleeper = dynamic_cast<AwakesFromNib*>(widget)) sleeper->awakeFromNib();
  }
}

}  // namespace

Expected<std::unique_ptr<Interface>> loadInterface(const QString& path, platform::Runtime& runtime) {
  linkInterfaces();
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    return cannotLoad(path, file.errorString() + ". Check that the file is there and may be read.");
  }
  if (const QString broken = brokenAt(file); !broken.isEmpty()) {
    return cannotLoad(path, "It is not an interface file: " + broken + ". Write it with Qt Designer.");
  }
  Loader loader(runtime);
  std::unique_ptr<QWidget> root(loader.load(&file));
  if (!loader.unknownClasses().isEmpty()) {
    return cannotLoad(path, "There is no class " + loader.unknownClasses().join(", ") +
                                ". Use Qt's own classes, or one of: " + widgetClasses().join(", ") + ".");
  }
  if (!root) return cannotLoad(path, loader.errorString() + ". Write it with Qt Designer.");
  awake(*root);
  return std::make_unique<Interface>(std::move(root));
}

}  // namespace zq
