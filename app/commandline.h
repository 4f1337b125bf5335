#ifndef APP_COMMANDLINE_H
#define APP_COMMANDLINE_H

class AnnualizeHts;

// Runs the command-line mode: what the arguments ask for, without a window. Messages go to the
// console until the log file is open, then to that. Returns the exit code of the process: 1 for
// every error, else 0; invalid usage, deliberately, is no error.
int runCommandLine(int argumentCount, const char* const* arguments, AnnualizeHts& engine);

#endif // APP_COMMANDLINE_H
