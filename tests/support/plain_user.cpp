#include "support/plain_user.h"

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr unsigned kOverrides = (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH);

// Capabilities are kept per thread: this changes the calling thread's only.
bool thread_caps(bool set, __user_cap_data_struct (&data)[2]) {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    return ::syscall(set ? SYS_capset : SYS_capget, &header, data) == 0;
}

}  // namespace

PlainUserThread::PlainUserThread() {
    __user_cap_data_struct data[2] = {};
    if (thread_caps(false, data)) {
        saved_ = data[0].effective;
        data[0].effective &= ~kOverrides;
        dropped_ = thread_caps(true, data);
    }
}

PlainUserThread::~PlainUserThread() {
    __user_cap_data_struct data[2] = {};
    if (dropped_ && thread_caps(false, data)) {
        data[0].effective = saved_;
        thread_caps(true, data);
    }
}

QString PlainUserThread::why_not() const {
    return dropped_ || ::geteuid() != 0 ? QString()
                                        : "running as root, the test cannot give up the right "
                                          "to pass over file permissions";
}

void become_plain_user_in_child() {
    // Out of the bounding set, the overrides do not come back with the new
    // program, root or not.
    for (int cap : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
        if (::prctl(PR_CAPBSET_DROP, cap) != 0 && ::geteuid() == 0) {
            ::_exit(kNoPlainUser);
        }
    }
}
