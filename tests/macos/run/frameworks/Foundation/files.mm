// SPDX-License-Identifier: MIT
//
// NSURL, NSFileManager, NSBundle and the home folder. Played: a text with a blank is no
// address; the Application Support folder lies in the home folder, whether it exists or not;
// the main bundle is the folder around the executable's Contents/MacOS, or the executable's
// own.
#include <cstdlib>
#include <filesystem>

#include "frameworks/Foundation/values.hpp"

namespace fs = std::filesystem;

namespace {

fs::path home() {
  const char* folder = std::getenv("HOME");
  return folder != nullptr ? folder : "/var/empty";
}

fs::path executable() {
  return fs::read_symlink("/proc/self/exe");
}

}  // namespace

@implementation NSURL {
  NSString* text_;
}

+ (instancetype)URLWithString:(NSString*)string {
  if (standin::textOf(string).find(' ') != std::string::npos) {
    return nil;
  }
  NSURL* address = [[NSURL alloc] init];
  address->text_ = string;
  return address;
}

+ (NSURL*)fileURLWithPath:(NSString*)path {
  NSURL* address = [[NSURL alloc] init];
  address->text_ = path;
  return address;
}

- (NSString*)path {
  return text_;
}

- (NSString*)absoluteString {
  return text_;
}

- (NSURL*)URLByAppendingPathComponent:(NSString*)component {
  const fs::path whole = fs::path(standin::textOf(text_)) / standin::textOf(component);
  return [NSURL fileURLWithPath:standin::newString(whole)];
}

@end

@implementation NSFileManager

+ (NSFileManager*)defaultManager {
  static NSFileManager* const only = [[NSFileManager alloc] init];
  return only;
}

- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)directory
                           inDomains:(NSSearchPathDomainMask)domains {
  if (directory != NSApplicationSupportDirectory || domains != NSUserDomainMask ||
      std::getenv("STAND_IN_NO_FOLDERS") != nullptr) {
    return standin::newArray({});
  }
  return standin::newArray(
      {[NSURL fileURLWithPath:standin::newString(home() / "Library/Application Support")]});
}

@end

@implementation NSBundle

+ (NSBundle*)mainBundle {
  static NSBundle* const only = [[NSBundle alloc] init];
  return only;
}

- (NSURL*)bundleURL {
  const fs::path folder = executable().parent_path();
  const bool isInBundle =
      folder.filename() == "MacOS" && folder.parent_path().filename() == "Contents";
  return [NSURL
      fileURLWithPath:standin::newString(isInBundle ? folder.parent_path().parent_path() : folder)];
}

@end

extern "C" NSString* NSHomeDirectory(void) {
  return standin::newString(home());
}
