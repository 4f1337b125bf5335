#ifndef APP_COMMANDLINE_H
#define APP_COMMANDLINE_H

class AnnualizeHts;

// Runs the command-line mode: does what the arguments ask for, without a window. Messages go to the
// console until the log file is open, then to the log. `arguments` has `argumentCount` elements,
// the program's name first. Returns the exit code of the process: 1 for every error, also for a
// text that could not be written to the console, otherwise 0; invalid usage is deliberately not an
// error.
int runCommandLine(int argumentCount, const char* const* arguments, AnnualizeHts& engine);

#endif // APP_COMMANDLINE_H
