#pragma once
// Two labels over the live picture: the timecode of the frame that is shown, and when it was recorded.

#include <QWidget>
#include <memory>

#include "outlets/overlay.h"
#include "platform/runtime.h"
#include "views/main_thread_tasks.h"

namespace zq {

/// Made, destroyed and drawn on the main thread; all else from any thread. For a view of 640 x 480 points: the labels
/// are 455 points above its lower edge. The mouse reaches what is below.
class ZQTimecodeAndDateView final : public QWidget, public outlets::TimecodeOverlay {
  Q_OBJECT

 public:
  explicit ZQTimecodeAndDateView(platform::Runtime& runtime, QWidget* parent = nullptr);

  /// Draws anew even when it is the same.
  void setTimecode(const SMPTETime& timecode) override;
  /// The same object again draws nothing anew.
  void setDate(DateValue date) override;
  void setHidden(bool hidden) override;

  SMPTETime timecode() const;
  DateValue date() const;

  QSize sizeHint() const override { return {640, 480}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void setNeedsDisplay();
  void showOrHide();

  // Constant after construction.
  platform::Runtime& runtime_;
  const std::unique_ptr<platform::Mutex> displayLock_;
  const MainThreadTasks mainThread_;

  // Guarded by displayLock_.
  SMPTETime timecode_ = nullTimecode;
  DateValue date_;
  bool hidden_ = false;
};

}  // namespace zq
