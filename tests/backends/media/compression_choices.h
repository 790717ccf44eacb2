#pragma once
// Compressions for tests, and movies written with them.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "backends/media/compression_presets.h"
#include "backends/media/compression_text.h"
#include "backends/media/movie_compression.h"
#include "backends/media/movie_writer_factory.h"
#include "made_clips.h"

namespace zq::test {

using Compression = std::shared_ptr<const platform::QTCompressionOptions>;

inline Compression presetNamed(const std::string& identifier) {
  for (const media::CompressionPreset& preset : media::compressionPresets()) {
    if (preset.identifier != identifier) continue;
    return std::make_shared<media::MovieCompression>(preset.name, preset.settings(), media::PictureSize{},
                                                     preset.containers());
  }
  throw std::runtime_error("no preset: " + identifier);
}

inline Compression custom(const std::vector<std::string>& texts, media::PictureSize size = {}) {
  const auto settings = media::settingsFromTexts(texts);
  if (!settings.ok()) throw std::runtime_error(settings.error().text());
  return std::make_shared<media::MovieCompression>(
      "Custom", settings.value(), size, media::containersOf(*settings.value().codec, settings.value().sound));
}

inline void writeCompressed(const Clip& clip, const std::string& path, const Compression& compression,
                            Log* log = nullptr) {
  auto writer = media::MovieWriterFactory(log).create(path, compression);
  ASSERT_TRUE(writer.ok()) << writer.error().text();
  for (const auto& frame : clip) {
    const Status appended = writer.value()->append(frame);
    ASSERT_TRUE(appended.ok()) << appended.error().text();
  }
  const Status finished = writer.value()->finish();
  ASSERT_TRUE(finished.ok()) << finished.error().text();
}

}  // namespace zq::test
