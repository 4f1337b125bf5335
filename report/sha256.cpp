#include "report/sha256.h"

#include <new>

Sha256::Sha256(const CryptoLibrary* library)
    : m_library(library), m_context(nullptr, library == nullptr ? nullptr : library->freeContext)
{
    if (m_library == nullptr)
        return;
    m_context.reset(m_library->newContext());
    // Both fail for want of memory only.
    if (m_context == nullptr || m_library->init(m_context.get(), m_library->sha256(), nullptr) != 1)
        throw std::bad_alloc();
}

void Sha256::add(const char* data, qint64 size)
{
    if (m_library == nullptr)
        m_toolkit.addData(QByteArray::fromRawData(data, static_cast<int>(size)));
    else if (m_library->update(m_context.get(), data, static_cast<std::size_t>(size)) != 1)
        throw std::bad_alloc();
}

QByteArray Sha256::takeHex()
{
    if (m_library == nullptr)
        return m_toolkit.result().toHex();
    constexpr int kSize = 32;
    QByteArray hash(kSize, Qt::Uninitialized);
    unsigned int size = 0;
    if (m_library->finish(m_context.get(), reinterpret_cast<unsigned char*>(hash.data()), &size) !=
        1)
        throw std::bad_alloc();
    Q_ASSERT(size == kSize);
    return hash.toHex();
}
