#pragma once
// Changes pictures on their way from the decoder to the encoder, as a plan says.

#include <functional>
#include <memory>

#include "backends/media/picture_plan.h"
#include "base/status.h"

struct AVFrame;

namespace zq::media {

class PictureFilter {
 public:
  static Expected<std::unique_ptr<PictureFilter>> create(DVSystem system, const PicturePlan& plan);
  ~PictureFilter();

  /// Takes a picture that is ready; it may be changed.
  using Sink = std::function<Status(AVFrame& picture)>;
  /// `number` counts the tape's frames.
  Status filter(const AVFrame& decoded, std::int64_t number, const Sink& sink);
  /// What waited for a picture that does not come.
  Status finish(const Sink& sink);

 private:
  struct Context;
  explicit PictureFilter(std::unique_ptr<Context> context);

  const std::unique_ptr<Context> context_;
};

}  // namespace zq::media
