// SPDX-License-Identifier: MIT
#include "platform/macos/settings/application_folders.hpp"

#include "platform/macos/base/foundation_text.hpp"

namespace vantora {

std::optional<std::filesystem::path> applicationSupportFolder() {
  NSArray<NSURL*>* folders =
      [NSFileManager.defaultManager URLsForDirectory:NSApplicationSupportDirectory
                                           inDomains:NSUserDomainMask];
  NSURL* folder = folders.firstObject;
  if (folder == nil) {
    return std::nullopt;
  }
  return std::filesystem::path(textOf(folder.path));
}

std::string homeFolder() {
  return textOf(NSHomeDirectory().stringByStandardizingPath);
}

std::filesystem::path bundledHelper(std::string_view name) {
  const std::filesystem::path bundle = textOf(NSBundle.mainBundle.bundleURL.path);
  return bundle / "Contents/Helpers" / (std::string(name) + ".app") / "Contents/MacOS" / name;
}

}  // namespace vantora
