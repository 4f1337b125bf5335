#ifndef TESTS_HELP_EXAMPLEFOLDER_H
#define TESTS_HELP_EXAMPLEFOLDER_H

class AnnualizerRun;

// Makes the run's folder one that has the examples and an empty folder "tmp", and in which both
// programs are commands.
void makeExampleFolder(AnnualizerRun& run);

#endif // TESTS_HELP_EXAMPLEFOLDER_H
