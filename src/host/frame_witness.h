#pragma once
// Movie writers that remember which frames went into each file. A compressed movie can be counted, but what its
// pictures said of themselves as DV frames is gone with the compression.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/frame_note.h"
#include "platform/movie_writer.h"
#include "platform/runtime.h"

namespace zq::host {

class FrameWitness final : public platform::MovieWriterFactory {
 public:
  /// `writers` outlives it, and it the writers that it makes.
  FrameWitness(platform::Runtime& runtime, platform::MovieWriterFactory& writers);

  Expected<std::unique_ptr<platform::MovieWriter>> create(
      const std::string& path, const std::shared_ptr<const platform::QTCompressionOptions>& compression) override;

  /// The frames that the writer of this file took, in their order, once it is finished; forgets them. From any thread.
  std::vector<FrameNote> takeFramesOf(const std::string& path);

 private:
  class Writer;
  void keep(const std::string& path, std::vector<FrameNote> frames);

  // Constant after construction.
  platform::MovieWriterFactory& writers_;
  const std::unique_ptr<platform::Mutex> mutex_;

  // Guarded by mutex_.
  std::map<std::string, std::vector<FrameNote>> finished_;
};

}  // namespace zq::host
