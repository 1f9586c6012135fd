// expect: no known class method for selector 'monospaceDigitSystemFontOfSize:weight:'
#import <AppKit/AppKit.h>

NSFont* font() {
  return [NSFont monospaceDigitSystemFontOfSize:9 weight:NSFontWeightMedium];
}
