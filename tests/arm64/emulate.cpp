// Stands in the place of a program for arm64, and runs it under the emulator: the file beside it
// with the same name and ".aarch64" after it. So tests, shells and the programs themselves start it
// as on an arm64; that the system itself calls the emulator needs its administrator.
//   EMULATOR  path of qemu-aarch64
//   SYSROOT   folder with the system's libraries for arm64

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Makes the system refuse to wait for processes by their descriptors. QEMU 7 passes on that Linux
// does so, but makes no such descriptors: Qt would ask for them and fail to start any process.
bool hideProcessDescriptors()
{
    sock_filter filter[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_waitid, 0, 3),
                            // The lower half of the first argument.
                            BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args)),
                            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, P_PIDFD, 0, 1),
                            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
                            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const sock_fprog program = {sizeof filter / sizeof *filter, filter};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

} // namespace

int main(int argc, char* argv[])
{
    char self[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self);
    if (length < 0 || argc < 1 || !hideProcessDescriptors()) {
        std::perror("emulate");
        return EXIT_FAILURE;
    }
    std::string program(self, static_cast<std::size_t>(length));
    program += ".aarch64";

    char* const emulator = const_cast<char*>(EMULATOR);
    std::vector<char*> command{emulator, const_cast<char*>("-L"), const_cast<char*>(SYSROOT),
                               const_cast<char*>("-0"), argv[0]};
    // A library for the program; the emulator's own loader would report that it is none for it.
    const char* const library = std::getenv("LD_PRELOAD");
    std::string preloaded = std::string("LD_PRELOAD=") + (library != nullptr ? library : "");
    if (library != nullptr) {
        unsetenv("LD_PRELOAD");
        command.insert(command.end(), {const_cast<char*>("-E"), preloaded.data()});
    }
    command.push_back(program.data());
    command.insert(command.end(), argv + 1, argv + argc + 1); // with the null pointer at their end
    execv(emulator, command.data());
    std::perror(emulator);
    return EXIT_FAILURE;
}
