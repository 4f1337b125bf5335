#ifndef APP_USAGE_H
#define APP_USAGE_H

// Writes the usage text to std::cout.
void printUsage();

#endif // APP_USAGE_H
