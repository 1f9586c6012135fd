// expect: NSNobodyListsThis
// A class that no stub names must not link.
#import <Foundation/Foundation.h>

@interface NSNobodyListsThis : NSObject
@end

int main() {
  return [[NSNobodyListsThis alloc] init] == nil;
}
