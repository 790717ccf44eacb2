#pragma once
// Shows and hides a group of widgets.

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <atomic>

#include "outlets/panel.h"

namespace zq {

/// Made and destroyed on the main thread, used from any. The widget may go first; then nothing is shown any more.
class PanelOutlet : public QObject, public outlets::Panel {
  Q_OBJECT

 public:
  explicit PanelOutlet(QWidget& widget);

  /// The widget follows when the main thread is free.
  void setShown(bool shown) override;
  /// What was asked for last.
  bool isShown() const override { return shown_; }

 private:
  void followShown();

  // Written from any thread.
  std::atomic<bool> shown_;

  // Main thread only.
  QPointer<QWidget> widget_;
};

}  // namespace zq
