#include "report/backgroundsha256.h"

#include <algorithm>
#include <new>
#include <system_error>

BackgroundSha256::~BackgroundSha256()
{
    endWorker();
}

void BackgroundSha256::add(const char* data, std::size_t size)
{
    while (size > 0) {
        const std::size_t count = std::min(size, kBlockSize - m_filled.size());
        m_filled.insert(m_filled.end(), data, data + count);
        data += count;
        size -= count;
        if (m_filled.size() == kBlockSize)
            hashFilled();
    }
}

QByteArray BackgroundSha256::takeHex()
{
    endWorker();
    if (m_hasFailed)
        throw std::bad_alloc();
    m_hash.add(m_filled.data(), static_cast<qint64>(m_filled.size()));
    return m_hash.takeHex();
}

void BackgroundSha256::hashFilled()
{
    if (m_worker == Worker::NotNeeded)
        startWorker();
    if (m_worker == Worker::Refused) {
        m_hash.add(m_filled.data(), static_cast<qint64>(m_filled.size()));
        m_filled.clear();
        return;
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_block.empty(); });
    m_block.swap(m_filled);
    m_changed.notify_one();
}

void BackgroundSha256::startWorker()
{
    try {
        m_thread = std::thread([this] { hashBlocks(); });
        m_worker = Worker::Running;
    } catch (const std::system_error&) {
        m_worker = Worker::Refused;
    }
}

void BackgroundSha256::endWorker()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
        m_changed.notify_one();
    }
    m_thread.join();
}

void BackgroundSha256::hashBlocks()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return !m_block.empty() || m_isEnding; });
        if (m_block.empty())
            return;
        lock.unlock(); // the caller changes the block only once it is empty
        bool isHashed = true;
        try {
            m_hash.add(m_block.data(), static_cast<qint64>(m_block.size()));
        } catch (const std::bad_alloc&) {
            isHashed = false;
        }
        lock.lock();
        m_hasFailed = m_hasFailed || !isHashed;
        m_block.clear();
        m_changed.notify_one();
    }
}
