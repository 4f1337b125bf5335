#ifndef FUZZ_FUZZTARGET_H
#define FUZZ_FUZZTARGET_H

#include <vector>

#include <QByteArray>

// A fuzz target is one file that ends in
//
//     FUZZ_TARGET(NAME_OF_THE_FILE)
//     {
//         ...
//     }
//
// It gives `input` to the product and calls fuzz::require() for everything that must be true (see
// fuzzsupport.h). Two programs have it: a fuzzer of its own, and the test that replays the
// committed corpora of all.
struct FuzzTarget
{
    const char* name;
    void (*checkInput)(const QByteArray& input);
};

// Those that are linked into the program.
std::vector<FuzzTarget>& fuzzTargets();

class FuzzTargetRegistration
{
public:
    explicit FuzzTargetRegistration(const FuzzTarget& target) { fuzzTargets().push_back(target); }
};

#define FUZZ_TARGET(target)                                                                        \
    static void target##Input(const QByteArray& input);                                            \
    static const FuzzTargetRegistration target##Registration({#target, target##Input});            \
    static void target##Input(const QByteArray& input)

#endif // FUZZ_FUZZTARGET_H
