#ifndef TESTS_SUPPORT_FAULTS_H
#define TESTS_SUPPORT_FAULTS_H

#include <cerrno>

#include "tests/support/processrun.h"

// System calls of a process that fail; see faultsshim.cpp.

constexpr int kAlways = 1000000; // calls

struct Fault
{
    const char* file; // for "open" spelt as the program does
    const char* call; // "open", "read", "write" or "close"
    int at = 0;       // "read" and "write" work for the bytes before this one
    int count = kAlways;
    int error = EIO;
    int signal = 0;
};

// The fault happens in all later runs.
void preload(ProcessRun& run, const Fault& fault);

#endif // TESTS_SUPPORT_FAULTS_H
