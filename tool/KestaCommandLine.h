#ifndef KESTA_COMMAND_LINE_H
#define KESTA_COMMAND_LINE_H

/// Runs the kesta command with these arguments, and returns the exit status.
int runKesta(int argc, char** argv);

#endif
