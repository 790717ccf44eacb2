#include "backends/media/picture_filter.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
}

#include <fmt/format.h>

#include <utility>

#include "backends/media/av_error.h"
#include "backends/media/av_handles.h"
#include "dv/dv_constants.h"

namespace zq::media {
namespace {

struct GraphDeleter {
  void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
};

Error filterError(int averror) {
  return Error{"The pictures cannot be converted for the encoder",
               avReason(averror) + ". Check the installed libavfilter."};
}

std::string sourceFor(DVSystem system) {
  const bool is625 = system == DVSystem::pal625_50;
  const FrameRate rate = frameRateOf(system);
  return fmt::format("video_size={}x{}:pix_fmt={}:time_base={}/{}:frame_rate={}/{}", +COLUMN_COUNT_625_50,
                     is625 ? ROW_COUNT_625_50 : ROW_COUNT_525_60, static_cast<int>(decodedFormatOf(system)),
                     rate.denominator, rate.numerator, rate.numerator, rate.denominator);
}

}  // namespace

struct PictureFilter::Context {
  Status open(DVSystem system, const std::string& filters);
  Status pull(const Sink& take);

  // Without a graph pictures pass as they are.
  std::unique_ptr<AVFilterGraph, GraphDeleter> graph;
  AVFilterContext* source = nullptr;
  AVFilterContext* sink = nullptr;
  /// Of the last picture, in frames of the tape.
  std::int64_t end = 0;
  const Picture in = newPicture();
  const Picture out = newPicture();
};

Status PictureFilter::Context::open(DVSystem system, const std::string& filters) {
  graph.reset(avfilter_graph_alloc());
  if (!graph) throw std::bad_alloc();
  int result = avfilter_graph_create_filter(&source, avfilter_get_by_name("buffer"), "in", sourceFor(system).c_str(),
                                            nullptr, graph.get());
  if (result >= 0) {
    result =
        avfilter_graph_create_filter(&sink, avfilter_get_by_name("buffersink"), "out", nullptr, nullptr, graph.get());
  }
  if (result < 0) return filterError(result);
  AVFilterInOut* outputs = avfilter_inout_alloc();
  AVFilterInOut* inputs = avfilter_inout_alloc();
  if (!outputs || !inputs) throw std::bad_alloc();
  *outputs = {av_strdup("in"), source, 0, nullptr};
  *inputs = {av_strdup("out"), sink, 0, nullptr};
  result = avfilter_graph_parse_ptr(graph.get(), filters.c_str(), &inputs, &outputs, nullptr);
  avfilter_inout_free(&inputs);
  avfilter_inout_free(&outputs);
  if (result >= 0) result = avfilter_graph_config(graph.get(), nullptr);
  return result < 0 ? Status(filterError(result)) : Status();
}

Status PictureFilter::Context::pull(const Sink& take) {
  while (true) {
    av_frame_unref(out.get());
    const int result = av_buffersink_get_frame(sink, out.get());
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return {};
    if (result < 0) return filterError(result);
    Status taken = take(*out);
    if (!taken.ok()) return taken;
  }
}

Expected<std::unique_ptr<PictureFilter>> PictureFilter::create(DVSystem system, const PicturePlan& plan) {
  auto context = std::make_unique<Context>();
  if (!plan.filters.empty()) {
    Status opened = context->open(system, plan.filters);
    if (!opened.ok()) return opened.error();
  }
  return std::unique_ptr<PictureFilter>(new PictureFilter(std::move(context)));
}

PictureFilter::PictureFilter(std::unique_ptr<Context> context) : context_(std::move(context)) {}

PictureFilter::~PictureFilter() = default;

Status PictureFilter::filter(const AVFrame& decoded, std::int64_t number, const Sink& sink) {
  Context& c = *context_;
  av_frame_unref(c.in.get());
  const int referenced = av_frame_ref(c.in.get(), &decoded);
  if (referenced < 0) return filterError(referenced);
  c.in->pts = number;
  c.end = number + 1;
  // The shape of a pixel is the plan's; a change of it in the middle would have the graph made anew.
  c.in->sample_aspect_ratio = {0, 1};
  if (!c.graph) return sink(*c.in);
  const int added = av_buffersrc_add_frame(c.source, c.in.get());
  return added < 0 ? Status(filterError(added)) : c.pull(sink);
}

Status PictureFilter::finish(const Sink& sink) {
  Context& c = *context_;
  if (!c.graph) return {};
  // Told when the last frame ends, a filter that makes another rate knows how long it is shown.
  const int ended = av_buffersrc_close(c.source, c.end, 0);
  return ended < 0 ? Status(filterError(ended)) : c.pull(sink);
}

}  // namespace zq::media
