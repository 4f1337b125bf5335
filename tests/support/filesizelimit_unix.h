#ifndef TESTS_SUPPORT_FILESIZELIMIT_UNIX_H
#define TESTS_SUPPORT_FILESIZELIMIT_UNIX_H

#include <csignal>

#include <sys/resource.h>

// While it lives, this process cannot make a file larger than so many bytes: the write fails, as on
// a full disk, and with EFBIG.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int) = SIG_DFL;
};

#endif // TESTS_SUPPORT_FILESIZELIMIT_UNIX_H
