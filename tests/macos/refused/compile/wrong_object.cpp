// expect: no matching function for call to 'CFArrayGetCount'
#include <CoreFoundation/CoreFoundation.h>

long count(CFDictionaryRef dictionary) {
  return CFArrayGetCount(dictionary);
}
