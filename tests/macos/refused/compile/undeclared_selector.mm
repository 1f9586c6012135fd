// expect: undeclared selector 'statusWasClicked:'
#import <AppKit/AppKit.h>

void listen(NSControl* control) {
  control.action = @selector(statusWasClicked:);
}
