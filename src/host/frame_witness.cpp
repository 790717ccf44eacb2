#include "host/frame_witness.h"

#include <mutex>
#include <utility>

namespace zq::host {

// Frames are written aside, where nothing of the runtime's may be used, so the notes are the writer's alone until the
// file is finished.
class FrameWitness::Writer final : public platform::MovieWriter {
 public:
  Writer(FrameWitness& witness, std::string path, std::unique_ptr<platform::MovieWriter> writer)
      : witness_(witness), path_(std::move(path)), writer_(std::move(writer)) {}

  Status append(const platform::QTSampleBuffer& frame) override {
    Status status = writer_->append(frame);
    if (status.ok()) frames_.push_back(noteOf(frame.bytesForAllSamples));
    return status;
  }

  Status finish() override {
    Status status = writer_->finish();
    witness_.keep(path_, std::move(frames_));
    return status;
  }

 private:
  FrameWitness& witness_;
  const std::string path_;
  const std::unique_ptr<platform::MovieWriter> writer_;
  std::vector<FrameNote> frames_;
};

FrameWitness::FrameWitness(platform::Runtime& runtime, platform::MovieWriterFactory& writers)
    : writers_(writers), mutex_(runtime.makeMutex("frame witness")) {}

Expected<std::unique_ptr<platform::MovieWriter>> FrameWitness::create(
    const std::string& path, const std::shared_ptr<const platform::QTCompressionOptions>& compression) {
  auto writer = writers_.create(path, compression);
  if (!writer.ok()) return writer.error();
  return std::unique_ptr<platform::MovieWriter>(std::make_unique<Writer>(*this, path, std::move(writer.value())));
}

std::vector<FrameNote> FrameWitness::takeFramesOf(const std::string& path) {
  const std::lock_guard guard(*mutex_);
  const auto found = finished_.find(path);
  if (found == finished_.end()) return {};
  std::vector<FrameNote> frames = std::move(found->second);
  finished_.erase(found);
  return frames;
}

void FrameWitness::keep(const std::string& path, std::vector<FrameNote> frames) {
  const std::lock_guard guard(*mutex_);
  finished_[path] = std::move(frames);
}

}  // namespace zq::host
