#pragma once
// Movies that are written into memory.

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/movie_writer.h"

namespace zq::test {

/// From any thread. A path that was written before is refused, as on disk.
class MemoryMovies final : public platform::MovieWriterFactory {
 public:
  Expected<std::unique_ptr<platform::MovieWriter>> create(
      const std::string& path, const std::shared_ptr<const platform::QTCompressionOptions>& /*compression*/) override {
    const std::lock_guard guard(mutex_);
    if (!movies_.try_emplace(path).second) return Error{path + " exists", "Choose another name."};
    return std::unique_ptr<platform::MovieWriter>(std::make_unique<Writer>(*this, path));
  }

  std::map<std::string, std::vector<SharedBytes>> movies() const {
    const std::lock_guard guard(mutex_);
    return movies_;
  }
  bool isFinished(const std::string& path) const {
    const std::lock_guard guard(mutex_);
    return finished_.contains(path);
  }

 private:
  class Writer final : public platform::MovieWriter {
   public:
    Writer(MemoryMovies& movies, std::string path) : movies_(movies), path_(std::move(path)) {}
    Status append(const platform::QTSampleBuffer& frame) override {
      const std::lock_guard guard(movies_.mutex_);
      movies_.movies_[path_].push_back(frame.bytesForAllSamples);
      return {};
    }
    Status finish() override {
      const std::lock_guard guard(movies_.mutex_);
      movies_.finished_.insert(path_);
      return {};
    }

   private:
    MemoryMovies& movies_;
    const std::string path_;
  };

  mutable std::mutex mutex_;
  std::map<std::string, std::vector<SharedBytes>> movies_;
  std::set<std::string> finished_;
};

}  // namespace zq::test
