#include "capture/compression_choices.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "capture/compression_options.h"

namespace zq {

CompressionChoices::CompressionChoices(platform::CompressionPlatform& platform, const platform::Strings& strings,
                                       Log& log, outlets::PopUp* popUp)
    : platform_(platform), strings_(strings), log_(log), popUp_(popUp) {}

std::size_t CompressionChoices::presetCount() const {
  return platform_.compressionOptionsIdentifiersForMediaType(platform::QTMediaTypeVideo).size();
}

void CompressionChoices::build(std::size_t presets) {
  std::vector<std::string> identifiers =
      platform_.compressionOptionsIdentifiersForMediaType(platform::QTMediaTypeVideo);
  identifiers.resize(std::min(presets, identifiers.size()));
  all_.clear();
  if (popUp_ != nullptr) popUp_->removeAllItems();
  add(QTNoCompressionOptions::noCompressionOptions());
  for (const std::string& identifier : identifiers) {
    if (CompressionValue preset = platform_.compressionOptionsWithIdentifier(identifier)) add(std::move(preset));
  }
  add(QTCustomCompressionOptions::customCompressionOptions());
}

void CompressionChoices::add(CompressionValue options) {
  if (popUp_ != nullptr) popUp_->addItem(strings_.localizedString(options->localizedDisplayName()), options);
  all_.push_back(std::move(options));
}

CompressionValue CompressionChoices::select(int index) {
  if (!has(index)) {
    log_.write(LogLevel::warning,
               fmt::format("There is no compression number {}: movies are written as received. Choose one of 0 to {}.",
                           index, all_.size() - 1));
    index = 0;
  }
  selected_ = index;
  if (popUp_ != nullptr) popUp_->selectItemAtIndex(index);
  return all_[static_cast<std::size_t>(index)];
}

int CompressionChoices::indexOfSelectedItem() const {
  return popUp_ != nullptr ? popUp_->indexOfSelectedItem() : selected_;
}

}  // namespace zq
