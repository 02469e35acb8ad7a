#include "KestaProcess.h"

unsigned uKestaForks = 0;

pthread_mutex_t hKestaSettingsMutex = PTHREAD_MUTEX_INITIALIZER;
