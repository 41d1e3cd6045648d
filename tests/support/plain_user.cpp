#include "support/plain_user.h"

#include <QTemporaryDir>

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr unsigned kOverrides = (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH);

bool caps(bool set, __user_cap_data_struct* data) {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    return ::syscall(set ? SYS_capset : SYS_capget, &header, data) == 0;
}

// Whether a directory without any permission keeps this thread out.
bool permissions_bind() {
    QTemporaryDir probe;
    if (!probe.isValid() || ::chmod(probe.path().toUtf8().constData(), 0) != 0) {
        return false;
    }
    const int fd = ::open(probe.path().toUtf8().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::close(fd);
    }
    ::chmod(probe.path().toUtf8().constData(), 0700);
    return fd < 0;
}

}  // namespace

PlainUserThread::PlainUserThread() {
    __user_cap_data_struct data[2] = {};
    if (caps(false, data) && (data[0].effective & kOverrides) != 0) {
        saved_[0] = data[0].effective;
        saved_[1] = data[1].effective;
        data[0].effective &= ~kOverrides;
        restore_ = caps(true, data);
    }
    if (!permissions_bind()) {
        why_not_ = QStringLiteral(
            "file permissions do not bind this test (it cannot give up the capabilities that "
            "override them)");
    }
}

PlainUserThread::~PlainUserThread() {
    __user_cap_data_struct data[2] = {};
    if (restore_ && caps(false, data)) {
        data[0].effective = saved_[0];
        data[1].effective = saved_[1];
        caps(true, data);
    }
}

void become_plain_user_in_child() {
    // Taken from the bounding set, the overrides do not come back with the
    // new program, root or not.
    for (int cap : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
        if (::prctl(PR_CAPBSET_READ, cap) == 1 && ::prctl(PR_CAPBSET_DROP, cap) != 0 &&
            ::geteuid() == 0) {
            ::_exit(kNoPlainUser);
        }
    }
}
