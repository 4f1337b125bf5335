#ifndef REPORT_BACKGROUNDSHA256_H
#define REPORT_BACKGROUNDSHA256_H

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include <QByteArray>

#include "report/sha256.h"

// The SHA-256 of bytes that come one after the other, by a thread of its own while the caller goes
// on. What is smaller than a block, and where the system starts no thread, the caller hashes.
class BackgroundSha256
{
public:
    static constexpr std::size_t kBlockSize = std::size_t(1) << 18;

    BackgroundSha256() = default;
    ~BackgroundSha256();
    BackgroundSha256(const BackgroundSha256&) = delete;
    BackgroundSha256& operator=(const BackgroundSha256&) = delete;

    // Copies the bytes. Waits only while a whole block is still to be hashed.
    void add(const char* data, std::size_t size);
    // 64 hexadecimal digits. Nothing can be added after it, and it cannot be called again.
    QByteArray takeHex();

private:
    enum class Worker {
        NotNeeded,
        Running,
        Refused // by the system
    };

    void hashFilled();
    void startWorker();
    void endWorker();
    void hashBlocks(); // the worker's loop

    Sha256 m_hash; // the worker's while it is running
    std::vector<char> m_filled;
    Worker m_worker = Worker::NotNeeded;
    std::thread m_thread;

    std::mutex m_mutex; // of what follows
    std::condition_variable m_changed;
    std::vector<char> m_block; // empty as soon as it is hashed
    bool m_isEnding = false;
    bool m_hasFailed = false;
};

#endif // REPORT_BACKGROUNDSHA256_H
