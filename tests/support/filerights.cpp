#include "filerights.h"

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr unsigned kRights = (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH);

// Sets the thread's effective capabilities (the low word, where these two
// lie) to `clear` removed and `set` added.
unsigned changeEffective(unsigned clear, unsigned set) {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    if (::syscall(SYS_capget, &header, data) != 0)
        return 0;
    const unsigned had = data[0].effective & clear;
    data[0].effective = (data[0].effective & ~clear) | set;
    if (::syscall(SYS_capset, &header, data) != 0)
        return 0;
    return had;
}

} // namespace

WithoutFileRights::WithoutFileRights() : m_dropped(changeEffective(kRights, 0)) {}

WithoutFileRights::~WithoutFileRights() {
    if (m_dropped)
        changeEffective(0, m_dropped);
}
