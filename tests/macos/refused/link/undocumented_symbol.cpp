// expect: IOConnectCallStructMethodOfOurOwn
// A function that no stub names must not link, however it is declared.
#include <IOKit/IOKitLib.h>

extern "C" kern_return_t IOConnectCallStructMethodOfOurOwn(io_connect_t connection);

int main() {
  return IOConnectCallStructMethodOfOurOwn(IO_OBJECT_NULL);
}
