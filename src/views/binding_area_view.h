#pragma once
// The band between the timeline, above it, and the strip, below it: joins each clip's place in the one to its picture
// in the other.

#include <QWidget>
#include <memory>

#include "outlets/binding_area.h"
#include "platform/runtime.h"
#include "views/main_thread_tasks.h"

class QPainter;

namespace zq {

/// Made, destroyed and drawn on the main thread; all else may be called from any thread. The rectangles of the clips
/// are those that timeline and strip stored; the three views stand at the same x and are of the same width.
class ZQACBindingAreaView final : public QWidget, public outlets::BindingArea {
  Q_OBJECT

 public:
  explicit ZQACBindingAreaView(platform::Runtime& runtime, QWidget* parent = nullptr);

  void setActiveSequence(SequenceValue sequence) override;
  void setActiveClip(ClipValue clip) override;
  void refresh() override;

  SequenceValue activeSequence() const;
  ClipValue activeClip() const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void postRefresh();
  void drawBands(QPainter& painter, const ZQACSequence& sequence, const ZQACClip* active) const;

  // Constant after construction.
  const std::unique_ptr<platform::Mutex> mutex_;
  platform::Executor& mainLoop_;
  const MainThreadTasks mainThread_;

  // Guarded by mutex_.
  SequenceValue activeSequence_;
  ClipValue activeClip_;
};

}  // namespace zq
