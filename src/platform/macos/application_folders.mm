// SPDX-License-Identifier: MIT
#include "platform/macos/application_folders.hpp"

#include "platform/macos/foundation_text.hpp"

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

std::filesystem::path bundledProgram(std::string_view name) {
  return textOf([NSBundle.mainBundle pathForAuxiliaryExecutable:stringOf(name)]);
}

}  // namespace vantora
