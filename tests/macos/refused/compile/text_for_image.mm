// expect: incompatible pointer types assigning to 'NSImage * _Nullable' from 'NSString *
#import <AppKit/AppKit.h>

void show(NSStatusItem* item, NSString* text) {
  item.button.image = text;
}
