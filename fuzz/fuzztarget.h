#ifndef FUZZ_FUZZTARGET_H
#define FUZZ_FUZZTARGET_H

#include <cstddef>
#include <cstdint>

#include <QByteArray>

// A fuzz target is one file that defines checkInput(): it gives the input to the product and calls
// fuzz::require() for everything that must be true (see fuzzsupport.h). Two programs are built from
// it: the fuzzer, and the test that replays the committed corpus.
void checkInput(const QByteArray& input);

// The entry that both programs call; always returns 0. Its name is the fuzzer's.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

#endif // FUZZ_FUZZTARGET_H
