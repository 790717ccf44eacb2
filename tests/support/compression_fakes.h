#pragma once
// A compression platform without encoders: presets by name, and a standard compression component whose every answer is
// scripted.

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/compression.h"

namespace zq::test {

using CompressionData = std::vector<std::uint8_t>;

class FakeSessionOptions final : public platform::ICMCompressionSessionOptions {
 public:
  std::int32_t setProperty(platform::FourCharCode propertyClass, platform::FourCharCode property,
                           std::span<const std::uint8_t> value) override {
    properties[{propertyClass, property}] = CompressionData(value.begin(), value.end());
    return 0;
  }

  CompressionData madeFrom;
  std::map<std::pair<platform::FourCharCode, platform::FourCharCode>, CompressionData> properties;
};

class FakePreset final : public platform::QTCompressionOptions {
 public:
  explicit FakePreset(std::string name) : name_(std::move(name)) {}
  std::string localizedDisplayName() const override { return name_; }

 private:
  const std::string name_;
};

/// What was asked of the platform's own kind of options.
class FakeVideoOptions final : public platform::QTCompressionOptions {
 public:
  std::string localizedDisplayName() const override { return "Video"; }

  platform::FourCharCode codecType = 0;
  int sizeMode = -1;
  int width = -1;
  int height = -1;
  std::shared_ptr<platform::ICMCompressionSessionOptions> session;
};

/// Answers of the component; errors are numbers, 0 is none.
struct CompressionScript {
  bool opens = true;
  std::int32_t loadError = 0;
  std::int32_t dialogResult = 0;
  /// What the user chooses in the dialog; empty for what was there.
  CompressionData chosen;
  std::int32_t saveError = 0;
  std::int32_t copyError = 0;
  platform::FourCharCode codecType = platform::fourCharCode("avc1");
  std::int32_t frameRate = 25 << 16;
};

class FakeCompression final : public platform::CompressionPlatform {
 public:
  std::vector<std::string> compressionOptionsIdentifiersForMediaType(const std::string& mediaType) override {
    return mediaType == platform::QTMediaTypeVideo ? identifiers : std::vector<std::string>();
  }

  std::shared_ptr<const platform::QTCompressionOptions> compressionOptionsWithIdentifier(
      const std::string& identifier) override {
    auto& preset = presets_[identifier];
    if (!preset) preset = std::make_shared<const FakePreset>("preset " + identifier);
    return preset;
  }

  std::unique_ptr<platform::StandardCompression> openDefaultComponent(platform::FourCharCode type,
                                                                      platform::FourCharCode subType) override {
    opened.emplace_back(type, subType);
    if (!script.opens) return nullptr;
    return std::make_unique<Component>(*this);
  }

  std::shared_ptr<const platform::QTCompressionOptions> videoCompressionOptions(
      platform::FourCharCode codecType, int sizeMode, int width, int height,
      std::shared_ptr<platform::ICMCompressionSessionOptions> session) override {
    made = std::make_shared<FakeVideoOptions>();
    made->codecType = codecType;
    made->sizeMode = sizeMode;
    made->width = width;
    made->height = height;
    made->session = std::move(session);
    return made;
  }

  std::vector<std::string> identifiers{"sharing", "editing"};
  CompressionScript script;

  // What happened.
  std::vector<std::pair<platform::FourCharCode, platform::FourCharCode>> opened;
  int openNow = 0;
  int dialogs = 0;
  CompressionData shownInDialog;
  std::vector<std::pair<platform::FourCharCode, std::int32_t>> infos;
  std::shared_ptr<FakeVideoOptions> made;

 private:
  class Component final : public platform::StandardCompression {
   public:
    explicit Component(FakeCompression& owner) : owner_(owner) { ++owner_.openNow; }
    ~Component() override { --owner_.openNow; }
    std::int32_t setInfo(platform::FourCharCode selector, std::int32_t flags) override {
      owner_.infos.emplace_back(selector, flags);
      return 0;
    }
    std::int32_t setSettingsFromAtomContainer(std::span<const std::uint8_t> settings) override {
      if (owner_.script.loadError == 0) settings_.assign(settings.begin(), settings.end());
      return owner_.script.loadError;
    }
    std::int32_t requestImageSettings() override {
      ++owner_.dialogs;
      owner_.shownInDialog = settings_;
      if (owner_.script.dialogResult == 0 && !owner_.script.chosen.empty()) settings_ = owner_.script.chosen;
      return owner_.script.dialogResult;
    }
    std::int32_t getSettingsAsAtomContainer(CompressionData& settings) override {
      if (owner_.script.saveError == 0) settings = settings_;
      return owner_.script.saveError;
    }
    std::int32_t copyCompressionSessionOptions(
        std::shared_ptr<platform::ICMCompressionSessionOptions>& options) override {
      if (owner_.script.copyError != 0) return owner_.script.copyError;
      auto copy = std::make_shared<FakeSessionOptions>();
      copy->madeFrom = settings_;
      options = std::move(copy);
      return 0;
    }
    platform::SCSpatialSettings spatialSettings() const override { return {owner_.script.codecType}; }
    platform::SCTemporalSettings temporalSettings() const override { return {owner_.script.frameRate}; }

   private:
    FakeCompression& owner_;
    CompressionData settings_{'d', 'e', 'f'};
  };

  std::map<std::string, std::shared_ptr<const FakePreset>> presets_;
};

}  // namespace zq::test
