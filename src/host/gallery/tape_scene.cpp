#include "host/gallery/tape_scene.h"

#include "interface/interface_loader.h"
#include "timecode/timecode_utils.h"

namespace zq::host {

Expected<std::unique_ptr<TapeScene>> TapeScene::make(platform::Runtime& runtime) {
  auto loaded = loadInterface(":/deckhand/interface/tape.ui", runtime);
  if (!loaded.ok()) return loaded.error();
  std::unique_ptr<Interface> interface = std::move(loaded.value());
  ZQACTimelineView* timeline = nullptr;
  ZQACBindingAreaView* band = nullptr;
  ZQACThumbnailView* strip = nullptr;
  interface->connect("timelineView", timeline);
  interface->connect("bindingAreaView", band);
  interface->connect("thumbnailView", strip);
  if (!interface->missing().isEmpty()) {
    return Error{"The interface of a tape lacks " + interface->missing().join(", ").toStdString(), ""};
  }
  return std::unique_ptr<TapeScene>(new TapeScene(std::move(interface), *timeline, *band, *strip));
}

TapeScene::TapeScene(std::unique_ptr<Interface> interface, ZQACTimelineView& timeline, ZQACBindingAreaView& band,
                     ZQACThumbnailView& strip)
    : interface_(std::move(interface)), timeline_(&timeline), strip_(&strip) {
  timeline_->setThumbnailView(strip_);
  strip_->setBindingAreaView(&band);
}

void TapeScene::show(const TapeValue& tape) {
  timeline_->refreshWithTape(tape);
}

void TapeScene::pick(const SequenceValue& sequence, const ClipValue& clip) {
  timeline_->setCurrentSequence(sequence);
  timeline_->setCurrentClip(clip);
  timeline_->myMethodeWhenClipClicked();
}

void TapeScene::play(const ClipValue& clip, int frame, bool recaptures) {
  strip_->setClipBeingRecap(recaptures ? clip : nullptr);
  timeline_->setCursorTimecode(ZQACTimecodeUtils::addNbFrameToTimecode(frame, *clip->timecodeStartClip()));
  const CalendarDate date = clip->dateStartClip()->dateByAdding(0, 0, 0, 0, 0, frame / clip->timebase());
  timeline_->setCursorDate(std::make_shared<const CalendarDate>(date));
}

}  // namespace zq::host
