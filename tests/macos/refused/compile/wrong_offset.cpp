// expect: static assertion failed
#include <sys/types.h>
#include <sys/socket.h>
#include <net/if.h>
#include <net/route.h>

#include <cstddef>

static_assert(offsetof(if_msghdr2, ifm_data.ifi_ibytes) == 88);
