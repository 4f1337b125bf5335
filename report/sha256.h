#ifndef REPORT_SHA256_H
#define REPORT_SHA256_H

#include <cstddef>
#include <memory>

#include <QByteArray>
#include <QCryptographicHash>

// The functions of a library that hashes with the processor's own instructions, about ten times as
// fast as the toolkit: a large file is else hashed longer than it is read and checked.
struct CryptoLibrary
{
    void* (*newContext)();
    void (*freeContext)(void* context);
    const void* (*sha256)();
    // These return 1 for a success.
    int (*init)(void* context, const void* algorithm, void* engine);
    int (*update)(void* context, const void* data, std::size_t size);
    int (*finish)(void* context, unsigned char* hash, unsigned int* size);
};

// Loaded by the first call; null where it is not installed.
const CryptoLibrary* cryptoLibrary();

// The SHA-256 of bytes that come one after the other.
class Sha256
{
public:
    // With the toolkit if `library` is null.
    explicit Sha256(const CryptoLibrary* library = cryptoLibrary());

    void add(const char* data, qint64 size);
    // 64 hexadecimal digits. Nothing can be added after it, and it cannot be called again.
    QByteArray takeHex();

private:
    using Context = std::unique_ptr<void, void (*)(void*)>;

    const CryptoLibrary* m_library;
    Context m_context;
    QCryptographicHash m_toolkit{QCryptographicHash::Sha256}; // without a library
};

#endif // REPORT_SHA256_H
