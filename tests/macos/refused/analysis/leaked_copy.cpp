// expect: Potential leak of an object
#include <IOKit/ps/IOPowerSources.h>

bool hasPowerSources() {
  return IOPSCopyPowerSourcesInfo() != nullptr;
}
