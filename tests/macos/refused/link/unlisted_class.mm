// expect: NSUserNotification
// A class that no stub names must not link.
#import <Foundation/Foundation.h>

@interface NSUserNotification : NSObject
@end

int main() {
  return [[NSUserNotification alloc] init] == nil;
}
