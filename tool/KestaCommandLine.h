#ifndef KESTA_COMMAND_LINE_H
#define KESTA_COMMAND_LINE_H

/// The kesta command: reads its arguments, does what they ask for, and returns the exit status.
int runKesta(int argc, char** argv);

#endif
