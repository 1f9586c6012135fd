// expect: is only available on macOS 14.0 or newer
// What came after macOS 13 must not be used unguarded.
#import <Foundation/Foundation.h>

API_AVAILABLE(macos(14.0))
@interface OfALaterSystem : NSObject
@end

id make() {
  return [[OfALaterSystem alloc] init];
}
