#include "host/catalogue/qt_silence.h"

#include <QString>
#include <QtGlobal>

namespace zq::host {
namespace {

thread_local int silences = 0;

QtMessageHandler& handlerBefore() {
  static QtMessageHandler handler = nullptr;
  return handler;
}

void handle(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (silences == 0) handlerBefore()(type, context, message);
}

// Once and for good: another thread may be in it at any time.
void install() {
  static const bool installed = [] {
    handlerBefore() = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(handle);
    return true;
  }();
  static_cast<void>(installed);
}

}  // namespace

QtSilence::QtSilence() {
  install();
  ++silences;
}

QtSilence::~QtSilence() {
  --silences;
}

}  // namespace zq::host
